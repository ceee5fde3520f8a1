#include <yxfrontpanel/control.h>
#include <yxfrontpanel/ip_address_editor.h>
#include <yxfrontpanel/string_helper.h>

#include <cmath>
#include <exception>

namespace yxfrontpanel {

namespace {

constexpr unsigned kNoBlock = 5;
constexpr int kTextLength = 15;
// Each octet takes three columns and a point: the fourth column of every group is a point.
constexpr int kColumnsPerBlock = 4;
constexpr unsigned kLastBlock = 3;

// Clamped in floating point first, so that no out-of-range value is ever converted to an integer.
unsigned char clampOctet(double value) {
    if (!(value > 0.0)) {
        return 0;
    }
    if (value >= 255.0) {
        return 255;
    }
    return static_cast<unsigned char>(value);
}

}  // namespace

IpAddressEditor::IpAddressEditor(IDrawingProvider const& provider, std::u16string const& headline)
    : BaseEditor(provider, headline), value_(0U), editValue_(0U) {}

IpAddressEditor::~IpAddressEditor() = default;

void IpAddressEditor::restartEdit() { setValue(value_); }

void IpAddressEditor::commitEdit() {
    value_ = editValue_;
    applyCallback_(ip::toString(value_));
}

bool IpAddressEditor::isPointAt(int index) const {
    // The point search, not the text: it also takes the blank that fills a short last octet
    // for a point. A negative index wraps around and finds none.
    auto const place = static_cast<unsigned>(index);
    return getDotPosition(place) - getStartOfNumberInLbl() == place;
}

void IpAddressEditor::changeValue(int delta) {
    if (!getFocus() || !getEditorMode()) {
        return;
    }
    unsigned const block = getSelectedBlock();
    if (block == kNoBlock) {
        return;
    }
    ip::IpV4Address address = editValue_;
    // Not negative: the caret is on a digit column.
    auto const index = static_cast<unsigned>(getMarkerInValuePosition(0));
    // The last octet has no point after it: take the point before it, moved one group right.
    unsigned const point = block == kLastBlock
                               ? getDotPosition(index - kColumnsPerBlock) + kColumnsPerBlock
                               : getDotPosition(index + 1U);
    int const exponent = getPowerValue(point - getValueLabel().getStartColumn(), index);
    address[block] = clampOctet(address[block] + delta * std::pow(10.0, exponent));
    setValue(address);
}

unsigned int IpAddressEditor::getSelectedBlock() const {
    int const index = getMarkerInValuePosition(0);
    if (index < 0 || index >= kTextLength || index % kColumnsPerBlock == kColumnsPerBlock - 1) {
        return kNoBlock;
    }
    return static_cast<unsigned>(index / kColumnsPerBlock);
}

void IpAddressEditor::drawValue(ip::IpV4Address const& address) {
    valueLabel().setText(stringhelper::toU16(ip::toFullWidthString(address, ' ')));
    editValue_ = address;
}

void IpAddressEditor::setValue(ip::IpV4Address const& address) {
    value_ = address;
    drawValue(address);
}

bool IpAddressEditor::setValue(std::string const& text) {
    ip::IpV4Address address(0U);
    try {
        address = ip::fromString(text);
    } catch (std::exception const&) {
        setValue(std::string("0.0.0.0"));
        return false;
    }
    setValue(address);
    return true;
}

ip::IpV4Address IpAddressEditor::getValue() const { return value_; }

ip::IpV4Address IpAddressEditor::getEditValue() const { return editValue_; }

void IpAddressEditor::setApplyCallback(std::function<void(std::string const&)> const& callback) {
    applyCallback_ = callback;
}

bool IpAddressEditor::hasApplyCallback() const { return static_cast<bool>(applyCallback_); }

}  // namespace yxfrontpanel
