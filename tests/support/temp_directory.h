#pragma once

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include <sys/stat.h>

namespace yxfp_test {

/** A fresh directory under $TMPDIR (or /tmp) for one test, removed with everything in it when
 *  the object goes (permissions are restored first, so that a test may make parts of it
 *  read-only). */
class TempDirectory {
public:
    TempDirectory() {
        char const* base = std::getenv("TMPDIR");
        std::string pattern =
            std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/yxfp-test-XXXXXX";
        std::vector<char> buffer(pattern.begin(), pattern.end());
        buffer.push_back('\0');
        if (::mkdtemp(buffer.data()) == nullptr) {
            throw std::system_error(errno, std::generic_category(), "mkdtemp " + pattern);
        }
        path_ = buffer.data();
    }
    ~TempDirectory() {
        std::error_code ignored;
        restorePermissions(path_);
        std::filesystem::remove_all(path_, ignored);
    }
    TempDirectory(TempDirectory const&) = delete;
    TempDirectory& operator=(TempDirectory const&) = delete;

    /** The directory's path. */
    std::string const& path() const { return path_; }
    /** The path of `name` inside the directory. */
    std::string file(std::string const& name) const { return path_ + "/" + name; }

private:
    static void restorePermissions(std::filesystem::path const& path) {
        std::error_code ignored;
        if (std::filesystem::is_directory(std::filesystem::symlink_status(path, ignored))) {
            ::chmod(path.c_str(), 0700);
            for (auto const& entry : std::filesystem::directory_iterator(path, ignored)) {
                restorePermissions(entry.path());
            }
        }
    }

    std::string path_;
};

/** The whole content of `path`; empty when it cannot be read. */
inline std::string readFile(std::string const& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

/** Writes `content` to `path` (created or truncated). @throws std::runtime_error on failure. */
inline void writeFile(std::string const& path, std::string const& content) {
    std::ofstream stream(path, std::ios::binary | std::ios::trunc);
    stream << content;
    if (!stream.flush()) {
        throw std::runtime_error("cannot write " + path);
    }
}

/** The names in `directory` that start with `prefix`, sorted. */
inline std::vector<std::string> filesStartingWith(std::string const& directory,
                                                  std::string const& prefix) {
    std::vector<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(directory)) {
        std::string name = entry.path().filename().string();
        if (name.rfind(prefix, 0) == 0) {
            names.push_back(name);
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace yxfp_test
