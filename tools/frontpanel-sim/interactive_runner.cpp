#include <frontpanelhw/terminal_display.h>
#include <frontpanelhw/terminal_keys.h>

#include <exception>
#include <memory>
#include <ostream>
#include <string>

#include "graphic_module_display.h"
#include "measurement_feed.h"
#include "module_display.h"
#include "runners.h"

namespace frontpanelsim {

namespace {

using frontpanelhw::KeyEvent;

std::string statusLine(bool local) {
    return std::string(local ? "LOCAL " : "REMOTE") +
           "  arrows move  Enter select  Bksp/Esc back  l local/remote  q quit";
}

bool typed(KeyEvent const& event, char32_t lower) {
    return event.kind == KeyEvent::Kind::Character &&
           (event.character == lower || event.character == lower - U'a' + U'A');
}

}  // namespace

int runInteractive(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                   std::ostream& err) {
    try {
        auto const [screenChars, screenLines] = runScreenSize(options);
        frontpanelhw::TerminalDisplay display(screenChars, screenLines,
                                              frontpanelhw::TerminalOrigin{1, 2});
        auto const panelDisplay = makeDisplay(options.display, display);
        Session session(*panelDisplay, panelOptionsFor(options, RunKind::Interactive, attachments),
                        nullptr, makeApp, options, RunKind::Interactive);
        auto& panel = session.panel();
        auto& app = session.app();
        panel.addKeySource(std::make_shared<frontpanelhw::TerminalKeySource>(display));

        // The status line follows the mode, also when something else than 'l' switched it.
        bool statusLocal = app.isLocal();
        display.setStatus(statusLine(statusLocal));
        auto const refreshStatus = [&display, &app, &statusLocal] {
            if (app.isLocal() != statusLocal) {
                statusLocal = app.isLocal();
                display.setStatus(statusLine(statusLocal));
            }
        };
        panel.addFrameListener([&refreshStatus](auto const& /*frame*/) { refreshStatus(); });
        panel.setEventHandler([&](KeyEvent const& event) {
            if (event.kind == KeyEvent::Kind::Closed || typed(event, U'q')) {
                panel.stop();
                return true;
            }
            if (typed(event, U'l')) {
                app.setLocal(!app.isLocal());
                refreshStatus();
                return true;
            }
            if (event.kind == KeyEvent::Kind::Resize) {
                display.repaint();
                return true;
            }
            return false;
        });

        attachments.insert(attachments.begin(), std::make_unique<AcquisitionThread>(kSamplePeriod));
        // Before the servers announce their addresses: a signal from then on stops the run.
        auto const signalStop = stopOnEndSignals(panel);
        session.attach(std::move(attachments));
        panel.run();
    } catch (std::exception const& error) {
        err << "frontpanel-sim: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace frontpanelsim
