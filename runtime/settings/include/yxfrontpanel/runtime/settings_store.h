#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/setting_definition.h>
#include <yxfrontpanel/runtime/settings_file_system.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace yxfrontpanel::settings {

/** Runs the store's coalesced saves later: a Panel's `after`/`cancel` in an application
 *  (`PanelSaveScheduler`), a hand-moved clock in tests. */
class YXFP_RUNTIME_EXPORT ISaveScheduler {
public:
    /** The work to run later: one coalesced save of the store. */
    using Task = std::function<void()>;
    /** Identifies a scheduled task; 0 is never used for one. */
    using Handle = std::uint64_t;

    ISaveScheduler() = default;
    ISaveScheduler(ISaveScheduler const&) = delete;
    ISaveScheduler& operator=(ISaveScheduler const&) = delete;
    virtual ~ISaveScheduler();

    /** Runs `task` once after `delay`; returns its handle, or 0 when it cannot be scheduled
     *  (e.g. the panel has stopped). May be called from any thread that changes settings. */
    virtual Handle schedule(std::chrono::nanoseconds delay, Task task) = 0;
    /** Drops a scheduled task that has not run; unknown handles are ignored. */
    virtual void cancel(Handle handle) = 0;
};

/** How a settings store names, versions and saves its file. */
struct SettingsStoreOptions {
    /** Written into the file and required when loading: a file of another application is
     *  treated as corrupt. Must not be empty. */
    std::string applicationName;
    /** The schema version this application writes (1 or more). A file with a higher version is
     *  loaded read-only unless `saveNewerSchema`; a lower one is loaded and, at the next save,
     *  rewritten with this version. */
    unsigned schemaVersion = 1;
    /** Allow saving over a file of a newer schema (its unknown values are kept either way, but
     *  the newer application may read them differently). */
    bool saveNewerSchema = false;
    /** Coalescing of saves after a change: the file is written at most once per this period and
     *  within this period of the last change. */
    std::chrono::milliseconds saveDelay{2000};
    /** Files larger than this are not read (treated as corrupt: moved aside). */
    std::size_t maxFileSize = std::size_t{1} << 20;
    /** The wait before the first retry of a failed save (with a scheduler); each further
     *  failure doubles it, up to `maxRetryDelay`. A successful save starts again here. */
    std::chrono::milliseconds retryDelay{1000};
    /** The longest wait between two retries of a failing save. */
    std::chrono::milliseconds maxRetryDelay{60000};
    /** The file-system calls the store makes; null for the real ones (`posixFileSystem`).
     *  Tests pass a layer that records, delays or fails them. */
    std::shared_ptr<IFileSystem> fileSystem;
};

/** The outcome of a save: `ok`, or the reason it failed (the file is then unchanged). */
struct SaveResult {
    /** True when the file was written (or had nothing unsaved to write). */
    bool ok = true;
    /** The logged reason the save failed, naming the file; empty when `ok`. */
    std::string error;
    /** Whether the save succeeded (`ok`). */
    explicit operator bool() const { return ok; }
};

/** What `load` found. */
struct LoadResult {
    /** Where the values in memory came from. */
    enum class Source {
        /** No file: every value is its default. */
        Defaults,
        /** The file was read. */
        File,
        /** The file was corrupt and moved aside, or missing; the backup was read and written
         *  back as the file. */
        Backup,
        /** The file (and backup, if any) were unusable: defaults. */
        DefaultsAfterCorruption,
        /** The file could not be read although it may be good (a read error, no permission,
         *  not a regular file): defaults, and the store is read-only so that no save replaces
         *  it. Nothing is moved or written. */
        Unreadable
    };
    /** Where the values came from (`Defaults` when there was no file). */
    Source source = Source::Defaults;
    /** True when saves are refused: the file has a newer schema and `saveNewerSchema` is off,
     *  or it could not be read (`Unreadable`). */
    bool readOnly = false;
    /** Where corrupt files were moved (NAME.corrupt-TIMESTAMP); empty when none was. */
    std::vector<std::string> movedAside;
    /** The reason the file or backup was unusable, or why the store is read-only; empty
     *  otherwise. */
    std::string detail;
};

