#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/testing/frame_text.h>

namespace yxfrontpanel::testing {

using frontpanelhw::drawing::DisplayBuffer;

std::string invertedColumns(DisplayBuffer const& frame, unsigned line) {
    return frontpanelhw::formatColumnRanges(frontpanelhw::invertedRanges(frame, line));
}

std::string formatFrame(DisplayBuffer const& frame) { return frontpanelhw::formatFrame(frame); }

std::string formatScriptFrame(std::size_t number, std::size_t step, std::string const& word,
                              DisplayBuffer const& frame) {
    return "frame " + std::to_string(number) + " after step " + std::to_string(step) + ": " + word +
           '\n' + formatFrame(frame);
}

std::vector<std::u16string> screenLines(DisplayBuffer const& frame) {
    std::vector<std::u16string> lines;
    lines.reserve(frame.getLineCount());
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        lines.push_back(frame.getLineString(line));
    }
    return lines;
}

std::string inversionMask(frontpanelhw::drawing::DisplayLine const& line) {
    std::string mask;
    mask.reserve(line.size());
    for (unsigned cell = 0; cell < line.size(); ++cell) {
        mask.push_back(line.getCharacter(cell).inverted ? '#' : '.');
    }
    return mask;
}

}  // namespace yxfrontpanel::testing
