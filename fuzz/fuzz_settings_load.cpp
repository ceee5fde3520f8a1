// Loads arbitrary bytes as a settings file: no crash, and every value the store then holds
// passes its definition's check unchanged, whatever the file held.

#include <yxbase2/log.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "fuzz_support.h"
#include "settings_test_store.h"
#include <stdlib.h>
#include <unistd.h>

namespace {

using yxfp_fuzz::check;
using yxfrontpanel::settings::LoadResult;
using yxfrontpanel::settings::SettingCheck;
using yxfrontpanel::settings::SettingsStore;

// One directory for the whole run, emptied before every input and removed at the end. In
// memory (/dev/shm) where there is one: the store flushes every file it moves aside.
class WorkDirectory {
public:
    WorkDirectory() {
        std::string pattern = std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
        pattern += "/yxfp-fuzz-settings-XXXXXX";
        check(::mkdtemp(pattern.data()) != nullptr, "cannot create the work directory");
        path_ = pattern;
        yxbase2::system::log::setSink([](int, std::string const&, std::string const&) {});
    }
    ~WorkDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    WorkDirectory(WorkDirectory const&) = delete;
    WorkDirectory& operator=(WorkDirectory const&) = delete;

    std::string const& path() const { return path_; }

private:
    std::string path_;
};

std::string const& workDirectory() {
    static WorkDirectory const directory;
    return directory.path();
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    std::string const& directory = workDirectory();
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        std::filesystem::remove(entry.path());
    }
    std::string const path = directory + "/settings.json";
    {
        std::ofstream file(path, std::ios::binary);
        file.write(reinterpret_cast<char const*>(data), static_cast<std::streamsize>(size));
    }
    SettingsStore store(path, yxfp_test::benchOptions(), yxfp_test::benchDefinitions());
    LoadResult const result = store.load();
    for (auto const& key : store.keys()) {
        SettingCheck const checked = store.definition(key)->check(store.get(key));
        check(checked.outcome == SettingCheck::Outcome::Accepted, "a loaded value fails its check");
    }
    bool const fileKept = std::filesystem::exists(path);
    check(result.source == LoadResult::Source::File ? fileKept && result.movedAside.empty()
                                                    : !fileKept && result.movedAside.size() == 1,
          "a file is either loaded in place or moved aside");
    check(result.readOnly == store.isReadOnly(), "read-only state differs from the load result");
    return 0;
}
