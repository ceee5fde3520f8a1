#include "editor_item_keys.h"

#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/menu_item.h>

namespace yxfrontpanel::editoritem {

bool enter(MenuItem& item, BaseEditor& editor, bool closeAfterApply) {
    // The base versions on purpose: the items call this from their own overrides.
    if (!item.MenuItem::getFocus()) {
        return item.MenuItem::enter();
    }
    editor.apply();
    if (closeAfterApply) {
        return item.MenuItem::exit();
    }
    // Refused while the editor is open: it stays on screen for further edits.
    return item.MenuItem::enter();
}

bool moveCaret(BaseEditor& editor, int direction) {
    if (!editor.getFocus()) {
        return false;
    }
    editor.moveMarker(direction);
    return true;
}

bool stepDigit(BaseEditor& editor, int delta) {
    editor.changeValue(delta);
    return editor.getFocus() && editor.getEditorMode();
}

}  // namespace yxfrontpanel::editoritem
