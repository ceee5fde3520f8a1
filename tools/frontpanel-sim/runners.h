#pragma once

#include <iosfwd>

#include "attachment.h"
#include "session.h"
#include "sim_options.h"

namespace frontpanelsim {

/** Runs the key script of `options` without a terminal, on a clock that only the script moves
 *  (tick, wait:SECONDS): frames go to an in-memory display, every composed frame is kept,
 *  timed hints pass at once, and the frames asked for by --print are written to `out`. The
 *  measurement is taken by a timer on that clock. Returns the exit status: 0, or 1 with a
 *  message on `err` when the script or an attachment fails. */
int runKeyScript(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                 std::ostream& out, std::ostream& err);

/** Runs the panel without a terminal (--headless) in real time, with a measurement thread,
 *  until SIGINT, SIGTERM or SIGHUP, or until its key sources (added by attachments) have all closed
 *  when no attachment keeps it running. Returns the exit status: 0, or 1 with a message on
 *  `err`. */
int runHeadless(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                std::ostream& err);

/** Runs the panel on the terminal, with a measurement thread, until 'q', the end of input,
 *  SIGINT, SIGTERM or SIGHUP. Returns the exit status. */
int runInteractive(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                   std::ostream& err);

}  // namespace frontpanelsim
