#include <yxfrontpanel/runtime/vxi11_protocol.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <map>
#include <mutex>
#include <utility>

#include "vxi11_rpc.h"
#include <rpc/rpc.h>

namespace yxfrontpanel::runtime {

namespace {

constexpr std::uint32_t kPortmapperProgram = 100000;
constexpr std::uint32_t kPortmapperVersion = 2;
constexpr std::uint32_t kPortmapperGetPort = 3;
constexpr std::uint32_t kIpProtoTcp = 6;

// Flags of the core channel's calls.
constexpr long kFlagWaitLock = 1;
constexpr long kFlagEnd = 8;
constexpr long kFlagTermChar = 0x80;
// Reasons a read ended.
constexpr long kReasonRequestCount = 1;
constexpr long kReasonTermChar = 2;
constexpr long kReasonEnd = 4;
// What one read or write carries at most (Create_LinkResp.maxRecvSize).
constexpr std::uint32_t kMaxReceiveSize = 64 * 1024;

enum AcceptStat : std::uint32_t {
    Success = 0,
    ProgramUnavailable = 1,
    ProgramMismatch = 2,
    ProcedureUnavailable = 3,
    GarbageArguments = 4,
};

/** One link: its session, the bytes written so far without END, and the responses not read. */
struct Link {
    std::uint64_t connection = 0;
    std::unique_ptr<Vxi11Instrument> instrument;
    std::string input;
    std::string output;
    unsigned pending = 0;
    unsigned generation = 0;
};

/** An XDR stream over a memory buffer, destroyed with its scope. */
class MemoryXdr {
public:
    MemoryXdr(char* data, std::size_t size, xdr_op op) {
        xdrmem_create(&xdr_, data, static_cast<u_int>(size), op);
    }
    ~MemoryXdr() { xdr_destroy(&xdr_); }
    MemoryXdr(MemoryXdr const&) = delete;
    MemoryXdr& operator=(MemoryXdr const&) = delete;
    XDR* get() { return &xdr_; }
    std::size_t position() { return xdr_getpos(&xdr_); }

private:
    XDR xdr_{};
};

/** Encodes the header of an accepted reply to `xid` and, for success, `result` with `proc`
 *  into `xdr`; false when it does not fit. */
bool encodeReply(XDR* xdr, std::uint32_t xid, AcceptStat stat, xdrproc_t proc, void* result) {
    std::uint32_t fields[] = {
        xid, 1 /* REPLY */, 0 /* MSG_ACCEPTED */, 0 /* AUTH_NONE */, 0 /* no verifier body */,
        stat};
    for (std::uint32_t& field : fields) {
        if (!xdr_u_int32_t(xdr, &field)) {
            return false;
        }
    }
    if (stat == ProgramMismatch) {
        std::uint32_t low = 1;
        std::uint32_t high = 1;
        if (!xdr_u_int32_t(xdr, &low) || !xdr_u_int32_t(xdr, &high)) {
            return false;
        }
    }
    return stat != Success || proc == nullptr || proc(xdr, result);
}

/** Encodes the accepted reply header and, for success, `result` with `proc`. */
std::string reply(std::uint32_t xid, AcceptStat stat, xdrproc_t proc, void* result) {
    // Most replies (every one but a long read) fit a small buffer on the stack: encoded once,
    // copied once. A longer one is sized first, without encoding it twice into memory.
    std::array<char, 512> small{};
    {
        MemoryXdr xdr(small.data(), small.size(), XDR_ENCODE);
        if (encodeReply(xdr.get(), xid, stat, proc, result)) {
            return std::string(small.data(), xdr.position());
        }
    }
    std::size_t const resultBytes =
        stat == Success && proc != nullptr ? xdr_sizeof(proc, result) : 0;
    std::string buffer(std::size_t{8} * 4 + resultBytes, '\0');
    MemoryXdr xdr(buffer.data(), buffer.size(), XDR_ENCODE);
    if (!encodeReply(xdr.get(), xid, stat, proc, result)) {
        return {};
    }
    buffer.resize(xdr.position());
    return buffer;
}

/** Decodes arguments with `proc` into `args` and frees them when done. */
template <typename T>
class Arguments {
public:
    explicit Arguments(xdrproc_t proc) : proc_(proc) {}
    ~Arguments() { xdr_free(proc_, reinterpret_cast<char*>(&value)); }
    Arguments(Arguments const&) = delete;
    Arguments& operator=(Arguments const&) = delete;
    bool decode(XDR* xdr) { return proc_(xdr, &value) != 0; }
    T value{};

private:
    xdrproc_t proc_;
};

}  // namespace

class Vxi11Device::Impl {
public:
    Impl(Vxi11InstrumentFactory instruments, std::size_t maxLinks,
         std::chrono::milliseconds maxWait)
        : instruments_(std::move(instruments)), maxLinks_(maxLinks), maxWait_(maxWait) {}

