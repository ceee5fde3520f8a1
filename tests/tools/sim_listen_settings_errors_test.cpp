#include <yxfrontpanel/components.h>

#if YXFP_HAS_SETTINGS

#include <frontpanelhw/display.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "demo_panel.h"
#include "device_errors.h"
#include "platform_capture.h"
#include "remote_attachment.h"
#include "remote_harness.h"
#include "scpi_client.h"
#include "session.h"
#include "settings_attachment.h"
#include "temp_directory.h"

// The simulator with --settings and --listen: a save the file system refuses reaches every
// connected client as -315 "Configuration memory lost" with the store's reason.
namespace {

using frontpanelsim::DeviceErrors;
using yxfp_test::ScpiClient;

class SimSettingsErrorsTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(std::filesystem::create_directory(folder_));
        auto errors = std::make_shared<DeviceErrors>();
        session_ = std::make_unique<frontpanelsim::Session>(
            display_, yxfrontpanel::runtime::PanelOptions{}, clock_,
            [](yxfrontpanel::IDrawingProvider const& provider) {
                return std::make_unique<frontpanelsim::DemoPanel>(provider);
            },
            options_, frontpanelsim::RunKind::Headless);
        frontpanelsim::Attachments attachments;
        attachments.push_back(
            std::make_unique<frontpanelsim::SettingsAttachment>(folder_ + "/demo.json", errors));
        auto remote = std::make_unique<frontpanelsim::RemoteAttachment>(
            std::vector<std::string>{"127.0.0.1:0"}, errors);
        remote_ = remote.get();
        attachments.push_back(std::move(remote));
        session_->attach(std::move(attachments));
        thread_ = std::thread([this] { session_->panel().run(); });
    }

    void TearDown() override {
        session_->panel().stop();
        thread_.join();
        session_.reset();
    }

    std::string address() const { return remote_->addresses().at(0); }

    yxfp_test::SleepCapture noWaiting;
    yxfp_test::LogCapture log;
    yxfp_test::TempDirectory dir_;
    std::string folder_ = dir_.file("config");
    frontpanelhw::MemoryDisplay display_{20, 4};
    std::shared_ptr<yxfrontpanel::testing::ManualClock> clock_ =
        std::make_shared<yxfrontpanel::testing::ManualClock>();
    frontpanelsim::SimOptions options_;
    std::unique_ptr<frontpanelsim::Session> session_;
    frontpanelsim::RemoteAttachment* remote_ = nullptr;
    std::thread thread_;
};

TEST_F(SimSettingsErrorsTest, AFailedSaveIsReportedToEveryClient) {
    ScpiClient first(address());
    ScpiClient second(address());
    ASSERT_EQ(first.query("*ESE 8;*ESE?"), "8");
    ASSERT_EQ(second.query("SYST:ERR:COUN?"), "0");
    // The folder goes away: the next save cannot write the file.
    std::filesystem::rename(folder_, dir_.file("config.gone"));
    ASSERT_EQ(first.query("MENU:VAL \"Output/Voltage\",12;*OPC?"), "1");
    clock_->advance(std::chrono::seconds{3});  // the save is due two seconds after the change
    ASSERT_TRUE(yxfp_test::eventually([&] { return first.query("*STB?") == "32"; }))
        << "ESB: the device-specific error is enabled";
    std::string const error = first.query("SYST:ERR?");
    EXPECT_EQ(error.rfind("-315,\"Configuration memory lost;", 0), 0U) << error;
    EXPECT_NE(error.find(folder_ + "/demo.json"), std::string::npos) << error;
    EXPECT_EQ(first.query("*ESR?"), "8");
    EXPECT_EQ(second.query("SYST:ERR?"), error);
    EXPECT_EQ(second.query("*ESR?"), "8");
}

}  // namespace

#endif
