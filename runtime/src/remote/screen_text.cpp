#include <frontpanelhw/code_page.h>
#include <yxfrontpanel/runtime/screen_text.h>

#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

std::string lineText(frontpanelhw::drawing::DisplayBuffer const& frame, unsigned line) {
    std::string text;
    if (line >= frame.getLineCount()) {
        return text;
    }
    for (unsigned column = 0; column < frame.getChars(); ++column) {
        text += frontpanelhw::toUtf8(frontpanelhw::toUnicode(frame.getCell(column, line).character));
    }
    return text;
}

std::vector<std::string> screenText(frontpanelhw::drawing::DisplayBuffer const& frame) {
    std::vector<std::string> lines;
    lines.reserve(frame.getLineCount());
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        lines.push_back(lineText(frame, line));
    }
    return lines;
}

std::string invertedColumns(frontpanelhw::drawing::DisplayBuffer const& frame, unsigned line) {
    std::string ranges;
    if (line >= frame.getLineCount()) {
        return ranges;
    }
    unsigned const width = frame.getChars();
    unsigned column = 0;
    while (column < width) {
        if (!frame.getCell(column, line).inverted) {
            ++column;
            continue;
        }
        unsigned last = column;
        while (last + 1 < width && frame.getCell(last + 1, line).inverted) {
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

std::string formatScreen(std::vector<std::string> const& lines,
                         std::vector<std::string> const& inverted, unsigned width) {
    std::string const rule = "+" + std::string(width, '-') + "+\n";
    std::string text = rule;
    for (std::size_t line = 0; line < lines.size(); ++line) {
        text += '|' + lines[line] + '|';
        if (line < inverted.size() && !inverted[line].empty()) {
            text += " < inverted " + inverted[line];
        }
        text += '\n';
    }
    return text + rule;
}

std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame) {
    std::vector<std::string> inverted;
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        inverted.push_back(invertedColumns(frame, line));
    }
    return formatScreen(screenText(frame), inverted, frame.getChars());
}

}  // namespace yxfrontpanel::runtime