    std::optional<std::string> call(std::string_view record, std::uint64_t connection) {
        // Decoding only reads the buffer: the record is not copied.
        MemoryXdr xdr(const_cast<char*>(record.data()), record.size(), XDR_DECODE);
        std::uint32_t header[6] = {};
        for (std::uint32_t& field : header) {
            if (!xdr_u_int32_t(xdr.get(), &field)) {
                return std::nullopt;
            }
        }
        std::uint32_t const xid = header[0];
        if (header[1] != 0 /* CALL */) {
            return std::nullopt;
        }
        // Credentials and verifier: any flavour, their bodies (400 bytes at most) skipped.
        for (int i = 0; i < 2; ++i) {
            std::uint32_t flavour = 0;
            std::uint32_t length = 0;
            if (!xdr_u_int32_t(xdr.get(), &flavour) || !xdr_u_int32_t(xdr.get(), &length) ||
                length > 400 ||
                !xdr_setpos(xdr.get(),
                            static_cast<u_int>(xdr.position() + ((length + 3U) & ~3U)))) {
                return std::nullopt;
            }
        }
        std::uint32_t const program = header[3];
        std::uint32_t const version = header[4];
        std::uint32_t const procedure = header[5];
        if (header[2] != 2) {
            return std::nullopt;
        }
        if (program == kPortmapperProgram) {
            return portmapper(xid, version, procedure, xdr.get());
        }
        if (program != DEVICE_CORE && program != DEVICE_ASYNC) {
            return reply(xid, ProgramUnavailable, nullptr, nullptr);
        }
        if (version != 1) {
            return reply(xid, ProgramMismatch, nullptr, nullptr);
        }
        if (procedure == 0) {
            return reply(xid, Success, nullptr, nullptr);
        }
        if (program == DEVICE_ASYNC) {
            return answer<Device_Link, Device_Error>(
                xid, xdr.get(), reinterpret_cast<xdrproc_t>(xdr_Device_Link),
                reinterpret_cast<xdrproc_t>(xdr_Device_Error), [](Device_Link&) {
                    return Device_Error{static_cast<long>(Vxi11Error::NotSupported)};
                });
        }
        return core(xid, procedure, xdr.get(), connection);
    }

    void disconnect(std::uint64_t connection) {
        std::lock_guard<std::mutex> const lock(mutex_);
        for (auto link = links_.begin(); link != links_.end();) {
            if (link->second->connection == connection) {
                release(link->first);
                link = links_.erase(link);
            } else {
                ++link;
            }
        }
        changed_.notify_all();
    }

    void shutdown() {
        std::lock_guard<std::mutex> const lock(mutex_);
        stopping_ = true;
        changed_.notify_all();
    }

    std::size_t linkCount() const {
        std::lock_guard<std::mutex> const lock(mutex_);
        return links_.size();
    }

