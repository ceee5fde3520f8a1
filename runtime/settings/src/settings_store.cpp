#include <yxbase2/log.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <map>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <thread>
#include <utility>

#include "atomic_file.h"
#include "settings_codec.h"

namespace yxfrontpanel::settings {

namespace {

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "settings";

// A notification to deliver once the store's lock is released.
struct Notification {
    SettingsStore::Listener listener;
    SettingValue value;
};

void deliver(std::vector<Notification> const& notifications) {
    for (auto const& notification : notifications) {
        notification.listener(notification.value);
    }
}

}  // namespace

ISaveScheduler::~ISaveScheduler() = default;

class SettingsStore::Impl {
public:
    Impl(std::string path, SettingsStoreOptions options,
         std::vector<SettingDefinition> const& definitions)
        : path_(std::move(path)),
          options_(std::move(options)),
          definitions_(definitions),
          fs_(options_.fileSystem ? options_.fileSystem : posixFileSystem()),
          retryDelay_(options_.retryDelay) {
        if (path_.empty()) {
            throw std::invalid_argument("settings store: the file path must not be empty");
        }
        if (options_.applicationName.empty()) {
            throw std::invalid_argument("settings store: the application name must not be empty");
        }
        if (options_.schemaVersion == 0) {
            throw std::invalid_argument("settings store: the schema version must be 1 or more");
        }
        for (std::size_t i = 0; i < definitions_.size(); ++i) {
            if (!index_.emplace(definitions_[i].key(), i).second) {
                throw std::invalid_argument("settings store: key '" + definitions_[i].key() +
                                            "' is declared twice");
            }
            values_.push_back(definitions_[i].defaultValue());
        }
    }

    ~Impl() {
        setScheduler(nullptr);
        {
            std::lock_guard<std::mutex> const lock(writerMutex_);
            stopping_ = true;
        }
        writerWake_.notify_all();
        if (writer_.joinable()) {
            writer_.join();
        }
        if (lockFd_ >= 0) {
            fs_->close(lockFd_);
        }
    }
    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    LoadResult load() {
        LoadResult result;
        std::vector<Notification> notifications;
        std::optional<SaveOutcome> writtenBack;
        {
            std::lock_guard<std::mutex> const writing(writeMutex_);
            std::optional<detail::SettingsDocument> document = readDocument(path_, result, true);
            // A missing file with a backup: a power cut came after a corrupt file was moved
            // aside and before the backup was written back; the backup is still good.
            if (!document && (result.source == LoadResult::Source::DefaultsAfterCorruption ||
                              result.source == LoadResult::Source::Defaults)) {
                document = readDocument(backupPath(), result, false);
                if (document) {
                    result.source = LoadResult::Source::Backup;
                }
            }
            if (document && document->schemaVersion > options_.schemaVersion) {
                std::string const reason =
                    path_ + " was written with schema " + std::to_string(document->schemaVersion) +
                    ", newer than " + std::to_string(options_.schemaVersion) +
                    " of this application";
                if (options_.saveNewerSchema) {
                    log::write(log::Level::Warning, kLogCategory, reason,
                               "; it will be saved in schema ", options_.schemaVersion);
                } else {
                    result.readOnly = true;
                    result.detail = reason + "; saving is off so that nothing is lost";
                    log::write(log::Level::Warning, kLogCategory, result.detail);
                }
            }
            apply(document, result, notifications);
            if (result.source == LoadResult::Source::Backup && !result.readOnly) {
                // Writing the file back now: a missing file would otherwise mean the defaults
                // after the next power cut, although the backup is good.
                writtenBack = saveLocked(false);
            }
        }
        cancelScheduled();
        deliver(notifications);
        if (result.readOnly) {
            report(result.detail);
        } else if (writtenBack) {
            afterSave(*writtenBack);
        } else {
            std::lock_guard<std::mutex> const lock(mutex_);
            lastError_.clear();
        }
        return result;
    }

    SaveResult save(bool onlyIfUnsaved) {
        SaveOutcome outcome;
        {
            std::lock_guard<std::mutex> const writing(writeMutex_);
            outcome = saveLocked(onlyIfUnsaved);
        }
        afterSave(outcome);
        return outcome.result;
    }

