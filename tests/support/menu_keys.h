#pragma once

#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/menu_tree.h>

#include <initializer_list>
#include <ostream>

namespace yxfp_test {

/** The six keys of the front panel. */
enum class Key { Up, Down, Left, Right, Enter, Back };

/** What each key is called in failure messages and which panel key it stands for, in the
 *  order of `Key`. */
struct KeyFacts {
    char const* name;
    frontpanelhw::PanelKey panelKey;
};

inline KeyFacts const& keyFacts(Key key) {
    static KeyFacts const facts[] = {
        {"up", frontpanelhw::PanelKey::Up},       {"down", frontpanelhw::PanelKey::Down},
        {"left", frontpanelhw::PanelKey::Left},   {"right", frontpanelhw::PanelKey::Right},
        {"enter", frontpanelhw::PanelKey::Enter}, {"back", frontpanelhw::PanelKey::Back},
    };
    return facts[static_cast<int>(key)];
}

/** The key's name, for failure messages. */
inline char const* keyName(Key key) { return keyFacts(key).name; }

inline std::ostream& operator<<(std::ostream& stream, Key key) { return stream << keyName(key); }

/** The panel key `key` stands for. */
inline frontpanelhw::PanelKey panelKey(Key key) { return keyFacts(key).panelKey; }

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
