#include <yxfrontpanel/ip_address_editor_menu_item.h>

#include "editor_item_keys.h"

namespace yxfrontpanel {

IpAddressEditorMenuItem::IpAddressEditorMenuItem(IDrawingProvider const& provider,
                                                 std::u16string const& text)
    : MenuItem(text), editor_(std::make_unique<IpAddressEditor>(provider, text)) {
    setForm(editor_.get());
}

IpAddressEditorMenuItem::~IpAddressEditorMenuItem() = default;

bool IpAddressEditorMenuItem::enter() {
    return editoritem::enter(*this, *editor_, closeAfterApply_);
}

void IpAddressEditorMenuItem::setLocal(bool local) { editor_->setEditorMode(local); }

bool IpAddressEditorMenuItem::left() { return editoritem::moveCaret(*editor_, -1); }

bool IpAddressEditorMenuItem::right() { return editoritem::moveCaret(*editor_, +1); }

bool IpAddressEditorMenuItem::up() { return editoritem::stepDigit(*editor_, +1); }

bool IpAddressEditorMenuItem::down() { return editoritem::stepDigit(*editor_, -1); }

bool IpAddressEditorMenuItem::setValue(std::string const& text) { return editor_->setValue(text); }

void IpAddressEditorMenuItem::connectEditor(
    std::function<void(std::string const&)> const& onApply) {
    editor_->setApplyCallback(onApply);
}

void IpAddressEditorMenuItem::setCloseAfterApply(bool close) { closeAfterApply_ = close; }

IpAddressEditor& IpAddressEditorMenuItem::getEditor() const { return *editor_; }

}  // namespace yxfrontpanel