/**
 * Named settings with defaults, kept in one JSON file that survives power loss.
 *
 * The file holds the application's name, a schema version and the values by key. Saving writes
 * a new temporary file NAME.tmp-XXXXXX (random, created exclusively, never through a symbolic
 * link) in the same directory with the mode of the current file (0644 for a new one), flushes
 * it to the device, renames it over NAME and flushes the directory; the file it replaces becomes
 * NAME.bak. A power cut at any moment therefore leaves either the old or the new file, complete.
 * An exclusive flock on NAME.lock, taken before the store first changes a file (its first save,
 * or a corrupt file moved aside) and held until the store goes, keeps a second store (in this
 * or another process) from writing the file: its saves are refused with an error naming the
 * file. Loading alone takes no lock, so a second store may read the file. Taking the lock
 * removes the temporary files a save interrupted by a crash left behind.
 *
 * Loading a missing file gives the backup when there is one (written back as the file: a power
 * cut may have come between moving a corrupt file aside and writing the backup back), else the
 * defaults. A file that cannot be read as a settings file of
 * this application (not JSON, truncated, empty, larger than `maxFileSize`, another application's,
 * malformed structure) is renamed to NAME.corrupt-TIMESTAMP with a warning, and the backup is
 * used (and written back as the file), else the defaults. A file that cannot be read at all
 * (EIO, EACCES) or anything but a regular file at the path (a FIFO, a directory, a device) gives
 * the defaults and makes the store read-only with an error naming the path: no save replaces a
 * file that may be good. A single value of the wrong type is replaced by its default and a
 * number outside its range is clamped, each with a warning naming the key. Keys this
 * application does not declare are kept and written back unchanged.
 *
 * Changes (`set`) are saved by `saveNow`, by `flush`, or, with a scheduler, automatically: the
 * first unsaved change schedules one save `saveDelay` later, which takes every change made
 * meanwhile. Scheduled saves (and `saveInBackground`) run on the store's writer thread from a
 * snapshot of the values, so the thread that runs the scheduler never waits for the device;
 * `saveNow` and `flush` write on the calling thread. `PanelSaveScheduler` writes what is unsaved
 * when its panel stops; without it, call `flush` when the panel stops so that nothing waits
 * unsaved. A failed save (full disk, read-only or vanished directory) is logged, kept as
 * `lastError` and told to the error listeners; values in memory and the old file stay, and with
 * a scheduler the save is retried after `retryDelay`, doubling up to `maxRetryDelay`.
 *
 * Thread safety: every operation may be called from any thread; file writes are serialised.
 * No lock of the store is held while it calls a listener or the scheduler, so a listener may
 * call any function of the store (also `flush`). Value listeners run on the thread whose call
 * changed the value (for `load`, the loading thread): change values that are bound to menu items
 * only on the panel's thread (post from others). Error listeners run on the thread whose save
 * failed, often the writer thread. Copy and move are deleted.
 */
class YXFP_RUNTIME_EXPORT SettingsStore {
public:
    /** Identifies a listener; 0 never names one. */
    using ListenerId = std::uint64_t;
    /** Hears the new value of one key. */
    using Listener = std::function<void(SettingValue const& value)>;
    /** Hears why a save failed or why the store became read-only (the logged text, naming the
     *  file). */
    using ErrorListener = std::function<void(std::string const& error)>;

    /** A store for the file `path` holding `definitions`, every value at its default until
     *  `load`. Touches no file.
     *  @throws std::invalid_argument for an empty path or application name, schema version 0 or
     *  two definitions with the same key. */
    SettingsStore(std::string path, SettingsStoreOptions options,
                  std::vector<SettingDefinition> const& definitions);
    /** Cancels a scheduled save and waits for a save already handed to the writer thread; does
     *  not write otherwise (call `flush` first). Releases the file's lock. */
    ~SettingsStore();
    SettingsStore(SettingsStore const&) = delete;
    SettingsStore& operator=(SettingsStore const&) = delete;

