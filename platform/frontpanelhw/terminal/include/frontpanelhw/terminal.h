#pragma once

// The terminal display and its keys (library YxFrontPanelTerminal, built with curses).

#include <frontpanelhw/terminal_display.h>
#include <frontpanelhw/terminal_keys.h>
