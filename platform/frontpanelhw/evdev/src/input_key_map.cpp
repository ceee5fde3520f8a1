#include <frontpanelhw/input_key_map.h>

#include "../../src/key_text.h"
#include <libevdev/libevdev.h>
#include <linux/input-event-codes.h>

namespace frontpanelhw {

static_assert(InputKeyMap::kMaxCode == KEY_MAX, "the map's code range follows the kernel's");

namespace {

/** A decimal key code; nothing when `text` is not all digits. */
std::optional<long> decimalCode(std::string_view text) {
    if (text.empty() || text.size() > 6) {
        return std::nullopt;
    }
    long value = 0;
    for (char const c : text) {
        if (c < '0' || c > '9') {
            return std::nullopt;
        }
        value = value * 10 + (c - '0');
    }
    return value;
}

int keyCodeOf(std::string_view name, std::string_view entry) {
    if (auto const number = decimalCode(name)) {
        if (*number > InputKeyMap::kMaxCode) {
            throw KeyMapError("key code " + std::string(name) + " in key map entry '" +
                              std::string(entry) +
                              "' is out of range: Linux key codes go from 0 to " +
                              std::to_string(InputKeyMap::kMaxCode));
        }
        return static_cast<int>(*number);
    }
    std::string const name0(name);  // libevdev wants a terminated string
    int const code = libevdev_event_code_from_name(EV_KEY, name0.c_str());
    if (code < 0) {
        throw KeyMapError("unknown key name '" + name0 + "' in key map entry '" +
                          std::string(entry) +
                          "': use a Linux key name such as KEY_F1 or BTN_0 (evtest lists a "
                          "device's keys) or a decimal key code");
    }
    return code;
}

}  // namespace

InputKeyMap InputKeyMap::defaults() {
    InputKeyMap map;
    map.set(KEY_UP, PanelKey::Up);
    map.set(KEY_DOWN, PanelKey::Down);
    map.set(KEY_LEFT, PanelKey::Left);
    map.set(KEY_RIGHT, PanelKey::Right);
    for (int const code : {KEY_ENTER, KEY_KPENTER, KEY_OK}) {
        map.set(code, PanelKey::Enter);
    }
    for (int const code : {KEY_ESC, KEY_BACKSPACE, KEY_BACK}) {
        map.set(code, PanelKey::Back);
    }
    return map;
}

void InputKeyMap::set(int code, PanelKey key) {
    if (code < 0 || code > kMaxCode) {
        throw std::out_of_range("key code " + std::to_string(code) + " is outside 0.." +
                                std::to_string(kMaxCode));
    }
    keys_[code] = key;
}

void InputKeyMap::remove(int code) { keys_.erase(code); }

std::optional<PanelKey> InputKeyMap::find(int code) const {
    auto const found = keys_.find(code);
    if (found == keys_.end()) {
        return std::nullopt;
    }
    return found->second;
}

InputKeyMap parseInputKeyMap(std::string_view text, InputKeyMap base) {
    if (detail::trimmedText(text).empty()) {
        return base;
    }
    while (true) {
        auto const comma = text.find(',');
        std::string_view const entry = detail::trimmedText(text.substr(0, comma));
        auto const equals = entry.find('=');
        if (equals == std::string_view::npos) {
            throw KeyMapError("key map entry '" + std::string(entry) +
                              "' is not CODE=KEY: write it like KEY_F1=back");
        }
        std::string_view const name = detail::trimmedText(entry.substr(0, equals));
        std::string_view const target = detail::trimmedText(entry.substr(equals + 1));
        int const code = keyCodeOf(name, entry);
        if (auto const key = detail::panelKeyFromName(target)) {
            base.set(code, *key);
        } else if (target == "none" || target == "NONE") {
            base.remove(code);
        } else {
            throw KeyMapError("unknown panel key '" + std::string(target) + "' in key map entry '" +
                              std::string(entry) +
                              "': use up, down, left, right, enter, back or none");
        }
        if (comma == std::string_view::npos) {
            return base;
        }
        text.remove_prefix(comma + 1);
    }
}

std::string formatInputKeyMap(InputKeyMap const& map) {
    std::string text;
    for (auto const& [code, key] : map.entries()) {
        if (!text.empty()) {
            text += ',';
        }
        text += inputKeyName(code) + '=' + panelKeyName(key);
    }
    return text;
}

std::string inputKeyName(int code) {
    char const* name =
        code < 0 ? nullptr : libevdev_event_code_get_name(EV_KEY, static_cast<unsigned>(code));
    return name != nullptr ? std::string(name) : std::to_string(code);
}

}  // namespace frontpanelhw
