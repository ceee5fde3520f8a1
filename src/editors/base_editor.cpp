#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/control.h>
#include <yxfrontpanel/text_constants.h>

#include <algorithm>
#include <climits>
#include <cstdint>

namespace yxfrontpanel {

namespace {

constexpr unsigned kHeadlineLine = 0;
constexpr unsigned kValueLine = 1;
constexpr unsigned kCaretLine = 2;

// Column differences are worked out in 64 bits, where unsigned columns cannot overflow, and only
// then brought into the int range, so that no out-of-range value is ever converted to int.
int clampToInt(std::int64_t value) {
    return static_cast<int>(std::clamp<std::int64_t>(value, INT_MIN, INT_MAX));
}

std::unique_ptr<Label> makeLabel(unsigned line, unsigned width, std::u16string const& text,
                                 drawing::TextAllignment alignment) {
    auto label = std::make_unique<Label>(drawing::Point{0, line}, width, text);
    label->setTextAllignment(alignment);
    return label;
}

}  // namespace

BaseEditor::BaseEditor(IDrawingProvider const& provider, std::u16string const& headline)
    : Form(provider) {
    editorMode_.store(false);
    init(provider.getChars(), headline);
}

BaseEditor::~BaseEditor() = default;

void BaseEditor::init(unsigned int width, std::u16string const& headline) {
    auto headlineLabel = makeLabel(kHeadlineLine, width, kMarkerOpen + headline + kMarkerClose,
                                   drawing::TextAllignment::Center);
    auto valueLabel = makeLabel(kValueLine, width, u"", drawing::TextAllignment::Center);
    auto markerLabel = makeLabel(kCaretLine, 1, u"^", drawing::TextAllignment::Left);
    markerLabel->setVisible(false);

    // The form must not keep pointers to labels that are about to be deleted.
    for (Label const* old : {headlineLabel_.get(), valueLabel_.get(), markerLabel_.get()}) {
        removeControl(old);
    }
    headlineLabel_ = std::move(headlineLabel);
    valueLabel_ = std::move(valueLabel);
    markerLabel_ = std::move(markerLabel);
    addControl(headlineLabel_.get());
    addControl(valueLabel_.get());
    addControl(markerLabel_.get());
    draw();
}

void BaseEditor::setEditorMode(bool on) {
    editorMode_.store(on);
    if (on) {
        markerLabel_->setLocation(
            drawing::Point{getStartOfNumberInLbl(), markerLabel_->getLocation().y}, false);
    }
    markerLabel_->setVisible(on);
}

bool BaseEditor::getEditorMode() const { return editorMode_.load(); }

unsigned int BaseEditor::getStartOfNumberInLbl() const { return valueLabel_->getStartColumn(); }

int BaseEditor::getMarkerInValuePosition(int offset) const {
    bool const hasMinus = valueLabel_->getText().find(u'-') != std::u16string::npos;
    return clampToInt(std::int64_t{markerLabel_->getLocation().x} + offset + (hasMinus ? 1 : 0) -
                      std::int64_t{getStartOfNumberInLbl()});
}

int BaseEditor::getPowerValue(unsigned int dotPosition, unsigned int markerPosition) const {
    std::int64_t const distance = std::int64_t{dotPosition} - std::int64_t{markerPosition};
    return clampToInt(distance >= 1 ? distance - 1 : distance);
}

unsigned int BaseEditor::getDotPosition(unsigned int from) const {
    std::u16string const& text = valueLabel_->getText();
    std::size_t index = from < text.size() ? text.find(u'.', from) : std::u16string::npos;
    if (index == std::u16string::npos) {
        index = text.find(u' ');
    }
    if (index == std::u16string::npos) {
        index = text.size();
    }
    auto column = static_cast<unsigned>(index);
    if (!text.empty() && text.front() == u'-') {
        column -= 1;
    }
    return column + getStartOfNumberInLbl();
}

Label const& BaseEditor::getHeadlineLabel() const { return *headlineLabel_; }

Label const& BaseEditor::getValueLabel() const { return *valueLabel_; }

Label const& BaseEditor::getMarkerLabel() const { return *markerLabel_; }

Label& BaseEditor::valueLabel() { return *valueLabel_; }

Label& BaseEditor::markerLabel() { return *markerLabel_; }

}  // namespace yxfrontpanel
