#pragma once

#include <yxfrontpanel/export.h>
#include <yxfrontpanel/inline_editor_menu_item.h>
#include <yxfrontpanel/value_editor_menu_item.h>

#include <functional>
#include <mutex>

namespace yxfrontpanel {

/**
 * A value that the application publishes from any thread, with the function that
 * carries each publication to its consumer (usually a menu item) and the mutex that
 * serialises the publications.
 *
 * After `changedCb(f)`, `callback` locks `mutex`, calls `f` with the new value and only then
 * stores it in `value`, so `value` changes only once the consumer has accepted it and
 * publications from several threads reach the consumer one at a time. `set` publishes, `get`
 * reads under the mutex; both may be called from any thread. Install the callback (connect)
 * before other threads start publishing: `changedCb` itself is not synchronised. Not copyable
 * or movable (the installed callback refers to this object).
 */
template <class T>
class YXFP_EXPORT CallbackValue {
public:
    /** The current value (value-initialised); read it with `get()` while others
     *  publish. */
    T value{};
    /** Publishes a new value; empty until `changedCb`. */
    std::function<void(T)> callback;
    /** Serialises publications and guards `value`. */
    std::mutex mutex;

    /**
     * Replaces `callback` by a function that, for a new value v, locks `mutex`, calls
     * `f(v)`, stores v in `value` and unlocks.
     *
     * Publishing through it throws `std::bad_function_call` when `f` is empty (the mutex is
     * released and `value` is unchanged) and `std::system_error` when the mutex cannot be
     * locked; whatever `f` throws leaves `value` unchanged as well.
     */
    void changedCb(std::function<void(T)> const& f) {
        callback = [this, f](T v) {
            std::lock_guard<std::mutex> const lock(mutex);
            f(v);
            value = v;
        };
    }

    /** Publishes `v`: through `callback` when one is installed, otherwise by storing it
     *  under the mutex. */
    void set(T v) {
        if (callback) {
            callback(v);
            return;
        }
        std::lock_guard<std::mutex> const lock(mutex);
        value = v;
    }

    /** The current value, read under the mutex. */
    T get() {
        std::lock_guard<std::mutex> const lock(mutex);
        return value;
    }
};

/** Functions that wire menu items to the application's values in one call. */
namespace itemconnector {

/** A setter that does nothing, for callers that have no use for one of the two `bool`
 *  setters `valueEditor` hands out (note that `valueEditor` overwrites what it is given). One
 *  per translation unit. */
static std::function<void(bool)> voidBoolDefault = [](bool /*unused*/) {};

/**
 * Wires a value editor item to the application's values, in this order: the minimum, the
 * maximum, the value, the visibility setter, the editor-mode setter, the apply callback.
 *
 * For `T = std::function<void(double)>`: `minValue`, `maxValue` and `value` are overwritten
 * with functions calling the item's `setMinValue`, `setMaxValue` and `setValue`.
 * For `T = CallbackValue<double>`: each of the three gets `changedCb` with such a function and
 * is then published once with its current value, so the item already holds the minimum, the
 * maximum and the value, set in that order (the bounds first, so that the first value is drawn
 * with its width in place).
 * Then `setVisible` and `setEditorMode` are overwritten with functions calling the item's
 * `setVisible` and `setEditorMode`, and `connectEditor(onApply)` is called.
 *
 * Every function handed out holds a plain reference to `item`: drop them (or stop publishing)
 * before the item is destroyed. Instantiated in the library for exactly these two types.
 */
template <class T>
void valueEditor(T& value, T& minValue, T& maxValue, std::function<void(double)> const& onApply,
                 ValueEditorMenuItem& item, std::function<void(bool)>& setVisible,
                 std::function<void(bool)>& setEditorMode);

/** `valueEditor` for values read and written through plain functions. */
extern template YXFP_EXPORT void valueEditor<std::function<void(double)>>(
    std::function<void(double)>& value, std::function<void(double)>& minValue,
    std::function<void(double)>& maxValue, std::function<void(double)> const& onApply,
    ValueEditorMenuItem& item, std::function<void(bool)>& setVisible,
    std::function<void(bool)>& setEditorMode);

/** `valueEditor` for values published through `CallbackValue`s. */
extern template YXFP_EXPORT void valueEditor<CallbackValue<double>>(
    CallbackValue<double>& value, CallbackValue<double>& minValue, CallbackValue<double>& maxValue,
    std::function<void(double)> const& onApply, ValueEditorMenuItem& item,
    std::function<void(bool)>& setVisible, std::function<void(bool)>& setEditorMode);

/** A function through which the application pushes a new value key into `item` (its
 *  `setValue(int)`). It holds a plain reference to `item`, which must outlive it. */
YXFP_EXPORT std::function<void(int)> inlineEditor(InlineEditorMenuItem& item);

}  // namespace itemconnector

}  // namespace yxfrontpanel
