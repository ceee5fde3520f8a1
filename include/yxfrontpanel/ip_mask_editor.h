#pragma once

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/export.h>
#include <yxfrontpanel/radio_menu_item.h>

#include <map>
#include <string>

namespace yxfrontpanel {

/**
 * A ready-made radio group for choosing an IPv4 network mask by its prefix length.
 *
 * The sub-menu lists 21 masks in ascending prefix order, each as mask text, " | /" and the
 * prefix length ("255.255.255.0 | /24"): 0, 4, 8, 12 and 16, then every length from 17 to 32.
 * The group's value is the prefix length: the application sets it with `setValue(24)` and hears
 * the user's choice as a prefix length through `valueCallback`. A new editor has the /0 entry
 * checked. Lengths that are not offered (1 to 3, 5 to 7, 9 to 11, 13 to 15, anything outside
 * 0..32) are ignored by `setValue`.
 *
 * On a panel narrower than 23 columns the longest entries are cut at the right edge of the
 * menu line. Threads and copying as for `RadioTreeMenuItem`.
 */
class YXFP_EXPORT IpMaskEditor : public RadioTreeMenuItem {
public:
    /** A mask editor named `text` (its line in the parent menu) with all 21 choices. */
    IpMaskEditor(IDrawingProvider const& provider, std::u16string const& text);
    ~IpMaskEditor() override;

    /** Fills the prefix-to-mask table; does nothing when it already holds any entry. */
    void initBitToMaskMap();
    /** Adds one choice per table entry, in ascending prefix order. Called once by the
     *  constructor; a further call lists every mask a second time in the sub-menu while the
     *  group keeps the first choices. */
    void initElementsFromMap();
    /** The prefix-to-mask table (prefix length to dotted mask text). */
    std::map<int, std::u16string> const& getBitToMaskMap() const;

private:
    std::map<int, std::u16string> bitToMask_;
};

}  // namespace yxfrontpanel
