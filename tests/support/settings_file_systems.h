#pragma once

#include <yxfrontpanel/runtime/settings_file_system.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <fcntl.h>

// File-system layers for the settings store's tests: an in-memory model of one directory that
// knows what a power cut may leave, a layer that fails chosen calls, and one that holds writes
// until the test lets them go.
namespace yxfp_test {

using yxfrontpanel::settings::FileStatus;
using yxfrontpanel::settings::IFileSystem;

/**
 * One directory in memory, with the durability rules of a journalling file system: a file's
 * data is on the device after its fsync, a directory's entries (create, rename, link, unlink)
 * after the directory's fsync, in the order they were made. Every call that changes something
 * is counted and logged; `freezeAfter(n)` makes the machine stop after n of them (every later
 * call fails with EIO and changes nothing), and `crashImages` lists what a power cut at that
 * moment may leave on the device: every prefix of the unsynced directory operations, each with
 * the unsynced data of every file kept, dropped, torn in half or zero-filled.
 */
class ModelFileSystem final : public IFileSystem {
public:
    /** What is on the device: file names and contents. */
    using Image = std::map<std::string, std::string>;

    /** The directory `directory` holding `initial`, all of it on the device. */
    explicit ModelFileSystem(std::string directory, Image const& initial = {})
        : directory_(std::move(directory)) {
        for (auto const& [name, contents] : initial) {
            int const inode = nextInode_++;
            inodes_[inode] = Inode{contents, contents, 0644};
            entries_[name] = inode;
        }
        durable_ = entries_;
    }

