#include <yxfrontpanel/runtime/clock.h>

namespace yxfrontpanel::runtime {

// Out of line so that the interface's vtable has one home.
IClock::~IClock() = default;

SteadyClock::~SteadyClock() = default;

IClock::TimePoint SteadyClock::now() const { return std::chrono::steady_clock::now(); }

bool SteadyClock::movesByItself() const { return true; }

std::size_t SteadyClock::addAdvanceListener(AdvanceListener /*listener*/) { return 0; }

void SteadyClock::removeAdvanceListener(std::size_t /*id*/) {}

}  // namespace yxfrontpanel::runtime
