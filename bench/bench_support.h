#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <cstddef>
#include <memory>

#include <benchmark/benchmark.h>

namespace yxfp_bench {

/** Heap allocations made by this process so far (the benchmark binary counts operator new). */
std::size_t allocationCount();

/** Resident memory of this process in bytes, from /proc/self/statm. */
std::size_t residentBytes();

/** Reports the allocations made since `startCount`, per iteration, as the counter "allocs". */
void reportAllocations(benchmark::State& state, std::size_t startCount);

/** A drawing provider that drops every frame: measures composing, not showing. */
class DiscardingProvider : public yxfrontpanel::IDrawingProvider {
public:
    DiscardingProvider(unsigned chars, unsigned lines) : chars_(chars), lines_(lines) {}
    void enableDrawing(bool /*enable*/) override {}
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const override {
        benchmark::DoNotOptimize(&buffer);
        return true;
    }
    unsigned getLines() const override { return lines_; }
    unsigned getChars() const override { return chars_; }

private:
    unsigned chars_;
    unsigned lines_;
};

/** The plainest menu entry: a name, no form, keys that do nothing. */
class PlainItem : public yxfrontpanel::MenuItem {
public:
    using MenuItem::MenuItem;
    void setLocal(bool /*local*/) override {}
};

/** A voltage editor (0..30 V, two decimals) showing 12.50 V, focused and editable. */
std::unique_ptr<yxfrontpanel::ValueEditor> openVoltageEditor(
    yxfrontpanel::IDrawingProvider const& provider);

/** An address editor showing 192.168.1.100, focused and editable. */
std::unique_ptr<yxfrontpanel::IpAddressEditor> openAddressEditor(
    yxfrontpanel::IDrawingProvider const& provider);

/** A focused root menu of `count` plain items named "Item 1".."Item N". */
std::unique_ptr<yxfrontpanel::IMenuTree> plainMenu(yxfrontpanel::IDrawingProvider const& provider,
                                                   std::size_t count);

}  // namespace yxfp_bench
