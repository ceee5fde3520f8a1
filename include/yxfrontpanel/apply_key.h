#pragma once

#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/export.h>

namespace yxfrontpanel {

class IMenuTree;

/** Feeds one panel key to a menu tree the way the panel's keys are meant: up `moveUp`, down
 *  `moveDown`, left `left`, right `right`, enter `action`, back `backToMenu`. Returns the
 *  operation's answer; up and down have none and give false. Key thread only, like the tree's
 *  own key operations. */
YXFP_EXPORT bool applyKey(IMenuTree& tree, frontpanelhw::PanelKey key);

}  // namespace yxfrontpanel
