#include <yxfrontpanel/control.h>
#include <yxfrontpanel/string_helper.h>
#include <yxfrontpanel/value_editor.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <ios>
#include <limits>
#include <locale>
#include <sstream>
#include <string>

namespace yxfrontpanel {

namespace {

// Every number is formatted independently of any locale: a decimal comma or digit grouping
// from the global locale would move the digits and break the caret arithmetic. std::to_chars
// is locale-independent by definition and gives the text of the stream's printf-style
// formatting without building a stream for every key press.
enum class Notation { Fixed, General };

std::string magnitudeText(double value, Notation notation, unsigned int precision) {
    double const magnitude = std::fabs(value);
    std::array<char, 512> text{};
    auto const format =
        notation == Notation::Fixed ? std::chars_format::fixed : std::chars_format::general;
    // General notation is the stream default: six significant digits.
    int const digits =
        notation == Notation::Fixed ? static_cast<int>(std::min(precision, 1U << 20U)) : 6;
    auto const result =
        std::to_chars(text.data(), text.data() + text.size(), magnitude, format, digits);
    if (result.ec == std::errc()) {
        return std::string(text.data(), result.ptr);
    }
    // Only absurd precisions or huge fixed numbers get here: the stream has no size limit.
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    if (notation == Notation::Fixed) {
        stream << std::fixed;
        stream.precision(static_cast<std::streamsize>(precision));
    }
    stream << magnitude;
    return stream.str();
}

}  // namespace

int getMaxWidthOfNumber(double value, unsigned int precision) {
    return static_cast<int>(magnitudeText(value, Notation::Fixed, precision).size());
}

int getMaxWidthOfMinMax(double minValue, double maxValue, unsigned int precision) {
    int const minWidth = minValue == std::numeric_limits<double>::min()
                             ? -1
                             : getMaxWidthOfNumber(minValue, precision);
    int const maxWidth = maxValue == std::numeric_limits<double>::max()
                             ? -1
                             : getMaxWidthOfNumber(maxValue, precision);
    return minWidth > maxWidth ? minWidth : maxWidth;
}

ValueEditor::ValueEditor(IDrawingProvider const& provider, std::u16string const& headline,
                         double minValue, double maxValue)
    : BaseEditor(provider, headline), maxValue_(maxValue), minValue_(minValue) {}

ValueEditor::~ValueEditor() = default;

void ValueEditor::restartEdit() { setValue(value_); }

void ValueEditor::commitEdit() {
    value_ = editValue_;
    applyCallback_(editValue_);
}

unsigned int ValueEditor::getStartOfNumberInLbl() const {
    return BaseEditor::getStartOfNumberInLbl() + (editValue_ < 0 ? 1U : 0U);
}

unsigned int ValueEditor::getEndOfNumberInLbl() const {
    // Neither the trailing blank that balances the sign nor the unit is editable.
    unsigned const unitWidth = unit_.empty() ? 0U : static_cast<unsigned>(unit_.size()) + 1U;
    return BaseEditor::getEndOfNumberInLbl() - (editValue_ < 0 ? 1U : 0U) - unitWidth;
}

void ValueEditor::changeValue(int delta) {
    if (!getFocus() || !getEditorMode()) {
        return;
    }
    int const exponent = getPowerValue(getDotPosition(0), getMarkerLabel().getLocation().x);
    double stepped = editValue_ + delta * std::pow(10.0, exponent);
    if (stepped > maxValue_) {
        stepped = maxValue_;
    }
    if (stepped < minValue_) {
        stepped = minValue_;
    }
    setValue(stepped);
}

void ValueEditor::setUnit(std::u16string const& unit) {
    if (&unit != &unit_) {
        unit_ = unit;
    }
}

void ValueEditor::setValue(double value) {
    if (!valueInitialised_.load() || !getFocus()) {
        value_ = value;
        valueInitialised_.store(true);
    }
    editValue_ = value;
    drawValue(value, precision_);
}

void ValueEditor::setMinValue(double value) {
    if (value == minValue_) {
        return;
    }
    minValue_ = maxValue_ <= value ? maxValue_ - 1.0 : value;
    if (editValue_ < minValue_) {
        setValue(minValue_);
    }
}

void ValueEditor::setMaxValue(double value) {
    if (value == maxValue_) {
        return;
    }
    maxValue_ = minValue_ >= value ? minValue_ + 1.0 : value;
    if (editValue_ > maxValue_) {
        setValue(maxValue_);
    }
}

void ValueEditor::drawValue(double value, unsigned int precision) {
    std::string digits =
        magnitudeText(value, precision != 0 ? Notation::Fixed : Notation::General, precision);
    // Zero-padded on the left to the wider bound; the width follows the stored precision, which
    // the editor's own calls pass as `precision`.
    int const width = getMaxWidthOfMinMax(minValue_, maxValue_, precision_);
    if (width > 0 && digits.size() < static_cast<std::size_t>(width)) {
        digits.insert(0, static_cast<std::size_t>(width) - digits.size(), '0');
    }

    std::u16string text;
    text.reserve(digits.size() + unit_.size() + 3);
    if (value < 0) {
        text += u'-';
    }
    text.append(digits.begin(), digits.end());
    if (!unit_.empty()) {
        text += u' ';
        text += unit_;
    }
    if (value < 0) {
        // The trailing blank balances the sign in the centred line: the digits keep their columns.
        text += u' ';
    }
    valueLabel().setText(text);
}

double ValueEditor::getValue() const { return value_; }

double ValueEditor::getEditValue() const { return editValue_; }

double ValueEditor::getMinValue() const { return minValue_; }

double ValueEditor::getMaxValue() const { return maxValue_; }

unsigned int ValueEditor::getPrecision() const { return precision_; }

void ValueEditor::setPrecision(unsigned int precision) { precision_ = precision; }

std::u16string const& ValueEditor::getUnit() const { return unit_; }

void ValueEditor::setApplyCallback(std::function<void(double)> const& callback) {
    applyCallback_ = callback;
}

bool ValueEditor::hasApplyCallback() const { return static_cast<bool>(applyCallback_); }

}  // namespace yxfrontpanel
