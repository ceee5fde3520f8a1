#pragma once

// Key events as short words ("press up", "release enter", "closed"), so that tests compare
// whole sequences of events and failures print readably.

#include <frontpanelhw/key_source.h>

#include <chrono>
#include <string>
#include <vector>

namespace yxfp_test {

inline std::string describeKeyEvent(frontpanelhw::KeyEvent const& event) {
    using frontpanelhw::KeyEvent;
    switch (event.kind) {
        case KeyEvent::Kind::Panel: {
            char const* const actions[] = {"press ", "release ", "repeat "};
            return actions[static_cast<int>(event.action)] +
                   std::string(frontpanelhw::panelKeyName(event.panelKey));
        }
        case KeyEvent::Kind::Character:
            return "character " + std::to_string(static_cast<unsigned long>(event.character));
        case KeyEvent::Kind::Resize:
            return "resize";
        case KeyEvent::Kind::Closed:
            return "closed";
    }
    return "?";
}

/** Every event `source` has ready now (poll(0) until it gives nothing), at most `limit`. */
inline std::vector<std::string> drainKeySource(frontpanelhw::IKeySource& source,
                                               std::size_t limit = 1000) {
    std::vector<std::string> events;
    while (events.size() < limit) {
        auto const event = source.poll(std::chrono::milliseconds(0));
        if (!event) {
            break;
        }
        events.push_back(describeKeyEvent(*event));
    }
    return events;
}

}  // namespace yxfp_test
