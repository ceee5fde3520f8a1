#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "platform_capture.h"
#include "settings_file_systems.h"
#include "settings_test_store.h"

// Power cuts at every step of a save, on a model of the file system that knows what the device
// holds: the save's calls are recorded, the machine is stopped after each prefix of them, and
// every state the device may then hold (unsynced directory operations applied in part, unsynced
// data kept, dropped, torn or zero-filled) is loaded. Each must load as the old or the new
// settings, never as anything else.
namespace {

using namespace yxfp_test;
using namespace yxfrontpanel::settings;

constexpr char const* kDirectory = "/model";
constexpr char const* kPath = "/model/settings.json";
// Short writes: a save of the bench file then makes several write calls.
constexpr std::size_t kWriteLimit = 64;

// One version of the settings: every key of it tells the same version.
struct Version {
    std::int64_t channel;
    std::string name;
};

Version const kOld{5, "old"};
Version const kNew{6, "new"};
Version const kDefaults{3, "Bench"};

void setVersion(SettingsStore& store, Version const& version) {
    store.set("channel", version.channel);
    store.set("name", version.name);
}

// The version a store loads from `image`; {0, ""} when it is none of them.
Version loadedVersion(ModelFileSystem::Image const& image) {
    auto fs = std::make_shared<ModelFileSystem>(kDirectory, image);
    auto store = benchStoreOn(kPath, fs);
    store->load();
    return {store->integer("channel"), store->text("name")};
}

bool operator==(Version const& a, Version const& b) {
    return a.channel == b.channel && a.name == b.name;
}

// The device after `versions` were saved one after the other, each save completed.
ModelFileSystem::Image savedImage(std::vector<Version> const& versions) {
    auto fs = std::make_shared<ModelFileSystem>(kDirectory);
    auto store = benchStoreOn(kPath, fs);
    store->load();
    for (auto const& version : versions) {
        setVersion(*store, version);
        EXPECT_TRUE(store->saveNow());
    }
    return fs->currentImage();
}

// An application starting on `fs`, changing to the new version and saving it.
void saveNewVersion(std::shared_ptr<ModelFileSystem> const& fs) {
    auto store = benchStoreOn(kPath, fs);
    store->load();
    setVersion(*store, kNew);
    static_cast<void>(store->saveNow());
}

// An application starting on `fs` with a file whose main copy is cut short: loading moves it
// aside and writes the backup back as the file.
void loadFromTheBackup(std::shared_ptr<ModelFileSystem> const& fs) {
    benchStoreOn(kPath, fs)->load();
}

// The device holding the old version as the backup and a cut-short file.
ModelFileSystem::Image cutShortWithABackup() {
    ModelFileSystem::Image image = savedImage({kOld});
    std::string const file = image.at("settings.json");
    image["settings.json.bak"] = file;
    image["settings.json"] = file.substr(0, file.size() / 2);
    return image;
}

struct CrashScenario {
    char const* name;
    ModelFileSystem::Image initial;
    Version old;      // what loads before the recorded work
    Version updated;  // what loads after it
    void (*work)(std::shared_ptr<ModelFileSystem> const& fs);
};

// Checks every crash state of the work of `scenario`; returns how many were loaded.
std::size_t checkEveryCrashState(CrashScenario const& scenario) {
    EXPECT_EQ(loadedVersion(scenario.initial), scenario.old) << scenario.name;

    auto recorded = std::make_shared<ModelFileSystem>(kDirectory, scenario.initial);
    recorded->limitWrites(kWriteLimit);
    scenario.work(recorded);
    std::vector<std::string> const steps = recorded->log();
    std::set<std::string> kinds;
    for (auto const& step : steps) {
        kinds.insert(step.substr(0, step.find(' ')));
    }
    EXPECT_TRUE(kinds.count("write") && kinds.count("fsync") && kinds.count("rename"))
        << scenario.name;
    EXPECT_EQ(loadedVersion(recorded->currentImage()), scenario.updated) << scenario.name;

    std::size_t checked = 0;
    for (std::size_t prefix = 0; prefix <= steps.size(); ++prefix) {
        auto fs = std::make_shared<ModelFileSystem>(kDirectory, scenario.initial);
        fs->limitWrites(kWriteLimit);
        fs->freezeAfter(prefix);
        scenario.work(fs);
        for (auto const& image : fs->crashImages()) {
            Version const loaded = loadedVersion(image);
            EXPECT_TRUE(loaded == scenario.old || loaded == scenario.updated)
                << scenario.name << ": power cut after " << prefix << " of " << steps.size()
                << " steps (last: " << (prefix == 0 ? "none" : steps[prefix - 1])
                << ") loads channel " << loaded.channel << ", name " << loaded.name;
            ++checked;
        }
    }
    return checked;
}

TEST(SettingsCrashConsistencyTest, EveryPowerCutDuringASaveLoadsTheOldOrTheNewSettings) {
    LogCapture log;  // corrupt states are moved aside with warnings
    std::vector<CrashScenario> const scenarios{
        {"first save", savedImage({}), kDefaults, kNew, saveNewVersion},
        {"save over a file", savedImage({kOld}), kOld, kNew, saveNewVersion},
        {"save over a file and its backup", savedImage({Version{4, "older"}, kOld}), kOld, kNew,
         saveNewVersion},
        {"backup written back", cutShortWithABackup(), kOld, kOld, loadFromTheBackup},
    };
    std::size_t checked = 0;
    for (auto const& scenario : scenarios) {
        checked += checkEveryCrashState(scenario);
    }
    EXPECT_GE(checked, 300U);
    std::cout << "[ crash    ] " << checked << " crash states loaded as the old or new settings\n";
}

}  // namespace
