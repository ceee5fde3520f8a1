#pragma once

#include <yxfrontpanel/runtime/panel.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "attachment.h"

namespace frontpanelsim {

/** The demo measures every half second: one `tick` of a key script. */
constexpr std::chrono::milliseconds kMeasurementPeriod{500};
/** A run in real time samples 100 times a second, faster than the panel draws: the panel's
 *  coalescing shows the newest sample once per frame. */
constexpr std::chrono::milliseconds kSamplePeriod{10};

/** The measurement of a run in real time: a thread of its own samples the instrument every
 *  `samplePeriod` and publishes each update to the panel under one key, so that the panel
 *  shows the newest at most once per frame. Sample n is taken in the n-th half second. */
class AcquisitionThread : public Attachment {
public:
    explicit AcquisitionThread(std::chrono::milliseconds samplePeriod);
    ~AcquisitionThread() override;

    void attach(SimContext const& context) override;
    void detach() noexcept override;

private:
    void acquire(SimContext context);

    std::chrono::milliseconds samplePeriod_;
    std::mutex mutex_;
    std::condition_variable wake_;
    bool stopping_ = false;
    std::thread thread_;
};

/** The measurement of a scripted run, reproducible: a timer on the panel's clock takes one
 *  sample every half second of that clock and shows it at once, on the panel's thread. */
class ClockedAcquisition : public Attachment {
public:
    ClockedAcquisition() = default;
    ~ClockedAcquisition() override;

    void attach(SimContext const& context) override;
    void detach() noexcept override;

private:
    yxfrontpanel::runtime::Panel* panel_ = nullptr;
    yxfrontpanel::runtime::Panel::TimerId timer_ = 0;
};

}  // namespace frontpanelsim
