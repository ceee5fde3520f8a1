#include <frontpanelhw/code_page.h>
#include <yxfrontpanel/testing/frame_text.h>

namespace yxfrontpanel::testing {

using frontpanelhw::drawing::DisplayBuffer;

std::string invertedColumns(DisplayBuffer const& frame, unsigned line) {
    // Asking for the line first gives a line past the last its exception on a 0-column panel too.
    frontpanelhw::drawing::DisplayLine const cells = frame.getLine(line);
    std::string ranges;
    unsigned const width = cells.size();
    unsigned column = 0;
    while (column < width) {
        if (!cells.getCharacter(column).inverted) {
            ++column;
            continue;
        }
        unsigned last = column;
        while (last + 1 < width && cells.getCharacter(last + 1).inverted) {
            ++last;
        }
        ranges += (ranges.empty() ? "" : ", ") + std::to_string(column);
        if (last != column) {
            ranges += "-" + std::to_string(last);
        }
        column = last + 1;
    }
    return ranges;
}

std::string lineText(DisplayBuffer const& frame, unsigned line) {
    std::string text;
    for (char16_t const code : frame.getLineString(line)) {
        text += frontpanelhw::toUtf8(frontpanelhw::toUnicode(code));
    }
    return text;
}

std::string formatFrame(DisplayBuffer const& frame) {
    std::string const rule = "+" + std::string(frame.getChars(), '-') + "+\n";
    std::string text = rule;
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        text += '|' + lineText(frame, line) + '|';
        std::string const inverted = invertedColumns(frame, line);
        if (!inverted.empty()) {
            text += " < inverted " + inverted;
        }
        text += '\n';
    }
    return text + rule;
}

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
