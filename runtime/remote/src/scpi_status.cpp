#include <yxfrontpanel/runtime/scpi_status.h>

namespace yxfrontpanel::runtime::scpi {

void StatusRegister::setCondition(std::uint16_t value) {
    value &= 0x7fff;
    auto const rising = static_cast<std::uint16_t>(value & ~condition);
    auto const falling = static_cast<std::uint16_t>(condition & ~value);
    event |=
        static_cast<std::uint16_t>((rising & positiveTransition) | (falling & negativeTransition));
    condition = value;
}

void StatusModel::recordError(int code) {
    if (code == 0) {
        return;
    }
    std::uint8_t bit = DeviceError;
    if (code <= -100 && code > -200) {
        bit = CommandError;
    } else if (code <= -200 && code > -300) {
        bit = ExecutionError;
    } else if (code <= -400 && code > -500) {
        bit = QueryError;
    }
    setEvent(bit);
}

void StatusModel::setEvent(std::uint8_t bits) {
    std::lock_guard<std::mutex> const lock(mutex_);
    esr_ |= bits;
}

std::uint8_t StatusModel::takeEvents() {
    std::lock_guard<std::mutex> const lock(mutex_);
    std::uint8_t const value = esr_;
    esr_ = 0;
    return value;
}

void StatusModel::setEventEnable(std::uint8_t mask) {
    std::lock_guard<std::mutex> const lock(mutex_);
    ese_ = mask;
}

std::uint8_t StatusModel::eventEnable() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return ese_;
}

void StatusModel::setServiceRequestEnable(std::uint8_t mask) {
    std::lock_guard<std::mutex> const lock(mutex_);
    sre_ = static_cast<std::uint8_t>(mask & ~MasterSummary);
}

std::uint8_t StatusModel::serviceRequestEnable() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return sre_;
}

std::uint8_t StatusModel::statusByte(bool messageAvailable) const {
    std::lock_guard<std::mutex> const lock(mutex_);
    std::uint8_t stb = 0;
    if (questionable_.summary()) {
        stb |= QuestionableSummary;
    }
    if (messageAvailable) {
        stb |= MessageAvailable;
    }
    if ((esr_ & ese_) != 0) {
        stb |= EventSummary;
    }
    if (operation_.summary()) {
        stb |= OperationSummary;
    }
    if ((stb & sre_) != 0) {
        stb |= MasterSummary;
    }
    return stb;
}

void StatusModel::setCondition(Set set, std::uint16_t value) {
    with(set, [value](StatusRegister& r) { r.setCondition(value); });
}

void StatusModel::clearEvents() {
    std::lock_guard<std::mutex> const lock(mutex_);
    esr_ = 0;
    operation_.event = 0;
    questionable_.event = 0;
}

void StatusModel::preset() {
    std::lock_guard<std::mutex> const lock(mutex_);
    for (StatusRegister* r : {&operation_, &questionable_}) {
        r->enable = 0;
        r->positiveTransition = 0x7fff;
        r->negativeTransition = 0;
    }
}

}  // namespace yxfrontpanel::runtime::scpi
