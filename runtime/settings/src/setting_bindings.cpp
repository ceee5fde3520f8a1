#include <yxbase2/log.h>
#include <yxfrontpanel/inline_editor_menu_item.h>
#include <yxfrontpanel/ip_address_editor_menu_item.h>
#include <yxfrontpanel/radio_menu_item.h>
#include <yxfrontpanel/runtime/setting_bindings.h>
#include <yxfrontpanel/scroll_label_menu_item.h>
#include <yxfrontpanel/slider.h>
#include <yxfrontpanel/slider_menu_item.h>
#include <yxfrontpanel/value_editor.h>
#include <yxfrontpanel/value_editor_menu_item.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace yxfrontpanel::settings {

namespace {

namespace log = yxbase2::system::log;

SettingType requireType(SettingsStore& store, std::string const& key,
                        std::initializer_list<SettingType> allowed, char const* item) {
    SettingDefinition const* definition = store.definition(key);
    if (definition == nullptr) {
        throw std::out_of_range("settings: no setting '" + key + "' is declared");
    }
    if (std::find(allowed.begin(), allowed.end(), definition->type()) == allowed.end()) {
        throw std::invalid_argument(std::string("settings: a ") + item + " cannot show '" + key +
                                    "', a " + typeName(definition->type()));
    }
    return definition->type();
}

int toInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, std::numeric_limits<int>::min(),
                                                     std::numeric_limits<int>::max()));
}

// An item key (choice key, radio id) as the store's value, and back.
SettingValue fromItemKey(SettingType type, int key) {
    if (type == SettingType::Boolean) {
        return key != 0;
    }
    return std::int64_t{key};
}

int toItemKey(SettingValue const& value) {
    if (auto const* flag = std::get_if<bool>(&value)) {
        return *flag ? 1 : 0;
    }
    return toInt(std::get<std::int64_t>(value));
}

// The listener id is known only after subscribing, but the item's commit callback must carry it
// (so that the committing item is not told its own value back): both share this cell.
using SharedId = std::shared_ptr<SettingsStore::ListenerId>;

// Sets a committed value; when the store kept another one (clamped or refused), the item is
// shown the stored value, since the store does not notify the item that made the change.
template <class Show>
void commit(SettingsStore& store, std::string const& key, SettingValue const& value,
            SettingsStore::ListenerId source, Show const& show) {
    store.set(key, value, source);
    SettingValue const stored = store.get(key);
    if (!(stored == value)) {
        show(stored);
    }
}

template <class Show>
SettingBinding subscribe(SettingsStore& store, std::string const& key, SharedId const& id,
                         Show show) {
    *id = store.subscribe(key, show);
    return SettingBinding(store, *id);
}

// Choice items and radio groups alike: they show an item key (`setValue`) and report the chosen
// one (`valueCallback`); an integer or boolean setting stands behind the key.
template <class KeyedItem>
SettingBinding bindItemKey(SettingsStore& store, std::string const& key, KeyedItem& item,
                           std::function<void(int)> onCommit, char const* itemName) {
    SettingType const type =
        requireType(store, key, {SettingType::Integer, SettingType::Boolean}, itemName);
    auto show = [&item](SettingValue const& value) { item.setValue(toItemKey(value)); };
    show(store.get(key));
    auto id = std::make_shared<SettingsStore::ListenerId>(0);
    item.valueCallback = [&store, key, type, id, show, onCommit = std::move(onCommit)](int choice) {
        commit(store, key, fromItemKey(type, choice), *id, show);
        if (onCommit) {
            onCommit(choice);
        }
    };
    return subscribe(store, key, id, show);
}

}  // namespace

SettingBinding::SettingBinding(SettingsStore& store, SettingsStore::ListenerId listener)
    : store_(&store), listener_(listener) {}

SettingBinding::~SettingBinding() { release(); }

SettingBinding::SettingBinding(SettingBinding&& other) noexcept
    : store_(std::exchange(other.store_, nullptr)), listener_(std::exchange(other.listener_, 0)) {}

SettingBinding& SettingBinding::operator=(SettingBinding&& other) noexcept {
    if (this != &other) {
        release();
        store_ = std::exchange(other.store_, nullptr);
        listener_ = std::exchange(other.listener_, 0);
    }
    return *this;
}

void SettingBinding::release() {
    if (store_ != nullptr) {
        store_->unsubscribe(listener_);
    }
    store_ = nullptr;
    listener_ = 0;
}

bool SettingBinding::active() const { return store_ != nullptr; }