    /** At most `bytes` per write call (short writes, so that a save makes several). */
    void limitWrites(std::size_t bytes) { writeLimit_ = bytes; }
    /** The machine stops after `operations` changing calls. */
    void freezeAfter(std::size_t operations) {
        std::lock_guard<std::mutex> const lock(mutex_);
        freezeAfter_ = operations;
    }
    /** The changing calls made so far, one line each ("write NAME 64", "rename A B" ...). */
    std::vector<std::string> log() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return log_;
    }
    /** The files as the running system sees them. */
    Image currentImage() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        Image image;
        for (auto const& [name, inode] : entries_) {
            image[name] = inodes_.at(inode).data;
        }
        return image;
    }
    /** Every state a power cut now may leave on the device (see the class comment). */
    std::vector<Image> crashImages() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        std::vector<Image> images;
        for (std::size_t applied = 0; applied <= pending_.size(); ++applied) {
            std::map<std::string, int> entries = durable_;
            for (std::size_t i = 0; i < applied; ++i) {
                pending_[i](entries);
            }
            for (DataFate fate :
                 {DataFate::Kept, DataFate::Dropped, DataFate::Torn, DataFate::Zeroed}) {
                Image image;
                for (auto const& [name, inode] : entries) {
                    image[name] = contentsAfterCrash(inodes_.at(inode), fate);
                }
                images.push_back(std::move(image));
            }
        }
        return images;
    }

    int open(std::string const& path, int flags, unsigned mode) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        if ((flags & O_DIRECTORY) != 0) {
            if (path != directory_) {
                return -ENOTDIR;
            }
            return addDescriptor(kDirectory);
        }
        std::string name;
        if (!nameOf(path, name)) {
            return -ENOENT;
        }
        auto const found = entries_.find(name);
        if (found != entries_.end()) {
            if ((flags & O_CREAT) != 0 && (flags & O_EXCL) != 0) {
                return -EEXIST;
            }
            if ((flags & O_TRUNC) != 0) {
                if (!change("truncate " + name)) {
                    return -EIO;
                }
                inodes_[found->second].data.clear();
            }
            return addDescriptor(found->second);
        }
        if ((flags & O_CREAT) == 0) {
            return -ENOENT;
        }
        if (!change("create " + name)) {
            return -EIO;
        }
        int const inode = nextInode_++;
        inodes_[inode] = Inode{{}, {}, mode};
        entries_[name] = inode;
        pending_.push_back(
            [name, inode](std::map<std::string, int>& entries) { entries[name] = inode; });
        return addDescriptor(inode);
    }
    long read(int fd, char* buffer, std::size_t size) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end() || found->second.inode == kDirectory) {
            return -EBADF;
        }
        std::string const& data = inodes_[found->second.inode].data;
        std::size_t const offset = std::min(found->second.offset, data.size());
        std::size_t const count = std::min(size, data.size() - offset);
        std::copy_n(data.data() + offset, count, buffer);
        found->second.offset = offset + count;
        return static_cast<long>(count);
    }
    long write(int fd, char const* data, std::size_t size) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end() || found->second.inode == kDirectory) {
            return -EBADF;
        }
        std::size_t const count = std::min(size, writeLimit_);
        if (!change("write " + nameOfInode(found->second.inode) + " " + std::to_string(count))) {
            return -EIO;
        }
        std::string& contents = inodes_[found->second.inode].data;
        contents.resize(std::max(contents.size(), found->second.offset));
        contents.replace(found->second.offset, count, data, count);
        found->second.offset += count;
        return static_cast<long>(count);
    }
    int fsync(int fd) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end()) {
            return -EBADF;
        }
        int const inode = found->second.inode;
        if (!change(inode == kDirectory ? "fsync directory" : "fsync " + nameOfInode(inode))) {
            return -EIO;
        }
        if (inode == kDirectory) {
            durable_ = entries_;
            pending_.clear();
        } else {
            inodes_[inode].synced = inodes_[inode].data;
        }
        return 0;
    }
    int close(int fd) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end()) {
            return -EBADF;
        }
        if (locks_.count(found->second.inode) != 0 && locks_[found->second.inode] == fd) {
            locks_.erase(found->second.inode);
        }
        descriptors_.erase(found);
        return 0;
    }
    int fchmod(int fd, unsigned mode) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end() || found->second.inode == kDirectory) {
            return -EBADF;
        }
        if (frozen()) {
            return -EIO;
        }
        inodes_[found->second.inode].mode = mode;
        return 0;
    }
    int status(std::string const& path, FileStatus& status) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (path == directory_) {
            status = FileStatus{FileStatus::Kind::Directory, 0, 0755};
            return 0;
        }
        std::string name;
        if (!nameOf(path, name) || entries_.count(name) == 0) {
            return -ENOENT;
        }
        status = statusOf(entries_.at(name));
        return 0;
    }
    int fileStatus(int fd, FileStatus& status) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end()) {
            return -EBADF;
        }
        status = found->second.inode == kDirectory
                     ? FileStatus{FileStatus::Kind::Directory, 0, 0755}
                     : statusOf(found->second.inode);
        return 0;
    }
    int rename(std::string const& from, std::string const& to) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        std::string fromName;
        std::string toName;
        if (!existingAndNew(from, to, fromName, toName)) {
            return -ENOENT;
        }
        if (!change("rename " + fromName + " " + toName)) {
            return -EIO;
        }
        auto const operation = [fromName, toName](std::map<std::string, int>& entries) {
            auto const found = entries.find(fromName);
            if (found != entries.end()) {
                int const inode = found->second;
                entries.erase(found);
                entries[toName] = inode;
            }
        };
        operation(entries_);
        pending_.push_back(operation);
        return 0;
    }
    int link(std::string const& from, std::string const& to) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        std::string fromName;
        std::string toName;
        if (!existingAndNew(from, to, fromName, toName)) {
            return -ENOENT;
        }
        if (entries_.count(toName) != 0) {
            return -EEXIST;
        }
        if (!change("link " + fromName + " " + toName)) {
            return -EIO;
        }
        int const inode = entries_.at(fromName);
        entries_[toName] = inode;
        pending_.push_back(
            [toName, inode](std::map<std::string, int>& entries) { entries[toName] = inode; });
        return 0;
    }
    int unlink(std::string const& path) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        std::string name;
        if (!nameOf(path, name) || entries_.count(name) == 0) {
            return -ENOENT;
        }
        if (!change("unlink " + name)) {
            return -EIO;
        }
        entries_.erase(name);
        pending_.push_back([name](std::map<std::string, int>& entries) { entries.erase(name); });
        return 0;
    }
    int list(std::string const& directory, std::vector<std::string>& names) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (directory != directory_) {
            return -ENOENT;
        }
        names.clear();
        for (auto const& entry : entries_) {
            names.push_back(entry.first);
        }
        return 0;
    }
    int lockExclusive(int fd) override {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const found = descriptors_.find(fd);
        if (found == descriptors_.end()) {
            return -EBADF;
        }
        auto const held = locks_.find(found->second.inode);
        if (held != locks_.end() && held->second != fd) {
            return -EWOULDBLOCK;
        }
        locks_[found->second.inode] = fd;
        return 0;
    }

