#include <yxfrontpanel/value_editor_menu_item.h>

#include "editor_item_keys.h"

namespace yxfrontpanel {

ValueEditorMenuItem::ValueEditorMenuItem(IDrawingProvider const& provider,
                                         std::u16string const& text, double minValue,
                                         double maxValue)
    : MenuItem(text), editor_(std::make_unique<ValueEditor>(provider, text, minValue, maxValue)) {
    setForm(editor_.get());
}

ValueEditorMenuItem::~ValueEditorMenuItem() = default;

bool ValueEditorMenuItem::enter() { return editoritem::enter(*this, *editor_, closeAfterApply_); }

void ValueEditorMenuItem::setLocal(bool isLocal) {
    local_.store(isLocal);
    setEditorMode(editorMode_);
}

bool ValueEditorMenuItem::left() { return editoritem::moveCaret(*editor_, -1); }

bool ValueEditorMenuItem::right() { return editoritem::moveCaret(*editor_, +1); }

bool ValueEditorMenuItem::up() { return editoritem::stepDigit(*editor_, +1); }

bool ValueEditorMenuItem::down() { return editoritem::stepDigit(*editor_, -1); }

void ValueEditorMenuItem::setValue(double value) { editor_->setValue(value); }

void ValueEditorMenuItem::setMinValue(double value) { editor_->setMinValue(value); }

void ValueEditorMenuItem::setMaxValue(double value) { editor_->setMaxValue(value); }

void ValueEditorMenuItem::setUnit(std::u16string const& unit) { editor_->setUnit(unit); }

void ValueEditorMenuItem::setEditorMode(bool mode) {
    editorMode_ = mode;
    editor_->setEditorMode(mode && local_.load());
}

void ValueEditorMenuItem::setPrecision(unsigned int precision) { editor_->setPrecision(precision); }

void ValueEditorMenuItem::connectEditor(std::function<void(double)> const& onApply) {
    editor_->setApplyCallback(onApply);
}

void ValueEditorMenuItem::setCloseAfterApply(bool close) { closeAfterApply_ = close; }

ValueEditor& ValueEditorMenuItem::getEditor() const { return *editor_; }

}  // namespace yxfrontpanel
