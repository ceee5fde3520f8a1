#include "atomic_file.h"

#include <cerrno>
#include <ctime>
#include <random>
#include <system_error>
#include <vector>

#include <fcntl.h>

namespace yxfrontpanel::settings::detail {

namespace {

std::string failure(char const* step, std::string const& file, int negatedError) {
    return std::string(step) + " " + file + " failed: " + errorText(-negatedError);
}

// Closes a descriptor on every path out of a function.
class Descriptor {
public:
    Descriptor(IFileSystem& fs, int fd) : fs_(fs), fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            fs_.close(fd_);
        }
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;

    int get() const { return fd_; }
    // Closes now and reports close's error (a deferred write error on some file systems).
    int release() {
        if (fd_ < 0) {
            return 0;
        }
        int const result = fs_.close(fd_);
        fd_ = -1;
        return result;
    }

private:
    IFileSystem& fs_;
    int fd_;
};

std::string writeAll(IFileSystem& fs, int fd, std::string const& contents,
                     std::string const& file) {
    std::size_t written = 0;
    while (written < contents.size()) {
        long const result = fs.write(fd, contents.data() + written, contents.size() - written);
        if (result < 0) {
            return failure("writing", file, static_cast<int>(result));
        }
        if (result == 0) {
            return failure("writing", file, -ENOSPC);
        }
        written += static_cast<std::size_t>(result);
    }
    return {};
}

// The length of the random part of a temporary file's name.
constexpr std::size_t kUniqueLength = 6;

// `base` + "-XXXXXX" with six random letters and digits.
std::string uniqueName(std::string const& base) {
    static char const kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";
    thread_local std::mt19937 random{std::random_device{}()};
    std::uniform_int_distribution<std::size_t> pick(0, sizeof kLetters - 2);
    std::string name = base + "-";
    for (std::size_t i = 0; i < kUniqueLength; ++i) {
        name += kLetters[pick(random)];
    }
    return name;
}

// Creates a new file named `base`-XXXXXX as mkstemp does: a name that did not exist, never
// through a symbolic link. Returns the descriptor and sets `name`, or -errno.
int createUnique(IFileSystem& fs, std::string const& base, std::string& name) {
    constexpr int kAttempts = 100;
    int result = -EEXIST;
    for (int attempt = 0; attempt < kAttempts && result == -EEXIST; ++attempt) {
        name = uniqueName(base);
        result = fs.open(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    }
    return result;
}

// Writes `contents` into a new file `base`-XXXXXX with `mode` and flushes it to the device;
// sets `name`. Removes the file again when any step fails, so that no partial temporary file
// is left behind.
std::string writeDurably(IFileSystem& fs, std::string const& base, std::string const& contents,
                         unsigned mode, std::string& name) {
    Descriptor fd(fs, createUnique(fs, base, name));
    if (fd.get() < 0) {
        return failure("creating", base + "-XXXXXX", fd.get());
    }
    std::string error;
    if (int const result = fs.fchmod(fd.get(), mode); result != 0) {
        error = failure("setting the mode of", name, result);
    }
    if (error.empty()) {
        error = writeAll(fs, fd.get(), contents, name);
    }
    if (error.empty()) {
        if (int const result = fs.fsync(fd.get()); result != 0) {
            error = failure("flushing", name, result);
        }
    }
    if (error.empty()) {
        if (int const result = fd.release(); result != 0) {
            error = failure("closing", name, result);
        }
    }
    if (!error.empty()) {
        fd.release();
        fs.unlink(name);
    }
    return error;
}

std::string syncDirectory(IFileSystem& fs, std::string const& directory) {
    Descriptor fd(fs, fs.open(directory, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (fd.get() < 0) {
        return failure("opening directory", directory, fd.get());
    }
    if (int const result = fs.fsync(fd.get()); result != 0) {
        return failure("flushing directory", directory, result);
    }
    return {};
}

// Keeps the current file as the backup. A hard link costs no writes to flash; file systems
// without links (FAT on an SD card) get a copy instead. A backup that cannot be made does not
// stop the save: the new file matters more than the copy of the old one.
void keepBackup(IFileSystem& fs, std::string const& path, std::string const& backupPath,
                unsigned mode) {
    std::string staging;
    int result = -EEXIST;
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts && result == -EEXIST; ++attempt) {
        staging = uniqueName(backupPath + ".tmp");
        result = fs.link(path, staging);
    }
    if (result == -ENOENT) {
        return;
    }
    if (result != 0) {
        std::string current;
        std::string error;
        if (readWholeFile(fs, path, std::size_t{64} << 20, current, error) != ReadOutcome::Read ||
            !writeDurably(fs, backupPath + ".tmp", current, mode, staging).empty()) {
            return;
        }
    }
    if (fs.rename(staging, backupPath) != 0) {
        fs.unlink(staging);
    }
}

char const* kindName(FileStatus::Kind kind) {
    switch (kind) {
        case FileStatus::Kind::Directory:
            return "a directory";
        case FileStatus::Kind::Fifo:
            return "a FIFO";
        case FileStatus::Kind::Regular:
            return "a regular file";
        case FileStatus::Kind::Other:
            break;
    }
    return "a device or socket";
}

}  // namespace

std::string errorText(int error) {
    return std::error_code(error, std::generic_category()).message();
}

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

std::string writeAtomically(IFileSystem& fs, std::string const& path, std::string const& contents,
                            std::string const& backupPath) {
    FileStatus current;
    bool const exists = fs.status(path, current) == 0;
    if (exists && current.kind != FileStatus::Kind::Regular) {
        return path + " is " + kindName(current.kind) + ", not a regular file";
    }
    unsigned const mode = exists ? current.mode : kNewFileMode;
    std::string temporary;
    if (std::string error = writeDurably(fs, path + ".tmp", contents, mode, temporary);
        !error.empty()) {
        return error;
    }
    if (!backupPath.empty() && exists) {
        keepBackup(fs, path, backupPath, mode);
    }
    if (int const result = fs.rename(temporary, path); result != 0) {
        fs.unlink(temporary);
        return failure("renaming", temporary, result) + " (to " + path + ")";
    }
    return syncDirectory(fs, directoryOf(path));
}

ReadOutcome readWholeFile(IFileSystem& fs, std::string const& path, std::size_t maxSize,
                          std::string& contents, std::string& error) {
    contents.clear();
    FileStatus status;
    if (int const result = fs.status(path, status); result != 0) {
        if (result == -ENOENT) {
            return ReadOutcome::Missing;
        }
        error = failure("examining", path, result);
        return ReadOutcome::Failed;
    }
    if (status.kind != FileStatus::Kind::Regular) {
        error = path + " is " + kindName(status.kind) + ", not a regular file";
        return ReadOutcome::NotRegular;
    }
    // O_NONBLOCK: should a FIFO take the file's place after the check, opening it returns at
    // once instead of waiting for a writer; the descriptor's own status is checked again.
    Descriptor fd(fs, fs.open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0));
    if (fd.get() < 0) {
        if (fd.get() == -ENOENT) {
            return ReadOutcome::Missing;
        }
        error = failure("opening", path, fd.get());
        return ReadOutcome::Failed;
    }
    if (int const result = fs.fileStatus(fd.get(), status); result != 0) {
        error = failure("examining", path, result);
        return ReadOutcome::Failed;
    }
    if (status.kind != FileStatus::Kind::Regular) {
        error = path + " is " + kindName(status.kind) + ", not a regular file";
        return ReadOutcome::NotRegular;
    }
    char buffer[8192];
    for (;;) {
        long const result = fs.read(fd.get(), buffer, sizeof buffer);
        if (result < 0) {
            error = failure("reading", path, static_cast<int>(result));
            return ReadOutcome::Failed;
        }
        if (result == 0) {
            return ReadOutcome::Read;
        }
        if (contents.size() + static_cast<std::size_t>(result) > maxSize) {
            error = path + " is larger than " + std::to_string(maxSize) + " bytes";
            return ReadOutcome::TooLarge;
        }
        contents.append(buffer, static_cast<std::size_t>(result));
    }
}

std::string moveAside(IFileSystem& fs, std::string const& path, std::string& error) {
    std::time_t const now = std::time(nullptr);
    std::tm utc{};
    gmtime_r(&now, &utc);
    char stamp[32];
    std::strftime(stamp, sizeof stamp, "%Y%m%dT%H%M%SZ", &utc);
    std::string const base = path + ".corrupt-" + stamp;
    constexpr int kMaxSuffix = 1000;
    for (int suffix = 1; suffix <= kMaxSuffix; ++suffix) {
        std::string target = suffix == 1 ? base : base + "-" + std::to_string(suffix);
        FileStatus existing;
        if (fs.status(target, existing) != -ENOENT) {
            continue;
        }
        if (int const result = fs.rename(path, target); result != 0) {
            error = failure("renaming", path, result) + " (to " + target + ")";
            return {};
        }
        syncDirectory(fs, directoryOf(path));
        return target;
    }
    error = "no free name to move " + path + " aside";
    return {};
}

void removeLeftovers(IFileSystem& fs, std::string const& path) {
    std::string const directory = directoryOf(path);
    std::string const base =
        path.substr(path.rfind('/') == std::string::npos ? 0 : path.rfind('/') + 1);
    std::vector<std::string> names;
    if (fs.list(directory, names) != 0) {
        return;
    }
    for (std::string const& name : names) {
        for (std::string const& prefix : {base + ".tmp-", base + ".bak.tmp-"}) {
            if (name.size() == prefix.size() + kUniqueLength &&
                name.compare(0, prefix.size(), prefix) == 0) {
                fs.unlink(std::string(directory).append("/").append(name));
            }
        }
    }
}

int lockFile(IFileSystem& fs, std::string const& path, std::string const& lockedFile,
             std::string& error) {
    int const fd = fs.open(path, O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, kNewFileMode);
    if (fd < 0) {
        error = failure("opening the lock file", path, fd);
        return -1;
    }
    if (int const result = fs.lockExclusive(fd); result != 0) {
        fs.close(fd);
        error = result == -EWOULDBLOCK
                    ? lockedFile + " is in use by another settings store (" + path + " is locked)"
                    : failure("locking", path, result);
        return -1;
    }
    return fd;
}

}  // namespace yxfrontpanel::settings::detail
