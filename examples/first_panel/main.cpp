// A bench supply: terminal display and keys, a published reading, a timer, a home screen.
#include <frontpanelhw/terminal.h>
#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <csignal>
#include <thread>
using namespace yxfrontpanel;
using namespace std::chrono_literals;
int main() {
    frontpanelhw::TerminalDisplay display(20, 4);
    runtime::PanelOptions options;
    options.idleTimeout = 60s;           // the home screen after a minute without a key
    options.stopWhenInputsClose = true;  // the end when the terminal goes
    runtime::Panel panel(display, options);
    auto menu = MenuTreeFactory().create(panel.provider());
    auto output = std::make_shared<ReadOnlyMenuItem>(panel.provider(), u"Output");
    auto uptime = std::make_shared<ReadOnlyMenuItem>(panel.provider(), u"Uptime");
    menu->addItem(output);
    menu->addItem(uptime);
    panel.setRoot(*menu);
    panel.addKeySource(std::make_shared<frontpanelhw::TerminalKeySource>(display));
    double volts = 0;  // the newest reading; like the items, used on the panel's thread only
    panel.setHomeScreen([&volts](IDrawingProvider const& provider) {
        frontpanelhw::drawing::DisplayBuffer screen(provider.getChars(), provider.getLines());
        auto const text = "OUTPUT " + std::to_string(volts).substr(0, 6) + " V";
        screen.setLineContent(1, 3, stringhelper::toU16(text));
        provider.draw(screen);
    });
    panel.every(1s, [&uptime, seconds = 0]() mutable { uptime->setValue(++seconds, 0); });
    auto show = [&](double reading) { output->setValue(volts = reading, 3); };
    std::thread acquisition([&] {  // 1000 readings a second; the panel shows one per frame
        for (int n = 0; panel.publish("volts", [&show, n] { show(12 + n % 7 * 1e-3); }); ++n)
            std::this_thread::sleep_for(1ms);
    });
    auto const signals = runtime::stopOnSignals(panel, {SIGINT, SIGTERM});
    panel.run();
    acquisition.join();
}
