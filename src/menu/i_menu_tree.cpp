#include <yxfrontpanel/menu_tree.h>

namespace yxfrontpanel {

// Out of line so that the interface's vtable has one home in the library.
IMenuTree::~IMenuTree() = default;

}  // namespace yxfrontpanel
