#include <yxfrontpanel/runtime/settings_store.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "platform_capture.h"
#include "settings_file_systems.h"
#include "settings_test_store.h"
#include "temp_directory.h"

namespace {

using namespace yxfp_test;
using namespace yxfrontpanel::settings;

using Source = LoadResult::Source;

constexpr int kWarningLevel = 4;

// Whether some warning (or worse) mentions every one of `words`.
bool warned(LogCapture const& log, std::vector<std::string> const& words) {
    for (auto const& record : log.records()) {
        bool all = record.level <= kWarningLevel;
        for (auto const& word : words) {
            all = all && record.message.find(word) != std::string::npos;
        }
        if (all) {
            return true;
        }
    }
    return false;
}

// Every value of a bench store, to compare a store with in one call.
struct BenchValues {
    double voltage;
    std::int64_t channel;
    std::int64_t mode;
    bool output;
    std::string name;
    ip::IpV4Address address;
};

void expectValues(SettingsStore const& store, BenchValues const& values) {
    EXPECT_EQ(store.number("voltage"), values.voltage);
    EXPECT_EQ(store.integer("channel"), values.channel);
    EXPECT_EQ(store.integer("mode"), values.mode);
    EXPECT_EQ(store.boolean("output"), values.output);
    EXPECT_EQ(store.text("name"), values.name);
    EXPECT_EQ(store.ipv4("address"), values.address);
}

void expectDefaults(SettingsStore const& store) {
    expectValues(store, {12.5, 3, 1, false, "Bench", ip::IpV4Address(192, 168, 1, 10)});
}

// The values of benchFile().
void expectBenchFileValues(SettingsStore const& store) {
    expectValues(store, {7.25, 9, 2, true, "Lab 4", ip::IpV4Address(10, 0, 0, 7)});
}

TEST(SettingsStoreTest, MissingFileGivesTheDefaultsAndWritesNothing) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"));
    LoadResult const result = store->load();
    EXPECT_EQ(result.source, Source::Defaults);
    EXPECT_FALSE(result.readOnly);
    expectDefaults(*store);
    EXPECT_TRUE(filesStartingWith(dir.path(), "").empty());
    EXPECT_FALSE(store->hasUnsavedChanges());
}

TEST(SettingsStoreTest, EveryTypeSurvivesASaveAndALoad) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    EXPECT_TRUE(store->set("voltage", 0.1 + 0.2));
    EXPECT_TRUE(store->set("channel", std::int64_t{16}));
    EXPECT_TRUE(store->set("mode", std::int64_t{0}));
    EXPECT_TRUE(store->set("output", true));
    EXPECT_TRUE(store->set("name", std::string("Line \"A\"\n\xc3\xa4")));
    EXPECT_TRUE(store->set("address", ip::IpV4Address(255, 0, 1, 2)));
    EXPECT_TRUE(store->hasUnsavedChanges());
    ASSERT_TRUE(store->saveNow().ok);
    EXPECT_FALSE(store->hasUnsavedChanges());
    EXPECT_EQ(store->writeCount(), 1U);

    auto reloaded = benchStore(dir.file("settings.json"));
    EXPECT_EQ(reloaded->load().source, Source::File);
    EXPECT_EQ(reloaded->number("voltage"), 0.1 + 0.2);
    EXPECT_EQ(reloaded->integer("channel"), 16);
    EXPECT_EQ(reloaded->integer("mode"), 0);
    EXPECT_TRUE(reloaded->boolean("output"));
    EXPECT_EQ(reloaded->text("name"), "Line \"A\"\n\xc3\xa4");
    EXPECT_EQ(reloaded->ipv4("address"), ip::IpV4Address(255, 0, 1, 2));
}

TEST(SettingsStoreTest, FileNamesTheApplicationTheSchemaAndTheValues) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"), 5);
    store->load();
    ASSERT_TRUE(store->saveNow());
    std::string const text = readFile(dir.file("settings.json"));
    EXPECT_NE(text.find("\"application\": \"bench-supply\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"schemaVersion\": 5"), std::string::npos) << text;
    EXPECT_NE(text.find("\"address\": \"192.168.1.10\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"voltage\": 12.5"), std::string::npos) << text;
    EXPECT_EQ(text.back(), '\n');
}

