// Wraps and splits arbitrary text for an arbitrary width and checks the shape of the result.

#include <yxfrontpanel/string_helper.h>

#include <algorithm>
#include <vector>

#include "fuzz_support.h"

namespace {

using yxfp_fuzz::check;
namespace sh = yxfrontpanel::stringhelper;

void checkWrapped(std::u16string const& text, unsigned width) {
    for (std::u16string const& line : sh::splitStringToLines(text, width)) {
        check(line.find(u'\n') == std::u16string::npos, "wrapped line holds a line feed");
        // Words are never cut, so only a single word may stand wider than the view.
        check(line.size() <= width || line.find(u' ') == std::u16string::npos,
              "wrapped line with blanks is wider than the view");
    }
}

void checkSplit(std::u16string const& text, char16_t delimiter) {
    std::vector<std::u16string> parts{u"stale"};
    unsigned const count = sh::split(text, parts, delimiter);
    auto const delimiters = std::count(text.begin(), text.end(), delimiter);
    check(count == parts.size(), "split count differs from the parts");
    check(parts.size() == static_cast<size_t>(delimiters) + 1u, "split count is not delimiters+1");
}

/** The input's bytes taken in pairs as UTF-16 code units (high byte first). */
std::u16string codeUnits(std::string const& bytes) {
    std::u16string text;
    for (size_t i = 0; i + 1u < bytes.size(); i += 2u) {
        auto const high = static_cast<unsigned char>(bytes[i]);
        auto const low = static_cast<unsigned char>(bytes[i + 1u]);
        text.push_back(static_cast<char16_t>((high << 8u) | low));
    }
    return text;
}

}  // namespace

// NOLINTNEXTLINE(readability-identifier-naming): the name is libFuzzer's entry point
extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    yxfp_fuzz::InputReader input(data, size);
    unsigned const width = input.byte() % 48u;
    auto const delimiter = static_cast<char16_t>(input.byte());
    std::string const bytes = input.rest();

    check(sh::toStr(sh::toU16(bytes)) == bytes, "toStr(toU16(s)) != s");
    // Widened bytes make blanks and line feeds likely; code-unit pairs reach the whole range.
    for (std::u16string const& text : {sh::toU16(bytes), codeUnits(bytes)}) {
        checkWrapped(text, width);
        checkSplit(text, delimiter);
        checkSplit(text, u'\n');
    }
    return 0;
}