    std::atomic<std::uint16_t> corePort{0};

private:
    template <typename Args, typename Result, typename Handler>
    std::string answer(std::uint32_t xid, XDR* xdr, xdrproc_t decode, xdrproc_t encode,
                       Handler handler) {
        Arguments<Args> args(decode);
        if (!args.decode(xdr)) {
            return reply(xid, GarbageArguments, nullptr, nullptr);
        }
        Result result = handler(args.value);
        return reply(xid, Success, encode, &result);
    }

    std::string portmapper(std::uint32_t xid, std::uint32_t version, std::uint32_t procedure,
                           XDR* xdr) {
        if (version != kPortmapperVersion) {
            std::string buffer = reply(xid, ProgramMismatch, nullptr, nullptr);
            // The versions this portmapper speaks: 2 only.
            auto* p = reinterpret_cast<unsigned char*>(buffer.data() + buffer.size() - 8);
            p[3] = 2;
            p[7] = 2;
            return buffer;
        }
        if (procedure == 0) {
            return reply(xid, Success, nullptr, nullptr);
        }
        if (procedure != kPortmapperGetPort) {
            return reply(xid, ProcedureUnavailable, nullptr, nullptr);
        }
        std::uint32_t mapping[4] = {};
        for (std::uint32_t& field : mapping) {
            if (!xdr_u_int32_t(xdr, &field)) {
                return reply(xid, GarbageArguments, nullptr, nullptr);
            }
        }
        std::uint32_t port = 0;
        if (mapping[0] == DEVICE_CORE && mapping[1] == DEVICE_CORE_VERSION &&
            mapping[2] == kIpProtoTcp) {
            port = corePort.load();
        }
        return reply(xid, Success, reinterpret_cast<xdrproc_t>(xdr_u_int32_t), &port);
    }

