#pragma once

// YXFP_TEST_SANITIZED is defined in a build with AddressSanitizer or ThreadSanitizer (GCC says
// so with __SANITIZE_*__, Clang with __has_feature).

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define YXFP_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define YXFP_TEST_SANITIZED 1
#endif
#endif
