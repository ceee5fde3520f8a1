#include <frontpanelhw/code_page.h>
#include <frontpanelhw/screen_text.h>

#include <string>
#include <vector>

namespace frontpanelhw {

bool operator==(ColumnRange const& lhs, ColumnRange const& rhs) {
    return lhs.first == rhs.first && lhs.last == rhs.last;
}

std::vector<ColumnRange> invertedRanges(drawing::DisplayBuffer const& frame, unsigned line) {
    std::vector<ColumnRange> ranges;
    if (line >= frame.getLineCount()) {
        return ranges;
    }
    unsigned const width = frame.getChars();
    for (unsigned column = 0; column < width; ++column) {
        if (!frame.getCell(column, line).inverted) {
            continue;
        }
        unsigned last = column;
        while (last + 1 < width && frame.getCell(last + 1, line).inverted) {
            ++last;
        }
        ranges.push_back(ColumnRange{column, last});
        column = last;
    }
    return ranges;
}

std::string lineText(drawing::DisplayBuffer const& frame, unsigned line) {
    std::string text;
    if (line >= frame.getLineCount()) {
        return text;
    }
    for (unsigned column = 0; column < frame.getChars(); ++column) {
        text += toUtf8(toUnicode(frame.getCell(column, line).character));
    }
    return text;
}

std::string formatColumnRanges(std::vector<ColumnRange> const& ranges) {
    std::string text;
    for (auto const& range : ranges) {
        text += (text.empty() ? "" : ", ") + std::to_string(range.first);
        if (range.last != range.first) {
            text += "-" + std::to_string(range.last);
        }
    }
    return text;
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

std::string formatFrame(drawing::DisplayBuffer const& frame) {
    std::vector<std::string> lines;
    std::vector<std::string> inverted;
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        lines.push_back(lineText(frame, line));
        inverted.push_back(formatColumnRanges(invertedRanges(frame, line)));
    }
    return formatScreen(lines, inverted, frame.getChars());
}

}  // namespace frontpanelhw
