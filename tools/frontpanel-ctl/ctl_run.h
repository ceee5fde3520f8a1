#pragma once

#include <iosfwd>

#include "ctl_options.h"

namespace frontpanelctl {

/** Connects, authenticates when a token is given, sends each command line and writes each of
 *  its responses to `out` (one line per query), prints the screen for --screen, then drains the
 *  panel's error queue to `err`. Returns the exit status: 0, or 1 after a connection failure, a
 *  missing response or errors reported by the panel (each named on `err`). */
int runCtl(CtlOptions const& options, std::ostream& out, std::ostream& err);

}  // namespace frontpanelctl
