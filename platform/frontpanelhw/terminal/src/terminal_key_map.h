#pragma once

// Private to the terminal device: the mapping takes curses key codes, which stay inside the
// display library.

#include <frontpanelhw/key_source.h>

#include <optional>

namespace frontpanelhw {

/** The panel key for what curses read: `code` is the value wget_wch stored and `isFunctionKey`
 *  tells whether it returned KEY_CODE_YES (a key code such as KEY_UP) rather than a character.
 *  The arrow keys give the four directions; KEY_ENTER, '\n' and '\r' give Enter; KEY_BACKSPACE,
 *  DEL (127), BS (8) and Escape (27) give Back. Anything else gives no panel key. */
std::optional<PanelKey> panelKeyFor(int code, bool isFunctionKey);

}  // namespace frontpanelhw
