#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace yxfp_test {

/** Sets (or, given no value, removes) an environment variable for the lifetime of the object
 *  and restores its earlier value afterwards. For single-threaded test bodies only: the
 *  environment is not thread-safe, which is why the checks for it are silenced here. */
class EnvironmentVariable {
public:
    EnvironmentVariable(std::string name, std::optional<std::string> const& value)
        : name_(std::move(name)) {
        if (char const* const saved =
                std::getenv(name_.c_str())) {  // NOLINT(concurrency-mt-unsafe)
            saved_ = saved;
        }
        set(value);
    }
    ~EnvironmentVariable() { set(saved_); }
    EnvironmentVariable(EnvironmentVariable const&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable const&) = delete;

    /** Gives the variable `value`, or removes it. */
    void set(std::optional<std::string> const& value) const {
        if (value) {
            setenv(name_.c_str(), value->c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
        } else {
            unsetenv(name_.c_str());  // NOLINT(concurrency-mt-unsafe)
        }
    }

private:
    std::string name_;
    std::optional<std::string> saved_;
};

}  // namespace yxfp_test
