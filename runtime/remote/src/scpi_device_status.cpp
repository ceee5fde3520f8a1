#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_device_status.h>

#include <algorithm>

namespace yxfrontpanel::runtime::scpi {

void DeviceStatus::setCondition(StatusModel::Set set, std::uint16_t mask, std::uint16_t bits) {
    std::lock_guard<std::mutex> const lock(mutex_);
    std::uint16_t& condition = set == StatusModel::Set::Operation ? operation_ : questionable_;
    condition = static_cast<std::uint16_t>(((condition & ~mask) | (bits & mask)) & 0x7fff);
    // Each session keeps its own bits outside `mask` and latches its own transitions.
    for (Session* session : sessions_) {
        session->status.with(set, [mask, bits](StatusRegister& r) {
            r.setCondition(static_cast<std::uint16_t>((r.condition & ~mask) | (bits & mask)));
        });
    }
}

std::uint16_t DeviceStatus::condition(StatusModel::Set set) const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return set == StatusModel::Set::Operation ? operation_ : questionable_;
}

void DeviceStatus::reportError(ErrorEntry const& entry) {
    std::lock_guard<std::mutex> const lock(mutex_);
    for (Session* session : sessions_) {
        session->errors.push(entry);
    }
}

void DeviceStatus::attach(Session& session) {
    std::lock_guard<std::mutex> const lock(mutex_);
    std::uint16_t const operation = operation_;
    std::uint16_t const questionable = questionable_;
    session.status.with(StatusModel::Set::Operation,
                        [operation](StatusRegister& r) { r.condition = operation; });
    session.status.with(StatusModel::Set::Questionable,
                        [questionable](StatusRegister& r) { r.condition = questionable; });
    sessions_.push_back(&session);
}

void DeviceStatus::detach(Session& session) {
    std::lock_guard<std::mutex> const lock(mutex_);
    sessions_.erase(std::remove(sessions_.begin(), sessions_.end(), &session), sessions_.end());
}

}  // namespace yxfrontpanel::runtime::scpi
