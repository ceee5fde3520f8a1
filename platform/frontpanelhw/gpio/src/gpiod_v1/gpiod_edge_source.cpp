// Edges of GPIO lines through libgpiod's 1.x API (Debian 12's libgpiod-dev 1.6).
#include "../gpiod_edge_source.h"

#include <cerrno>
#include <cstdint>
#include <ctime>
#include <deque>
#include <system_error>

#include "../gpiod_shared.h"
#include <gpiod.h>
#include <sys/epoll.h>
#include <unistd.h>

namespace frontpanelhw::detail {

namespace {

int biasFlags(GpioBias bias) {
    switch (bias) {
        case GpioBias::PullUp:
            return GPIOD_LINE_REQUEST_FLAG_BIAS_PULL_UP;
        case GpioBias::PullDown:
            return GPIOD_LINE_REQUEST_FLAG_BIAS_PULL_DOWN;
        case GpioBias::Disabled:
            return GPIOD_LINE_REQUEST_FLAG_BIAS_DISABLE;
        case GpioBias::AsIs:
            break;
    }
    return 0;
}

/** Edges of requested lines of one chip; all line descriptors wait in one epoll set, so that
 *  the key source has a single descriptor to wait on. */
class GpiodEdgeSource final : public BatchedEdgeSource {
public:
    GpiodEdgeSource(std::string const& chip, std::vector<unsigned> const& offsets, GpioBias bias,
                    std::string const& consumer)
        : name_(chip) {
        chip_ = ::gpiod_chip_open_lookup(chip.c_str());
        if (chip_ == nullptr) {
            throw InputDeviceError(chipOpenMessage(chip, errno));
        }
        epoll_ = ::epoll_create1(EPOLL_CLOEXEC);
        if (epoll_ < 0) {
            int const error = errno;
            release();
            throw InputDeviceError("cannot wait for GPIO events: " +
                                   std::system_category().message(error));
        }
        for (unsigned const offset : offsets) {
            request(offset, bias, consumer);
        }
    }

    ~GpiodEdgeSource() override { release(); }

    int descriptor() const override { return epoll_; }

    bool level(unsigned offset) override {
        for (auto const& line : lines_) {
            if (line.offset == offset) {
                int const value = ::gpiod_line_get_value(line.line);
                if (value < 0) {
                    int const error = errno;
                    throw InputDeviceError("cannot read GPIO line " + std::to_string(offset) +
                                           " of " + name_ + ": " +
                                           std::system_category().message(error));
                }
                return value != 0;
            }
        }
        throw InputDeviceError("GPIO line " + std::to_string(offset) + " of " + name_ +
                               " was not requested");
    }

private:
    struct Line {
        unsigned offset;
        gpiod_line* line;
    };

    void request(unsigned offset, GpioBias bias, std::string const& consumer) {
        gpiod_line* line = ::gpiod_chip_get_line(chip_, offset);
        if (line == nullptr) {
            std::string const message =
                "GPIO chip " + name_ + " has no line " + std::to_string(offset) + " (it has " +
                std::to_string(::gpiod_chip_num_lines(chip_)) + "; gpioinfo lists them)";
            release();
            throw InputDeviceError(message);
        }
        if (::gpiod_line_request_both_edges_events_flags(line, consumer.c_str(), biasFlags(bias)) !=
            0) {
            int const error = errno;
            char const* holder = ::gpiod_line_consumer(line);
            std::string const message =
                error == EBUSY
                    ? "GPIO line " + std::to_string(offset) + " of " + name_ + " is in use by '" +
                          (holder != nullptr ? holder : "another program") +
                          "': free it (gpioinfo shows who holds it) or choose another line"
                    : "cannot request GPIO line " + std::to_string(offset) + " of " + name_ + ": " +
                          std::system_category().message(error);
            release();
            throw InputDeviceError(message);
        }
        lines_.push_back(Line{offset, line});
        epoll_event watch{};
        watch.events = EPOLLIN;
        watch.data.u32 = static_cast<std::uint32_t>(lines_.size() - 1);
        if (::epoll_ctl(epoll_, EPOLL_CTL_ADD, ::gpiod_line_event_get_fd(line), &watch) != 0) {
            int const error = errno;
            release();
            throw InputDeviceError("cannot wait for GPIO events: " +
                                   std::system_category().message(error));
        }
    }

    void collect(std::deque<GpioEdge>& edges) override {
        epoll_event ready[8];
        int const count = ::epoll_wait(epoll_, ready, 8, 0);
        int const error = errno;
        if (count < 0 && error != EINTR) {
            throw InputDeviceError("waiting for GPIO events of " + name_ +
                                   " failed: " + std::system_category().message(error));
        }
        for (int i = 0; i < count; ++i) {
            Line const& line = lines_.at(ready[i].data.u32);
            if ((ready[i].events & (EPOLLERR | EPOLLHUP)) != 0) {
                throw InputDeviceError("GPIO line " + std::to_string(line.offset) + " of " + name_ +
                                       " has gone");
            }
            gpiod_line_event event{};
            if (::gpiod_line_event_read(line.line, &event) != 0) {
                int const readError = errno;
                throw InputDeviceError("reading GPIO line " + std::to_string(line.offset) + " of " +
                                       name_ +
                                       " failed: " + std::system_category().message(readError));
            }
            edges.push_back(GpioEdge{line.offset, event.event_type == GPIOD_LINE_EVENT_RISING_EDGE,
                                     edgeTime(std::chrono::seconds(event.ts.tv_sec) +
                                              std::chrono::nanoseconds(event.ts.tv_nsec))});
        }
    }

    void release() {
        for (auto const& line : lines_) {
            ::gpiod_line_release(line.line);
        }
        lines_.clear();
        if (epoll_ >= 0) {
            ::close(epoll_);
            epoll_ = -1;
        }
        if (chip_ != nullptr) {
            ::gpiod_chip_close(chip_);
            chip_ = nullptr;
        }
    }

    std::string name_;
    gpiod_chip* chip_ = nullptr;
    int epoll_ = -1;
    std::vector<Line> lines_;
};

}  // namespace

std::unique_ptr<IGpioEdgeSource> openGpioEdgeSource(std::string const& chip,
                                                    std::vector<unsigned> const& offsets,
                                                    GpioBias bias, std::string const& consumer) {
    return std::make_unique<GpiodEdgeSource>(chip, offsets, bias, consumer);
}

}  // namespace frontpanelhw::detail