TEST(SettingsStoreTest, SavingKeepsThePreviousFileAsBackupAndLeavesNoTemporaryFile) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    store->set("channel", std::int64_t{5});
    ASSERT_TRUE(store->saveNow());
    std::string const first = readFile(dir.file("settings.json"));
    store->set("channel", std::int64_t{6});
    ASSERT_TRUE(store->saveNow());
    EXPECT_EQ(readFile(store->backupPath()), first);
    EXPECT_NE(readFile(dir.file("settings.json")), first);
    EXPECT_EQ(
        filesStartingWith(dir.path(), ""),
        (std::vector<std::string>{"settings.json", "settings.json.bak", "settings.json.lock"}));
}

TEST(SettingsStoreTest, KeysTheApplicationDoesNotKnowAreWrittenBackUnchanged) {
    TempDirectory dir;
    writeFile(dir.file("settings.json"),
              R"({"application": "bench-supply", "schemaVersion": 2, "comment": "kept",
                  "values": {"channel": 4, "brightness": 7, "future": {"list": [1, "two"]}}})");
    // An older firmware without "brightness" and "future" changes a value and saves.
    auto older = benchStore(dir.file("settings.json"));
    older->load();
    EXPECT_EQ(older->integer("channel"), 4);
    older->set("channel", std::int64_t{8});
    ASSERT_TRUE(older->saveNow());

    // The newer firmware finds its values again.
    auto definitions = yxfp_test::benchDefinitions();
    definitions.push_back(SettingDefinition::integer("brightness", 1, 0, 10));
    SettingsStore newer(dir.file("settings.json"), yxfp_test::benchOptions(), definitions);
    newer.load();
    EXPECT_EQ(newer.integer("brightness"), 7);
    EXPECT_EQ(newer.integer("channel"), 8);
    std::string const text = readFile(dir.file("settings.json"));
    EXPECT_NE(text.find("\"comment\": \"kept\""), std::string::npos) << text;
    EXPECT_NE(text.find("\"two\""), std::string::npos) << text;
}

TEST(SettingsStoreTest, ValuesOfTheWrongTypeBecomeTheirDefaultsWithALineNamingTheKey) {
    TempDirectory dir;
    writeFile(dir.file("settings.json"),
              R"({"application": "bench-supply", "schemaVersion": 2, "values": {
                  "voltage": "high", "channel": 2.5, "mode": 7, "output": "yes",
                  "name": "this text is longer than twenty bytes", "address": "300.1.1.1"}})");
    LogCapture log;
    auto store = benchStore(dir.file("settings.json"));
    EXPECT_EQ(store->load().source, Source::File);
    expectDefaults(*store);
    for (char const* key :
         {"'voltage'", "'channel'", "'mode'", "'output'", "'name'", "'address'"}) {
        EXPECT_TRUE(warned(log, {key, "default"})) << key;
    }
    EXPECT_TRUE(filesStartingWith(dir.path(), "settings.json.corrupt").empty());
}

TEST(SettingsStoreTest, NumbersOutsideTheirRangeAreClampedWithALineNamingTheKey) {
    TempDirectory dir;
    writeFile(dir.file("settings.json"),
              R"({"application": "bench-supply", "schemaVersion": 2,
                  "values": {"voltage": 99.5, "channel": -4}})");
    LogCapture log;
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    EXPECT_EQ(store->number("voltage"), 30.0);
    EXPECT_EQ(store->integer("channel"), 1);
    EXPECT_TRUE(warned(log, {"'voltage'", "clamped to 30"}));
    EXPECT_TRUE(warned(log, {"'channel'", "clamped to 1"}));
}

TEST(SettingsStoreTest, AnIntegerInTheFileIsTakenForANumber) {
    TempDirectory dir;
    writeFile(dir.file("settings.json"),
              R"({"application": "bench-supply", "schemaVersion": 2, "values": {"voltage": 24}})");
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    EXPECT_EQ(store->number("voltage"), 24.0);
}

// Each unusable file is moved aside with a warning giving the reason; without a backup the
// defaults are used.
struct CorruptCase {
    char const* name;
    std::string content;
    char const* reason;
};

