#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <mutex>
#include <string>

namespace frontpanelsim {

/** Errors of the instrument itself (a settings save that failed) on their way to the remote
 *  channels that report them to their clients: the part that sees an error reports it here,
 *  each serving channel adds a sink while it serves. Any thread. */
class DeviceErrors {
public:
    /** Takes one error: an SCPI error number and the reason. */
    using Sink = std::function<void(int code, std::string const& text)>;

    /** SCPI -315 "Configuration memory lost": the settings could not be saved. */
    static constexpr int kConfigurationMemoryLost = -315;

    DeviceErrors() = default;
    DeviceErrors(DeviceErrors const&) = delete;
    DeviceErrors& operator=(DeviceErrors const&) = delete;

    /** Adds `sink`; returns its id for `remove`. */
    std::size_t add(Sink sink);
    /** Removes a sink; once this returns it is not called any more. Not from inside a sink. */
    void remove(std::size_t id);
    /** Passes the error to every sink (none: it goes nowhere). */
    void report(int code, std::string const& text) const;

private:
    mutable std::mutex mutex_;  // held while the sinks run, so that `remove` waits for them
    std::map<std::size_t, Sink> sinks_;
    std::size_t nextId_ = 1;
};

}  // namespace frontpanelsim
