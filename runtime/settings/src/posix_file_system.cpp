#include <yxfrontpanel/runtime/settings_file_system.h>

#include <cerrno>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace yxfrontpanel::settings {

namespace {

// The result of a call that returns -1 and sets errno on failure, retried after EINTR.
template <class Call>
auto checked(Call call) -> decltype(call()) {
    for (;;) {
        auto const result = call();
        if (result >= 0) {
            return result;
        }
        if (errno != EINTR) {
            return -errno;
        }
    }
}

FileStatus toStatus(struct stat const& info) {
    FileStatus status;
    if (S_ISREG(info.st_mode)) {
        status.kind = FileStatus::Kind::Regular;
    } else if (S_ISDIR(info.st_mode)) {
        status.kind = FileStatus::Kind::Directory;
    } else if (S_ISFIFO(info.st_mode)) {
        status.kind = FileStatus::Kind::Fifo;
    } else {
        status.kind = FileStatus::Kind::Other;
    }
    status.size = static_cast<std::uint64_t>(info.st_size);
    status.mode = static_cast<unsigned>(info.st_mode & 07777);
    return status;
}

class PosixFileSystem final : public IFileSystem {
public:
    int open(std::string const& path, int flags, unsigned mode) override {
        return checked([&] { return ::open(path.c_str(), flags, static_cast<mode_t>(mode)); });
    }
    long read(int fd, char* buffer, std::size_t size) override {
        return checked([&] { return static_cast<long>(::read(fd, buffer, size)); });
    }
    long write(int fd, char const* data, std::size_t size) override {
        return checked([&] { return static_cast<long>(::write(fd, data, size)); });
    }
    int fsync(int fd) override {
        return checked([&] { return ::fsync(fd); });
    }
    int close(int fd) override {
        // Not retried: after EINTR the descriptor is already closed on Linux.
        return ::close(fd) == 0 ? 0 : (errno == EINTR ? 0 : -errno);
    }
    int fchmod(int fd, unsigned mode) override {
        return checked([&] { return ::fchmod(fd, static_cast<mode_t>(mode)); });
    }
    int status(std::string const& path, FileStatus& status) override {
        struct stat info {};
        int const result = checked([&] { return ::stat(path.c_str(), &info); });
        if (result == 0) {
            status = toStatus(info);
        }
        return result;
    }
    int fileStatus(int fd, FileStatus& status) override {
        struct stat info {};
        int const result = checked([&] { return ::fstat(fd, &info); });
        if (result == 0) {
            status = toStatus(info);
        }
        return result;
    }
    int rename(std::string const& from, std::string const& to) override {
        return checked([&] { return ::rename(from.c_str(), to.c_str()); });
    }
    int link(std::string const& from, std::string const& to) override {
        return checked([&] { return ::link(from.c_str(), to.c_str()); });
    }
    int unlink(std::string const& path) override {
        return checked([&] { return ::unlink(path.c_str()); });
    }
    int list(std::string const& directory, std::vector<std::string>& names) override {
        DIR* const folder = ::opendir(directory.c_str());
        if (folder == nullptr) {
            return -errno;
        }
        names.clear();
        errno = 0;
        // The stream is this call's own: readdir is safe on it.
        while (dirent const* entry = ::readdir(folder)) {  // NOLINT(concurrency-mt-unsafe)
            if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
                names.emplace_back(entry->d_name);
            }
        }
        int const error = errno;
        ::closedir(folder);
        return -error;
    }
    int lockExclusive(int fd) override {
        return checked([&] { return ::flock(fd, LOCK_EX | LOCK_NB); });
    }
};

}  // namespace

IFileSystem::~IFileSystem() = default;

std::shared_ptr<IFileSystem> posixFileSystem() {
    static auto const instance = std::make_shared<PosixFileSystem>();
    return instance;
}

}  // namespace yxfrontpanel::settings
