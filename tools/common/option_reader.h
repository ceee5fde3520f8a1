#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace frontpaneltools {

/** A command line that cannot be used; the message says what is wrong. */
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/** Walks a program's arguments one at a time and splits options into a name and a value, given
 *  either as "--name=value" or as the next argument. */
class OptionReader {
public:
    /** Reads `arguments` (those after the program name), which must outlive the reader. */
    explicit OptionReader(std::vector<std::string> const& arguments);

    /** Moves to the next argument; false when none is left. */
    bool next();
    /** The current argument as given. */
    std::string const& argument() const;
    /** The current argument up to its '=' for a "--name=value" option, else all of it. */
    std::string const& name() const;
    /** The current option's value: the part after '=', otherwise the following argument, which
     *  is then consumed.
     *  @throws UsageError "NAME needs a value" when there is neither. */
    std::string takeValue();

private:
    std::vector<std::string> const& arguments_;
    std::size_t index_;
    bool started_ = false;
    std::string name_;
    std::optional<std::string> value_;
};

}  // namespace frontpaneltools
