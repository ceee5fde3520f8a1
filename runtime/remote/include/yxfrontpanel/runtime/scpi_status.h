#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <cstdint>
#include <mutex>

namespace yxfrontpanel::runtime::scpi {

/** One SCPI status register set (OPERation or QUEStionable): a condition register whose changes
 *  pass the positive and negative transition filters into the event register, which `enable`
 *  masks into one summary bit of the status byte. 15 bits; bit 15 is never set. */
struct YXFP_RUNTIME_EXPORT StatusRegister {
    /** The current state the application reports ("output regulating"). */
    std::uint16_t condition = 0;
    /** Which 0-to-1 changes of the condition are latched in `event`. */
    std::uint16_t positiveTransition = 0x7fff;
    /** Which 1-to-0 changes of the condition are latched in `event`. */
    std::uint16_t negativeTransition = 0;
    /** Latched transitions; cleared when read and by `*CLS`. */
    std::uint16_t event = 0;
    /** Which event bits set the summary bit. */
    std::uint16_t enable = 0;

    /** Sets the condition to `value` and latches the filtered transitions. */
    void setCondition(std::uint16_t value);
    /** Whether any enabled event bit is set. */
    bool summary() const { return (event & enable) != 0; }
};

/** The status registers of IEEE 488.2 and SCPI for one client: the standard event status
 *  register (ESR) and its enable (ESE), the service request enable (SRE), and the OPERation
 *  and QUEStionable registers. The status byte is computed when read. All members may be
 *  called from any thread. */
class YXFP_RUNTIME_EXPORT StatusModel {
public:
    /** Bits of the standard event status register. */
    enum EventBit : std::uint8_t {
        OperationComplete = 0x01,  ///< bit 0: `*OPC` ran
        QueryError = 0x04,         ///< bit 2: a -4xx error
        DeviceError = 0x08,        ///< bit 3: a -3xx or positive error
        ExecutionError = 0x10,     ///< bit 4: a -2xx error
        CommandError = 0x20,       ///< bit 5: a -1xx error
        PowerOn = 0x80,            ///< bit 7: power on (never set here)
    };
    /** Bits of the status byte. */
    enum StatusBit : std::uint8_t {
        QuestionableSummary = 0x08,  ///< bit 3: QUEStionable summary
        MessageAvailable = 0x10,     ///< bit 4: MAV, output waits
        EventSummary = 0x20,         ///< bit 5: ESB, an enabled ESR bit
        MasterSummary = 0x40,        ///< bit 6: MSS/RQS, an enabled status bit
        OperationSummary = 0x80,     ///< bit 7: OPERation summary
    };

    /** Sets the ESR bit for an error number: -1xx command, -2xx execution, -3xx and positive
     *  device-specific, -4xx query error. 0 sets nothing. */
    void recordError(int code);
    /** Sets `bits` in the ESR. */
    void setEvent(std::uint8_t bits);
    /** Returns the ESR and clears it (`*ESR?`). */
    std::uint8_t takeEvents();
    /** The event status enable (`*ESE`). */
    void setEventEnable(std::uint8_t mask);
    /** The event status enable. */
    std::uint8_t eventEnable() const;
    /** The service request enable (`*SRE`); bit 6 is ignored. */
    void setServiceRequestEnable(std::uint8_t mask);
    /** The service request enable. */
    std::uint8_t serviceRequestEnable() const;
    /** The status byte: `messageAvailable` is MAV (the transport knows whether output waits),
     *  ESB, the OPER and QUES summaries, and MSS (bit 6) when an enabled bit is set. */
    std::uint8_t statusByte(bool messageAvailable) const;

    /** Which of the two SCPI register sets. */
    enum class Set {
        Operation,    ///< STATus:OPERation
        Questionable  ///< STATus:QUEStionable
    };
    /** Runs `f` on the register set under the model's lock; `f` returns what it wants. */
    template <typename F>
    auto with(Set set, F&& f) {
        std::lock_guard<std::mutex> const lock(mutex_);
        return f(set == Set::Operation ? operation_ : questionable_);
    }
    /** Sets the application's condition bits of `set` (for example "over-temperature"). */
    void setCondition(Set set, std::uint16_t value);

    /** `*CLS`: clears the ESR and both event registers; enables stay. */
    void clearEvents();
    /** `STATus:PRESet`: the SCPI register sets' enables to 0 and transition filters to their
     *  defaults (positive all, negative none). ESE and SRE stay. */
    void preset();

private:
    mutable std::mutex mutex_;
    std::uint8_t esr_ = 0;
    std::uint8_t ese_ = 0;
    std::uint8_t sre_ = 0;
    StatusRegister operation_;
    StatusRegister questionable_;
};

}  // namespace yxfrontpanel::runtime::scpi
