#include <yxbase2/log.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

#include "atomic_file.h"
#include "settings_codec.h"

namespace yxfrontpanel::settings {

namespace {

constexpr int kErrorLevel = 3;
constexpr int kWarningLevel = 4;
constexpr int kInfoLevel = 6;
constexpr char const* kLogCategory = "settings";

void logLine(int level, std::string const& text) {
    std::ostringstream message;
    message << text;
    yxbase2::system::log::log(level, kLogCategory, message);
}

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
        : path_(std::move(path)), options_(std::move(options)), definitions_(definitions) {
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

    ~Impl() { setScheduler(nullptr); }
    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    LoadResult load() {
        std::lock_guard<std::mutex> const writing(writeMutex_);
        LoadResult result;
        std::optional<detail::SettingsDocument> document = readDocument(path_, result, true);
        if (!document && result.source == LoadResult::Source::DefaultsAfterCorruption) {
            std::string const backup = backupPath();
            document = readDocument(backup, result, false);
            if (document) {
                result.source = LoadResult::Source::Backup;
            }
        }
        if (document && document->schemaVersion > options_.schemaVersion) {
            std::string const reason =
                path_ + " was written with schema " + std::to_string(document->schemaVersion) +
                ", newer than " + std::to_string(options_.schemaVersion) + " of this application";
            if (options_.saveNewerSchema) {
                logLine(kWarningLevel, reason + "; it will be saved in schema " +
                                           std::to_string(options_.schemaVersion));
            } else {
                result.readOnly = true;
                result.detail = reason + "; saving is off so that nothing is lost";
                logLine(kWarningLevel, "" + result.detail);
            }
        }
        apply(document, result.readOnly);
        if (result.source == LoadResult::Source::Backup && !result.readOnly) {
            // Writing the file back now: a missing file would otherwise mean the defaults after
            // the next power cut, although the backup is good.
            saveLocked();
        }
        return result;
    }

    SaveResult saveNow() {
        std::lock_guard<std::mutex> const writing(writeMutex_);
        return saveLocked();
    }

    SaveResult flush() {
        std::lock_guard<std::mutex> const writing(writeMutex_);
        if (!hasUnsavedChanges()) {
            return {};
        }
        return saveLocked();
    }

    SaveResult resetToDefaults() {
        std::lock_guard<std::mutex> const writing(writeMutex_);
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
        logLine(kInfoLevel, "factory reset of " + path_);
        deliver(notifications);
        return saveLocked();
    }

    SettingValue get(std::string const& key) const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return values_[indexOf(key)];
    }

