#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <cstddef>
#include <memory>

// The menu that the benchmarks and the memory probe measure. Needs nothing but the toolkit, so
// that the memory probe builds for the instrument's processors without Google Benchmark.
namespace yxfp_bench {

/** Resident memory of this process in bytes, from /proc/self/statm. */
std::size_t residentBytes();

/** Bytes the C heap has handed out and not got back, chunk overhead included (glibc's
 *  mallinfo2): what the process asked for, without the page rounding of residentBytes(). */
std::size_t heapBytesInUse();

/** A drawing provider that drops every frame: measures composing, not showing. Counts the
 *  frames (not thread-safe: one thread draws). */
class DiscardingProvider : public yxfrontpanel::IDrawingProvider {
public:
    DiscardingProvider(unsigned chars, unsigned lines) : chars_(chars), lines_(lines) {}
    void enableDrawing(bool /*enable*/) override {}
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const override;
    unsigned getLines() const override { return lines_; }
    unsigned getChars() const override { return chars_; }
    /** Frames handed to draw() so far. */
    std::size_t frames() const { return frames_; }

private:
    unsigned chars_;
    unsigned lines_;
    mutable std::size_t frames_ = 0;
};

/** The plainest menu entry: a name, no form, keys that do nothing. */
class PlainItem : public yxfrontpanel::MenuItem {
public:
    using MenuItem::MenuItem;
    void setLocal(bool /*local*/) override {}
};

/** A focused root menu of `count` plain items named "Item 1".."Item N". */
std::unique_ptr<yxfrontpanel::IMenuTree> plainMenu(yxfrontpanel::IDrawingProvider const& provider,
                                                   std::size_t count);

}  // namespace yxfp_bench
