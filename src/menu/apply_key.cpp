#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/menu_tree.h>

namespace yxfrontpanel {

bool applyKey(IMenuTree& tree, frontpanelhw::PanelKey key) {
    using frontpanelhw::PanelKey;
    switch (key) {
        case PanelKey::Up:
            tree.moveUp();
            return false;
        case PanelKey::Down:
            tree.moveDown();
            return false;
        case PanelKey::Left:
            return tree.left();
        case PanelKey::Right:
            return tree.right();
        case PanelKey::Enter:
            return tree.action();
        case PanelKey::Back:
            return tree.backToMenu();
    }
    return false;
}

}  // namespace yxfrontpanel
