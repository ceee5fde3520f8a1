#pragma once

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

/** Feeds one key to a menu tree the way an application maps its keys: up to moveUp, down to
 *  moveDown, left to left, right to right, enter to action, back to backToMenu. Returns the
 *  operation's answer; up and down have none and give false. */
inline bool press(yxfrontpanel::IMenuTree& tree, Key key) {
    switch (key) {
        case Key::Up:
            tree.moveUp();
            return false;
        case Key::Down:
            tree.moveDown();
            return false;
        case Key::Left:
            return tree.left();
        case Key::Right:
            return tree.right();
        case Key::Enter:
            return tree.action();
        case Key::Back:
            return tree.backToMenu();
    }
    return false;
}

/** Presses the keys in order. */
inline void press(yxfrontpanel::IMenuTree& tree, std::initializer_list<Key> keys) {
    for (Key const key : keys) {
        press(tree, key);
    }
}

}  // namespace yxfp_test