TEST(SettingsStoreTest, CorruptFilesAreMovedAsideAndGiveTheDefaults) {
    std::vector<CorruptCase> const cases = {
        {"empty", "", "empty"},
        {"not JSON", "voltage=12\n", "not valid JSON"},
        {"binary", std::string("\x00\xff\xfe{", 4), "not valid JSON"},
        {"array", "[1, 2, 3]", "not an object"},
        {"other application",
         R"({"application": "oven", "schemaVersion": 2, "values": {"voltage": 1}})", "oven"},
        {"no application", R"({"schemaVersion": 2, "values": {}})", "application"},
        {"schema zero", R"({"application": "bench-supply", "schemaVersion": 0, "values": {}})",
         "schemaVersion"},
        {"schema text", R"({"application": "bench-supply", "schemaVersion": "2", "values": {}})",
         "schemaVersion"},
        {"values not an object",
         R"({"application": "bench-supply", "schemaVersion": 2, "values": [1]})", "values"},
        {"trailing garbage", benchFile() + "}", "not valid JSON"},
    };
    for (auto const& corrupt : cases) {
        SCOPED_TRACE(corrupt.name);
        TempDirectory dir;
        writeFile(dir.file("settings.json"), corrupt.content);
        LogCapture log;
        auto store = benchStore(dir.file("settings.json"));
        LoadResult const result = store->load();
        EXPECT_EQ(result.source, Source::DefaultsAfterCorruption);
        EXPECT_NE(result.detail.find(corrupt.reason), std::string::npos) << result.detail;
        expectDefaults(*store);
        ASSERT_EQ(result.movedAside.size(), 1U);
        EXPECT_EQ(readFile(result.movedAside[0]), corrupt.content);
        std::vector<std::string> const aside =
            filesStartingWith(dir.path(), "settings.json.corrupt-");
        ASSERT_EQ(aside.size(), 1U);
        EXPECT_EQ(dir.file(aside[0]), result.movedAside[0]);
        EXPECT_TRUE(warned(log, {corrupt.reason, "moved aside"}));
        EXPECT_FALSE(std::filesystem::exists(dir.file("settings.json")));
    }
}

TEST(SettingsStoreTest, AFileTruncatedAtAnyByteGivesTheDefaultsNeverAMix) {
    std::string const valid = benchFile();
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    // Every cut before the closing brace; only the final line feed may go without harm.
    std::size_t const complete = valid.find_last_not_of('\n') + 1;
    for (std::size_t length = 0; length < complete; ++length) {
        SCOPED_TRACE("length " + std::to_string(length));
        writeFile(path, valid.substr(0, length));
        LogCapture log;  // keeps the expected warnings off the console
        auto store = benchStore(path);
        ASSERT_EQ(store->load().source, Source::DefaultsAfterCorruption);
        expectDefaults(*store);
    }
    EXPECT_EQ(filesStartingWith(dir.path(), "settings.json.corrupt-").size(), complete);
}

TEST(SettingsStoreTest, ATruncatedOrMissingFileWithABackupGivesTheBackupAndRestoresTheFile) {
    std::string const valid = benchFile();
    constexpr std::size_t kStep = 13;
    // Every 13th length of a cut-short file, then no file at all (a power cut after the file
    // was moved aside and before the backup was written back).
    for (std::size_t length = 0; length <= valid.size(); length += kStep) {
        bool const missing = length + kStep > valid.size();
        SCOPED_TRACE(missing ? "missing" : "length " + std::to_string(length));
        TempDirectory dir;
        std::string const path = dir.file("settings.json");
        writeFile(path + ".bak", valid);
        if (!missing) {
            writeFile(path, valid.substr(0, length));
        }
        LogCapture log;
        auto store = benchStore(path);
        LoadResult const result = store->load();
        ASSERT_EQ(result.source, Source::Backup);
        expectBenchFileValues(*store);
        // The file is written back from the backup at once.
        auto again = benchStore(path);
        EXPECT_EQ(again->load().source, Source::File);
        expectBenchFileValues(*again);
    }
}

