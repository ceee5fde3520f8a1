#pragma once

// Marks the public ABI of libYxFrontPanelPng; the library is built with hidden visibility.
#if defined(__GNUC__) || defined(__clang__)
#define FRONTPANELHW_PNG_EXPORT __attribute__((visibility("default")))
#else
#define FRONTPANELHW_PNG_EXPORT
#endif
