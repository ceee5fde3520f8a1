#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/scpi_commands.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace yxfrontpanel::runtime {

/** What one VXI-11 link talks to: a per-link session of the instrument's command language.
 *  The VXI-11 server calls it from its connection threads. */
class YXFP_RUNTIME_EXPORT Vxi11Instrument {
public:
    virtual ~Vxi11Instrument();
    /** Runs one program message (what the client wrote up to END) and calls `done` once, from
     *  any thread, with the response bytes (empty when the message had no query). */
    virtual void execute(std::string message, std::function<void(std::string)> done) = 0;
    /** The status byte (device_readstb); `messageAvailable` is MAV: the server holds a
     *  response of this link not read yet. By default MAV alone. */
    virtual std::uint8_t statusByte(bool messageAvailable) { return messageAvailable ? 0x10 : 0; }
    /** Device clear: drops the session's pending work. */
    virtual void clear() {}
    /** Group execute trigger; false when the instrument has no trigger. */
    virtual bool trigger() { return false; }
};

/** Makes one instrument session per link. */
using Vxi11InstrumentFactory = std::function<std::unique_ptr<Vxi11Instrument>()>;

/** Runs a task on the thread that owns the commands' targets; false when it refuses. */
using Vxi11Executor = std::function<bool(std::function<void()>)>;

/** Sessions running SCPI messages through `table` on `executor`'s thread, with an error queue
 *  and status registers per link (attached to the table's `deviceStatus`); the responses of one
 *  message are joined with ';' and end with a newline. */
YXFP_RUNTIME_EXPORT Vxi11InstrumentFactory scpiInstruments(
    std::shared_ptr<scpi::CommandTable const> const& table, Vxi11Executor const& executor);

}  // namespace yxfrontpanel::runtime
