#include "ctl_run.h"

#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/runtime/scpi_parser.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "line_connection.h"

namespace frontpanelctl {

namespace {

using yxfrontpanel::runtime::scpi::parseLine;
using yxfrontpanel::runtime::scpi::parseParameters;
using yxfrontpanel::runtime::scpi::quoted;

/** The most errors read back after the commands (a queue holds 16; this bounds the loop). */
constexpr int kMaxErrorsRead = 64;

/** How many response lines `line` asks for: one per query the server will run. */
std::size_t queriesIn(std::string const& line) {
    std::size_t count = 0;
    for (auto const& command : parseLine(line).commands) {
        count += command.query ? 1 : 0;
    }
    return count;
}

/** The strings of a response such as `"a","b"`. */
std::vector<std::string> strings(std::string const& response) {
    std::vector<std::string> result;
    for (auto const& parameter : parseParameters(response).parameters) {
        result.push_back(parameter.text);
    }
    return result;
}

unsigned characters(std::string const& utf8) {
    unsigned count = 0;
    for (char const c : utf8) {
        count += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U ? 1 : 0;
    }
    return count;
}

void printScreen(LineConnection& connection, std::ostream& out) {
    connection.sendLine("DISP:TEXT?");
    std::vector<std::string> const lines = strings(connection.readLine());
    std::string query;
    for (std::size_t line = 1; line <= lines.size(); ++line) {
        query += (query.empty() ? "DISP:INV? " : ";INV? ") + std::to_string(line);
    }
    connection.sendLine(query);
    std::vector<std::string> inverted;
    for (std::size_t line = 0; line < lines.size(); ++line) {
        std::vector<std::string> const ranges = strings(connection.readLine());
        inverted.push_back(ranges.empty() ? std::string{} : ranges.front());
    }
    out << frontpanelhw::formatScreen(lines, inverted,
                                      lines.empty() ? 0 : characters(lines.front()));
}

/** Reads the error queue empty; returns how many errors it held. */
int drainErrors(LineConnection& connection, std::ostream& err) {
    int errors = 0;
    for (int read = 0; read < kMaxErrorsRead; ++read) {
        connection.sendLine("SYST:ERR?");
        std::string const entry = connection.readLine();
        if (entry.rfind("0,", 0) == 0) {
            break;
        }
        err << "frontpanel-ctl: the panel reports " << entry << '\n';
        ++errors;
    }
    return errors;
}

}  // namespace

int runCtl(CtlOptions const& options, std::ostream& out, std::ostream& err) {
    try {
        LineConnection connection(options.address, options.timeout);
        if (!options.token.empty()) {
            connection.sendLine("SYST:AUTH " + quoted(options.token) + ";*OPC?");
            std::string const answer = connection.readLine();
            if (answer != "1") {
                err << "frontpanel-ctl: " << options.address << " refused the token: " << answer
                    << '\n';
                return 1;
            }
        }
        for (auto const& command : options.commands) {
            connection.sendLine(command);
            for (std::size_t query = queriesIn(command); query > 0; --query) {
                out << connection.readLine() << '\n';
            }
        }
        if (options.screen) {
            printScreen(connection, out);
        }
        out.flush();
        return drainErrors(connection, err) == 0 ? 0 : 1;
    } catch (ConnectionError const& error) {
        out.flush();
        err << "frontpanel-ctl: " << error.what() << '\n';
        return 1;
    }
}

}  // namespace frontpanelctl
