#include <yxfrontpanel/runtime/screen_print.h>

#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

std::string formatColumnRanges(std::vector<frontpanelhw::ColumnRange> const& ranges) {
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

std::string formatFrame(frontpanelhw::drawing::DisplayBuffer const& frame) {
    std::vector<std::string> lines;
    std::vector<std::string> inverted;
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        lines.push_back(frontpanelhw::lineText(frame, line));
        inverted.push_back(formatColumnRanges(frontpanelhw::invertedRanges(frame, line)));
    }
    return formatScreen(lines, inverted, frame.getChars());
}

}  // namespace yxfrontpanel::runtime
