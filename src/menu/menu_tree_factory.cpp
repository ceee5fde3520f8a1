#include <yxfrontpanel/menu_tree.h>

namespace yxfrontpanel {

MenuTreeFactory::~MenuTreeFactory() = default;

std::unique_ptr<IMenuTree> MenuTreeFactory::create(IDrawingProvider const& provider) const {
    return std::make_unique<MenuTree>(provider);
}

}  // namespace yxfrontpanel
