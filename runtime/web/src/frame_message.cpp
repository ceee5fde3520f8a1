#include "frame_message.h"

#include <frontpanelhw/screen_text.h>

#include <cstdio>

#include <nlohmann/json.hpp>

namespace yxfrontpanel::runtime::detail {

std::string jsonString(std::string const& text) {
    std::string quoted = "\"";
    for (char const byte : text) {
        switch (byte) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            default:
                if (static_cast<unsigned char>(byte) < 0x20) {
                    char escape[8];
                    std::snprintf(escape, sizeof escape, "\\u%04x", byte);
                    quoted += escape;
                } else {
                    quoted += byte;
                }
        }
    }
    return quoted + '"';
}

std::string frameMessage(frontpanelhw::drawing::DisplayBuffer const& frame, bool local) {
    std::string message = "{\"type\":\"frame\",\"chars\":" + std::to_string(frame.getChars()) +
                          ",\"lines\":" + std::to_string(frame.getLineCount()) +
                          ",\"local\":" + (local ? "true" : "false") + ",\"text\":[";
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        message += (line == 0 ? "" : ",") + jsonString(frontpanelhw::lineText(frame, line));
    }
    message += "],\"inverted\":[";
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        message += line == 0 ? "[" : ",[";
        bool first = true;
        for (auto const& range : frontpanelhw::invertedRanges(frame, line)) {
            message += (first ? "[" : ",[") + std::to_string(range.first) + "," +
                       std::to_string(range.last) + "]";
            first = false;
        }
        message += "]";
    }
    return message + "]}";
}

std::string helloMessage(bool control) {
    return std::string("{\"type\":\"hello\",\"control\":") + (control ? "true" : "false") + "}";
}

ClientMessage parseClientMessage(std::string const& message) {
    using frontpanelhw::PanelKey;
    ClientMessage result;
    nlohmann::json const parsed = nlohmann::json::parse(message, nullptr, false);
    if (!parsed.is_object() || parsed.size() != 1) {
        return result;
    }
    auto const member = parsed.begin();  // the key lives in the iterator, not in a copy
    std::string const& name = member.key();
    nlohmann::json const& value = member.value();
    if (!value.is_string()) {
        return result;
    }
    std::string const& text = value.get_ref<std::string const&>();
    if (name == "token") {
        result.kind = ClientMessage::Kind::Token;
        result.token = text;
        return result;
    }
    if (name != "key") {
        return result;
    }
    for (PanelKey const candidate : {PanelKey::Up, PanelKey::Down, PanelKey::Left, PanelKey::Right,
                                     PanelKey::Enter, PanelKey::Back}) {
        if (text == frontpanelhw::panelKeyName(candidate)) {
            result.kind = ClientMessage::Kind::Key;
            result.key = candidate;
        }
    }
    return result;
}

}  // namespace yxfrontpanel::runtime::detail
