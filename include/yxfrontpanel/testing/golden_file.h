#pragma once

#include <yxfrontpanel/testing/export.h>

#include <string>

namespace yxfrontpanel::testing {

/** The environment variable that makes `compareWithGoldenFile` rewrite golden files: set it to
 *  "1" (`YXFP_UPDATE_GOLDEN=1 ctest`) after a deliberate change of the screens. */
inline constexpr char const* kUpdateGoldenVariable = "YXFP_UPDATE_GOLDEN";

/** The outcome of comparing a text with its golden file. */
struct GoldenComparison {
    /** The text equals the file's content (or the file was just rewritten). */
    bool matches = false;
    /** Empty on a plain match; otherwise what happened for a person to read: the difference
     *  as a line diff, a file that could not be read or written, or that the file was rewritten.
     */
    std::string message;
    /** `matches`. */
    explicit operator bool() const { return matches; }
};

/** Compares `actual` with the content of the file at `path`, byte for byte.
 *
 *  When the environment variable named by `kUpdateGoldenVariable` is "1", the file is
 *  (re)written with `actual` instead and the result matches, with a message naming the file. A
 *  missing file, or one that cannot be read or written, gives a result that does not match, with
 *  a message naming the file and how to create it. A difference gives the message "PATH
 *  differs from the actual text (- expected, + actual); YXFP_UPDATE_GOLDEN=1 rewrites it:"
 *  followed by `lineDiff(expected, actual)`. Never throws for file errors. */
YXFP_TESTING_EXPORT GoldenComparison compareWithGoldenFile(std::string const& actual,
                                                           std::string const& path);

/** A readable difference of two texts, line by line, in the unified style: hunk headings
 *  "@@ -FIRST,COUNT +FIRST,COUNT @@", then the lines with ' ' (both), '-' (only `expected`) or
 *  '+' (only `actual`) in front, with up to three unchanged lines around each change. A text
 *  whose last line lacks its '\n' gets the line "\ No newline at end of text" after it. Empty
 *  when the texts are equal. */
YXFP_TESTING_EXPORT std::string lineDiff(std::string const& expected, std::string const& actual);

}  // namespace yxfrontpanel::testing
