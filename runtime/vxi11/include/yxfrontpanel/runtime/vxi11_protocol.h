#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/vxi11_instrument.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace yxfrontpanel::runtime {

/** The RPC record marking of ONC RPC over TCP: collects fragments into whole records. */
class YXFP_RUNTIME_EXPORT RpcRecordReader {
public:
    /** Refuses records longer than `maxRecordBytes`. */
    explicit RpcRecordReader(std::size_t maxRecordBytes);
    /** Adds received bytes; false when a record grows past the limit (close the connection). */
    bool feed(std::string_view bytes);
    /** The next whole record, if one arrived. */
    std::optional<std::string> next();

private:
    std::size_t maxRecordBytes_;
    std::string buffer_;
    std::string record_;
    std::vector<std::string> ready_;
};

/** The record mark that frames a record of `recordBytes` as one last fragment. */
YXFP_RUNTIME_EXPORT std::array<char, 4> rpcRecordMark(std::size_t recordBytes);

/** Frames `record` as one last fragment. */
YXFP_RUNTIME_EXPORT std::string rpcFrame(std::string_view record);

/** The VXI-11 error codes a client sees. */
enum class Vxi11Error : std::int32_t {
    None = 0,            ///< no error
    Syntax = 1,          ///< syntax error
    NotAccessible = 3,   ///< device not accessible
    InvalidLink = 4,     ///< invalid link identifier
    Parameter = 5,       ///< parameter error
    NotSupported = 8,    ///< operation not supported
    OutOfResources = 9,  ///< out of resources (no more links)
    Locked = 11,         ///< device locked by another link
    NoLock = 12,         ///< no lock held by this link
    IoTimeout = 15,      ///< I/O timeout
    Abort = 23,          ///< abort (the server stops)
};

/** The VXI-11 device (links, locks, buffered input and output) and its RPC calls, without
 *  sockets: the server hands it each call record and sends back the reply record. Thread-safe:
 *  each connection calls from its own thread; a read waits for its response (up to its
 *  io_timeout) without holding up the others. */
class YXFP_RUNTIME_EXPORT Vxi11Device {
public:
    /** Links open sessions from `instruments`; at most `maxLinks` at once. A read or a lock
     *  waits at most `maxWait`, whatever timeout the client asks for. */
    Vxi11Device(Vxi11InstrumentFactory instruments, std::size_t maxLinks,
                std::chrono::milliseconds maxWait = std::chrono::minutes{10});
    ~Vxi11Device();
    Vxi11Device(Vxi11Device const&) = delete;
    Vxi11Device& operator=(Vxi11Device const&) = delete;

    /** The core channel port that GETPORT answers for the core program. */
    void setCorePort(std::uint16_t port);
    /** Answers one RPC call record of connection `connection` (core channel, abort channel or
     *  the portmapper's GETPORT); empty when the record is not a call (nothing is sent). */
    std::optional<std::string> call(std::string_view record, std::uint64_t connection);
    /** Destroys the links `connection` created (its socket closed). */
    void disconnect(std::uint64_t connection);
    /** Wakes every waiting read and lock and refuses further waits (the server stops). */
    void shutdown();
    /** The number of open links. */
    std::size_t linkCount() const;

private:
    class Impl;
    std::shared_ptr<Impl> impl_;
};

}  // namespace yxfrontpanel::runtime
