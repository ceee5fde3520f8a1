#pragma once

// Buttons and display lines on GPIO chips (library YxFrontPanelGpio, built with libgpiod).

#include <frontpanelhw/gpio_key_source.h>
#include <frontpanelhw/gpio_lines.h>
#include <frontpanelhw/gpio_panel_line.h>
