#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/control.h>
#include <yxfrontpanel/text_constants.h>

#include <cstdint>

#include "common/make_label.h"
#include "common/saturated_int.h"

namespace yxfrontpanel {

namespace {

constexpr unsigned kHeadlineLine = 0;
constexpr unsigned kValueLine = 1;
constexpr unsigned kCaretLine = 2;

// Column differences are worked out in 64 bits, where unsigned columns cannot overflow, and only
// then brought into the int range.
using detail::saturatedInt;

std::unique_ptr<Label> makeLabel(unsigned line, unsigned width, std::u16string const& text,
                                 drawing::TextAllignment alignment) {
    return detail::makeLabel(drawing::Point{0, line}, width, text, alignment);
}

}  // namespace

BaseEditor::BaseEditor(IDrawingProvider const& provider, std::u16string const& headline)
    : Form(provider) {
    editorMode_.store(false);
    init(provider.getChars(), headline);
}

BaseEditor::~BaseEditor() = default;

void BaseEditor::init(unsigned int width, std::u16string const& headline) {
    auto headlineLabel = makeLabel(
        kHeadlineLine, width, std::u16string(kMarkerOpen) + headline + std::u16string(kMarkerClose),
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

void BaseEditor::setFocus(bool focus) {
    if (focus) {
        restartEdit();
    }
    Form::setFocus(focus);
}

void BaseEditor::apply() {
    if (getEditorMode()) {
        commitEdit();
    }
}

void BaseEditor::restartEdit() {}

void BaseEditor::commitEdit() {}

unsigned int BaseEditor::getStartOfNumberInLbl() const { return valueLabel_->getStartColumn(); }

unsigned int BaseEditor::getEndOfNumberInLbl() const { return valueLabel_->getEndColumn(); }

bool BaseEditor::isPointAt(int index) const {
    std::u16string const& text = valueLabel_->getText();
    auto const place = static_cast<std::size_t>(index);
    return index >= 0 && place < text.size() && text[place] == u'.';
}

void BaseEditor::moveMarker(int direction) {
    // Unsigned column arithmetic throughout: the wrap of a column left of 0 to the largest
    // unsigned value is what keeps the caret on the first place of a text at column 0.
    auto const step = static_cast<unsigned>(direction);
    unsigned column = markerLabel_->getLocation().x + step;
    if (isPointAt(getMarkerInValuePosition(direction))) {
        column += step;
    }
    unsigned const start = getStartOfNumberInLbl();
    unsigned const end = getEndOfNumberInLbl();
    if (column >= end) {
        column = start;
    }
    if (column < start) {
        column = end - 1U;
    }
    markerLabel_->setLocation(drawing::Point{column, markerLabel_->getLocation().y}, true);
}

int BaseEditor::getMarkerInValuePosition(int offset) const {
    bool const hasMinus = valueLabel_->getText().find(u'-') != std::u16string::npos;
    return saturatedInt(std::int64_t{markerLabel_->getLocation().x} + offset + (hasMinus ? 1 : 0) -
                        std::int64_t{getStartOfNumberInLbl()});
}

int BaseEditor::getPowerValue(unsigned int dotPosition, unsigned int markerPosition) const {
    std::int64_t const distance = std::int64_t{dotPosition} - std::int64_t{markerPosition};
    return saturatedInt(distance >= 1 ? distance - 1 : distance);
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
