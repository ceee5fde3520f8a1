#pragma once

// Marks the classes and functions that form the testing kit's public ABI. The library is built
// with hidden visibility, so everything a user may call, catch or cast to carries it.
#if defined(__GNUC__) || defined(__clang__)
#define YXFP_TESTING_EXPORT __attribute__((visibility("default")))
#else
#define YXFP_TESTING_EXPORT
#endif
