#pragma once

#include <cstddef>
#include <string>

// File operations of the settings store, on POSIX descriptors so that every step that matters
// for power loss (fsync of the file and of its directory, rename) is explicit.
namespace yxfrontpanel::settings::detail {

/** Replaces `path` by `contents` atomically: writes `path`.tmp, fsyncs it, keeps the current
 *  `path` as `backupPath` (a hard link, or a copy where links are not supported; skipped when
 *  `backupPath` is empty or there is no current file), renames the temporary file over `path`
 *  and fsyncs the directory. Returns an empty string on success, else the reason (the step, the
 *  file and the system's error text); `path` is then unchanged and the temporary file removed. */
std::string writeAtomically(std::string const& path, std::string const& contents,
                            std::string const& backupPath);

/** What `readWholeFile` found. */
enum class ReadOutcome { Read, Missing, Failed };

/** Reads `path` into `contents`. A file larger than `maxSize` fails with a reason. */
ReadOutcome readWholeFile(std::string const& path, std::size_t maxSize, std::string& contents,
                          std::string& error);

/** Renames `path` to `path`.corrupt-YYYYMMDDTHHMMSSZ (with -2, -3 ... when taken) and returns
 *  the new name; an empty string and `error` when it could not be renamed. */
std::string moveAside(std::string const& path, std::string& error);

/** The directory holding `path` ("." for a bare name). */
std::string directoryOf(std::string const& path);

}  // namespace yxfrontpanel::settings::detail
