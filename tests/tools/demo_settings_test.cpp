#include <yxfrontpanel/components.h>

#if YXFP_HAS_SETTINGS

#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>

#include "attachment.h"
#include "demo_panel.h"
#include "platform_capture.h"
#include "recording_provider.h"
#include "runners.h"
#include "settings_file_systems.h"
#include "temp_directory.h"
#include <sys/stat.h>

// The demo with --settings: its values survive a restart within one scripted run, "Save
// settings" and "Reset defaults" act on the file, and a corrupt file gives the defaults.
namespace {

using frontpanelsim::SimOptions;
using yxfp_test::readFile;
using yxfp_test::TempDirectory;

struct RunResult {
    int status;
    std::string out;
    std::string err;
};

// Runs `script` on the demo, with the settings in `settingsFile` when one is given, and prints
// the last frame.
RunResult runDemo(std::string const& script, std::optional<std::string> settingsFile) {
    SimOptions options;
    options.keyScript = script;
    options.keyScriptSource = "--keys";
    options.print = frontpanelsim::PrintMode::Last;
    options.settingsFile = std::move(settingsFile);
    std::ostringstream out;
    std::ostringstream err;
    int const status = frontpanelsim::runKeyScript(
        options,
        [](yxfrontpanel::IDrawingProvider const& provider) {
            return std::make_unique<frontpanelsim::DemoPanel>(provider);
        },
        frontpanelsim::attachmentsFor(options), out, err);
    return {status, out.str(), err.str()};
}

bool contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

constexpr char const* kEditVoltageRestartAndReopen = "enter enter up enter restart enter enter";

TEST(DemoSettingsTest, AnAppliedVoltageSurvivesARestart) {
    TempDirectory dir;
    std::string const file = dir.file("demo.json");
    RunResult const result = runDemo(kEditVoltageRestartAndReopen, file);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "|      15.00 V       |")) << result.out;
    EXPECT_TRUE(contains(readFile(file), "\"voltage\": 15.0")) << readFile(file);
}

TEST(DemoSettingsTest, WithoutASettingsFileARestartStartsFromTheDefaults) {
    RunResult const result = runDemo(kEditVoltageRestartAndReopen, std::nullopt);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "|      05.00 V       |")) << result.out;
}

TEST(DemoSettingsTest, AFifoAtTheSettingsPathIsRefusedAtOnceWithTheDefaults) {
    TempDirectory dir;
    std::string const fifo = dir.file("demo.json");
    ASSERT_EQ(::mkfifo(fifo.c_str(), 0644), 0);
    yxfp_test::LogCapture log;
    std::ostringstream said;
    std::streambuf* const console = std::cerr.rdbuf(said.rdbuf());
    RunResult const result = runDemo("enter enter", fifo);
    std::cerr.rdbuf(console);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "|      05.00 V       |")) << result.out;
    EXPECT_TRUE(contains(said.str(), fifo + " is a FIFO, not a regular file")) << said.str();
}

TEST(DemoSettingsTest, ALaterRunStartsFromTheFile) {
    TempDirectory dir;
    std::string const file = dir.file("demo.json");
    ASSERT_EQ(runDemo("enter enter up enter", file).status, 0);
    RunResult const second = runDemo("enter enter", file);
    EXPECT_TRUE(contains(second.out, "|      15.00 V       |")) << second.out;
}

TEST(DemoSettingsTest, ResetDefaultsResetsTheItemsAndSavesTheFile) {
    TempDirectory dir;
    std::string const file = dir.file("demo.json");
    // Voltage to 15 V and the DHCP switch on, then System > Reset defaults, confirmed; then the
    // voltage editor again.
    yxfp_test::LogCapture const log;
    RunResult const result = runDemo(
        "enter enter up enter back down enter enter back "
        "down down enter down down down down enter enter back "
        "up up up enter enter",
        file);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "|      05.00 V       |")) << result.out;
    std::string const saved = readFile(file);
    EXPECT_TRUE(contains(saved, "\"voltage\": 5.0")) << saved;
    EXPECT_TRUE(contains(saved, "\"dhcp\": false")) << saved;
}

TEST(DemoSettingsTest, ACorruptFileIsMovedAsideAndTheDefaultsAreUsed) {
    TempDirectory dir;
    std::string const file = dir.file("demo.json");
    yxfp_test::writeFile(file, "{\"application\": \"frontpanel-sim demo\", \"schema");
    yxfp_test::LogCapture log;
    RunResult const result = runDemo("enter enter", file);
    ASSERT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(contains(result.out, "|      05.00 V       |")) << result.out;
    EXPECT_EQ(yxfp_test::filesStartingWith(dir.path(), "demo.json.corrupt-").size(), 1U);
    bool warned = false;
    for (auto const& record : log.records()) {
        warned = warned || contains(record.message, "moved aside");
    }
    EXPECT_TRUE(warned);
}

// "Save settings" and "Reset defaults" run on the panel's thread; their writes (and fsync) go
// to the store's writer thread, so a slow flash never holds up a key press.
TEST(DemoSettingsTest, SaveSettingsAndResetDefaultsWriteOnTheStoresThread) {
    TempDirectory dir;
    auto gate =
        std::make_shared<yxfp_test::GatedFileSystem>(yxfrontpanel::settings::posixFileSystem());
    yxfp_test::RecordingProvider provider(20, 4);
    frontpanelsim::DemoPanel demo(provider);
    yxfrontpanel::settings::SettingsStoreOptions options;
    options.applicationName = "frontpanel-sim";
    options.fileSystem = gate;
    yxfrontpanel::settings::SettingsStore store(dir.file("demo.json"), options,
                                                demo.settingDefinitions());
    store.load();
    demo.useSettings(store);
    demo.root().setFocus(true);
    using frontpanelhw::PanelKey;
    // System > Save settings.
    for (PanelKey key : {PanelKey::Down, PanelKey::Down, PanelKey::Down, PanelKey::Enter,
                         PanelKey::Down, PanelKey::Down, PanelKey::Down, PanelKey::Enter}) {
        yxfrontpanel::applyKey(demo.root(), key);
    }
    EXPECT_TRUE(store.waitForSaves().ok);
    EXPECT_EQ(store.writeCount(), 1U);
    // Reset defaults, confirmed.
    for (PanelKey key : {PanelKey::Down, PanelKey::Enter, PanelKey::Enter}) {
        yxfrontpanel::applyKey(demo.root(), key);
    }
    EXPECT_TRUE(store.waitForSaves().ok);
    EXPECT_EQ(store.writeCount(), 2U);
    EXPECT_EQ(gate->syncingThreads().count(std::this_thread::get_id()), 0U)
        << "the panel's thread wrote the file";
    EXPECT_EQ(gate->syncingThreads().size(), 1U);
    demo.releaseSettings();
}

}  // namespace

#endif
