// hello_menu: one number editor in a menu, driven by the panel's keys, its screen printed.
#include <yxfrontpanel/yxfrontpanel.h>

#include <iostream>
#include <memory>
#include <string>

namespace {

// Prints the panel's lines between '|' borders, with the display's glyphs as UTF-8.
void print(frontpanelhw::drawing::DisplayBuffer const& screen) {
    for (unsigned line = 0; line < screen.getLineCount(); ++line) {
        std::string text;
        for (char16_t const code : screen.getLineString(line)) {
            text += frontpanelhw::toUtf8(frontpanelhw::toUnicode(code));
        }
        std::cout << '|' << text << "|\n";
    }
}

}  // namespace

int main() {
    using frontpanelhw::PanelKey;

    frontpanelhw::MemoryDisplay display(20, 4);       // or the instrument's own IDisplay
    yxfrontpanel::DrawingProvider provider(display);  // the one path to the panel
    auto root = yxfrontpanel::MenuTreeFactory().create(provider);

    double setPoint = 0.0;
    auto voltage =
        std::make_shared<yxfrontpanel::ValueEditorMenuItem>(provider, u"Voltage", 0.0, 30.0);
    voltage->setPrecision(2);
    voltage->setUnit(u"V");
    voltage->setValue(5.0);
    voltage->connectEditor([&setPoint](double volts) { setPoint = volts; });
    root->addItem(voltage);

    root->setLocal(true);  // front-panel edits allowed
    root->setFocus(true);  // draws the first screen
    // The keys as the panel delivers them: enter opens the editor with the caret on the tens,
    // up makes 15.00 V, enter applies it and returns to the menu.
    for (PanelKey const key : {PanelKey::Enter, PanelKey::Up}) {
        yxfrontpanel::applyKey(*root, key);
    }
    print(display.getLastFrame());
    yxfrontpanel::applyKey(*root, PanelKey::Enter);
    print(display.getLastFrame());

    std::cout << "set point: " << setPoint << " V\n";
    return setPoint == 15.0 ? 0 : 1;
}
