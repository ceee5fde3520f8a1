#pragma once

#include <frontpanelhw/display.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include "menu_test_items.h"
#include "queued_key_source.h"
#include "recording_provider.h"

namespace yxfp_test {

/** A 20x4 panel on a memory display with a hand-moved clock, a five-entry root menu built on
 *  the panel's provider (the second entry opens a form) and one queued key source. Turns of the
 *  loop are taken by hand with `turn`, so that no test waits. */
class PanelFixture : public ::testing::Test {
protected:
    explicit PanelFixture(yxfrontpanel::runtime::PanelOptions options = {},
                          frontpanelhw::KeySourceCapabilities keys = {})
        : clock(std::make_shared<yxfrontpanel::testing::ManualClock>()),
          panel(display, options, clock),
          tree(yxfrontpanel::MenuTreeFactory().create(panel.provider())),
          keys(std::make_shared<QueuedKeySource>(keys)) {
        for (char16_t const* name : {u"Alpha", u"Beta", u"Gamma", u"Delta", u"Epsilon"}) {
            std::u16string const text(name);
            tree->addItem(text == u"Beta" ? TestItem::withForm(text, &panel.provider())
                                          : std::make_shared<TestItem>(text));
        }
        panel.setRoot(*tree);
        panel.addKeySource(this->keys);
    }

    /** One turn of the loop that does not wait. */
    void turn() { ASSERT_TRUE(panel.runOnce(std::chrono::milliseconds{0})); }
    /** Moves the clock, then takes a turn. */
    void advance(std::chrono::milliseconds step) {
        clock->advance(step);
        turn();
    }
    /** Serves what is waiting, then lets a frame period pass so that the newest screen is
     *  drawn too. */
    void settle() {
        advance(std::chrono::seconds{1});
        advance(std::chrono::seconds{1});
    }
    /** The text lines of the last frame the display got. */
    std::vector<std::u16string> shown() const { return screenOf(display.getLastFrame()); }
    /** The line that is inverted in the last frame, or -1. */
    int invertedLine() const {
        auto const& frame = display.getLastFrame();
        for (unsigned line = 0; line < frame.getLineCount(); ++line) {
            if (frame.getCell(0, line).inverted) {
                return static_cast<int>(line);
            }
        }
        return -1;
    }

    frontpanelhw::MemoryDisplay display{20, 4};
    std::shared_ptr<yxfrontpanel::testing::ManualClock> clock;
    yxfrontpanel::runtime::Panel panel;
    std::unique_ptr<yxfrontpanel::IMenuTree> tree;
    std::shared_ptr<QueuedKeySource> keys;
};

}  // namespace yxfp_test
