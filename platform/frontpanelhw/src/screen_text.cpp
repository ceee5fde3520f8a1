#include <frontpanelhw/code_page.h>
#include <frontpanelhw/screen_text.h>

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

}  // namespace frontpanelhw
