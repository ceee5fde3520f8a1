#include <frontpanelhw/display.h>

#include <exception>
#include <ostream>

#include "graphic_module_display.h"
#include "measurement_feed.h"
#include "module_display.h"
#include "runners.h"

namespace frontpanelsim {

int runHeadless(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                std::ostream& err) {
    try {
        auto const [screenChars, screenLines] = runScreenSize(options);
        frontpanelhw::MemoryDisplay display(screenChars, screenLines);
        auto const panelDisplay = makeDisplay(options.display, display);
        Session session(*panelDisplay, panelOptionsFor(options, RunKind::Headless, attachments),
                        nullptr, makeApp, options, RunKind::Headless);
        attachments.insert(attachments.begin(), std::make_unique<AcquisitionThread>(kSamplePeriod));
        // Before the servers announce their addresses: a signal from then on stops the run.
        auto const signalStop = stopOnEndSignals(session.panel());
        session.attach(std::move(attachments));
        session.panel().run();
    } catch (std::exception const& error) {
        err << "frontpanel-sim: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace frontpanelsim
