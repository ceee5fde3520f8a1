#include "terminal_key_map.h"

#include "terminal_session.h"

namespace frontpanelhw {

namespace {

constexpr int kBackspace = 8;
constexpr int kEscape = 27;
constexpr int kDelete = 127;

std::optional<PanelKey> panelKeyForFunctionKey(int code) {
    switch (code) {
        case KEY_UP:
            return PanelKey::Up;
        case KEY_DOWN:
            return PanelKey::Down;
        case KEY_LEFT:
            return PanelKey::Left;
        case KEY_RIGHT:
            return PanelKey::Right;
        case KEY_ENTER:
            return PanelKey::Enter;
        case KEY_BACKSPACE:
            return PanelKey::Back;
        default:
            return std::nullopt;
    }
}

std::optional<PanelKey> panelKeyForCharacter(int code) {
    switch (code) {
        case '\n':
        case '\r':
            return PanelKey::Enter;
        case kBackspace:
        case kEscape:
        case kDelete:
            return PanelKey::Back;
        default:
            return std::nullopt;
    }
}

}  // namespace

std::optional<PanelKey> panelKeyFor(int code, bool isFunctionKey) {
    return isFunctionKey ? panelKeyForFunctionKey(code) : panelKeyForCharacter(code);
}

}  // namespace frontpanelhw
