#include "option_reader.h"

namespace frontpaneltools {

OptionReader::OptionReader(std::vector<std::string> const& arguments)
    : arguments_(arguments), index_(0) {}

bool OptionReader::next() {
    if (started_) {
        ++index_;
    }
    started_ = true;
    if (index_ >= arguments_.size()) {
        return false;
    }
    std::string const& current = arguments_[index_];
    name_ = current;
    value_.reset();
    if (auto const equals = current.find('=');
        current.rfind("--", 0) == 0 && equals != std::string::npos) {
        name_ = current.substr(0, equals);
        value_ = current.substr(equals + 1);
    }
    return true;
}

std::string const& OptionReader::argument() const { return arguments_[index_]; }

std::string const& OptionReader::name() const { return name_; }

std::string OptionReader::takeValue() {
    if (value_) {
        return *value_;
    }
    if (index_ + 1 >= arguments_.size()) {
        throw UsageError(name_ + " needs a value");
    }
    return arguments_[++index_];
}

}  // namespace frontpaneltools
