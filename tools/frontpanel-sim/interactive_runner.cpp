#include <frontpanelhw/terminal_display.h>
#include <frontpanelhw/terminal_keys.h>
#include <yxfrontpanel/drawing_provider.h>

#include <chrono>
#include <exception>
#include <ostream>
#include <string>

#include "runners.h"

namespace frontpanelsim {

namespace {

constexpr std::chrono::milliseconds kTickPeriod{500};

std::string statusLine(bool local) {
    return std::string(local ? "LOCAL " : "REMOTE") +
           "  arrows move  Enter select  Bksp/Esc back  l local/remote  q quit";
}

}  // namespace

int runInteractive(SimOptions const& options, AppFactory const& makeApp, std::ostream& err) {
    try {
        frontpanelhw::TerminalDisplay display(options.chars, options.lines,
                                              frontpanelhw::TerminalOrigin{1, 2});
        frontpanelhw::TerminalKeySource keys(display);
        yxfrontpanel::DrawingProvider provider(display);
        auto app = makeApp(provider);
        display.setStatus(statusLine(app->isLocal()));
        app->start();

        // Updates that do not come from a key (the measurement) run here, on the key thread,
        // between polls: the toolkit's screens are never composed from two threads at once.
        auto nextTick = std::chrono::steady_clock::now() + kTickPeriod;
        for (;;) {
            auto const now = std::chrono::steady_clock::now();
            if (now >= nextTick) {
                app->tick();
                nextTick = now + kTickPeriod;
                continue;
            }
            auto const event =
                keys.poll(std::chrono::duration_cast<std::chrono::milliseconds>(nextTick - now));
            if (!event) {
                continue;
            }
            using Kind = frontpanelhw::KeyEvent::Kind;
            if (event->kind == Kind::Closed ||
                (event->kind == Kind::Character &&
                 (event->character == U'q' || event->character == U'Q'))) {
                break;
            }
            if (event->kind == Kind::Resize) {
                display.repaint();
            } else if (event->kind == Kind::Panel) {
                app->press(event->panelKey);
            } else if (event->character == U'l' || event->character == U'L') {
                app->setLocal(!app->isLocal());
                display.setStatus(statusLine(app->isLocal()));
            }
        }
    } catch (std::exception const& error) {
        err << "frontpanel-sim: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace frontpanelsim