SettingBinding bindSetting(SettingsStore& store, std::string const& key, ValueEditorMenuItem& item,
                           std::function<void(double)> onCommit) {
    requireType(store, key, {SettingType::Number}, "value editor");
    auto show = [&item](SettingValue const& value) { item.setValue(std::get<double>(value)); };
    double const stored = store.number(key);
    ValueEditor const& editor = item.getEditor();
    double const inRange = std::clamp(stored, editor.getMinValue(),
                                      std::max(editor.getMinValue(), editor.getMaxValue()));
    if (inRange != stored) {
        log::write(log::Level::Warning, "settings", "'", key, "' ", toText(stored),
                   " is outside the editor's range; clamped to ", toText(inRange));
        store.set(key, inRange);
    }
    show(store.get(key));
    auto id = std::make_shared<SettingsStore::ListenerId>(0);
    item.connectEditor([&store, key, id, show, onCommit = std::move(onCommit)](double value) {
        commit(store, key, value, *id, show);
        if (onCommit) {
            onCommit(value);
        }
    });
    return subscribe(store, key, id, show);
}

SettingBinding bindSetting(SettingsStore& store, std::string const& key,
                           IpAddressEditorMenuItem& item,
                           std::function<void(std::string const&)> onCommit) {
    requireType(store, key, {SettingType::Ipv4Address}, "IP address editor");
    auto show = [&item](SettingValue const& value) {
        item.setValue(ip::toString(std::get<ip::IpV4Address>(value)));
    };
    show(store.get(key));
    auto id = std::make_shared<SettingsStore::ListenerId>(0);
    item.connectEditor(
        [&store, key, id, show, onCommit = std::move(onCommit)](std::string const& text) {
            if (auto const address = parseIpv4(text)) {
                commit(store, key, *address, *id, show);
            } else {
                log::write(log::Level::Warning, "settings", "'", key, "': the editor applied \"",
                           text, "\", not an IPv4 address; kept ", toText(store.get(key)));
            }
            if (onCommit) {
                onCommit(text);
            }
        });
    return subscribe(store, key, id, show);
}

SettingBinding bindSetting(SettingsStore& store, std::string const& key, InlineEditorMenuItem& item,
                           std::function<void(int)> onCommit) {
    return bindItemKey(store, key, item, std::move(onCommit), "choice item");
}

SettingBinding bindSetting(SettingsStore& store, std::string const& key, RadioTreeMenuItem& item,
                           std::function<void(int)> onCommit) {
    return bindItemKey(store, key, item, std::move(onCommit), "radio group");
}

SettingBinding bindSetting(SettingsStore& store, std::string const& key, SliderMenuItem& item,
                           std::function<void(int)> onCommit) {
    requireType(store, key, {SettingType::Integer}, "slider");
    auto show = [&item, key](SettingValue const& value) {
        if (!item.setValue(toInt(std::get<std::int64_t>(value)))) {
            log::write(log::Level::Warning, "settings", "'", key, "' ", toText(value),
                       " is outside the slider's range; the slider keeps ",
                       std::to_string(item.getSlider().getValue()));
        }
    };
    if (!item.setValue(toInt(store.integer(key)))) {
        SettingValue const fallback = store.definition(key)->defaultValue();
        log::write(log::Level::Warning, "settings", "'", key, "' ", toText(store.get(key)),
                   " is outside the slider's range; using the default ", toText(fallback));
        store.set(key, fallback);
        show(fallback);
    }
    auto id = std::make_shared<SettingsStore::ListenerId>(0);
    item.connectSlider([&store, key, id, show, onCommit = std::move(onCommit)](int value) {
        commit(store, key, std::int64_t{value}, *id, show);
        if (onCommit) {
            onCommit(value);
        }
    });
    return subscribe(store, key, id, show);
}

SettingBinding bindSetting(SettingsStore& store, std::string const& key, ReadOnlyMenuItem& item,
                           unsigned decimals) {
    if (store.definition(key) == nullptr) {
        throw std::out_of_range("settings: no setting '" + key + "' is declared");
    }
    auto show = [&item, decimals](SettingValue const& value) {
        if (auto const* number = std::get_if<double>(&value)) {
            item.setValue(*number, decimals);
        } else {
            item.setText(toText(value));
        }
    };
    show(store.get(key));
    auto id = std::make_shared<SettingsStore::ListenerId>(0);
    return subscribe(store, key, id, show);
}

}  // namespace yxfrontpanel::settings
