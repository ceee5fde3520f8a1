#include "frame_printer.h"

#include <frontpanelhw/code_page.h>

#include <string>

namespace frontpanelsim {

std::string invertedColumns(frontpanelhw::drawing::DisplayBuffer const& frame, unsigned line) {
    std::string ranges;
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

std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame) {
    std::string const rule = "+" + std::string(frame.getChars(), '-') + "+\n";
    std::string text = rule;
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        text += '|';
        for (unsigned column = 0; column < frame.getChars(); ++column) {
            text += frontpanelhw::toUtf8(
                frontpanelhw::toUnicode(frame.getCell(column, line).character));
        }
        text += '|';
        std::string const inverted = invertedColumns(frame, line);
        if (!inverted.empty()) {
            text += " < inverted " + inverted;
        }
        text += '\n';
    }
    return text + rule;
}

}  // namespace frontpanelsim
