#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_status.h>

#include <cstdint>
#include <mutex>
#include <vector>

namespace yxfrontpanel::runtime::scpi {

struct Session;

/** What belongs to the instrument rather than to one client: the application's condition bits
 *  of the OPERation and QUEStionable registers and the errors the instrument reports by
 *  itself. Every session opened on it (every connection, every VXI-11 link) sees them: a
 *  condition change passes through each session's own transition filters into its own event
 *  register, a reported error goes into each session's error queue. A session opened later
 *  starts with the current condition and no event. All members may be called from any thread. */
class YXFP_RUNTIME_EXPORT DeviceStatus {
public:
    DeviceStatus() = default;
    DeviceStatus(DeviceStatus const&) = delete;
    DeviceStatus& operator=(DeviceStatus const&) = delete;

    /** Sets the condition bits of `set` selected by `mask` to those of `bits` (the others stay)
     *  in the instrument and in every session. */
    void setCondition(StatusModel::Set set, std::uint16_t mask, std::uint16_t bits);
    /** The instrument's condition bits of `set`. */
    std::uint16_t condition(StatusModel::Set set) const;
    /** Puts `entry` into every session's error queue (which sets its ESR bit there). */
    void reportError(ErrorEntry const& entry);

    /** Makes `session` see the instrument's state: its condition registers take the current
     *  conditions without an event. By `Session`'s constructor. */
    void attach(Session& session);
    /** Forgets `session`. By `Session`'s destructor. */
    void detach(Session& session);

private:
    mutable std::mutex mutex_;
    std::uint16_t operation_ = 0;
    std::uint16_t questionable_ = 0;
    std::vector<Session*> sessions_;
};

}  // namespace yxfrontpanel::runtime::scpi
