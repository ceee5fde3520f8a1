#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "platform_capture.h"
#include "recording_provider.h"

namespace yxfp_test {

using Screen = std::vector<std::u16string>;

/** A panel line `width` wide with `text` centred as a centred label places it (the start column
 *  is half the free width, rounded down). */
inline std::u16string centred(std::u16string const& text, std::size_t width) {
    std::size_t const start = text.size() < width ? (width - text.size()) / 2 : 0;
    return padded(std::u16string(start, u' ') + text, width);
}

/** The screen of an editor `width` wide with the headline `title` framed by ">> " and " <<",
 *  `value` centred below and the caret "^" in column `caret` on the third line (no caret: the
 *  editor is read-only). */
inline Screen editorScreen(std::u16string const& title, std::u16string const& value,
                           std::optional<unsigned> caret, std::size_t width) {
    std::u16string caretRow(width, u' ');
    if (caret && *caret < width) {
        caretRow[*caret] = u'^';
    }
    return {centred(u">> " + title + u" <<", width), centred(value, width), caretRow,
            std::u16string(width, u' ')};
}

/** Replaces sleeping while it lives and keeps the screen shown during each sleep, so a test
 *  can check what a timed hint showed and for how long, without waiting. */
class HintWatch {
public:
    explicit HintWatch(RecordingProvider const& provider)
        : capture_([this, &provider](std::chrono::nanoseconds) {
              screens_.push_back(provider.screen());
          }) {}

    /** The screen at the moment of each sleep, oldest first. */
    std::vector<Screen> const& screens() const { return screens_; }
    /** Every requested sleep, oldest first. */
    std::vector<std::chrono::nanoseconds> sleeps() const { return capture_.sleeps(); }

private:
    std::vector<Screen> screens_;
    SleepCapture capture_;
};

}  // namespace yxfp_test
