#pragma once

#include <frontpanelhw/export.h>
#include <frontpanelhw/input_errors.h>
#include <frontpanelhw/key_source.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace frontpanelhw {

/** Which Linux input key codes (the KEY_* and BTN_* codes of linux/input-event-codes.h) give
 *  which panel key. Several codes may give the same panel key. Built only with
 *  YXFP_WITH_EVDEV (libevdev). */
class FRONTPANELHW_EXPORT InputKeyMap {
public:
    /** The largest key code a map accepts (the kernel's KEY_MAX). */
    static constexpr int kMaxCode = 0x2ff;

    /** An empty map: no code gives a panel key. */
    InputKeyMap() = default;

    /** The map most devices need: KEY_UP, KEY_DOWN, KEY_LEFT and KEY_RIGHT give the four
     *  directions; KEY_ENTER, KEY_KPENTER and KEY_OK give enter; KEY_ESC, KEY_BACKSPACE and
     *  KEY_BACK give back. */
    static InputKeyMap defaults();

    /** Makes `code` give `key`, replacing what it gave before.
     *  @throws std::out_of_range for a code outside 0..kMaxCode. */
    void set(int code, PanelKey key);
    /** Makes `code` give nothing; unknown codes are ignored. */
    void remove(int code);
    /** The panel key of `code`; nothing for codes the map does not name. */
    std::optional<PanelKey> find(int code) const;
    /** Every entry, by code. */
    std::map<int, PanelKey> const& entries() const { return keys_; }

    /** True when both maps have the same entries. */
    friend bool operator==(InputKeyMap const& lhs, InputKeyMap const& rhs) {
        return lhs.keys_ == rhs.keys_;
    }
    /** True when the maps differ in some entry. */
    friend bool operator!=(InputKeyMap const& lhs, InputKeyMap const& rhs) { return !(lhs == rhs); }

private:
    std::map<int, PanelKey> keys_;
};

/** Applies the text form of a key map to `base` and returns the result. The text is a comma
 *  separated list of `CODE=KEY` entries such as "KEY_F1=back,KEY_SELECT=enter": CODE is a
 *  Linux key name (KEY_*, BTN_*) or a decimal key code, KEY is a panel key name (up, down,
 *  left, right, enter, back, in any case) or `none`, which removes the code. Blanks around
 *  names are ignored; an empty text leaves `base` as it is.
 *  @throws KeyMapError naming the entry for an entry without '=', an unknown key name, a code
 *  out of range or an unknown panel key. */
FRONTPANELHW_EXPORT InputKeyMap parseInputKeyMap(std::string_view text,
                                                 InputKeyMap base = InputKeyMap::defaults());

/** The text form of `map` ("KEY_UP=up,KEY_DOWN=down,..."), by code, which parseInputKeyMap
 *  reads back into the same map when applied to an empty one. */
FRONTPANELHW_EXPORT std::string formatInputKeyMap(InputKeyMap const& map);

/** The Linux name of key code `code` ("KEY_F1", "BTN_0"), or its decimal number when the
 *  kernel has no name for it. */
FRONTPANELHW_EXPORT std::string inputKeyName(int code);

}  // namespace frontpanelhw
