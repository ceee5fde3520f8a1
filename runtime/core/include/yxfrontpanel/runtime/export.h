#pragma once

// Marks the classes and functions that form the runtime library's public ABI. The library is
// built with hidden visibility, so everything a user may call, catch or cast to carries it.
#if defined(__GNUC__) || defined(__clang__)
#define YXFP_RUNTIME_EXPORT __attribute__((visibility("default")))
#else
#define YXFP_RUNTIME_EXPORT
#endif
