#pragma once

#include <functional>
#include <iosfwd>
#include <memory>

#include "panel_app.h"
#include "sim_options.h"

namespace yxfrontpanel {
class IDrawingProvider;
}

namespace frontpanelsim {

/** Builds the application on a drawing provider of the panel's size. */
using AppFactory =
    std::function<std::unique_ptr<PanelApp>(yxfrontpanel::IDrawingProvider const& provider)>;

/** Runs the key script of `options` without a terminal: frames go to an in-memory display,
 *  timed hints pass at once, and the frames asked for by --print are written to `out`.
 *  Returns the exit status: 0, or 1 with a message on `err` when the script fails. */
int runHeadless(SimOptions const& options, AppFactory const& makeApp, std::ostream& out,
                std::ostream& err);

/** Runs the panel on the terminal until 'q' or the end of input. Returns the exit status. */
int runInteractive(SimOptions const& options, AppFactory const& makeApp, std::ostream& err);

}  // namespace frontpanelsim