    SaveResult resetToDefaults() {
        std::vector<Notification> notifications;
        SaveOutcome outcome;
        {
            std::lock_guard<std::mutex> const writing(writeMutex_);
            notifications = resetValues();
            outcome = saveLocked(false);
        }
        deliver(notifications);
        afterSave(outcome);
        return outcome.result;
    }

    void resetToDefaultsInBackground() {
        std::vector<Notification> notifications;
        {
            // Not between another thread's snapshot and its write: that save would then
            // finish after the reset and could be taken for the reset's own.
            std::lock_guard<std::mutex> const writing(writeMutex_);
            notifications = resetValues();
        }
        deliver(notifications);
        saveInBackground(true);
    }

    // Every declared value back to its default and unknown keys dropped; the caller holds
    // writeMutex_ and delivers the notifications.
    std::vector<Notification> resetValues() {
        std::vector<Notification> notifications;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            for (std::size_t i = 0; i < definitions_.size(); ++i) {
                assign(i, definitions_[i].defaultValue(), 0, notifications);
            }
            unknownValues_ = nlohmann::json::object();
            otherMembers_ = nlohmann::json::object();
            ++generation_;
        }
        log::write(log::Level::Info, kLogCategory, "factory reset of ", path_);
        return notifications;
    }

    void saveInBackground(bool force) {
        std::lock_guard<std::mutex> const lock(writerMutex_);
        if (stopping_) {
            return;
        }
        requested_ = true;
        force_ = force_ || force;
        if (!writer_.joinable()) {
            writer_ = std::thread([this] { writerLoop(); });
        }
        writerWake_.notify_one();
    }

    SaveResult waitForSaves() {
        {
            std::unique_lock<std::mutex> lock(writerMutex_);
            writerIdle_.wait(lock, [this] { return !requested_ && !busy_; });
        }
        std::lock_guard<std::mutex> const lock(mutex_);
        return lastResult_;
    }

    std::string lastError() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return lastError_;
    }

    SettingValue get(std::string const& key) const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return values_[indexOf(key)];
    }

    bool set(std::string const& key, SettingValue const& value, ListenerId source) {
        std::vector<Notification> notifications;
        bool changed = false;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            std::size_t const index = indexOf(key);
            SettingCheck const check = definitions_[index].check(value);
            if (check.outcome == SettingCheck::Outcome::Rejected) {
                log::write(log::Level::Warning, kLogCategory, "'", key,
                           "' refused: ", check.reason);
                return false;
            }
            if (check.outcome == SettingCheck::Outcome::Clamped) {
                log::write(log::Level::Warning, kLogCategory, "'", key,
                           "' clamped: ", check.reason);
            }
            if (assign(index, check.value, source, notifications)) {
                ++generation_;
                changed = true;
            }
        }
        if (changed) {
            scheduleSave(options_.saveDelay);
        }
        deliver(notifications);
        return true;
    }

    ListenerId subscribe(std::string const& key, Listener listener) {
        std::lock_guard<std::mutex> const lock(mutex_);
        std::size_t const index = indexOf(key);
        ListenerId const id = nextListenerId_++;
        listeners_.emplace(id, std::make_pair(index, std::move(listener)));
        return id;
    }

    ListenerId subscribeErrors(ErrorListener listener) {
        std::lock_guard<std::mutex> const lock(mutex_);
        ListenerId const id = nextListenerId_++;
        errorListeners_.emplace(id, std::move(listener));
        return id;
    }

    void unsubscribe(ListenerId id) {
        std::lock_guard<std::mutex> const lock(mutex_);
        listeners_.erase(id);
        errorListeners_.erase(id);
    }

    void setScheduler(ISaveScheduler* scheduler) {
        ISaveScheduler* previous = nullptr;
        ISaveScheduler::Handle handle = 0;
        bool unsaved = false;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            // A call into the previous scheduler on another thread ends before it may go.
            schedulerIdle_.wait(lock, [this] { return schedulerCalls_ == 0; });
            previous = scheduler_;
            handle = disarmLocked();
            scheduler_ = scheduler;
            unsaved = generation_ != savedGeneration_;
        }
        if (previous != nullptr && handle != 0) {
            previous->cancel(handle);
        }
        if (unsaved) {
            scheduleSave(options_.saveDelay);
        }
    }

    SettingDefinition const* definition(std::string const& key) const {
        auto const found = index_.find(key);
        return found == index_.end() ? nullptr : &definitions_[found->second];
    }

    std::vector<std::string> keys() const {
        std::vector<std::string> result;
        result.reserve(definitions_.size());
        for (auto const& definition : definitions_) {
            result.push_back(definition.key());
        }
        return result;
    }

    bool isReadOnly() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return readOnly_;
    }

    bool hasUnsavedChanges() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return generation_ != savedGeneration_;
    }

    std::uint64_t writeCount() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return writes_;
    }

    std::string const& path() const { return path_; }
    std::string backupPath() const { return path_ + ".bak"; }

