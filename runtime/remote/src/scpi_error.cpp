#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_parser.h>

#include <string>
#include <utility>

namespace yxfrontpanel::runtime::scpi {

std::string errorText(ErrorCode code) {
    switch (code) {
        case ErrorCode::NoError:
            return "No error";
        case ErrorCode::InvalidCharacter:
            return "Invalid character";
        case ErrorCode::SyntaxError:
            return "Syntax error";
        case ErrorCode::InvalidSeparator:
            return "Invalid separator";
        case ErrorCode::DataTypeError:
            return "Data type error";
        case ErrorCode::ParameterNotAllowed:
            return "Parameter not allowed";
        case ErrorCode::MissingParameter:
            return "Missing parameter";
        case ErrorCode::UndefinedHeader:
            return "Undefined header";
        case ErrorCode::InvalidStringData:
            return "Invalid string data";
        case ErrorCode::ExecutionError:
            return "Execution error";
        case ErrorCode::CommandProtected:
            return "Command protected";
        case ErrorCode::DataOutOfRange:
            return "Data out of range";
        case ErrorCode::IllegalParameterValue:
            return "Illegal parameter value";
        case ErrorCode::QueueOverflow:
            return "Queue overflow";
        case ErrorCode::InputBufferOverrun:
            return "Input buffer overrun";
    }
    return "Error";
}

std::string ErrorEntry::format() const {
    std::string text = errorText(code);
    if (!detail.empty()) {
        text += ';';
        text += detail;
    }
    return std::to_string(static_cast<int>(code)) + ',' + quoted(text);
}

Error::Error(ErrorCode code, std::string detail)
    : std::runtime_error(ErrorEntry{code, detail}.format()),
      code_(code),
      detail_(std::move(detail)) {}

Error::~Error() = default;

ErrorCode Error::code() const noexcept { return code_; }

std::string const& Error::detail() const noexcept { return detail_; }

ErrorEntry Error::entry() const { return ErrorEntry{code_, detail_}; }

ErrorQueue::ErrorQueue(std::size_t capacity) : capacity_(capacity < 2 ? 2 : capacity) {}

void ErrorQueue::push(ErrorEntry entry) {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (entries_.size() < capacity_) {
        entries_.push_back(std::move(entry));
        return;
    }
    entries_.back() = ErrorEntry{ErrorCode::QueueOverflow, {}};
}

ErrorEntry ErrorQueue::pop() {
    std::lock_guard<std::mutex> const lock(mutex_);
    if (entries_.empty()) {
        return ErrorEntry{};
    }
    ErrorEntry entry = std::move(entries_.front());
    entries_.pop_front();
    return entry;
}

void ErrorQueue::clear() {
    std::lock_guard<std::mutex> const lock(mutex_);
    entries_.clear();
}

std::size_t ErrorQueue::size() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return entries_.size();
}

}  // namespace yxfrontpanel::runtime::scpi
