#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace yxfp_test {

/** A drawing provider for tests: a panel of a given size that keeps every frame it is handed,
 *  so a test can compare whole screens, inversion and the number of draws. */
class RecordingProvider : public yxfrontpanel::IDrawingProvider {
public:
    RecordingProvider(unsigned chars, unsigned lines);

    void enableDrawing(bool enable) override;
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const override;
    unsigned getLines() const override;
    unsigned getChars() const override;

    /** Number of frames handed over so far. */
    std::size_t drawCount() const;
    /** A copy of every frame, oldest first. */
    std::vector<frontpanelhw::drawing::DisplayBuffer> frames() const;
    /** The newest frame; a blank panel before the first draw. */
    frontpanelhw::drawing::DisplayBuffer lastFrame() const;
    /** Line `line` of the newest frame. */
    std::u16string line(unsigned line) const;
    /** All lines of the newest frame. */
    std::vector<std::u16string> screen() const;
    /** Inversion of line `line` of the newest frame, one character a cell: '#' inverted, '.' not.
     */
    std::string inversion(unsigned line) const;
    /** Forgets the frames recorded so far (the draw count starts again from 0). */
    void reset();

private:
    unsigned chars_;
    unsigned lines_;
    bool enabled_ = true;
    mutable std::mutex mutex_;
    mutable std::vector<frontpanelhw::drawing::DisplayBuffer> frames_;
};

/** All lines of `buffer`. */
std::vector<std::u16string> screenOf(frontpanelhw::drawing::DisplayBuffer const& buffer);
/** Inversion of one line of `buffer`: '#' for an inverted cell, '.' otherwise. */
std::string inversionOf(frontpanelhw::drawing::DisplayBuffer const& buffer, unsigned line);
/** Inversion of a `DisplayLine`, as above. */
std::string inversionOf(frontpanelhw::drawing::DisplayLine const& line);
/** `text` cut or padded with blanks to `width` characters: how a panel line shows it. */
std::u16string padded(std::u16string const& text, std::size_t width);

}  // namespace yxfp_test
