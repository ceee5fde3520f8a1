#pragma once

// Key handling shared by the menu items that open a full-screen editor.

namespace yxfrontpanel {

class BaseEditor;
class MenuItem;

namespace editoritem {

/** The action key on an item whose form is `editor`: closed, it opens the editor (the base
 *  item's `enter`); open, it applies and then closes (`closeAfterApply`) or keeps the editor
 *  open. Returns the answer of the base operation called last. */
bool enter(MenuItem& item, BaseEditor& editor, bool closeAfterApply);

/** Moves the caret by `direction` while the editor is open; whether it did. */
bool moveCaret(BaseEditor& editor, int direction);

/** Hands `delta` to the editor's `changeValue` in any state (the editor ignores it unless open
 *  and editable); whether the editor was open and editable. */
bool stepDigit(BaseEditor& editor, int delta);

}  // namespace editoritem

}  // namespace yxfrontpanel
