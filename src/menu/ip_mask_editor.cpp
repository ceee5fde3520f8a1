#include <yxfrontpanel/ip_mask_editor.h>
#include <yxfrontpanel/string_helper.h>

#include <memory>

namespace yxfrontpanel {

IpMaskEditor::IpMaskEditor(IDrawingProvider const& provider, std::u16string const& text)
    : RadioTreeMenuItem(provider, text) {
    initBitToMaskMap();
    initElementsFromMap();
}

IpMaskEditor::~IpMaskEditor() = default;

void IpMaskEditor::initBitToMaskMap() {
    if (!bitToMask_.empty()) {
        return;
    }
    // Coarse below /16, where networks of these sizes are rare; complete from /16 to /32.
    bitToMask_ = {
        {0, u"0.0.0.0"},          {4, u"240.0.0.0"},        {8, u"255.0.0.0"},
        {12, u"255.240.0.0"},     {16, u"255.255.0.0"},     {17, u"255.255.128.0"},
        {18, u"255.255.192.0"},   {19, u"255.255.224.0"},   {20, u"255.255.240.0"},
        {21, u"255.255.248.0"},   {22, u"255.255.252.0"},   {23, u"255.255.254.0"},
        {24, u"255.255.255.0"},   {25, u"255.255.255.128"}, {26, u"255.255.255.192"},
        {27, u"255.255.255.224"}, {28, u"255.255.255.240"}, {29, u"255.255.255.248"},
        {30, u"255.255.255.252"}, {31, u"255.255.255.254"}, {32, u"255.255.255.255"},
    };
}

void IpMaskEditor::initElementsFromMap() {
    for (auto const& entry : bitToMask_) {
        std::u16string const text =
            entry.second + u" | /" + stringhelper::toU16(std::to_string(entry.first));
        addItem(std::make_shared<RadioMenuItem>(text, entry.first));
    }
}

std::map<int, std::u16string> const& IpMaskEditor::getBitToMaskMap() const { return bitToMask_; }

}  // namespace yxfrontpanel
