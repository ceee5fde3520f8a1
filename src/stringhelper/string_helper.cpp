#include <yxfrontpanel/string_helper.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace yxfrontpanel::stringhelper {

std::u16string toU16(std::string const& text) {
    std::u16string result;
    result.reserve(text.size());
    for (char const byte : text) {
        // Through unsigned char, so that bytes above 0x7F do not sign-extend into U+FFxx.
        result.push_back(static_cast<char16_t>(static_cast<unsigned char>(byte)));
    }
    return result;
}

std::string toStr(std::u16string const& text) {
    std::string result;
    result.reserve(text.size());
    for (char16_t const unit : text) {
        result.push_back(static_cast<char>(static_cast<unsigned char>(unit & 0xFFu)));
    }
    return result;
}

void rTrim(std::u16string& text) {
    // npos + 1 wraps to 0, so a text made only of whitespace is erased completely.
    text.erase(text.find_last_not_of(u" \n\r\t") + 1);
}

unsigned split(std::u16string const& text, std::vector<std::u16string>& parts, char16_t delimiter) {
    parts.clear();
    std::size_t start = 0;
    for (std::size_t found = text.find(delimiter); found != std::u16string::npos;
         found = text.find(delimiter, start)) {
        parts.push_back(text.substr(start, found - start));
        start = found + 1;
    }
    parts.push_back(text.substr(start));
    return static_cast<unsigned>(parts.size());
}

std::u16string SplitLineAtWhitespaces(  // NOLINT(readability-identifier-naming)
    std::u16string const& line, unsigned width, std::vector<std::u16string>& lines) {
    std::vector<std::u16string> words;
    if (split(line, words, u' ') == 1) {
        lines.push_back(line);
        return {};
    }

    std::u16string current;
    for (std::u16string const& word : words) {
        if (word.size() + current.size() < width) {
            // An empty word (one of a run of spaces) adds just the separator, and only
            // after some text, so wrapped lines never start with blanks.
            if (!current.empty()) {
                current += u' ';
            }
            current += word;
        } else {
            rTrim(current);
            lines.push_back(current);
            current = word;
        }
    }
    return current;
}

std::vector<std::u16string> splitStringToLines(std::u16string const& text, unsigned width) {
    std::vector<std::u16string> rawLines;
    split(text, rawLines, u'\n');

    std::vector<std::u16string> result;
    for (std::u16string& rawLine : rawLines) {
        if (rawLine.size() <= width) {
            rTrim(rawLine);
            result.push_back(std::move(rawLine));
            continue;
        }
        std::u16string last = SplitLineAtWhitespaces(rawLine, width, result);
        if (!last.empty()) {
            rTrim(last);
            result.push_back(std::move(last));
        }
    }
    return result;
}

}  // namespace yxfrontpanel::stringhelper
