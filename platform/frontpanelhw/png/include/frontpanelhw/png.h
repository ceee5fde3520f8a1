#pragma once

// PNG pictures of graphic panels: the encoder and the PNG display (library YxFrontPanelPng,
// built with libpng).

#include <frontpanelhw/graphic/png_display.h>
#include <frontpanelhw/graphic/png_export.h>
#include <frontpanelhw/graphic/png_image.h>
