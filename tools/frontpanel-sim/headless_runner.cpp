#include <frontpanelhw/display.h>

#include <exception>
#include <ostream>

#include "measurement_feed.h"
#include "runners.h"

namespace frontpanelsim {

int runHeadless(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                std::ostream& err) {
    try {
        frontpanelhw::MemoryDisplay display(options.chars, options.lines);
        Session session(display, panelOptionsFor(options, RunKind::Headless, attachments), nullptr,
                        makeApp, options, RunKind::Headless);
        attachments.insert(attachments.begin(), std::make_unique<AcquisitionThread>(kSamplePeriod));
        session.attach(std::move(attachments));
        SignalStop const signalStop(session.panel());
        session.panel().run();
    } catch (std::exception const& error) {
        err << "frontpanel-sim: " << error.what() << '\n';
        return 1;
    }
    return 0;
}

}  // namespace frontpanelsim
