#include "device_errors.h"

#include <utility>

namespace frontpanelsim {

std::size_t DeviceErrors::add(Sink sink) {
    std::lock_guard<std::mutex> const lock(mutex_);
    std::size_t const id = nextId_++;
    sinks_.emplace(id, std::move(sink));
    return id;
}

void DeviceErrors::remove(std::size_t id) {
    std::lock_guard<std::mutex> const lock(mutex_);
    sinks_.erase(id);
}

void DeviceErrors::report(int code, std::string const& text) const {
    std::lock_guard<std::mutex> const lock(mutex_);
    for (auto const& [id, sink] : sinks_) {
        sink(code, text);
    }
}

}  // namespace frontpanelsim
