#pragma once

// GoogleTest matchers for screens; the one header of the testing kit that needs GoogleTest
// (gmock). Include it in test sources only.

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/screen_text.h>
#include <yxfrontpanel/testing/frame_text.h>
#include <yxfrontpanel/testing/golden_file.h>
#include <yxfrontpanel/testing/recording_display.h>

#include <ostream>
#include <string>

#include <gmock/gmock.h>

namespace frontpanelhw::drawing {

/** GoogleTest prints a frame in a failure message as its text (`formatFrame`). */
inline void PrintTo(  // NOLINT(readability-identifier-naming): the name GoogleTest looks for
    DisplayBuffer const& frame, std::ostream* stream) {
    *stream << '\n' << ::yxfrontpanel::testing::formatFrame(frame);
}

}  // namespace frontpanelhw::drawing

namespace yxfrontpanel::testing {

/** GoogleTest prints a recording display in a failure message as its newest frame's text. */
inline void PrintTo(  // NOLINT(readability-identifier-naming): the name GoogleTest looks for
    RecordingDisplay const& display, std::ostream* stream) {
    *stream << '\n' << display.text();
}

/** The frame a screen matcher looks at: the buffer itself. */
inline frontpanelhw::drawing::DisplayBuffer const& matchedFrame(
    frontpanelhw::drawing::DisplayBuffer const& frame) {
    return frame;
}

/** The frame a screen matcher looks at: the newest frame of the display. */
inline frontpanelhw::drawing::DisplayBuffer matchedFrame(RecordingDisplay const& display) {
    return display.lastFrame();
}

/** `text` without its trailing blanks. */
inline std::string withoutTrailingBlanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/** Matches a `DisplayBuffer`, or the newest frame of a `RecordingDisplay`, whose line `line`
 *  shows `text` (UTF-8 with the panel's glyphs, as `frontpanelhw::lineText` gives it); trailing
 * blanks of both are ignored, so `LineIs(1, "Network")` matches "Network             ". A line past
 * the last does not match. */
MATCHER_P2(LineIs, line, text,
           "line " + ::testing::PrintToString(line) + " shows " + ::testing::PrintToString(text)) {
    auto const& frame = ::yxfrontpanel::testing::matchedFrame(arg);
    if (static_cast<unsigned>(line) >= frame.getLineCount()) {
        *result_listener << "the frame has " << frame.getLineCount() << " lines";
        return false;
    }
    std::string const shown = ::frontpanelhw::lineText(frame, static_cast<unsigned>(line));
    *result_listener << "line " << line << " is \"" << shown << "\"";
    return ::yxfrontpanel::testing::withoutTrailingBlanks(shown) ==
           ::yxfrontpanel::testing::withoutTrailingBlanks(std::string(text));
}

/** Matches a `DisplayBuffer`, or the newest frame of a `RecordingDisplay`, whose line `line`
 *  has exactly the inverted columns `ranges`, written as the frame text writes them
 *  (`invertedColumns`): "0-18", "3, 6-8", or "" for none. A line past the last does not match.
 */
MATCHER_P2(InvertedColumnsAre, line, ranges,
           "line " + ::testing::PrintToString(line) + " has the inverted columns \"" +
               std::string(ranges) + "\"") {
    auto const& frame = ::yxfrontpanel::testing::matchedFrame(arg);
    if (static_cast<unsigned>(line) >= frame.getLineCount()) {
        *result_listener << "the frame has " << frame.getLineCount() << " lines";
        return false;
    }
    std::string const inverted =
        ::yxfrontpanel::testing::invertedColumns(frame, static_cast<unsigned>(line));
    *result_listener << "line " << line << " has the inverted columns \"" << inverted << "\"";
    return inverted == std::string(ranges);
}

/** Matches a text equal to the content of the golden file at `path`, with the rules of
 *  `compareWithGoldenFile` (YXFP_UPDATE_GOLDEN=1 rewrites the file); on a mismatch the failure
 *  shows the line diff. */
MATCHER_P(MatchesGoldenFile, path, "equals the golden file " + std::string(path)) {
    auto const comparison =
        ::yxfrontpanel::testing::compareWithGoldenFile(std::string(arg), std::string(path));
    if (!comparison.message.empty()) {
        *result_listener << "\n" << comparison.message;
    }
    return comparison.matches;
}

}  // namespace yxfrontpanel::testing