TEST(SettingsStoreTest, ACorruptBackupIsMovedAsideToo) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    writeFile(path, "{");
    writeFile(path + ".bak", "}");
    LogCapture log;
    auto store = benchStore(path);
    LoadResult const result = store->load();
    EXPECT_EQ(result.source, Source::DefaultsAfterCorruption);
    EXPECT_EQ(result.movedAside.size(), 2U);
    EXPECT_EQ(filesStartingWith(dir.path(), "settings.json.bak.corrupt-").size(), 1U);
    expectDefaults(*store);
}

TEST(SettingsStoreTest, ANewerSchemaIsLoadedReadOnlyAndNeverOverwritten) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    writeFile(path, benchFile(3));
    LogCapture log;
    auto store = benchStore(path, 2);
    LoadResult const result = store->load();
    EXPECT_EQ(result.source, Source::File);
    EXPECT_TRUE(result.readOnly);
    EXPECT_TRUE(store->isReadOnly());
    expectBenchFileValues(*store);
    EXPECT_TRUE(warned(log, {"schema 3", "newer"}));

    store->set("channel", std::int64_t{1});
    auto const saved = store->saveNow();
    EXPECT_FALSE(saved.ok);
    EXPECT_NE(saved.error.find("read-only"), std::string::npos) << saved.error;
    EXPECT_EQ(readFile(path), benchFile(3));
}

TEST(SettingsStoreTest, ANewerSchemaIsSavedWhenTheApplicationOptsIn) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    writeFile(path, benchFile(3));
    auto options = yxfp_test::benchOptions(2);
    options.saveNewerSchema = true;
    SettingsStore store(path, options, yxfp_test::benchDefinitions());
    LogCapture log;
    EXPECT_FALSE(store.load().readOnly);
    store.set("channel", std::int64_t{1});
    EXPECT_TRUE(store.saveNow());
    EXPECT_NE(readFile(path).find("\"schemaVersion\": 2"), std::string::npos);
}

TEST(SettingsStoreTest, AnOlderSchemaIsLoadedAndRewrittenWithTheCurrentOne) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    writeFile(path, benchFile(1));
    auto store = benchStore(path, 2);
    LoadResult const result = store->load();
    EXPECT_EQ(result.source, Source::File);
    EXPECT_FALSE(result.readOnly);
    expectBenchFileValues(*store);
    ASSERT_TRUE(store->saveNow());
    EXPECT_NE(readFile(path).find("\"schemaVersion\": 2"), std::string::npos);
}

TEST(SettingsStoreTest, SetClampsToTheRangeAndRefusesTheWrongType) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"));
    LogCapture log;
    EXPECT_TRUE(store->set("voltage", 31.0));
    EXPECT_EQ(store->number("voltage"), 30.0);
    EXPECT_FALSE(store->set("voltage", std::string("1")));
    EXPECT_FALSE(store->set("mode", std::int64_t{5}));
    EXPECT_EQ(store->integer("mode"), 1);
    EXPECT_THROW(store->set("missing", true), std::out_of_range);
    EXPECT_THROW(store->integer("voltage"), std::invalid_argument);
    EXPECT_THROW(store->get("missing"), std::out_of_range);
}

TEST(SettingsStoreTest, ListenersHearChangesExceptTheirOwnAndNotRepeatedValues) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"));
    std::vector<std::int64_t> first;
    std::vector<std::int64_t> second;
    auto const firstId = store->subscribe("channel", [&first](SettingValue const& value) {
        first.push_back(std::get<std::int64_t>(value));
    });
    store->subscribe("channel", [&second](SettingValue const& value) {
        second.push_back(std::get<std::int64_t>(value));
    });
    store->set("channel", std::int64_t{4});
    store->set("channel", std::int64_t{4});
    store->set("channel", std::int64_t{5}, firstId);
    EXPECT_EQ(first, (std::vector<std::int64_t>{4}));
    EXPECT_EQ(second, (std::vector<std::int64_t>{4, 5}));
    store->unsubscribe(firstId);
    store->set("channel", std::int64_t{6});
    EXPECT_EQ(first, (std::vector<std::int64_t>{4}));
}

