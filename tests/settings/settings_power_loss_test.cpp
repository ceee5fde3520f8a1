#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "platform_capture.h"
#include "temp_directory.h"
#include <sys/wait.h>
#include <unistd.h>

// A power cut in the middle of saving, modelled by SIGKILL: a child process saves new versions
// of 1,000 values in a loop and is killed at random moments. After every kill the file must load
// as one complete version, the last one the child finished or the one it was writing; never
// the defaults, never a mix of two versions.
namespace {

using namespace yxfp_test;
using namespace yxfrontpanel::settings;

constexpr int kValueCount = 1000;
constexpr std::int64_t kDefault = -1;
// Kills per run; YXFP_POWER_LOSS_KILLS overrides it (the full run is 500).
constexpr int kDefaultKills = 60;
// Saves the child makes at most before it stops on its own (bounds a run that is never killed).
constexpr std::int64_t kMaxSavesPerChild = 50;

int killCount() {
    char const* text = std::getenv("YXFP_POWER_LOSS_KILLS");  // NOLINT(concurrency-mt-unsafe)
    if (text == nullptr || *text == '\0') {
        return kDefaultKills;
    }
    int const count = std::atoi(text);
    return count > 0 ? count : kDefaultKills;
}

std::unique_ptr<SettingsStore> versionStore(std::string const& path) {
    std::vector<SettingDefinition> definitions;
    definitions.reserve(kValueCount);
    for (int i = 0; i < kValueCount; ++i) {
        definitions.push_back(SettingDefinition::integer("value" + std::to_string(i), kDefault,
                                                         kDefault, 1'000'000'000));
    }
    SettingsStoreOptions options;
    options.applicationName = "power-loss";
    return std::make_unique<SettingsStore>(path, options, definitions);
}

// The version every value holds, or -2 when they differ.
std::int64_t loadedVersion(SettingsStore const& store) {
    std::int64_t const first = store.integer("value0");
    for (int i = 1; i < kValueCount; ++i) {
        if (store.integer("value" + std::to_string(i)) != first) {
            return -2;
        }
    }
    return first;
}

// The child: loads the file, then saves version+1, version+2, ... and after each completed save
// writes the version to `report`. Never returns.
[[noreturn]] void saveVersionsForever(std::string const& path, int report) {
    auto store = versionStore(path);
    store->load();
    std::int64_t version = store->integer("value0");
    for (std::int64_t save = 0; save < kMaxSavesPerChild; ++save) {
        ++version;
        for (int i = 0; i < kValueCount; ++i) {
            store->set("value" + std::to_string(i), version);
        }
        if (!store->saveNow().ok) {
            ::_exit(3);
        }
        if (::write(report, &version, sizeof version) != sizeof version) {
            ::_exit(4);
        }
    }
    ::_exit(0);
}

TEST(SettingsPowerLossTest, EveryKillLeavesOneCompleteVersion) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    {
        auto first = versionStore(path);
        for (int i = 0; i < kValueCount; ++i) {
            first->set("value" + std::to_string(i), std::int64_t{0});
        }
        ASSERT_TRUE(first->saveNow());
    }
    int const kills = killCount();
    std::mt19937 random(20261124U);
    // Saves to wait for before the kill, then a random part of one save's duration (measured
    // from the child's reports as the run goes): together they put the kill anywhere in a save,
    // while writing the temporary file, flushing it, renaming it or flushing the directory.
    std::uniform_int_distribution<int> savesBefore(1, 2);
    std::uniform_real_distribution<double> partOfASave(0.0, 1.2);
    auto savePeriod = std::chrono::microseconds(2000);
    std::int64_t confirmed = 0;
    std::set<std::int64_t> versionsSeen;
    int leftThePrevious = 0;
    for (int kill = 0; kill < kills; ++kill) {
        SCOPED_TRACE("kill " + std::to_string(kill));
        int pipeEnds[2];
        ASSERT_EQ(::pipe(pipeEnds), 0);
        std::fflush(nullptr);  // the child must not write the parent's buffered output again
        pid_t const child = ::fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            ::close(pipeEnds[0]);
            saveVersionsForever(path, pipeEnds[1]);
        }
        ::close(pipeEnds[1]);
        int const wait = savesBefore(random);
        std::int64_t version = 0;
        auto lastReport = std::chrono::steady_clock::now();
        for (int i = 0; i < wait && ::read(pipeEnds[0], &version, sizeof version) ==
                                        static_cast<ssize_t>(sizeof version);
             ++i) {
            confirmed = version;
            auto const now = std::chrono::steady_clock::now();
            if (i > 0) {
                // A running mean of the time between two finished saves, capped at a second.
                auto const period =
                    std::chrono::duration_cast<std::chrono::microseconds>(now - lastReport);
                savePeriod =
                    std::min(std::chrono::microseconds(1'000'000), (savePeriod * 3 + period) / 4);
            }
            lastReport = now;
        }
        // A bounded busy wait for the random moment; no assertion depends on its length.
        auto const moment = lastReport + std::chrono::duration_cast<std::chrono::microseconds>(
                                             savePeriod * partOfASave(random));
        while (std::chrono::steady_clock::now() < moment) {
        }
        ::kill(child, SIGKILL);
        int status = 0;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        // Reports the child finished before it died count as confirmed.
        while (::read(pipeEnds[0], &version, sizeof version) ==
               static_cast<ssize_t>(sizeof version)) {
            confirmed = version;
        }
        ::close(pipeEnds[0]);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the child ended before the kill, status " << status;

        yxfp_test::LogCapture log;
        auto store = versionStore(path);
        LoadResult const result = store->load();
        ASSERT_EQ(result.source, LoadResult::Source::File) << result.detail;
        std::int64_t const loaded = loadedVersion(*store);
        ASSERT_TRUE(loaded == confirmed || loaded == confirmed + 1)
            << "loaded " << loaded << ", last confirmed " << confirmed;
        leftThePrevious += loaded == confirmed ? 1 : 0;
        versionsSeen.insert(loaded);
        confirmed = loaded;
    }
    EXPECT_TRUE(yxfp_test::filesStartingWith(dir.path(), "settings.json.corrupt").empty());
    // The kills really fell at different moments: many versions were written in all.
    EXPECT_GT(versionsSeen.size(), static_cast<std::size_t>(kills) / 2);
    std::printf(
        "power loss: %d kills, %zu distinct versions loaded, %d left the last finished version, "
        "%d the one being written; mean save %lld us\n",
        kills, versionsSeen.size(), leftThePrevious, kills - leftThePrevious,
        static_cast<long long>(savePeriod.count()));
}

}  // namespace
