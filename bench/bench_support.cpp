#include "bench_support.h"

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

namespace {
std::atomic<std::size_t> allocations{0};
}  // namespace

// Counting allocator for the whole benchmark binary: every heap allocation passes through here.
void* operator new(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    if (void* memory = std::malloc(size == 0 ? 1 : size)) {
        return memory;
    }
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }

void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }

namespace yxfp_bench {

std::size_t allocationCount() { return allocations.load(std::memory_order_relaxed); }

void reportAllocations(benchmark::State& state, std::size_t startCount) {
    state.counters["allocs"] = benchmark::Counter(
        static_cast<double>(allocationCount() - startCount), benchmark::Counter::kAvgIterations);
}

std::unique_ptr<yxfrontpanel::ValueEditor> openVoltageEditor(
    yxfrontpanel::IDrawingProvider const& provider) {
    auto editor = std::make_unique<yxfrontpanel::ValueEditor>(provider, u"Voltage", 0.0, 30.0);
    editor->setPrecision(2);
    editor->setUnit(u"V");
    editor->setValue(12.5);
    editor->setFocus(true);
    editor->setEditorMode(true);
    return editor;
}

std::unique_ptr<yxfrontpanel::IpAddressEditor> openAddressEditor(
    yxfrontpanel::IDrawingProvider const& provider) {
    auto editor = std::make_unique<yxfrontpanel::IpAddressEditor>(provider, u"IP address");
    editor->setValue(std::string("192.168.1.100"));
    editor->setFocus(true);
    editor->setEditorMode(true);
    return editor;
}

}  // namespace yxfp_bench
