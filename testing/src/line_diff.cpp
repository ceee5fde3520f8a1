#include <yxfrontpanel/testing/golden_file.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace yxfrontpanel::testing {

namespace {

constexpr std::size_t kContextLines = 3;
// Above this many cells the middle of the texts is shown as removed and added as a whole
// instead of searching for common lines (keeps a huge mismatch from taking quadratic memory).
constexpr std::size_t kMaximumTableCells = 4'000'000;

enum class Op { Same, Removed, Added };

struct Edit {
    Op op;
    std::size_t expectedLine;  // 0-based index into the expected lines (Same, Removed)
    std::size_t actualLine;    // 0-based index into the actual lines (Same, Added)
};

// Lines keep their '\n', so a last line without one differs from the same line with one.
std::vector<std::string> splitLines(std::string const& text) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t const end = text.find('\n', start);
        std::size_t const next = end == std::string::npos ? text.size() : end + 1;
        lines.push_back(text.substr(start, next - start));
        start = next;
    }
    return lines;
}

// The edits turning expected[eFirst, eLast) into actual[aFirst, aLast): longest common
// subsequence when the table is small enough, otherwise remove all and add all.
void diffMiddle(std::vector<std::string> const& expected, std::vector<std::string> const& actual,
                std::size_t eFirst, std::size_t eLast, std::size_t aFirst, std::size_t aLast,
                std::vector<Edit>& edits) {
    std::size_t const rows = eLast - eFirst;
    std::size_t const columns = aLast - aFirst;
    if (rows == 0 || columns == 0 || rows * columns > kMaximumTableCells) {
        for (std::size_t line = eFirst; line < eLast; ++line) {
            edits.push_back({Op::Removed, line, aFirst});
        }
        for (std::size_t line = aFirst; line < aLast; ++line) {
            edits.push_back({Op::Added, eLast, line});
        }
        return;
    }
    // common[i][j]: length of the longest common subsequence of the suffixes from i and j.
    std::vector<std::size_t> common((rows + 1) * (columns + 1), 0);
    auto const at = [columns](std::size_t row, std::size_t column) {
        return row * (columns + 1) + column;
    };
    for (std::size_t row = rows; row-- > 0;) {
        for (std::size_t column = columns; column-- > 0;) {
            common[at(row, column)] =
                expected[eFirst + row] == actual[aFirst + column]
                    ? common[at(row + 1, column + 1)] + 1
                    : std::max(common[at(row + 1, column)], common[at(row, column + 1)]);
        }
    }
    std::size_t row = 0;
    std::size_t column = 0;
    while (row < rows || column < columns) {
        if (row < rows && column < columns && expected[eFirst + row] == actual[aFirst + column]) {
            edits.push_back({Op::Same, eFirst + row++, aFirst + column++});
        } else if (row < rows && (column == columns ||
                                  common[at(row + 1, column)] >= common[at(row, column + 1)])) {
            edits.push_back({Op::Removed, eFirst + row++, aFirst + column});
        } else {
            edits.push_back({Op::Added, eFirst + row, aFirst + column++});
        }
    }
}

std::vector<Edit> diffLines(std::vector<std::string> const& expected,
                            std::vector<std::string> const& actual) {
    std::size_t prefix = 0;
    while (prefix < expected.size() && prefix < actual.size() &&
           expected[prefix] == actual[prefix]) {
        ++prefix;
    }
    std::size_t suffix = 0;
    while (suffix < expected.size() - prefix && suffix < actual.size() - prefix &&
           expected[expected.size() - 1 - suffix] == actual[actual.size() - 1 - suffix]) {
        ++suffix;
    }
    std::vector<Edit> edits;
    for (std::size_t line = 0; line < prefix; ++line) {
        edits.push_back({Op::Same, line, line});
    }
    diffMiddle(expected, actual, prefix, expected.size() - suffix, prefix, actual.size() - suffix,
               edits);
    for (std::size_t back = suffix; back > 0; --back) {
        edits.push_back({Op::Same, expected.size() - back, actual.size() - back});
    }
    return edits;
}

std::string shownLine(char marker, std::string const& line) {
    if (!line.empty() && line.back() == '\n') {
        return marker + line;
    }
    return marker + line + "\n\\ No newline at end of text\n";
}

// "FIRST,COUNT" of a hunk side; an empty side names the line before it, as unified diffs do.
std::string range(std::size_t first, std::size_t count) {
    return std::to_string(count == 0 ? first : first + 1) + "," + std::to_string(count);
}

}  // namespace

std::string lineDiff(std::string const& expected, std::string const& actual) {
    std::vector<std::string> const expectedLines = splitLines(expected);
    std::vector<std::string> const actualLines = splitLines(actual);
    std::vector<Edit> const edits = diffLines(expectedLines, actualLines);

    std::string diff;
    std::size_t index = 0;
    while (index < edits.size()) {
        auto const change =
            std::find_if(edits.begin() + static_cast<std::ptrdiff_t>(index), edits.end(),
                         [](Edit const& edit) { return edit.op != Op::Same; });
        if (change == edits.end()) {
            break;
        }
        std::size_t const changeIndex = static_cast<std::size_t>(change - edits.begin());
        std::size_t const first = changeIndex > kContextLines ? changeIndex - kContextLines : 0;
        std::size_t const start = std::max(first, index);
        // The hunk runs on while the next change is within twice the context.
        std::size_t last = changeIndex;
        std::size_t sameRun = 0;
        for (std::size_t scan = changeIndex; scan < edits.size(); ++scan) {
            if (edits[scan].op == Op::Same) {
                if (++sameRun > 2 * kContextLines) {
                    break;
                }
            } else {
                sameRun = 0;
                last = scan;
            }
        }
        std::size_t const end = std::min(edits.size(), last + 1 + kContextLines);

        std::size_t expectedCount = 0;
        std::size_t actualCount = 0;
        std::string body;
        for (std::size_t at = start; at < end; ++at) {
            Edit const& edit = edits[at];
            if (edit.op == Op::Same) {
                ++expectedCount;
                ++actualCount;
                body += shownLine(' ', expectedLines[edit.expectedLine]);
            } else if (edit.op == Op::Removed) {
                ++expectedCount;
                body += shownLine('-', expectedLines[edit.expectedLine]);
            } else {
                ++actualCount;
                body += shownLine('+', actualLines[edit.actualLine]);
            }
        }
        diff += "@@ -" + range(edits[start].expectedLine, expectedCount) + " +" +
                range(edits[start].actualLine, actualCount) + " @@\n" + body;
        index = end;
    }
    return diff;
}

}  // namespace yxfrontpanel::testing
