#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace yxfrontpanel {
class IMenuTree;
class MenuItem;
}  // namespace yxfrontpanel

namespace yxfrontpanel::runtime {

/** The value of a menu item as text, and whether it is a number (SCPI sends numbers bare and
 *  text in quotes). */
struct YXFP_RUNTIME_EXPORT MenuValue {
    /** The value as UTF-8 text; empty when no choice is selected. */
    std::string text;
    /** True for a value editor's or slider's number, false for text (address, choice). */
    bool numeric = false;
};

/** The item at `path`: item names from the root joined by '/' ("Output/Voltage"), hidden items
 *  included, matched exactly; the first item of a name wins.
 *  @throws scpi::Error (illegal parameter value, naming the path) when no item has that path. */
YXFP_RUNTIME_EXPORT MenuItem& findMenuItem(IMenuTree& root, std::string_view path);

/** The value of the item at `path`: a value editor's committed number (with the editor's
 *  decimals), an IP address editor's dotted address, an inline choice's value text, a radio
 *  group's checked choice name, a slider's committed level. Panel's thread only.
 *  @throws scpi::Error for an unknown path or an item that has no value. */
YXFP_RUNTIME_EXPORT MenuValue readMenuValue(IMenuTree& root, std::string_view path);

/** What DEFault means for the value editors a remote channel reaches: the value each held when
 *  a command of that channel first named its path (read or written). A script that changes a
 *  value can so put it back as it found it. Panel's thread only. */
class YXFP_RUNTIME_EXPORT MenuDefaults {
public:
    /** Records the committed value of the value editor at `path` if this is the first time the
     *  path is named; returns the recorded value. Nothing for another kind of item.
     *  @throws scpi::Error (illegal parameter value) for an unknown path. */
    std::optional<double> note(IMenuTree& root, std::string_view path);

private:
    std::map<std::string, double, std::less<>> values_;
};

/** A value editor's bound or default: `which` is MINimum, MAXimum or DEFault
 *  (`MENU:VALue? "path",MAX`); the default is `defaultValue` (see `MenuDefaults`).
 *  @throws scpi::Error (illegal parameter value) for an item without bounds, another word, or
 *  DEFault without `defaultValue`. */
YXFP_RUNTIME_EXPORT MenuValue readMenuBound(IMenuTree& root, std::string_view path,
                                            std::string const& which,
                                            std::optional<double> defaultValue = std::nullopt);

/** Sets the value of the item at `path` from `text` through the item, as a confirmed edit on
 *  the panel would: the item's bounds apply and the application hears the new value through the
 *  item's callback. Numbers for value editors (with an optional suffix in the editor's unit, such
 *  as "500 mV", MINimum / MAXimum for its bounds, DEFault for `defaultValue`) and sliders; a
 *  dotted address for IP address
 *  editors; a value text or key for inline choices; a choice name or id for radio groups.
 *  Panel's thread only.
 *  @throws scpi::Error: unknown path or item without value (illegal parameter value), an item
 *  that is not available or that the application made read-only (an inline choice not
 *  `editable`, a radio choice without `setEditor`, a read-only slider: execution error), text that
 *  is no value of the item (data type error or illegal parameter value), a value outside the
 *  item's bounds (data out of range); nothing is changed then. Whatever the item's callback
 *  throws (std::bad_function_call included) passes through, after the value was committed. */
YXFP_RUNTIME_EXPORT void writeMenuValue(IMenuTree& root, std::string_view path,
                                        std::string const& text,
                                        std::optional<double> defaultValue = std::nullopt);

}  // namespace yxfrontpanel::runtime