    std::string core(std::uint32_t xid, std::uint32_t procedure, XDR* xdr,
                     std::uint64_t connection) {
        auto const generic = reinterpret_cast<xdrproc_t>(xdr_Device_GenericParms);
        auto const error = reinterpret_cast<xdrproc_t>(xdr_Device_Error);
        auto const linkId = reinterpret_cast<xdrproc_t>(xdr_Device_Link);
        switch (procedure) {
            case create_link:
                return answer<Create_LinkParms, Create_LinkResp>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Create_LinkParms),
                    reinterpret_cast<xdrproc_t>(xdr_Create_LinkResp),
                    [&](Create_LinkParms& parms) { return createLink(parms, connection); });
            case device_write:
                return answer<Device_WriteParms, Device_WriteResp>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Device_WriteParms),
                    reinterpret_cast<xdrproc_t>(xdr_Device_WriteResp),
                    [&](Device_WriteParms& parms) { return write(parms); });
            case device_read:
                return answer<Device_ReadParms, Device_ReadResp>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Device_ReadParms),
                    reinterpret_cast<xdrproc_t>(xdr_Device_ReadResp),
                    [&](Device_ReadParms& parms) { return read(parms); });
            case device_readstb:
                return answer<Device_GenericParms, Device_ReadStbResp>(
                    xid, xdr, generic, reinterpret_cast<xdrproc_t>(xdr_Device_ReadStbResp),
                    [&](Device_GenericParms& parms) { return readStb(parms); });
            case device_trigger:
            case device_clear:
            case device_remote:
            case device_local:
                return answer<Device_GenericParms, Device_Error>(
                    xid, xdr, generic, error,
                    [&](Device_GenericParms& parms) { return genericCall(procedure, parms); });
            case device_lock:
                return answer<Device_LockParms, Device_Error>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Device_LockParms), error,
                    [&](Device_LockParms& parms) { return lockDevice(parms); });
            case device_unlock:
                return answer<Device_Link, Device_Error>(
                    xid, xdr, linkId, error, [&](Device_Link& lid) { return unlock(lid); });
            case destroy_link:
                return answer<Device_Link, Device_Error>(
                    xid, xdr, linkId, error, [&](Device_Link& lid) { return destroyLink(lid); });
            case device_enable_srq:
                return answer<Device_EnableSrqParms, Device_Error>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Device_EnableSrqParms), error,
                    [](Device_EnableSrqParms&) { return failure(Vxi11Error::NotSupported); });
            case create_intr_chan:
                return answer<Device_RemoteFunc, Device_Error>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Device_RemoteFunc), error,
                    [](Device_RemoteFunc&) { return failure(Vxi11Error::NotSupported); });
            case destroy_intr_chan: {
                Device_Error result = failure(Vxi11Error::NotSupported);
                return reply(xid, Success, error, &result);
            }
            case device_docmd:
                return answer<Device_DocmdParms, Device_DocmdResp>(
                    xid, xdr, reinterpret_cast<xdrproc_t>(xdr_Device_DocmdParms),
                    reinterpret_cast<xdrproc_t>(xdr_Device_DocmdResp), [](Device_DocmdParms&) {
                        Device_DocmdResp result{};
                        result.error = static_cast<long>(Vxi11Error::NotSupported);
                        return result;
                    });
            default:
                return reply(xid, ProcedureUnavailable, nullptr, nullptr);
        }
    }

    static Device_Error failure(Vxi11Error code) {
        return Device_Error{static_cast<Device_ErrorCode>(code)};
    }

    Create_LinkResp createLink(Create_LinkParms const& parms, std::uint64_t connection) {
        Create_LinkResp result{};
        result.maxRecvSize = kMaxReceiveSize;
        std::unique_lock<std::mutex> lock(mutex_);
        if (links_.size() >= maxLinks_) {
            result.error = static_cast<long>(Vxi11Error::OutOfResources);
            return result;
        }
        long const id = nextLink_++;
        auto link = std::make_unique<Link>();
        link->connection = connection;
        lock.unlock();
        link->instrument = instruments_();
        lock.lock();
        links_.emplace(id, std::move(link));
        result.lid = id;
        if (parms.lockDevice) {
            result.error = static_cast<long>(acquire(lock, id, kFlagWaitLock, parms.lock_timeout));
        }
        return result;
    }

    Device_WriteResp write(Device_WriteParms const& parms) {
        Device_WriteResp result{};
        std::unique_lock<std::mutex> lock(mutex_);
        Link* link = linkFor(result, parms.lid);
        if (link == nullptr) {
            return result;
        }
        if (Vxi11Error const locked = acquireFor(lock, parms.lid, parms.flags, parms.lock_timeout);
            locked != Vxi11Error::None) {
            result.error = static_cast<long>(locked);
            return result;
        }
        link = find(parms.lid);
        if (link == nullptr) {
            result.error = static_cast<long>(Vxi11Error::InvalidLink);
            return result;
        }
        link->input.append(parms.data.data_val, parms.data.data_len);
        result.size = parms.data.data_len;
        if ((parms.flags & kFlagEnd) == 0) {
            return result;
        }
        std::string message = std::move(link->input);
        link->input.clear();
        ++link->pending;
        unsigned const generation = link->generation;
        long const id = parms.lid;
        Vxi11Instrument* instrument = link->instrument.get();
        lock.unlock();
        // The response lands in the link's output unless the link was cleared or destroyed.
        std::weak_ptr<Impl> const self = weak_;
        instrument->execute(std::move(message),
                            [self, id, generation](std::string const& response) {
                                auto impl = self.lock();
                                if (!impl) {
                                    return;
                                }
                                std::lock_guard<std::mutex> const guard(impl->mutex_);
                                Link* target = impl->find(id);
                                if (target != nullptr && target->generation == generation) {
                                    target->output += response;
                                    --target->pending;
                                }
                                impl->changed_.notify_all();
                            });
        return result;
    }

    Device_ReadResp read(Device_ReadParms const& parms) {
        Device_ReadResp result{};
        std::unique_lock<std::mutex> lock(mutex_);
        if (find(parms.lid) == nullptr) {
            result.error = static_cast<long>(Vxi11Error::InvalidLink);
            return result;
        }
        if (Vxi11Error const locked = acquireFor(lock, parms.lid, parms.flags, parms.lock_timeout);
            locked != Vxi11Error::None) {
            result.error = static_cast<long>(locked);
            return result;
        }
        long const id = parms.lid;
        bool const ready = changed_.wait_for(lock, millis(parms.io_timeout), [&] {
            Link* link = find(id);
            return stopping_ || link == nullptr || !link->output.empty();
        });
        Link* link = find(id);
        if (link == nullptr) {
            result.error = static_cast<long>(Vxi11Error::InvalidLink);
            return result;
        }
        if (!ready || link->output.empty()) {
            result.error = static_cast<long>(Vxi11Error::IoTimeout);
            return result;
        }
        std::size_t count = std::min<std::size_t>(
            {link->output.size(), std::max<unsigned long>(parms.requestSize, 1), kMaxReceiveSize});
        long reason = 0;
        if ((parms.flags & kFlagTermChar) != 0) {
            std::size_t const term = link->output.find(parms.termChar);
            if (term != std::string::npos && term < count) {
                count = term + 1;
                reason |= kReasonTermChar;
            }
        }
        if (count == link->output.size()) {
            reason |= kReasonEnd;
        } else if (count == parms.requestSize) {
            reason |= kReasonRequestCount;
        }
        readBuffer_.assign(link->output, 0, count);
        link->output.erase(0, count);
        result.reason = reason;
        result.data.data_len = static_cast<u_int>(count);
        result.data.data_val = readBuffer_.data();
        return result;
    }

    Device_ReadStbResp readStb(Device_GenericParms const& parms) {
        Device_ReadStbResp result{};
        std::unique_lock<std::mutex> lock(mutex_);
        Link* link = linkFor(result, parms.lid);
        if (link == nullptr) {
            return result;
        }
        result.stb = static_cast<u_char>(link->instrument->statusByte(!link->output.empty()));
        return result;
    }

    Device_Error genericCall(std::uint32_t procedure, Device_GenericParms const& parms) {
        std::unique_lock<std::mutex> lock(mutex_);
        if (find(parms.lid) == nullptr) {
            return failure(Vxi11Error::InvalidLink);
        }
        if (Vxi11Error const locked = acquireFor(lock, parms.lid, parms.flags, parms.lock_timeout);
            locked != Vxi11Error::None) {
            return failure(locked);
        }
        Link* link = find(parms.lid);
        if (link == nullptr) {
            return failure(Vxi11Error::InvalidLink);
        }
        switch (procedure) {
            case device_clear:
                link->input.clear();
                link->output.clear();
                link->pending = 0;
                ++link->generation;
                link->instrument->clear();
                changed_.notify_all();
                return failure(Vxi11Error::None);
            case device_trigger:
                return failure(link->instrument->trigger() ? Vxi11Error::None
                                                           : Vxi11Error::NotSupported);
            default:
                // Remote and local: the panel's mode follows its own commands.
                return failure(Vxi11Error::None);
        }
    }

    Device_Error lockDevice(Device_LockParms const& parms) {
        std::unique_lock<std::mutex> lock(mutex_);
        if (find(parms.lid) == nullptr) {
            return failure(Vxi11Error::InvalidLink);
        }
        return failure(acquire(lock, parms.lid, parms.flags, parms.lock_timeout));
    }

    Device_Error unlock(long lid) {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (find(lid) == nullptr) {
            return failure(Vxi11Error::InvalidLink);
        }
        if (lockOwner_ != lid) {
            return failure(Vxi11Error::NoLock);
        }
        lockOwner_ = 0;
        changed_.notify_all();
        return failure(Vxi11Error::None);
    }

    Device_Error destroyLink(long lid) {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto const link = links_.find(lid);
        if (link == links_.end()) {
            return failure(Vxi11Error::InvalidLink);
        }
        release(lid);
        links_.erase(link);
        changed_.notify_all();
        return failure(Vxi11Error::None);
    }

    /** Takes the device lock for `lid`, waiting up to the lock timeout when WAITLOCK is set. */
    Vxi11Error acquire(std::unique_lock<std::mutex>& lock, long lid, long flags,
                       unsigned long timeout) {
        auto const free = [&] { return stopping_ || lockOwner_ == 0 || lockOwner_ == lid; };
        if (!free()) {
            if ((flags & kFlagWaitLock) == 0 || !changed_.wait_for(lock, millis(timeout), free)) {
                return Vxi11Error::Locked;
            }
        }
        if (stopping_) {
            return Vxi11Error::Abort;
        }
        if (find(lid) == nullptr) {
            return Vxi11Error::InvalidLink;
        }
        lockOwner_ = lid;
        return Vxi11Error::None;
    }

    /** Waits (as WAITLOCK says) until no other link holds the lock, without taking it. */
    Vxi11Error acquireFor(std::unique_lock<std::mutex>& lock, long lid, long flags,
                          unsigned long timeout) {
        auto const free = [&] { return stopping_ || lockOwner_ == 0 || lockOwner_ == lid; };
        if (free()) {
            return Vxi11Error::None;
        }
        if ((flags & kFlagWaitLock) == 0 || !changed_.wait_for(lock, millis(timeout), free)) {
            return Vxi11Error::Locked;
        }
        return stopping_ ? Vxi11Error::Abort : Vxi11Error::None;
    }

    void release(long lid) {
        if (lockOwner_ == lid) {
            lockOwner_ = 0;
        }
    }

    /** A client's timeout in milliseconds, capped at the longest wait. */
    std::chrono::milliseconds millis(unsigned long value) const {
        return std::min(std::chrono::milliseconds{static_cast<std::int64_t>(
                            std::min<unsigned long>(value, 0x7FFFFFFFUL))},
                        maxWait_);
    }

    Link* find(long lid) {
        auto const link = links_.find(lid);
        return link == links_.end() ? nullptr : link->second.get();
    }

    /** The link `lid`, or null with `result.error` set to "invalid link identifier". */
    template <class Result>
    Link* linkFor(Result& result, long lid) {
        Link* const link = find(lid);
        if (link == nullptr) {
            result.error = static_cast<long>(Vxi11Error::InvalidLink);
        }
        return link;
    }

    Vxi11InstrumentFactory instruments_;
    std::size_t maxLinks_;
    std::chrono::milliseconds maxWait_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::map<long, std::unique_ptr<Link>> links_;
    long nextLink_ = 1;
    long lockOwner_ = 0;
    bool stopping_ = false;
    // Holds a read's bytes until its reply is encoded (under the caller's thread).
    static thread_local std::string readBuffer_;

public:
    std::weak_ptr<Impl> weak_;
};

thread_local std::string Vxi11Device::Impl::readBuffer_;

Vxi11Device::Vxi11Device(Vxi11InstrumentFactory instruments, std::size_t maxLinks,
                         std::chrono::milliseconds maxWait)
    : impl_(std::make_shared<Impl>(std::move(instruments), maxLinks, maxWait)) {
    if (!impl_) {
        return;
    }
    impl_->weak_ = impl_;
}

Vxi11Device::~Vxi11Device() { impl_->shutdown(); }

void Vxi11Device::setCorePort(std::uint16_t port) { impl_->corePort.store(port); }

std::optional<std::string> Vxi11Device::call(std::string_view record, std::uint64_t connection) {
    return impl_->call(record, connection);
}

void Vxi11Device::disconnect(std::uint64_t connection) { impl_->disconnect(connection); }

void Vxi11Device::shutdown() { impl_->shutdown(); }

std::size_t Vxi11Device::linkCount() const { return impl_->linkCount(); }

}  // namespace yxfrontpanel::runtime