private:
    static constexpr int kDirectory = -1;
    enum class DataFate { Kept, Dropped, Torn, Zeroed };
    struct Inode {
        std::string data;
        std::string synced;
        unsigned mode = 0644;
    };
    struct Descriptor {
        int inode = kDirectory;
        std::size_t offset = 0;
    };

    static std::string contentsAfterCrash(Inode const& inode, DataFate fate) {
        std::size_t common = 0;
        while (common < inode.data.size() && common < inode.synced.size() &&
               inode.data[common] == inode.synced[common]) {
            ++common;
        }
        switch (fate) {
            case DataFate::Kept:
                return inode.data;
            case DataFate::Dropped:
                return inode.synced;
            case DataFate::Torn:
                return inode.data.substr(0, common + (inode.data.size() - common) / 2);
            case DataFate::Zeroed:
                return inode.data.substr(0, common) + std::string(inode.data.size() - common, '\0');
        }
        return inode.data;
    }

    bool frozen() const { return log_.size() >= freezeAfter_; }
    bool change(std::string what) {
        if (frozen()) {
            return false;
        }
        log_.push_back(std::move(what));
        return true;
    }
    bool nameOf(std::string const& path, std::string& name) const {
        if (path.size() <= directory_.size() + 1 ||
            path.compare(0, directory_.size(), directory_) != 0 || path[directory_.size()] != '/') {
            return false;
        }
        name = path.substr(directory_.size() + 1);
        return name.find('/') == std::string::npos;
    }
    // The names of an existing entry `from` and of `to`, both in the directory.
    bool existingAndNew(std::string const& from, std::string const& to, std::string& fromName,
                        std::string& toName) const {
        return nameOf(from, fromName) && nameOf(to, toName) && entries_.count(fromName) != 0;
    }
    std::string nameOfInode(int inode) const {
        for (auto const& [name, entry] : entries_) {
            if (entry == inode) {
                return name;
            }
        }
        return "(unlinked)";
    }
    FileStatus statusOf(int inode) const {
        return FileStatus{FileStatus::Kind::Regular, inodes_.at(inode).data.size(),
                          inodes_.at(inode).mode};
    }
    int addDescriptor(int inode) {
        int const fd = nextDescriptor_++;
        descriptors_[fd] = Descriptor{inode, 0};
        return fd;
    }

    std::string const directory_;
    mutable std::mutex mutex_;
    std::size_t writeLimit_ = std::size_t{1} << 30;
    std::size_t freezeAfter_ = static_cast<std::size_t>(-1);
    std::vector<std::string> log_;
    std::map<int, Inode> inodes_;
    std::map<std::string, int> entries_;
    std::map<std::string, int> durable_;
    std::vector<std::function<void(std::map<std::string, int>&)>> pending_;
    std::map<int, Descriptor> descriptors_;
    std::map<int, int> locks_;  // inode -> the descriptor holding its flock
    int nextInode_ = 1;
    int nextDescriptor_ = 100;
};

/** Passes every call to another layer: the base of the layers below, which change a few. */
class ForwardingFileSystem : public IFileSystem {
public:
    explicit ForwardingFileSystem(std::shared_ptr<IFileSystem> next) : next_(std::move(next)) {}

    int open(std::string const& path, int flags, unsigned mode) override {
        return next_->open(path, flags, mode);
    }
    long read(int fd, char* buffer, std::size_t size) override {
        return next_->read(fd, buffer, size);
    }
    long write(int fd, char const* data, std::size_t size) override {
        return next_->write(fd, data, size);
    }
    int fsync(int fd) override { return next_->fsync(fd); }
    int close(int fd) override { return next_->close(fd); }
    int fchmod(int fd, unsigned mode) override { return next_->fchmod(fd, mode); }
    int status(std::string const& path, FileStatus& status) override {
        return next_->status(path, status);
    }
    int fileStatus(int fd, FileStatus& status) override { return next_->fileStatus(fd, status); }
    int rename(std::string const& from, std::string const& to) override {
        return next_->rename(from, to);
    }
    int link(std::string const& from, std::string const& to) override {
        return next_->link(from, to);
    }
    int unlink(std::string const& path) override { return next_->unlink(path); }
    int list(std::string const& directory, std::vector<std::string>& names) override {
        return next_->list(directory, names);
    }
    int lockExclusive(int fd) override { return next_->lockExclusive(fd); }

private:
    std::shared_ptr<IFileSystem> const next_;
};

/** The calls of `IFileSystem` that a `FaultyFileSystem` can fail. */
enum class FileCall { Open, Read, Write, Fsync, Rename, Status };

/**
 * Passes every call to another layer, except the calls the test asked to fail, and records
 * each call with its descriptor and thread ("fsync 7"), so that a test sees which descriptor
 * was synced by which thread.
 */
class FaultyFileSystem final : public ForwardingFileSystem {
public:
    /** One recorded call. */
    struct Call {
        FileCall call;
        int fd;
        std::thread::id thread;
    };

    explicit FaultyFileSystem(std::shared_ptr<IFileSystem> next)
        : ForwardingFileSystem(std::move(next)) {}

