#include <frontpanelhw/key_source.h>

namespace frontpanelhw {

bool operator==(KeyEvent const& lhs, KeyEvent const& rhs) {
    return lhs.kind == rhs.kind && lhs.panelKey == rhs.panelKey && lhs.character == rhs.character &&
           lhs.action == rhs.action;
}

bool operator!=(KeyEvent const& lhs, KeyEvent const& rhs) { return !(lhs == rhs); }

char const* panelKeyName(PanelKey key) {
    switch (key) {
        case PanelKey::Up:
            return "up";
        case PanelKey::Down:
            return "down";
        case PanelKey::Left:
            return "left";
        case PanelKey::Right:
            return "right";
        case PanelKey::Enter:
            return "enter";
        case PanelKey::Back:
            return "back";
    }
    return "?";
}

// Out of line so that the interface's vtable has one home.
IKeySource::~IKeySource() = default;

std::optional<std::chrono::milliseconds> IKeySource::wakeWithin() const { return std::nullopt; }

KeySourceCapabilities IKeySource::capabilities() const { return {}; }

}  // namespace frontpanelhw
