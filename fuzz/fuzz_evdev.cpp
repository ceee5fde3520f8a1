// Feeds arbitrary bytes to the input event reader (as records through a pipe) and to the key
// map parser. The reader must never leave a key held after its input closed, never release a
// key it did not press, and close exactly once; an accepted key map must read back from its
// text form.

#include <frontpanelhw/evdev_key_source.h>
#include <frontpanelhw/input_key_map.h>
#include <yxbase2/log.h>

#include <map>
#include <string>

#include "fuzz_support.h"
#include <fcntl.h>
#include <linux/input.h>
#include <unistd.h>

namespace {

using frontpanelhw::KeyEvent;
using yxfp_fuzz::check;

void fuzzKeyMap(std::string const& text) {
    try {
        auto const map = frontpanelhw::parseInputKeyMap(text);
        auto const again = frontpanelhw::parseInputKeyMap(frontpanelhw::formatInputKeyMap(map),
                                                          frontpanelhw::InputKeyMap());
        check(again == map, "key map does not read back from its text form");
    } catch (frontpanelhw::KeyMapError const&) {
    }
}

void fuzzReader(yxfp_fuzz::InputReader& input) {
    frontpanelhw::EvdevOptions options;
    uint8_t const flags = input.byte();
    options.deviceRepeats = (flags & 1u) != 0;
    options.encoder.acceleration = (flags & 2u) != 0;
    options.encoder.reverse = (flags & 4u) != 0;
    options.encoder.detentsPerStep = input.byte() % 5u;
    std::string const records = input.rest();

    int ends[2];
    if (::pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    // The fuzzer's inputs are far below a pipe's capacity, so one write takes them whole.
    bool const written = records.empty() || ::write(ends[1], records.data(), records.size()) ==
                                                static_cast<ssize_t>(records.size());
    ::close(ends[1]);
    if (!written) {
        ::close(ends[0]);
        return;
    }
    frontpanelhw::EvdevKeySource source(ends[0], options);
    std::map<frontpanelhw::PanelKey, bool> held;
    int closes = 0;
    // Every record gives at most a bounded number of events; this bounds the loop.
    std::size_t const mostEvents = 200 * (records.size() / sizeof(input_event) + 2);
    for (std::size_t i = 0; i < mostEvents; ++i) {
        auto const event = source.poll(std::chrono::milliseconds(0));
        if (!event) {
            break;
        }
        check(closes == 0, "an event after the close");
        if (event->kind == KeyEvent::Kind::Closed) {
            ++closes;
            continue;
        }
        check(event->kind == KeyEvent::Kind::Panel, "an event that is no panel key");
        bool& down = held[event->panelKey];
        switch (event->action) {
            case KeyEvent::Action::Press:
                check(!down, "a press of a held key");
                down = true;
                break;
            case KeyEvent::Action::Release:
                check(down, "a release of a key not held");
                down = false;
                break;
            case KeyEvent::Action::Repeat:
                check(down && *options.deviceRepeats, "a repeat of a key not held");
                break;
        }
    }
    check(closes == 1, "the input did not close exactly once");
    for (auto const& entry : held) {
        check(!entry.second, "a key still held after the close");
    }
    check(!source.poll(std::chrono::milliseconds(0)), "an event after the close");
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    yxbase2::system::log::setSink([](int, std::string const&, std::string const&) {});
    yxfp_fuzz::InputReader input(data, size);
    if ((input.byte() & 1u) == 0) {
        fuzzKeyMap(input.rest());
    } else {
        fuzzReader(input);
    }
    return 0;
}
