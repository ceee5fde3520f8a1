#include "atomic_file.h"

#include <cerrno>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace yxfrontpanel::settings::detail {

namespace {

std::string failure(char const* step, std::string const& file, int error) {
    return std::string(step) + " " + file +
           " failed: " + std::error_code(error, std::generic_category()).message();
}

// Closes a descriptor on every path out of a function.
class Descriptor {
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int get() const { return fd_; }
    // Closes now and reports close's error (a deferred write error on some file systems).
    int release() {
        int const result = ::close(fd_);
        fd_ = -1;
        return result;
    }

private:
    int fd_;
};

std::string writeAll(int fd, std::string const& contents, std::string const& file) {
    std::size_t written = 0;
    while (written < contents.size()) {
        ssize_t const result = ::write(fd, contents.data() + written, contents.size() - written);
        if (result < 0) {
            if (errno == EINTR) {
                continue;
            }
            return failure("writing", file, errno);
        }
        if (result == 0) {
            return failure("writing", file, ENOSPC);
        }
        written += static_cast<std::size_t>(result);
    }
    return {};
}

// Writes `contents` to `file` (created or truncated) and flushes it to the device. Removes the
// file again when any step fails, so that no partial temporary file is left behind.
std::string writeDurably(std::string const& file, std::string const& contents) {
    Descriptor fd(::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    if (fd.get() < 0) {
        return failure("creating", file, errno);
    }
    std::string error = writeAll(fd.get(), contents, file);
    if (error.empty() && ::fsync(fd.get()) != 0) {
        error = failure("flushing", file, errno);
    }
    if (error.empty() && fd.release() != 0) {
        error = failure("closing", file, errno);
    }
    if (!error.empty()) {
        ::unlink(file.c_str());
    }
    return error;
}

std::string syncDirectory(std::string const& directory) {
    Descriptor fd(::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() < 0) {
        return failure("opening directory", directory, errno);
    }
    if (::fsync(fd.get()) != 0) {
        return failure("flushing directory", directory, errno);
    }
    return {};
}

// Keeps the current file as the backup. A hard link costs no writes to flash; file systems
// without links (FAT on an SD card) get a copy instead. A backup that cannot be made does not
// stop the save: the new file matters more than the copy of the old one.
void keepBackup(std::string const& path, std::string const& backupPath) {
    std::string const staging = backupPath + ".tmp";
    ::unlink(staging.c_str());
    if (::link(path.c_str(), staging.c_str()) != 0) {
        if (errno == ENOENT) {
            return;
        }
        std::string current;
        std::string error;
        if (readWholeFile(path, std::size_t{64} << 20, current, error) != ReadOutcome::Read ||
            !writeDurably(staging, current).empty()) {
            return;
        }
    }
    if (::rename(staging.c_str(), backupPath.c_str()) != 0) {
        ::unlink(staging.c_str());
    }
}

}  // namespace

std::string directoryOf(std::string const& path) {
    std::size_t const slash = path.rfind('/');
    if (slash == std::string::npos) {
        return ".";
    }
    if (slash == 0) {
        return "/";
    }
    return path.substr(0, slash);
}

std::string writeAtomically(std::string const& path, std::string const& contents,
                            std::string const& backupPath) {
    std::string const temporary = path + ".tmp";
    if (std::string error = writeDurably(temporary, contents); !error.empty()) {
        return error;
    }
    if (!backupPath.empty()) {
        keepBackup(path, backupPath);
    }
    if (::rename(temporary.c_str(), path.c_str()) != 0) {
        int const error = errno;
        ::unlink(temporary.c_str());
        return failure("renaming", temporary, error) + " (to " + path + ")";
    }
    return syncDirectory(directoryOf(path));
}

ReadOutcome readWholeFile(std::string const& path, std::size_t maxSize, std::string& contents,
                          std::string& error) {
    contents.clear();
    Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) {
        if (errno == ENOENT) {
            return ReadOutcome::Missing;
        }
        error = failure("opening", path, errno);
        return ReadOutcome::Failed;
    }
    char buffer[8192];
    for (;;) {
        ssize_t const result = ::read(fd.get(), buffer, sizeof buffer);
        if (result < 0) {
            if (errno == EINTR) {
                continue;
            }
            error = failure("reading", path, errno);
            return ReadOutcome::Failed;
        }
        if (result == 0) {
            return ReadOutcome::Read;
        }
        if (contents.size() + static_cast<std::size_t>(result) > maxSize) {
            error = path + " is larger than " + std::to_string(maxSize) + " bytes";
            return ReadOutcome::Failed;
        }
        contents.append(buffer, static_cast<std::size_t>(result));
    }
}

std::string moveAside(std::string const& path, std::string& error) {
    std::time_t const now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%SZ", &utc);
    std::string const base = path + ".corrupt-" + stamp;
    constexpr int kMaxSuffix = 1000;
    for (int suffix = 1; suffix <= kMaxSuffix; ++suffix) {
        std::string target = suffix == 1 ? base : base + "-" + std::to_string(suffix);
        struct stat existing {};
        if (::lstat(target.c_str(), &existing) == 0) {
            continue;
        }
        if (::rename(path.c_str(), target.c_str()) != 0) {
            error = failure("renaming", path, errno) + " (to " + target + ")";
            return {};
        }
        syncDirectory(directoryOf(path));
        return target;
    }
    error = "no free name to move " + path + " aside";
    return {};
}

}  // namespace yxfrontpanel::settings::detail
