// Fuzz target for the command server's parser and dispatcher with the demo instrument behind
// them: the input is a series of command lines run on the demo's menu (keys applied at once),
// checking after each line that every query answered at most one line, responses are single
// lines, the error queue stays bounded and the set voltage stays within its bounds.
#include <frontpanelhw/display.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "demo_panel.h"
#include "fuzz_support.h"

namespace {

namespace scpi = yxfrontpanel::runtime::scpi;

constexpr std::size_t kMaxLines = 64;

double voltageOf(yxfrontpanel::IMenuTree& root) {
    std::string const text = yxfrontpanel::runtime::readMenuValue(root, "Output/Voltage").text;
    double value = -1.0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    yxbase2::system::this_thread::setSleepHook([](std::chrono::nanoseconds) {});
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::DrawingProvider provider(display);
    frontpanelsim::DemoPanel demo(provider);
    demo.root().setFocus(true);
    scpi::CommandTable table;
    scpi::addCommonCommands(table, scpi::Identity{});
    yxfrontpanel::runtime::addPanelCommands(
        table, std::make_shared<yxfrontpanel::runtime::TreeControl>(demo.root(), display));
    scpi::Session session;

    std::string_view input(reinterpret_cast<char const*>(data), size);
    for (std::size_t lines = 0; lines < kMaxLines && !input.empty(); ++lines) {
        std::size_t const newline = input.find('\n');
        scpi::ParsedLine const parsed = scpi::parseLine(input.substr(0, newline));
        input.remove_prefix(newline == std::string_view::npos ? input.size() : newline + 1);

        std::vector<std::string> responses;
        std::size_t next = 0;
        do {
            next = table.run(parsed, next, session, responses).next;
        } while (next < parsed.commands.size());

        std::size_t queries = 0;
        for (auto const& command : parsed.commands) {
            queries += command.query ? 1 : 0;
        }
        yxfp_fuzz::check(responses.size() <= queries, "at most one response per query");
        for (auto const& response : responses) {
            yxfp_fuzz::check(response.find('\n') == std::string::npos, "one-line responses");
        }
        yxfp_fuzz::check(session.errors.size() <= scpi::ErrorQueue::kDefaultCapacity,
                         "bounded error queue");
        double const volts = voltageOf(demo.root());
        yxfp_fuzz::check(volts >= 0.0 && volts <= 30.0, "voltage within its bounds");
    }
    yxbase2::system::this_thread::setSleepHook({});
    return 0;
}
