#pragma once

#include <exception>
#include <string>

namespace yxfrontpanel::runtime::detail {

/** Logs `text` as a warning of the runtime's category. */
void logWarning(std::string const& text);

/** Runs a sequence of callbacks of which any may throw: each exception is logged once, as an
 *  error naming the callback it came from, the rest still run, and the first exception is
 *  thrown again once all have run. */
class ThrowCollector {
public:
    /** Runs `callback`, catching and logging what it throws as coming from `source`. */
    template <class Callback>
    void run(Callback&& callback, char const* source, unsigned long long id) {
        try {
            callback();
        } catch (...) {
            caught(source, id);
        }
    }
    /** Throws the first exception caught again, if any. */
    void rethrowFirst() const;

private:
    void caught(char const* source, unsigned long long id);

    std::exception_ptr first_;
};

}  // namespace yxfrontpanel::runtime::detail
