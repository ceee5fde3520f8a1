#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_parser.h>

#include <string>
#include <utility>

namespace yxfrontpanel::runtime::scpi {

namespace {

/** The length of the valid UTF-8 sequence at `text[pos]`, or 0 when it is not one (overlong
 *  forms, surrogates and code points above U+10FFFF included). */
std::size_t utf8Sequence(std::string_view text, std::size_t pos) {
    auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char const lead = byte(pos);
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return 0;
    }
    if (pos + length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        unsigned char const c = byte(pos + i);
        unsigned char const min = i == 1 ? low : 0x80;
        unsigned char const max = i == 1 ? high : 0xBF;
        if (c < min || c > max) {
            return 0;
        }
    }
    return length;
}

}  // namespace

std::string escapeDetail(std::string_view text) {
    static char const hex[] = "0123456789ABCDEF";
    std::string result;
    result.reserve(text.size());
    for (std::size_t pos = 0; pos < text.size();) {
        auto const c = static_cast<unsigned char>(text[pos]);
        if (c >= 0x20 && c < 0x7F) {
            if (c == '\\') {
                result += '\\';
            }
            result += static_cast<char>(c);
            ++pos;
            continue;
        }
        if (std::size_t const length = c >= 0x80 ? utf8Sequence(text, pos) : 0; length > 0) {
            result.append(text.substr(pos, length));
            pos += length;
            continue;
        }
        result += "\\x";
        result += hex[c >> 4];
        result += hex[c & 0x0F];
        ++pos;
    }
    return result;
}

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
        case ErrorCode::InvalidSuffix:
            return "Invalid suffix";
        case ErrorCode::SuffixNotAllowed:
            return "Suffix not allowed";
        case ErrorCode::InvalidBlockData:
            return "Invalid block data";
        case ErrorCode::InvalidStringData:
            return "Invalid string data";
        case ErrorCode::ExecutionError:
            return "Execution error";
        case ErrorCode::CommandProtected:
            return "Command protected";
        case ErrorCode::DataOutOfRange:
            return "Data out of range";
        case ErrorCode::TooMuchData:
            return "Too much data";
        case ErrorCode::IllegalParameterValue:
            return "Illegal parameter value";
        case ErrorCode::ConfigurationMemoryLost:
            return "Configuration memory lost";
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
        text += escapeDetail(detail);
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
    ErrorCode const code = entry.code;
    bool overflow = false;
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (entries_.size() < capacity_) {
            entries_.push_back(std::move(entry));
        } else {
            entries_.back() = ErrorEntry{ErrorCode::QueueOverflow, {}};
            overflow = true;
        }
    }
    if (observer_) {
        observer_(code);
        if (overflow) {
            observer_(ErrorCode::QueueOverflow);
        }
    }
}

void ErrorQueue::setObserver(std::function<void(ErrorCode)> observer) {
    std::lock_guard<std::mutex> const lock(mutex_);
    observer_ = std::move(observer);
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
