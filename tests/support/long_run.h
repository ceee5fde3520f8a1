#pragma once

#include <cstddef>
#include <cstdlib>
#include <string>

#include "sanitized_build.h"

// The number of turns of a long-run test: the full count in the plain build, a hundredth under
// AddressSanitizer or ThreadSanitizer (detected at compile time), and what YXFP_LONG_RUN_TURNS
// says when it is set (.ci/valgrind sets it, as memcheck is slower still). The checks after
// the run are the same in every build; only the count changes.

namespace yxfp_test {

/** `full`, or fewer for a sanitizer or valgrind build (see above). */
inline std::size_t longRunCount(std::size_t full) {
    if (char const* const text =
            std::getenv("YXFP_LONG_RUN_TURNS")) {  // NOLINT(concurrency-mt-unsafe)
        return static_cast<std::size_t>(std::stoull(text));
    }
#ifdef YXFP_TEST_SANITIZED
    return full / 100;
#else
    return full;
#endif
}

/** The create/destroy cycles of a server lifecycle test: 1,000 (also under the sanitizers,
 *  where the lifecycle matters most), or what YXFP_LIFECYCLE_CYCLES says (.ci/valgrind sets
 *  it: memcheck runs the server's, the panel's and the test's threads one at a time). */
inline int lifecycleCycles() {
    if (char const* const text =
            std::getenv("YXFP_LIFECYCLE_CYCLES")) {  // NOLINT(concurrency-mt-unsafe)
        return std::stoi(text);
    }
    return 1000;
}

}  // namespace yxfp_test