    /** The next `times` calls of `call` whose path contains `pathPart` (every path for an
     *  empty one; descriptor calls match any) fail with `error`. */
    void fail(FileCall call, int error, int times = 1, std::string pathPart = {}) {
        std::lock_guard<std::mutex> const lock(mutex_);
        faults_.push_back(Fault{call, error, times, std::move(pathPart), false});
    }
    /** As `fail`, for the calls on exactly `path` only. */
    void failOn(std::string path, FileCall call, int error, int times = 1) {
        std::lock_guard<std::mutex> const lock(mutex_);
        faults_.push_back(Fault{call, error, times, std::move(path), true});
    }
    /** Every call made so far. */
    std::vector<Call> calls() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return calls_;
    }
    /** The descriptors whose fsync failed. */
    std::vector<int> failedSyncs() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return failedSyncs_;
    }

    int open(std::string const& path, int flags, unsigned mode) override {
        if (int const error = fault(FileCall::Open, path, -1)) {
            return error;
        }
        return ForwardingFileSystem::open(path, flags, mode);
    }
    long read(int fd, char* buffer, std::size_t size) override {
        if (int const error = fault(FileCall::Read, {}, fd)) {
            return error;
        }
        return ForwardingFileSystem::read(fd, buffer, size);
    }
    long write(int fd, char const* data, std::size_t size) override {
        if (int const error = fault(FileCall::Write, {}, fd)) {
            return error;
        }
        return ForwardingFileSystem::write(fd, data, size);
    }
    int fsync(int fd) override {
        if (int const error = fault(FileCall::Fsync, {}, fd)) {
            std::lock_guard<std::mutex> const lock(mutex_);
            failedSyncs_.push_back(fd);
            return error;
        }
        return ForwardingFileSystem::fsync(fd);
    }
    int status(std::string const& path, FileStatus& status) override {
        if (int const error = fault(FileCall::Status, path, -1)) {
            return error;
        }
        return ForwardingFileSystem::status(path, status);
    }
    int rename(std::string const& from, std::string const& to) override {
        if (int const error = fault(FileCall::Rename, to, -1)) {
            return error;
        }
        return ForwardingFileSystem::rename(from, to);
    }

private:
    struct Fault {
        FileCall call;
        int error;
        int times;
        std::string pathPart;
        bool exact;
    };

    // Records the call; the negated error when it is to fail, else 0.
    int fault(FileCall call, std::string const& path, int fd) {
        std::lock_guard<std::mutex> const lock(mutex_);
        calls_.push_back(Call{call, fd, std::this_thread::get_id()});
        for (auto& planned : faults_) {
            bool const matches = planned.exact ? path == planned.pathPart || path.empty()
                                               : path.find(planned.pathPart) != std::string::npos;
            if (planned.call == call && planned.times > 0 && matches) {
                --planned.times;
                return -planned.error;
            }
        }
        return 0;
    }

    mutable std::mutex mutex_;
    std::vector<Fault> faults_;
    std::vector<Call> calls_;
    std::vector<int> failedSyncs_;
};

/** Passes every call to another layer; after `hold`, each write waits until `release`: a save
 *  that takes as long as the test wants, without sleeping. Records the threads that fsync. */
class GatedFileSystem final : public ForwardingFileSystem {
public:
    explicit GatedFileSystem(std::shared_ptr<IFileSystem> next)
        : ForwardingFileSystem(std::move(next)) {}

    /** Holds every later write until `release`. */
    void hold() {
        std::lock_guard<std::mutex> const lock(mutex_);
        open_ = false;
    }
    /** Waits until a write is held at the gate. */
    void waitUntilHeld() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return held_ > 0; });
    }
    /** Lets every write through from now on. */
    void release() {
        std::lock_guard<std::mutex> const lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }
    /** The threads that called fsync. */
    std::set<std::thread::id> syncingThreads() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return syncing_;
    }

    long write(int fd, char const* data, std::size_t size) override {
        {
            std::unique_lock<std::mutex> lock(mutex_);
            if (!open_) {
                ++held_;
                changed_.notify_all();
                changed_.wait(lock, [this] { return open_; });
            }
        }
        return ForwardingFileSystem::write(fd, data, size);
    }
    int fsync(int fd) override {
        {
            std::lock_guard<std::mutex> const lock(mutex_);
            syncing_.insert(std::this_thread::get_id());
        }
        return ForwardingFileSystem::fsync(fd);
    }

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    int held_ = 0;
    bool open_ = true;
    std::set<std::thread::id> syncing_;
};

}  // namespace yxfp_test
