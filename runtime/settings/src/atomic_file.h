#pragma once

#include <yxfrontpanel/runtime/settings_file_system.h>

#include <cstddef>
#include <string>

// File operations of the settings store, through an IFileSystem so that every step that matters
// for power loss (fsync of the file and of its directory, rename) is explicit and can be
// recorded by tests.
namespace yxfrontpanel::settings::detail {

/** The mode of a settings file that did not exist before (`rw-r--r--`). */
constexpr unsigned kNewFileMode = 0644;

/** Replaces `path` by `contents` atomically: creates a temporary file with a fresh random name
 *  next to it (O_CREAT | O_EXCL | O_NOFOLLOW, so nothing planted there is followed or reused),
 *  gives it the mode of the current file (`kNewFileMode` when there is none), writes and fsyncs
 *  it, keeps the current `path` as `backupPath` (a hard link, or a copy where links are not
 *  supported; skipped when `backupPath` is empty or there is no current file), renames the
 *  temporary file over `path` and fsyncs the directory. Every descriptor is closed after its
 *  first failed fsync and never synced again: a retry writes a new file from memory. Returns an
 *  empty string on success, else the reason (the step, the file and the system's error text);
 *  the temporary file is then removed. */
std::string writeAtomically(IFileSystem& fs, std::string const& path, std::string const& contents,
                            std::string const& backupPath);

/** What `readWholeFile` found. */
enum class ReadOutcome {
    /** `contents` holds the file. */
    Read,
    /** There is no file. */
    Missing,
    /** The file is larger than the limit: unusable like a corrupt one. */
    TooLarge,
    /** Something other than a regular file (a FIFO, a directory, a device) is at the path. */
    NotRegular,
    /** The file could not be read (EIO, EACCES ...): it may be good. */
    Failed
};

/** Reads `path` into `contents`, refusing anything but a regular file before opening it (a FIFO
 *  is never opened for reading, so it cannot block). `error` tells why for every outcome but
 *  Read and Missing. */
ReadOutcome readWholeFile(IFileSystem& fs, std::string const& path, std::size_t maxSize,
                          std::string& contents, std::string& error);

/** Renames `path` to `path`.corrupt-YYYYMMDDTHHMMSSZ (with -2, -3 ... when taken) and returns
 *  the new name; an empty string and `error` when it could not be renamed. */
std::string moveAside(IFileSystem& fs, std::string const& path, std::string& error);

/** Opens (creating it) `path` and takes an exclusive flock on it; the descriptor, or -1 and
 *  `error` (naming `lockedFile`) when it cannot be opened or another open file holds it. */
int lockFile(IFileSystem& fs, std::string const& path, std::string const& lockedFile,
             std::string& error);

/** Removes the temporary files a save interrupted by a crash left next to `path`
 *  (`path`.tmp-XXXXXX and the backup's `path`.bak.tmp-XXXXXX). Only for the store that holds
 *  the file's lock: no save of another store can be writing them. */
void removeLeftovers(IFileSystem& fs, std::string const& path);

/** The directory holding `path` ("." for a bare name). */
std::string directoryOf(std::string const& path);

/** The system's text for the (positive) error number `error`. */
std::string errorText(int error);

}  // namespace yxfrontpanel::settings::detail