private:
    // A save's result and whether it touched the file (a flush with nothing to save does not).
    struct SaveOutcome {
        SaveResult result;
        bool attempted = false;
    };

    std::size_t indexOf(std::string const& key) const {
        auto const found = index_.find(key);
        if (found == index_.end()) {
            throw std::out_of_range("settings: no setting '" + key + "' is declared");
        }
        return found->second;
    }

    // Stores a value and collects the listeners to tell; false when it was already current.
    bool assign(std::size_t index, SettingValue const& value, ListenerId source,
                std::vector<Notification>& notifications) {
        if (values_[index] == value) {
            return false;
        }
        values_[index] = value;
        for (auto const& [id, entry] : listeners_) {
            if (entry.first == index && id != source) {
                notifications.push_back({entry.second, value});
            }
        }
        return true;
    }

    // Takes the lock file's flock before the first change of a file (a save, a file moved aside)
    // and keeps it; the caller holds writeMutex_. Loading alone takes no lock.
    bool lockLocked(std::string& error) {
        if (lockFd_ < 0) {
            lockFd_ = detail::lockFile(*fs_, path_ + ".lock", path_, error);
            if (lockFd_ >= 0) {
                detail::removeLeftovers(*fs_, path_);
            }
        }
        return lockFd_ >= 0;
    }

    // Reads and checks one file. A missing file leaves the source at Defaults; an unusable one
    // is moved aside and sets DefaultsAfterCorruption; an unreadable main file sets Unreadable
    // and read-only.
    std::optional<detail::SettingsDocument> readDocument(std::string const& file,
                                                         LoadResult& result, bool isMain) {
        std::string text;
        std::string reason;
        switch (detail::readWholeFile(*fs_, file, options_.maxFileSize, text, reason)) {
            case detail::ReadOutcome::Missing:
                return std::nullopt;
            case detail::ReadOutcome::Failed:
            case detail::ReadOutcome::NotRegular:
                result.detail += (result.detail.empty() ? "" : "; ") + reason;
                if (isMain) {
                    result.source = LoadResult::Source::Unreadable;
                    result.readOnly = true;
                    result.detail += "; the store is read-only so that the file is kept";
                }
                log::write(log::Level::Error, kLogCategory,
                           "cannot load settings: ", result.detail);
                return std::nullopt;
            case detail::ReadOutcome::TooLarge:
                break;
            case detail::ReadOutcome::Read: {
                std::optional<detail::SettingsDocument> document =
                    detail::parseDocument(text, reason);
                if (document && document->application == options_.applicationName) {
                    if (isMain) {
                        result.source = LoadResult::Source::File;
                    }
                    // The value moved out, not the optional: GCC 12 at -O3 takes the optional's
                    // move for a read of an uninitialised string.
                    return std::move(*document);
                }
                if (document) {
                    reason = "written by application \"" + document->application + "\", not \"" +
                             options_.applicationName + "\"";
                }
                reason = file + ": " + reason;
                break;
            }
        }
        result.source = LoadResult::Source::DefaultsAfterCorruption;
        result.detail += (result.detail.empty() ? "" : "; ") + reason;
        // Moving a file is writing: only the store that holds the lock may.
        std::string moveError;
        std::string const movedTo =
            lockLocked(moveError) ? detail::moveAside(*fs_, file, moveError) : std::string();
        if (movedTo.empty()) {
            log::write(log::Level::Warning, kLogCategory, result.detail, "; ", moveError);
        } else {
            result.movedAside.push_back(movedTo);
            log::write(log::Level::Warning, kLogCategory, result.detail, "; moved aside to ",
                       movedTo, (isMain ? "; trying the backup" : "; using the defaults"));
        }
        return std::nullopt;
    }

    // Replaces the whole state by the document (or the defaults) in one step under the lock.
    void apply(std::optional<detail::SettingsDocument> const& document, LoadResult const& result,
               std::vector<Notification>& notifications) {
        std::vector<SettingValue> values;
        values.reserve(definitions_.size());
        nlohmann::json unknown = nlohmann::json::object();
        nlohmann::json other = nlohmann::json::object();
        if (document) {
            unknown = document->values;
            other = document->otherMembers;
        }
        for (auto const& definition : definitions_) {
            values.push_back(valueFromDocument(definition, unknown));
        }
        std::lock_guard<std::mutex> const lock(mutex_);
        for (std::size_t i = 0; i < values.size(); ++i) {
            assign(i, values[i], 0, notifications);
        }
        unknownValues_ = std::move(unknown);
        otherMembers_ = std::move(other);
        readOnly_ = result.readOnly;
        readOnlyReason_ = result.detail;
        ++generation_;
        savedGeneration_ = generation_;
    }

    // The checked value of `definition` in `values`, which loses the member (what remains are
    // the unknown keys).
    SettingValue valueFromDocument(SettingDefinition const& definition, nlohmann::json& values) {
        auto const found = values.find(definition.key());
        if (found == values.end()) {
            return definition.defaultValue();
        }
        std::string reason;
        std::optional<SettingValue> const read =
            detail::fromJson(*found, definition.type(), reason);
        values.erase(found);
        if (!read) {
            log::write(log::Level::Warning, kLogCategory, "'", definition.key(), "' in ", path_,
                       ": ", reason, "; using the default ", toText(definition.defaultValue()));
            return definition.defaultValue();
        }
        SettingCheck check = definition.check(*read);
        if (check.outcome == SettingCheck::Outcome::Clamped) {
            log::write(log::Level::Warning, kLogCategory, "'", definition.key(), "' in ", path_,
                       ": ", check.reason, "; clamped to ", toText(check.value));
        } else if (check.outcome == SettingCheck::Outcome::Rejected) {
            log::write(log::Level::Warning, kLogCategory, "'", definition.key(), "' in ", path_,
                       ": ", check.reason, "; using the default ", toText(check.value));
        }
        return std::move(check.value);
    }

    // Writes the file from a snapshot of the values; the caller holds writeMutex_. Calls
    // nothing outside the store: `afterSave` tells the listeners and the scheduler.
    SaveOutcome saveLocked(bool onlyIfUnsaved) {
        detail::SettingsDocument document;
        std::uint64_t generation = 0;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            if (onlyIfUnsaved && generation_ == savedGeneration_) {
                return {};
            }
            if (readOnly_) {
                std::string const error = "cannot save settings to " + path_ +
                                          ": the store is read-only (" + readOnlyReason_ + ")";
                log::write(log::Level::Error, kLogCategory, error);
                return {{false, error}, true};
            }
            document.application = options_.applicationName;
            document.schemaVersion = options_.schemaVersion;
            document.values = unknownValues_;
            document.otherMembers = otherMembers_;
            for (std::size_t i = 0; i < definitions_.size(); ++i) {
                document.values[definitions_[i].key()] = detail::toJson(values_[i]);
            }
            generation = generation_;
        }
        std::string error;
        if (lockLocked(error)) {
            error = detail::writeAtomically(*fs_, path_, detail::serialiseDocument(document),
                                            backupPath());
        }
        std::lock_guard<std::mutex> const lock(mutex_);
        if (!error.empty()) {
            std::string const message = "cannot save settings to " + path_ + ": " + error;
            log::write(log::Level::Error, kLogCategory, message);
            return {{false, message}, true};
        }
        ++writes_;
        if (generation > savedGeneration_) {
            savedGeneration_ = generation;
        }
        return {{}, true};
    }

    // Records a save's outcome and, with no lock held, tells the error listeners, cancels the
    // scheduled save that is no longer needed or schedules a retry.
    void afterSave(SaveOutcome const& outcome) {
        if (!outcome.attempted) {
            return;
        }
        bool allSaved = false;
        bool retry = false;
        std::chrono::milliseconds delay{0};
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            lastResult_ = outcome.result;
            if (outcome.result.ok) {
                lastError_.clear();
                retryDelay_ = options_.retryDelay;
                allSaved = savedGeneration_ == generation_;
            } else {
                retry = !readOnly_;
                delay = retryDelay_;
                retryDelay_ = std::min(retryDelay_ * 2, options_.maxRetryDelay);
            }
        }
        if (allSaved) {
            cancelScheduled();
        }
        if (!outcome.result.ok) {
            report(outcome.result.error);
        }
        if (retry) {
            scheduleSave(delay);
        }
    }

    // Keeps `error` as the last error and tells the error listeners, outside the lock.
    void report(std::string const& error) {
        std::vector<ErrorListener> listeners;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            lastError_ = error;
            for (auto const& entry : errorListeners_) {
                listeners.push_back(entry.second);
            }
        }
        for (auto const& listener : listeners) {
            try {
                listener(error);
            } catch (std::exception const& exception) {
                log::write(log::Level::Error, kLogCategory,
                           "a settings error listener threw: ", exception.what());
            }
        }
    }

    // Schedules one save `delay` from now unless one is scheduled; calls the scheduler without
    // holding the lock.
    void scheduleSave(std::chrono::nanoseconds delay) {
        ISaveScheduler* scheduler = nullptr;
        std::uint64_t ticket = 0;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            if (scheduler_ == nullptr || readOnly_ || armed_) {
                return;
            }
            armed_ = true;
            ticket = ++ticket_;
            scheduler = scheduler_;
            ++schedulerCalls_;
        }
        ISaveScheduler::Handle handle = 0;
        try {
            handle = scheduler->schedule(delay, [this, ticket] { scheduledSave(ticket); });
        } catch (...) {
            endSchedulerCall(ticket, 0);
            throw;
        }
        endSchedulerCall(ticket, handle);
    }

    void endSchedulerCall(std::uint64_t ticket, ISaveScheduler::Handle handle) {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (armed_ && ticket_ == ticket) {
            // Not yet run: keep the handle to cancel it; a scheduler that refused (0) leaves
            // the next change to try again.
            handle_ = handle;
            armed_ = handle != 0;
        }
        --schedulerCalls_;
        schedulerIdle_.notify_all();
    }

    // Forgets the scheduled save and returns its handle to cancel (0 when none).
    ISaveScheduler::Handle disarmLocked() {
        ISaveScheduler::Handle const handle = armed_ ? handle_ : 0;
        armed_ = false;
        handle_ = 0;
        ++ticket_;
        return handle;
    }

    void cancelScheduled() {
        ISaveScheduler* scheduler = nullptr;
        ISaveScheduler::Handle handle = 0;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            handle = disarmLocked();
            if (handle == 0 || scheduler_ == nullptr) {
                return;
            }
            scheduler = scheduler_;
            ++schedulerCalls_;
        }
        scheduler->cancel(handle);
        std::lock_guard<std::mutex> const lock(mutex_);
        --schedulerCalls_;
        schedulerIdle_.notify_all();
    }

    // A scheduled save is due (on the scheduler's thread): the writer thread takes it.
    void scheduledSave(std::uint64_t ticket) {
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            if (ticket_ == ticket) {
                armed_ = false;
                handle_ = 0;
            }
        }
        saveInBackground(false);
    }

    void writerLoop() {
        std::unique_lock<std::mutex> lock(writerMutex_);
        for (;;) {
            writerWake_.wait(lock, [this] { return requested_ || stopping_; });
            if (!requested_) {
                return;
            }
            bool const force = force_;
            requested_ = false;
            force_ = false;
            busy_ = true;
            lock.unlock();
            try {
                save(!force);
            } catch (std::exception const& exception) {
                log::write(log::Level::Error, kLogCategory, "saving settings to ", path_,
                           " failed: ", exception.what());
            }
            lock.lock();
            busy_ = false;
            writerIdle_.notify_all();
        }
    }

    std::string const path_;
    SettingsStoreOptions const options_;
    std::vector<SettingDefinition> const definitions_;
    std::map<std::string, std::size_t> index_;
    std::shared_ptr<IFileSystem> const fs_;

    // Serialises load and the writes of the file; taken before mutex_, never inside it, and
    // never held while a listener or the scheduler is called.
    std::mutex writeMutex_;
    int lockFd_ = -1;  // the lock file's descriptor, under writeMutex_

    mutable std::mutex mutex_;
    std::vector<SettingValue> values_;
    nlohmann::json unknownValues_ = nlohmann::json::object();
    nlohmann::json otherMembers_ = nlohmann::json::object();
    bool readOnly_ = false;
    std::string readOnlyReason_;
    std::uint64_t generation_ = 0;
    std::uint64_t savedGeneration_ = 0;
    std::uint64_t writes_ = 0;
    SaveResult lastResult_;
    std::string lastError_;
    std::chrono::milliseconds retryDelay_;
    ISaveScheduler* scheduler_ = nullptr;
    bool armed_ = false;                 // a save is scheduled or being scheduled
    ISaveScheduler::Handle handle_ = 0;  // its handle once `schedule` returned
    std::uint64_t ticket_ = 0;           // names the scheduled save; raised when disarmed
    int schedulerCalls_ = 0;             // calls into the scheduler in progress
    std::condition_variable schedulerIdle_;
    ListenerId nextListenerId_ = 1;
    std::map<ListenerId, std::pair<std::size_t, Listener>> listeners_;
    std::map<ListenerId, ErrorListener> errorListeners_;

    // The writer thread, started by the first background save.
    std::mutex writerMutex_;
    std::condition_variable writerWake_;
    std::condition_variable writerIdle_;
    bool requested_ = false;
    bool force_ = false;
    bool busy_ = false;
    bool stopping_ = false;
    std::thread writer_;
};

