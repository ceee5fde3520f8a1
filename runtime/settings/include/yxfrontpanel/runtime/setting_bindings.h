#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <functional>
#include <string>

namespace yxfrontpanel {
class InlineEditorMenuItem;
class IpAddressEditorMenuItem;
class RadioTreeMenuItem;
class ReadOnlyMenuItem;
class SliderMenuItem;
class ValueEditorMenuItem;
}  // namespace yxfrontpanel

namespace yxfrontpanel::settings {

/**
 * Keeps one menu item and one store key in step: made by `bindSetting`, it ends the
 *        store's notifications to the item when it goes (or on `release`).
 *
 * The store and the item must outlive the binding; the callback the binding installed on the
 * item refers to the store and stays installed after the binding ends (replace it, or keep the
 * store alive, before the store goes). Move-only.
 */
class YXFP_RUNTIME_EXPORT SettingBinding {
public:
    /** An inactive binding, bound to nothing. */
    SettingBinding() = default;
    /** Takes over `listener`, a subscription of the item to `store`, and unsubscribes it when it
     *  ends. Made by `bindSetting`. */
    SettingBinding(SettingsStore& store, SettingsStore::ListenerId listener);
    /** Stops the store's notifications to the item (`release`). */
    ~SettingBinding();
    /** Takes over the subscription of `other`, which becomes inactive. */
    SettingBinding(SettingBinding&& other) noexcept;
    /** Releases this binding's subscription, then takes over that of `other`, which becomes
     *  inactive. */
    SettingBinding& operator=(SettingBinding&& other) noexcept;
    SettingBinding(SettingBinding const&) = delete;
    SettingBinding& operator=(SettingBinding const&) = delete;

    /** Stops the store's notifications to the item now; a second call does nothing. */
    void release();
    /** Whether the binding still receives the store's notifications. */
    bool active() const;

private:
    SettingsStore* store_ = nullptr;
    SettingsStore::ListenerId listener_ = 0;
};

/*
 * One call per item binds a store key to it: the item shows the stored value at once, every
 * value the user commits (the item's apply callback, value callback or slider callback) is set
 * in the store and then handed to the application's own callback (`onCommit`, may be empty),
 * and every change made elsewhere (load, factory reset, remote control through `set`) is shown
 * by the item. A value the store clamps is shown clamped. The binding replaces the item's commit
 * callback with one that chains to `onCommit`; everything else about the item (keys, local
 * mode, drawing) stays as it was.
 *
 * Threads: call on the thread that owns the item; the store then must be changed on that thread
 * only (the item hears changes on the thread that made them).
 * @throws std::out_of_range for a key the store does not declare, std::invalid_argument for a
 * key whose type the item cannot show (named below).
 */

/** A number key. A stored number outside the editor's bounds is clamped into them, with a
 *  warning naming the key, and set in the store. */
YXFP_RUNTIME_EXPORT SettingBinding bindSetting(SettingsStore& store, std::string const& key,
                                               ValueEditorMenuItem& item,
                                               std::function<void(double)> onCommit = {});
/** An IPv4 address key; the application hears the dotted text. */
YXFP_RUNTIME_EXPORT SettingBinding
bindSetting(SettingsStore& store, std::string const& key, IpAddressEditorMenuItem& item,
            std::function<void(std::string const&)> onCommit = {});
/** An integer key (the item's value keys) or a boolean key (keys 0 and 1). */
YXFP_RUNTIME_EXPORT SettingBinding bindSetting(SettingsStore& store, std::string const& key,
                                               InlineEditorMenuItem& item,
                                               std::function<void(int)> onCommit = {});
/** An integer key (the choices' ids, e.g. an `IpMaskEditor`'s prefix length) or a boolean key
 *  (ids 0 and 1). */
YXFP_RUNTIME_EXPORT SettingBinding bindSetting(SettingsStore& store, std::string const& key,
                                               RadioTreeMenuItem& item,
                                               std::function<void(int)> onCommit = {});
/** An integer key. A stored value outside the slider's range is replaced by the key's default,
 *  with a warning naming the key. */
YXFP_RUNTIME_EXPORT SettingBinding bindSetting(SettingsStore& store, std::string const& key,
                                               SliderMenuItem& item,
                                               std::function<void(int)> onCommit = {});
/** Any key, shown only: numbers with `decimals` digits after the point, other values as text
 *  (`toText`). */
YXFP_RUNTIME_EXPORT SettingBinding bindSetting(SettingsStore& store, std::string const& key,
                                               ReadOnlyMenuItem& item, unsigned decimals = 2);

}  // namespace yxfrontpanel::settings
