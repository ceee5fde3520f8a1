#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <cstddef>
#include <memory>

#include "menu_fixture.h"
#include <benchmark/benchmark.h>

namespace yxfp_bench {

/** Heap allocations made by this process so far (the benchmark binary counts operator new). */
std::size_t allocationCount();

/** Reports the allocations made since `startCount`, per iteration, as the counter "allocs". */
void reportAllocations(benchmark::State& state, std::size_t startCount);

/** A voltage editor (0..30 V, two decimals) showing 12.50 V, focused and editable. */
std::unique_ptr<yxfrontpanel::ValueEditor> openVoltageEditor(
    yxfrontpanel::IDrawingProvider const& provider);

/** An address editor showing 192.168.1.100, focused and editable. */
std::unique_ptr<yxfrontpanel::IpAddressEditor> openAddressEditor(
    yxfrontpanel::IDrawingProvider const& provider);

}  // namespace yxfp_bench