SettingsStore::SettingsStore(std::string path, SettingsStoreOptions options,
                             std::vector<SettingDefinition> const& definitions)
    : impl_(std::make_unique<Impl>(std::move(path), std::move(options), definitions)) {}

SettingsStore::~SettingsStore() = default;

LoadResult SettingsStore::load() { return impl_->load(); }

SaveResult SettingsStore::saveNow() { return impl_->save(false); }

SaveResult SettingsStore::flush() { return impl_->save(true); }

void SettingsStore::saveInBackground() { impl_->saveInBackground(true); }

SaveResult SettingsStore::waitForSaves() { return impl_->waitForSaves(); }

std::string SettingsStore::lastError() const { return impl_->lastError(); }

SettingsStore::ListenerId SettingsStore::subscribeErrors(ErrorListener listener) {
    return impl_->subscribeErrors(std::move(listener));
}

SaveResult SettingsStore::resetToDefaults() { return impl_->resetToDefaults(); }

void SettingsStore::resetToDefaultsInBackground() { impl_->resetToDefaultsInBackground(); }

SettingValue SettingsStore::get(std::string const& key) const { return impl_->get(key); }

namespace {

template <class T>
T typed(SettingValue const& value, std::string const& key) {
    if (auto const* held = std::get_if<T>(&value)) {
        return *held;
    }
    throw std::invalid_argument("settings: '" + key + "' is a " + typeName(typeOf(value)));
}

}  // namespace

