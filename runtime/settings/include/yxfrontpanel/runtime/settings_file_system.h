#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace yxfrontpanel::settings {

/** What `IFileSystem::status` and `IFileSystem::fileStatus` report about a file. */
struct FileStatus {
    /** The kinds of file the store tells apart. */
    enum class Kind {
        /** A regular file: the only kind the store reads or replaces. */
        Regular,
        /** A directory. */
        Directory,
        /** A FIFO (named pipe). */
        Fifo,
        /** A character or block device, a socket or anything else. */
        Other
    };
    /** The kind of file. */
    Kind kind = Kind::Regular;
    /** The size in bytes. */
    std::uint64_t size = 0;
    /** The permission bits (e.g. 0644). */
    unsigned mode = 0;
};

/**
 * The file-system calls the settings store makes, one virtual function per POSIX call,
 *        so that a test can record, delay, fail or model each of them.
 *
 * Every function returns what the POSIX call returns on success and the negated `errno` value
 * on failure (e.g. -ENOENT), so that no implementation depends on `errno`. `flags` and `mode`
 * are the POSIX `O_*` flags and permission bits. The default (`posixFileSystem`) makes the real
 * calls. An implementation must be callable from the store's writer thread and the application's
 * threads at once.
 */
class YXFP_RUNTIME_EXPORT IFileSystem {
public:
    IFileSystem() = default;
    IFileSystem(IFileSystem const&) = delete;
    IFileSystem& operator=(IFileSystem const&) = delete;
    virtual ~IFileSystem();

    /** open(2): a descriptor, or -errno. */
    virtual int open(std::string const& path, int flags, unsigned mode) = 0;
    /** read(2): the bytes read (0 at the end), or -errno. */
    virtual long read(int fd, char* buffer, std::size_t size) = 0;
    /** write(2): the bytes written (possibly fewer than `size`), or -errno. */
    virtual long write(int fd, char const* data, std::size_t size) = 0;
    /** fsync(2) of a file or a directory opened with O_DIRECTORY: 0, or -errno. */
    virtual int fsync(int fd) = 0;
    /** close(2): 0, or -errno (the descriptor is closed either way). */
    virtual int close(int fd) = 0;
    /** fchmod(2): 0, or -errno. */
    virtual int fchmod(int fd, unsigned mode) = 0;
    /** stat(2) of a path, following symbolic links: 0, or -errno. */
    virtual int status(std::string const& path, FileStatus& status) = 0;
    /** fstat(2): 0, or -errno. */
    virtual int fileStatus(int fd, FileStatus& status) = 0;
    /** rename(2): 0, or -errno. */
    virtual int rename(std::string const& from, std::string const& to) = 0;
    /** link(2): 0, or -errno (-EEXIST when `to` exists, also as a symbolic link). */
    virtual int link(std::string const& from, std::string const& to) = 0;
    /** unlink(2): 0, or -errno. */
    virtual int unlink(std::string const& path) = 0;
    /** The names in `directory` (readdir(3), without "." and ".."): 0, or -errno. */
    virtual int list(std::string const& directory, std::vector<std::string>& names) = 0;
    /** flock(2) with LOCK_EX | LOCK_NB: 0, or -errno (-EWOULDBLOCK when another open file
     *  holds the lock). The lock ends when the descriptor is closed. */
    virtual int lockExclusive(int fd) = 0;
};

/** The real file system (the POSIX calls); shared by every store that is given no other. */
YXFP_RUNTIME_EXPORT std::shared_ptr<IFileSystem> posixFileSystem();

}  // namespace yxfrontpanel::settings
