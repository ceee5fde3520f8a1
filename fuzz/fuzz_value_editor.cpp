// Drives a value editor with arbitrary bounds, precision, value and keys; the edited value must
// stay within sane bounds and every frame must fit the panel.

#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/value_editor.h>

#include <cmath>

#include "fuzz_support.h"

namespace {

using yxfp_fuzz::check;

bool withinFiniteBounds(yxfrontpanel::ValueEditor const& editor) {
    double const low = editor.getMinValue();
    double const high = editor.getMaxValue();
    double const value = editor.getEditValue();
    return std::isfinite(low) && std::isfinite(high) && low <= high && low <= value &&
           value <= high;
}

void changeValueChecked(yxfrontpanel::ValueEditor& editor, int delta) {
    bool const wasWithin = withinFiniteBounds(editor);
    editor.changeValue(delta);
    check(!wasWithin || withinFiniteBounds(editor), "changeValue left the bounds");
}

void pressKey(yxfrontpanel::ValueEditor& editor, yxfp_fuzz::InputReader& input) {
    uint8_t const key = input.byte();
    switch (key % 9u) {
        case 0:
            editor.moveMarker(-1);
            break;
        case 1:
            editor.moveMarker(+1);
            break;
        case 2:
            changeValueChecked(editor, +1);
            break;
        case 3:
            changeValueChecked(editor, -1);
            break;
        case 4:
            editor.setFocus((key & 0x80u) != 0u);
            break;
        case 5:
            editor.setEditorMode((key & 0x80u) != 0u);
            break;
        case 6:
            editor.apply();
            break;
        case 7:
            editor.setPrecision(input.byte() % 13u);
            break;
        default:
            editor.setValue(input.rawDouble());
            break;
    }
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    yxfp_fuzz::InputReader input(data, size);
    yxfp_fuzz::SizeCheckingDisplay display(20u, 4u);
    yxfrontpanel::DrawingProvider const provider(display);
    double const minValue = input.rawDouble();
    double const maxValue = input.rawDouble();
    yxfrontpanel::ValueEditor editor(provider, u"Volt", minValue, maxValue);
    editor.setPrecision(input.byte() % 13u);
    if ((input.byte() & 1u) != 0u) {
        editor.setUnit(u"V");
    }
    editor.setValue(input.rawDouble());
    double applied = 0.0;
    editor.setApplyCallback([&applied](double value) { applied = value; });
    editor.setFocus(true);
    editor.setEditorMode(true);
    while (!input.empty()) {
        pressKey(editor, input);
    }
    return 0;
}
