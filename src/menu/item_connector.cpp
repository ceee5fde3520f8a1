#include <yxfrontpanel/item_connector.h>

namespace yxfrontpanel::itemconnector {

namespace {

using Setter = void (ValueEditorMenuItem::*)(double);

// The item's setter as a plain function; the item must outlive it.
std::function<void(double)> forward(ValueEditorMenuItem& item, Setter setter) {
    return [&item, setter](double v) { (item.*setter)(v); };
}

void wire(std::function<void(double)>& target, ValueEditorMenuItem& item, Setter setter) {
    target = forward(item, setter);
}

// The item is primed at once, so that it shows the application's value from the start.
void wire(CallbackValue<double>& target, ValueEditorMenuItem& item, Setter setter) {
    target.changedCb(forward(item, setter));
    target.callback(target.get());
}

}  // namespace

template <class T>
void valueEditor(T& value, T& minValue, T& maxValue, std::function<void(double)> const& onApply,
                 ValueEditorMenuItem& item, std::function<void(bool)>& setVisible,
                 std::function<void(bool)>& setEditorMode) {
    // The bounds come before the value: the value's display width follows from them.
    wire(minValue, item, &ValueEditorMenuItem::setMinValue);
    wire(maxValue, item, &ValueEditorMenuItem::setMaxValue);
    wire(value, item, &ValueEditorMenuItem::setValue);
    setVisible = [&item](bool visible) { item.setVisible(visible); };
    setEditorMode = [&item](bool mode) { item.setEditorMode(mode); };
    item.connectEditor(onApply);
}

template YXFP_EXPORT void valueEditor<std::function<void(double)>>(
    std::function<void(double)>& value, std::function<void(double)>& minValue,
    std::function<void(double)>& maxValue, std::function<void(double)> const& onApply,
    ValueEditorMenuItem& item, std::function<void(bool)>& setVisible,
    std::function<void(bool)>& setEditorMode);

template YXFP_EXPORT void valueEditor<CallbackValue<double>>(
    CallbackValue<double>& value, CallbackValue<double>& minValue, CallbackValue<double>& maxValue,
    std::function<void(double)> const& onApply, ValueEditorMenuItem& item,
    std::function<void(bool)>& setVisible, std::function<void(bool)>& setEditorMode);

std::function<void(int)> inlineEditor(InlineEditorMenuItem& item) {
    return [&item](int key) { item.setValue(key); };
}

}  // namespace yxfrontpanel::itemconnector
