#include "runtime_log.h"

#include <yxbase2/log.h>

#include <sstream>

namespace yxfrontpanel::runtime::detail {

namespace {

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "libYxFrontPanelRuntime";

}  // namespace

void logWarning(std::string const& text) { log::write(log::Level::Warning, kLogCategory, text); }

void ThrowCollector::caught(char const* source, unsigned long long id) {
    std::exception_ptr const thrown = std::current_exception();
    std::string what = "an exception that is no std::exception";
    try {
        std::rethrow_exception(thrown);
    } catch (std::exception const& error) {
        what = error.what();
    } catch (...) {
    }
    log::write(log::Level::Error, kLogCategory,
               std::string("Panel: ") + source + " " + std::to_string(id) + " threw: " + what);
    if (!first_) {
        first_ = thrown;
    }
}

void ThrowCollector::rethrowFirst() const {
    if (first_) {
        std::rethrow_exception(first_);
    }
}

}  // namespace yxfrontpanel::runtime::detail
