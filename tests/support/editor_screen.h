#pragma once

#include <yxfrontpanel/base_editor.h>
#include <yxfrontpanel/control.h>

#include <string>

#include "recording_provider.h"

namespace yxfp_test {

/** The caret line of an editor screen `width` columns wide with the caret "^" at `column`. */
inline std::u16string caretLine(unsigned column, unsigned width) {
    return padded(std::u16string(column, u' ') + u"^", width);
}

/** The screen column of an editor's caret. */
inline unsigned caretColumn(yxfrontpanel::BaseEditor const& editor) {
    return editor.getMarkerLabel().getLocation().x;
}

/** The character of the value text under an editor's caret; 0 when the caret is off the text. */
inline char16_t characterUnderCaret(yxfrontpanel::BaseEditor const& editor) {
    yxfrontpanel::Label const& value = editor.getValueLabel();
    unsigned const column = caretColumn(editor);
    if (column < value.getStartColumn() || column >= value.getEndColumn()) {
        return 0;
    }
    return value.getText()[column - value.getStartColumn()];
}

/** Opens an editor the way its menu item does: editable first, then focused (which draws). */
inline void openForEditing(yxfrontpanel::BaseEditor& editor) {
    editor.setEditorMode(true);
    editor.setFocus(true);
}

}  // namespace yxfp_test
