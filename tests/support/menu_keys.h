#pragma once

#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/menu_tree.h>

#include <initializer_list>
#include <ostream>

namespace yxfp_test {

/** The six keys of the front panel. */
enum class Key { Up, Down, Left, Right, Enter, Back };

/** The key's name, for failure messages. */
inline char const* keyName(Key key) {
    switch (key) {
        case Key::Up:
            return "up";
        case Key::Down:
            return "down";
        case Key::Left:
            return "left";
        case Key::Right:
            return "right";
        case Key::Enter:
            return "enter";
        case Key::Back:
            return "back";
    }
    return "?";
}

inline std::ostream& operator<<(std::ostream& stream, Key key) { return stream << keyName(key); }

/** The panel key `key` stands for. */
inline frontpanelhw::PanelKey panelKey(Key key) {
    switch (key) {
        case Key::Up:
            return frontpanelhw::PanelKey::Up;
        case Key::Down:
            return frontpanelhw::PanelKey::Down;
        case Key::Left:
            return frontpanelhw::PanelKey::Left;
        case Key::Right:
            return frontpanelhw::PanelKey::Right;
        case Key::Enter:
            return frontpanelhw::PanelKey::Enter;
        case Key::Back:
            return frontpanelhw::PanelKey::Back;
    }
    return frontpanelhw::PanelKey::Up;
}

/** Feeds one key to a menu tree with the toolkit's own mapping (`yxfrontpanel::applyKey`) and
 *  returns the operation's answer; up and down have none and give false. */
inline bool press(yxfrontpanel::IMenuTree& tree, Key key) {
    return yxfrontpanel::applyKey(tree, panelKey(key));
}

/** Presses the keys in order. */
inline void press(yxfrontpanel::IMenuTree& tree, std::initializer_list<Key> keys) {
    for (Key const key : keys) {
        press(tree, key);
    }
}

}  // namespace yxfp_test
