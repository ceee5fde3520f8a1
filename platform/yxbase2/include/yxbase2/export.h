#pragma once

// Marks the public ABI of libYxBase2System; the library is built with hidden visibility.
#if defined(__GNUC__) || defined(__clang__)
#define YXBASE2_EXPORT __attribute__((visibility("default")))
#else
#define YXBASE2_EXPORT
#endif