    bool set(std::string const& key, SettingValue const& value, ListenerId source) {
        std::vector<Notification> notifications;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            std::size_t const index = indexOf(key);
            SettingCheck const check = definitions_[index].check(value);
            if (check.outcome == SettingCheck::Outcome::Rejected) {
                logLine(kWarningLevel, "'" + key + "' refused: " + check.reason);
                return false;
            }
            if (check.outcome == SettingCheck::Outcome::Clamped) {
                logLine(kWarningLevel, "'" + key + "' clamped: " + check.reason);
            }
            if (assign(index, check.value, source, notifications)) {
                ++generation_;
                scheduleSaveLocked();
            }
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

    void unsubscribe(ListenerId id) {
        std::lock_guard<std::mutex> const lock(mutex_);
        listeners_.erase(id);
    }

    void setScheduler(ISaveScheduler* scheduler) {
        std::lock_guard<std::mutex> const lock(mutex_);
        cancelScheduledLocked();
        scheduler_ = scheduler;
        if (generation_ != savedGeneration_) {
            scheduleSaveLocked();
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

    // Reads and checks one file. A missing file leaves the source at Defaults; an unusable one
    // is moved aside and sets DefaultsAfterCorruption.
    std::optional<detail::SettingsDocument> readDocument(std::string const& file,
                                                         LoadResult& result, bool isMain) {
        std::string text;
        std::string error;
        switch (detail::readWholeFile(file, options_.maxFileSize, text, error)) {
            case detail::ReadOutcome::Missing:
                return std::nullopt;
            case detail::ReadOutcome::Failed:
                result.source = LoadResult::Source::DefaultsAfterCorruption;
                result.detail += (result.detail.empty() ? "" : "; ") + error;
                logLine(kErrorLevel, "cannot read " + error);
                return std::nullopt;
            case detail::ReadOutcome::Read:
                break;
        }
        std::string reason;
        std::optional<detail::SettingsDocument> document = detail::parseDocument(text, reason);
        if (document && document->application == options_.applicationName) {
            if (isMain) {
                result.source = LoadResult::Source::File;
            }
            // The value moved out, not the optional: GCC 12 at -O3 takes the optional's move for
            // a read of an uninitialised string.
            return std::move(*document);
        }
        if (document) {
            reason = "written by application \"" + document->application + "\", not \"" +
                     options_.applicationName + "\"";
        }
        result.source = LoadResult::Source::DefaultsAfterCorruption;
        result.detail += (result.detail.empty() ? "" : "; ") + file + ": " + reason;
        std::string moveError;
        std::string const movedTo = detail::moveAside(file, moveError);
        if (movedTo.empty()) {
            logLine(kWarningLevel, "" + result.detail + "; " + moveError);
        } else {
            result.movedAside.push_back(movedTo);
            logLine(kWarningLevel, "" + result.detail + "; moved aside to " + movedTo +
                                       (isMain ? "; trying the backup" : "; using the defaults"));
        }
        return std::nullopt;
    }

    // Replaces the whole state by the document (or the defaults) in one step under the lock.
    void apply(std::optional<detail::SettingsDocument> const& document, bool readOnly) {
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
        std::vector<Notification> notifications;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            for (std::size_t i = 0; i < values.size(); ++i) {
                assign(i, values[i], 0, notifications);
            }
            unknownValues_ = std::move(unknown);
            otherMembers_ = std::move(other);
            readOnly_ = readOnly;
            cancelScheduledLocked();
            ++generation_;
            savedGeneration_ = generation_;
        }
        deliver(notifications);
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
            logLine(kWarningLevel, "'" + definition.key() + "' in " + path_ + ": " + reason +
                                       "; using the default " + toText(definition.defaultValue()));
            return definition.defaultValue();
        }
        SettingCheck check = definition.check(*read);
        if (check.outcome == SettingCheck::Outcome::Clamped) {
            logLine(kWarningLevel, "'" + definition.key() + "' in " + path_ + ": " + check.reason +
                                       "; clamped to " + toText(check.value));
        } else if (check.outcome == SettingCheck::Outcome::Rejected) {
            logLine(kWarningLevel, "'" + definition.key() + "' in " + path_ + ": " + check.reason +
                                       "; using the default " + toText(check.value));
        }
        return std::move(check.value);
    }

    // Writes the file from the current values; the caller holds writeMutex_.
    SaveResult saveLocked() {
        detail::SettingsDocument document;
        std::uint64_t generation = 0;
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            if (readOnly_) {
                std::string const error =
                    "cannot save settings to " + path_ + ": the file has a newer schema than " +
                    std::to_string(options_.schemaVersion) + " and is kept read-only";
                logLine(kErrorLevel, error);
                return {false, error};
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
        std::string const error =
            detail::writeAtomically(path_, detail::serialiseDocument(document), backupPath());
        std::lock_guard<std::mutex> const lock(mutex_);
        if (!error.empty()) {
            std::string const message = "cannot save settings to " + path_ + ": " + error;
            logLine(kErrorLevel, message);
            return {false, message};
        }
        ++writes_;
        if (generation > savedGeneration_) {
            savedGeneration_ = generation;
        }
        if (savedGeneration_ == generation_) {
            cancelScheduledLocked();
        }
        return {};
    }

    void scheduleSaveLocked() {
        if (scheduler_ == nullptr || readOnly_ || scheduled_ != 0) {
            return;
        }
        scheduled_ = scheduler_->schedule(options_.saveDelay, [this] { scheduledSave(); });
    }

    void cancelScheduledLocked() {
        if (scheduler_ != nullptr && scheduled_ != 0) {
            scheduler_->cancel(scheduled_);
        }
        scheduled_ = 0;
    }

    void scheduledSave() {
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            scheduled_ = 0;
        }
        flush();
    }

    std::string const path_;
    SettingsStoreOptions const options_;
    std::vector<SettingDefinition> const definitions_;
    std::map<std::string, std::size_t> index_;

    // Serialises load and the writes of the file; taken before mutex_, never inside it.
    std::mutex writeMutex_;
    mutable std::mutex mutex_;
    std::vector<SettingValue> values_;
    nlohmann::json unknownValues_ = nlohmann::json::object();
    nlohmann::json otherMembers_ = nlohmann::json::object();
    bool readOnly_ = false;
    std::uint64_t generation_ = 0;
    std::uint64_t savedGeneration_ = 0;
    std::uint64_t writes_ = 0;
    ISaveScheduler* scheduler_ = nullptr;
    ISaveScheduler::Handle scheduled_ = 0;
    ListenerId nextListenerId_ = 1;
    std::map<ListenerId, std::pair<std::size_t, Listener>> listeners_;
};

SettingsStore::SettingsStore(std::string path, SettingsStoreOptions options,
                             std::vector<SettingDefinition> const& definitions)
    : impl_(std::make_unique<Impl>(std::move(path), std::move(options), definitions)) {}

SettingsStore::~SettingsStore() = default;

LoadResult SettingsStore::load() { return impl_->load(); }

SaveResult SettingsStore::saveNow() { return impl_->saveNow(); }

SaveResult SettingsStore::flush() { return impl_->flush(); }

SaveResult SettingsStore::resetToDefaults() { return impl_->resetToDefaults(); }

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
