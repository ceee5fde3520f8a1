// Edges of GPIO lines through libgpiod's 2.x API (Debian 13's libgpiod-dev 2.1): one request for
// all lines, whose descriptor the key source waits on.
#include "../gpiod_edge_source.h"

#include <cerrno>
#include <cstdint>
#include <deque>
#include <memory>
#include <system_error>

#include "../gpiod_shared.h"
#include "gpiod_v2_request.h"

namespace frontpanelhw::detail {

namespace {

// Edges read at once; the kernel keeps more per request and they are read on the next call.
constexpr std::size_t kEventsPerRead = 16;

gpiod_line_bias biasOf(GpioBias bias) {
    switch (bias) {
        case GpioBias::PullUp:
            return GPIOD_LINE_BIAS_PULL_UP;
        case GpioBias::PullDown:
            return GPIOD_LINE_BIAS_PULL_DOWN;
        case GpioBias::Disabled:
            return GPIOD_LINE_BIAS_DISABLED;
        case GpioBias::AsIs:
            break;
    }
    return GPIOD_LINE_BIAS_AS_IS;
}

/** The message for a request of `offsets` that failed with `error`. */
std::string requestMessage(GpiodV2Request const& lines, std::string const& chip,
                           std::vector<unsigned> const& offsets, int error) {
    std::unique_ptr<gpiod_chip_info, decltype(&::gpiod_chip_info_free)> info(
        ::gpiod_chip_get_info(lines.chip()), &::gpiod_chip_info_free);
    std::size_t const count = info ? ::gpiod_chip_info_get_num_lines(info.get()) : 0;
    for (unsigned const offset : offsets) {
        if (info && offset >= count) {
            return "GPIO chip " + chip + " has no line " + std::to_string(offset) + " (it has " +
                   std::to_string(count) + "; gpioinfo lists them)";
        }
        std::unique_ptr<gpiod_line_info, decltype(&::gpiod_line_info_free)> line(
            ::gpiod_chip_get_line_info(lines.chip(), offset), &::gpiod_line_info_free);
        if (error == EBUSY && line && ::gpiod_line_info_is_used(line.get())) {
            char const* holder = ::gpiod_line_info_get_consumer(line.get());
            return "GPIO line " + std::to_string(offset) + " of " + chip + " is in use by '" +
                   (holder != nullptr ? holder : "another program") +
                   "': free it (gpioinfo shows who holds it) or choose another line";
        }
    }
    return "cannot request GPIO lines of " + chip + ": " + errorText(error);
}

class GpiodEdgeSource final : public BatchedEdgeSource {
public:
    GpiodEdgeSource(std::string const& chip, std::vector<unsigned> const& offsets, GpioBias bias,
                    std::string const& consumer)
        : name_(chip) {
        std::unique_ptr<gpiod_line_settings, decltype(&::gpiod_line_settings_free)> settings(
            ::gpiod_line_settings_new(), &::gpiod_line_settings_free);
        if (settings) {
            ::gpiod_line_settings_set_direction(settings.get(), GPIOD_LINE_DIRECTION_INPUT);
            ::gpiod_line_settings_set_edge_detection(settings.get(), GPIOD_LINE_EDGE_BOTH);
            ::gpiod_line_settings_set_bias(settings.get(), biasOf(bias));
            ::gpiod_line_settings_set_event_clock(settings.get(), GPIOD_LINE_CLOCK_MONOTONIC);
        }
        lines_ = std::make_unique<GpiodV2Request>(chip, offsets, settings.get(), consumer);
        if (lines_->chip() == nullptr) {
            throw InputDeviceError(chipOpenMessage(chip, lines_->error()));
        }
        if (lines_->requestFailed()) {
            throw InputDeviceError(requestMessage(*lines_, chip, offsets, lines_->error()));
        }
        buffer_ = ::gpiod_edge_event_buffer_new(kEventsPerRead);
        if (buffer_ == nullptr) {
            throw InputDeviceError("cannot wait for GPIO events: out of memory");
        }
    }

    ~GpiodEdgeSource() override { ::gpiod_edge_event_buffer_free(buffer_); }

    int descriptor() const override { return ::gpiod_line_request_get_fd(lines_->request()); }

    bool level(unsigned offset) override {
        gpiod_line_value const value = ::gpiod_line_request_get_value(lines_->request(), offset);
        if (value == GPIOD_LINE_VALUE_ERROR) {
            throw InputDeviceError("cannot read GPIO line " + std::to_string(offset) + " of " +
                                   name_ + ": " + errorText(errno));
        }
        return value == GPIOD_LINE_VALUE_ACTIVE;
    }

private:
    void collect(std::deque<GpioEdge>& edges) override {
        // Reading blocks while nothing waits: look first, without waiting.
        int const ready = ::gpiod_line_request_wait_edge_events(lines_->request(), 0);
        if (ready < 0) {
            throw InputDeviceError("waiting for GPIO events of " + name_ +
                                   " failed: " + errorText(errno));
        }
        if (ready == 0) {
            return;
        }
        int const count =
            ::gpiod_line_request_read_edge_events(lines_->request(), buffer_, kEventsPerRead);
        if (count < 0) {
            throw InputDeviceError("reading GPIO events of " + name_ +
                                   " failed: " + errorText(errno));
        }
        for (int i = 0; i < count; ++i) {
            gpiod_edge_event* event =
                ::gpiod_edge_event_buffer_get_event(buffer_, static_cast<unsigned long>(i));
            edges.push_back(GpioEdge{
                ::gpiod_edge_event_get_line_offset(event),
                ::gpiod_edge_event_get_event_type(event) == GPIOD_EDGE_EVENT_RISING_EDGE,
                edgeTime(std::chrono::nanoseconds(
                    static_cast<std::int64_t>(::gpiod_edge_event_get_timestamp_ns(event))))});
        }
    }

    std::string name_;
    std::unique_ptr<GpiodV2Request> lines_;
    gpiod_edge_event_buffer* buffer_ = nullptr;
};

}  // namespace

std::unique_ptr<IGpioEdgeSource> openGpioEdgeSource(std::string const& chip,
                                                    std::vector<unsigned> const& offsets,
                                                    GpioBias bias, std::string const& consumer) {
    return std::make_unique<GpiodEdgeSource>(chip, offsets, bias, consumer);
}

}  // namespace frontpanelhw::detail