TEST(SettingsStoreTest, LoadingTellsTheListenersOfEveryChangedValue) {
    TempDirectory dir;
    writeFile(dir.file("settings.json"), benchFile());
    auto store = benchStore(dir.file("settings.json"));
    std::vector<double> voltages;
    std::vector<bool> outputs;
    store->subscribe("voltage", [&voltages](SettingValue const& value) {
        voltages.push_back(std::get<double>(value));
    });
    store->subscribe("output", [&outputs](SettingValue const& value) {
        outputs.push_back(std::get<bool>(value));
    });
    store->load();
    EXPECT_EQ(voltages, (std::vector<double>{7.25}));
    EXPECT_EQ(outputs, (std::vector<bool>{true}));
}

TEST(SettingsStoreTest, FactoryResetRestoresEveryDefaultAndSaves) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    writeFile(path, R"({"application": "bench-supply", "schemaVersion": 2,
                        "values": {"channel": 9, "brightness": 7}})");
    auto store = benchStore(path);
    store->load();
    std::vector<std::int64_t> heard;
    store->subscribe("channel", [&heard](SettingValue const& value) {
        heard.push_back(std::get<std::int64_t>(value));
    });
    LogCapture const log;
    ASSERT_TRUE(store->resetToDefaults());
    expectDefaults(*store);
    EXPECT_EQ(heard, (std::vector<std::int64_t>{3}));
    EXPECT_FALSE(store->hasUnsavedChanges());
    std::string const text = readFile(path);
    EXPECT_NE(text.find("\"channel\": 3"), std::string::npos) << text;
    EXPECT_EQ(text.find("brightness"), std::string::npos) << text;
}

TEST(SettingsStoreTest, FactoryResetInTheBackgroundNotifiesAtOnceAndSavesOnTheWriterThread) {
    TempDirectory dir;
    std::string const path = dir.file("settings.json");
    writeFile(path, R"({"application": "bench-supply", "schemaVersion": 2,
                        "values": {"channel": 9, "brightness": 7}})");
    auto gate =
        std::make_shared<yxfp_test::GatedFileSystem>(yxfrontpanel::settings::posixFileSystem());
    auto store = yxfp_test::benchStoreOn(path, gate);
    store->load();
    std::vector<std::int64_t> heard;
    store->subscribe("channel", [&heard](SettingValue const& value) {
        heard.push_back(std::get<std::int64_t>(value));
    });
    LogCapture const log;
    gate->hold();
    store->resetToDefaultsInBackground();  // returns although the write cannot end
    expectDefaults(*store);
    EXPECT_EQ(heard, (std::vector<std::int64_t>{3}));
    gate->waitUntilHeld();
    gate->release();
    EXPECT_TRUE(store->waitForSaves().ok);
    EXPECT_FALSE(store->hasUnsavedChanges());
    std::string const text = readFile(path);
    EXPECT_NE(text.find("\"channel\": 3"), std::string::npos) << text;
    EXPECT_EQ(text.find("brightness"), std::string::npos) << text;
    EXPECT_EQ(gate->syncingThreads().count(std::this_thread::get_id()), 0U);
}

TEST(SettingsStoreTest, FlushWritesOnlyWhenSomethingChanged) {
    TempDirectory dir;
    auto store = benchStore(dir.file("settings.json"));
    store->load();
    EXPECT_TRUE(store->flush());
    EXPECT_EQ(store->writeCount(), 0U);
    store->set("output", true);
    EXPECT_TRUE(store->flush());
    EXPECT_EQ(store->writeCount(), 1U);
    EXPECT_TRUE(store->flush());
    EXPECT_EQ(store->writeCount(), 1U);
}

TEST(SettingsStoreTest, ConstructionRefusesDuplicateKeysAndMissingNames) {
    auto definitions = yxfp_test::benchDefinitions();
    definitions.push_back(SettingDefinition::boolean("output", true));
    EXPECT_THROW(SettingsStore("x.json", yxfp_test::benchOptions(), definitions),
                 std::invalid_argument);
    auto options = yxfp_test::benchOptions();
    options.applicationName.clear();
    EXPECT_THROW(SettingsStore("x.json", options, {}), std::invalid_argument);
    options = yxfp_test::benchOptions(0);
    EXPECT_THROW(SettingsStore("x.json", options, {}), std::invalid_argument);
    EXPECT_THROW(SettingsStore("", yxfp_test::benchOptions(), {}), std::invalid_argument);
}

}  // namespace
