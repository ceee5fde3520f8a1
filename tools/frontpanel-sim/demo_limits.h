#pragma once

#include <string>

namespace frontpanelsim {

/** Why the demo panel cannot be shown at `chars` x `lines`; empty when it can. */
std::string demoSizeProblem(unsigned chars, unsigned lines);

/** The sizes the demo supports, for --help. */
std::string demoSizeRange();

}  // namespace frontpanelsim
