#include "measurement_feed.h"

#include <utility>

namespace frontpanelsim {

namespace {

constexpr char const* kPublicationKey = "measurement";

}  // namespace

AcquisitionThread::AcquisitionThread(std::chrono::milliseconds samplePeriod)
    : samplePeriod_(samplePeriod) {}

AcquisitionThread::~AcquisitionThread() { detach(); }

void AcquisitionThread::attach(SimContext const& context) {
    stopping_ = false;
    thread_ = std::thread([this, context] { acquire(context); });
}

void AcquisitionThread::detach() noexcept {
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_all();
    if (thread_.joinable()) {
        thread_.join();
    }
}

void AcquisitionThread::acquire(SimContext context) {
    auto const start = std::chrono::steady_clock::now();
    std::unique_lock<std::mutex> lock(mutex_);
    while (!wake_.wait_for(lock, samplePeriod_, [this] { return stopping_; })) {
        auto const elapsed = std::chrono::steady_clock::now() - start;
        auto const sample = static_cast<unsigned>(elapsed / kMeasurementPeriod) + 1;
        lock.unlock();
        context.panel.publish(kPublicationKey, context.app.acquire(sample));
        lock.lock();
    }
}

ClockedAcquisition::~ClockedAcquisition() { detach(); }

void ClockedAcquisition::attach(SimContext const& context) {
    panel_ = &context.panel;
    timer_ = context.panel.every(kMeasurementPeriod, [&app = context.app, sample = 0U]() mutable {
        app.acquire(++sample)();
    });
}

void ClockedAcquisition::detach() noexcept {
    if (panel_ != nullptr) {
        panel_->cancel(timer_);
        panel_ = nullptr;
    }
}

}  // namespace frontpanelsim
