#pragma once

// Marks the public ABI of libYxFrontPanelHW; the library is built with hidden visibility.
#if defined(__GNUC__) || defined(__clang__)
#define FRONTPANELHW_EXPORT __attribute__((visibility("default")))
#else
#define FRONTPANELHW_EXPORT
#endif
