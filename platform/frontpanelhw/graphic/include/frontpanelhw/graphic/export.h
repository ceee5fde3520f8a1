#pragma once

// Marks the public ABI of libYxFrontPanelGraphic; the library is built with hidden visibility.
#if defined(__GNUC__) || defined(__clang__)
#define FRONTPANELHW_GRAPHIC_EXPORT __attribute__((visibility("default")))
#else
#define FRONTPANELHW_GRAPHIC_EXPORT
#endif
