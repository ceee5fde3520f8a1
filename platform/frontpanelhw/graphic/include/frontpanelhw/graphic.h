#pragma once

// The character panel on pixel displays: bitmaps, fonts, the cell renderer, OLED, ST7920 and
// framebuffer displays (library YxFrontPanelGraphic).

#include <frontpanelhw/graphic/cell_renderer.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/framebuffer_display.h>
#include <frontpanelhw/graphic/graphic_display.h>
#include <frontpanelhw/graphic/mono_bitmap.h>
#include <frontpanelhw/graphic/oled_display.h>
#include <frontpanelhw/graphic/panel_bus.h>
#include <frontpanelhw/graphic/rgb_color.h>
#include <frontpanelhw/graphic/st7920_display.h>