    /** Reads the file (see the class comment) and notifies every listener whose value changed.
     *  Never throws for the file's content; all-or-nothing: values are replaced only by a
     *  complete, checked file. */
    LoadResult load();
    /** Writes the file now, whether or not anything changed. Refused (not ok) while read-only.
     *  Cancels a scheduled save when it succeeds. */
    SaveResult saveNow();
    /** Writes the file when there are unsaved changes; ok without writing otherwise. */
    SaveResult flush();
    /** Hands a save of the current values (`saveNow`) to the store's writer thread and returns
     *  at once: for a "Save settings" item on the panel's thread. Its outcome reaches
     *  `lastError`, the error listeners and `waitForSaves`. */
    void saveInBackground();
    /** Waits until no save is queued for or running on the writer thread; returns the outcome
     *  of the last save the store made (ok when there was none). Not from an error listener
     *  called on the writer thread. */
    SaveResult waitForSaves();
    /** Why the last save failed or why the store is read-only; empty after a successful save
     *  or load. */
    std::string lastError() const;
    /** Calls `listener` with every later save failure or read-only refusal (see
     *  `ErrorListener`); e.g. to forward it to a remote error queue. Remove it with
     *  `unsubscribe`. */
    ListenerId subscribeErrors(ErrorListener listener);
    /** Factory reset: every declared value back to its default (listeners notified), keys this
     *  application does not know dropped, then `saveNow` (which a read-only store refuses: the
     *  values are then reset in memory only). */
    SaveResult resetToDefaults();
    /** The same factory reset for a "Reset defaults" item on the panel's thread: the values
     *  are reset and the listeners notified on the calling thread, the save is handed to the
     *  writer thread as by `saveInBackground`. */
    void resetToDefaultsInBackground();

    /** The value of `key`. @throws std::out_of_range for a key that was not declared. */
    SettingValue get(std::string const& key) const;
    /** Typed reads. @throws std::out_of_range for an undeclared key, std::invalid_argument when
     *  the key has another type (a number read of an integer converts). */
    double number(std::string const& key) const;
    /** The integer value of `key` (also a choice's); throws as `number`, converting nothing. */
    std::int64_t integer(std::string const& key) const;
    /** The boolean value of `key`; throws as `number`. */
    bool boolean(std::string const& key) const;
    /** The text value of `key` (UTF-8); throws as `number`. */
    std::string text(std::string const& key) const;
    /** The IPv4 address value of `key`; throws as `number`. */
    ip::IpV4Address ipv4(std::string const& key) const;

    /**
     * Changes `key` to `value` after checking it against its definition: a value
     *        outside the range is clamped, a rejected one (wrong type, not a choice) changes
     *        nothing. A changed value notifies every listener of the key except `source` and
     *        schedules a save.
     * @return false when rejected; true otherwise (also when the value was already current).
     * @throws std::out_of_range for a key that was not declared.
     */
    bool set(std::string const& key, SettingValue const& value, ListenerId source = 0);

    /** Calls `listener` with every later change of `key` (from `set`, `load`, a factory reset).
     *  @throws std::out_of_range for a key that was not declared. */
    ListenerId subscribe(std::string const& key, Listener listener);
    /** Removes a value or error listener; unknown ids are ignored. Must not be called from
     *  inside that listener's own call on another thread. */
    void unsubscribe(ListenerId id);

    /** Saves coalesced after changes, and retries of failed saves, through `scheduler` (not
     *  owned; must outlive the store or be replaced first); null turns automatic saving off and
     *  cancels a scheduled save. Waits until a call into the previous scheduler made on another
     *  thread (e.g. the writer thread scheduling a retry) has returned, so that the previous one
     *  may go afterwards; not to be called from inside the scheduler's own functions. */
    void setScheduler(ISaveScheduler* scheduler);

    /** The definition of `key`, or null for an undeclared key. */
    SettingDefinition const* definition(std::string const& key) const;
    /** The declared keys in declaration order. */
    std::vector<std::string> keys() const;
    /** Whether saves are refused because the file has a newer schema or could not be read. */
    bool isReadOnly() const;
    /** Whether a change has not reached the file yet. */
    bool hasUnsavedChanges() const;
    /** How many times the file was written successfully since construction. */
    std::uint64_t writeCount() const;
    /** The file's path. */
    std::string const& path() const;
    /** The backup's path (the file's path + ".bak"). */
    std::string backupPath() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace yxfrontpanel::settings
