#pragma once

#include <yxfrontpanel/runtime/scpi_commands.h>

#include <string>
#include <vector>

namespace yxfp_test {

/** Runs every command of `line` on `table` for `session`, on the calling thread (deferred rests
 *  run at once), and returns the response lines. */
inline std::vector<std::string> runLine(yxfrontpanel::runtime::scpi::CommandTable const& table,
                                        yxfrontpanel::runtime::scpi::Session& session,
                                        std::string const& line) {
    std::vector<std::string> responses;
    auto const parsed = yxfrontpanel::runtime::scpi::parseLine(line);
    std::size_t next = 0;
    do {
        next = table.run(parsed, next, session, responses).next;
    } while (next < parsed.commands.size());
    return responses;
}

}  // namespace yxfp_test
