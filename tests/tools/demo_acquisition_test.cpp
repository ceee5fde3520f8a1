// The demo in a --headless run: its acquisition thread publishes real readings while keys
// switch the output on and open the measurement. Built for ThreadSanitizer as well.
#include <yxfrontpanel/runtime/panel.h>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <sstream>
#include <string>

#include "demo_panel.h"
#include "queued_key_source.h"
#include "runners.h"

namespace {

using frontpanelhw::PanelKey;
using namespace std::chrono_literals;

// Switches the output on and opens "Measured"; stops the run once a reading of the switched-on
// output is on the screen (or, should none ever come, after a generous time on the panel's
// clock, so that the test fails instead of hanging).
class OpenMeasurement : public frontpanelsim::Attachment {
public:
    explicit OpenMeasurement(std::shared_ptr<std::string> seen) : seen_(std::move(seen)) {}

    void attach(frontpanelsim::SimContext const& context) override {
        auto keys = std::make_shared<yxfp_test::QueuedKeySource>();
        for (PanelKey key : {PanelKey::Enter, PanelKey::Down, PanelKey::Down, PanelKey::Enter,
                             PanelKey::Down, PanelKey::Enter}) {
            keys->press(key);
        }
        auto& panel = context.panel;
        panel.addKeySource(keys);
        auto seen = seen_;
        panel.addFrameListener([&panel, seen](auto const& frame) {
            std::u16string const line = frame.getLineString(1);
            if (line.find(u"4.99") != std::u16string::npos ||
                line.find(u"5.00") != std::u16string::npos) {
                *seen = std::string(line.begin(), line.end());
                panel.stop();
            }
        });
        panel.after(30s, [&panel] { panel.stop(); });
    }
    void detach() noexcept override {}

private:
    std::shared_ptr<std::string> seen_;
};

TEST(DemoAcquisitionTest, PublishedReadingsReachTheOpenMeasurement) {
    auto const seen = std::make_shared<std::string>();
    frontpanelsim::SimOptions options;
    options.headless = true;
    frontpanelsim::Attachments attachments;
    attachments.push_back(std::make_unique<OpenMeasurement>(seen));
    std::ostringstream err;
    int const status = frontpanelsim::runHeadless(
        options,
        [](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<frontpanelsim::DemoPanel>(provider);
        },
        std::move(attachments), err);
    EXPECT_EQ(status, 0) << err.str();
    EXPECT_FALSE(seen->empty()) << "no reading of the switched-on output reached the screen";
}

}  // namespace