double SettingsStore::number(std::string const& key) const {
    SettingValue const value = get(key);
    if (auto const* integer = std::get_if<std::int64_t>(&value)) {
        return static_cast<double>(*integer);
    }
    return typed<double>(value, key);
}

std::int64_t SettingsStore::integer(std::string const& key) const {
    return typed<std::int64_t>(get(key), key);
}

bool SettingsStore::boolean(std::string const& key) const { return typed<bool>(get(key), key); }

std::string SettingsStore::text(std::string const& key) const {
    return typed<std::string>(get(key), key);
}

ip::IpV4Address SettingsStore::ipv4(std::string const& key) const {
    return typed<ip::IpV4Address>(get(key), key);
}

bool SettingsStore::set(std::string const& key, SettingValue const& value, ListenerId source) {
    return impl_->set(key, value, source);
}

SettingsStore::ListenerId SettingsStore::subscribe(std::string const& key, Listener listener) {
    return impl_->subscribe(key, std::move(listener));
}

void SettingsStore::unsubscribe(ListenerId id) { impl_->unsubscribe(id); }

void SettingsStore::setScheduler(ISaveScheduler* scheduler) { impl_->setScheduler(scheduler); }

SettingDefinition const* SettingsStore::definition(std::string const& key) const {
    return impl_->definition(key);
}

std::vector<std::string> SettingsStore::keys() const { return impl_->keys(); }

bool SettingsStore::isReadOnly() const { return impl_->isReadOnly(); }

bool SettingsStore::hasUnsavedChanges() const { return impl_->hasUnsavedChanges(); }

std::uint64_t SettingsStore::writeCount() const { return impl_->writeCount(); }

std::string const& SettingsStore::path() const { return impl_->path(); }

std::string SettingsStore::backupPath() const { return impl_->backupPath(); }

}  // namespace yxfrontpanel::settings
