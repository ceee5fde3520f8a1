#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/testing/export.h>

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

namespace yxfrontpanel::testing {

/** A panel for tests that keeps every frame it is handed, so a test can compare whole screens,
 *  inversion and the number of draws.
 *
 *  It is both a drawing provider (hand it to menus and forms directly) and a display device
 *  (put it behind a `DrawingProvider` or a runtime panel, as the product does with its real
 *  display). Frames from either side land in the same record. Drawing starts enabled;
 *  `enableDrawing(false)` makes the provider side refuse frames (false, nothing recorded).
 *
 *  Thread safety: every member may be called from any thread; a mutex guards the record. */
class YXFP_TESTING_EXPORT RecordingDisplay : public IDrawingProvider,
                                             public frontpanelhw::IDisplay {
public:
    /** A panel of `chars` columns and `lines` lines with no frames yet. */
    RecordingDisplay(unsigned chars, unsigned lines);
    ~RecordingDisplay() override;

    /** Provider side: drawing on or off; nothing is redrawn. */
    void enableDrawing(bool enable) override;
    /** Provider side: keeps a copy of `buffer` and returns true; false (nothing kept) while
     *  drawing is disabled. */
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const override;
    /** Display side: keeps a copy of `buffer` and returns true, whatever `enableDrawing` says
     *  (a `DrawingProvider` in front of it has its own switch). */
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) override;
    /** The number of lines given to the constructor. */
    unsigned getLines() const override;
    /** The number of columns given to the constructor. */
    unsigned getChars() const override;

    /** Number of frames kept so far. */
    std::size_t drawCount() const;
    /** A copy of every frame, oldest first. */
    std::vector<frontpanelhw::drawing::DisplayBuffer> frames() const;
    /** The newest frame; a blank panel before the first draw. */
    frontpanelhw::drawing::DisplayBuffer lastFrame() const;
    /** Line `line` of the newest frame. @throws std::out_of_range for a line past the last. */
    std::u16string line(unsigned line) const;
    /** All lines of the newest frame. */
    std::vector<std::u16string> screen() const;
    /** Inversion of line `line` of the newest frame, one character a cell: '#' inverted, '.'
     *  not. @throws std::out_of_range for a line past the last. */
    std::string inversion(unsigned line) const;
    /** The newest frame as text (see `formatFrame`). */
    std::string text() const;
    /** Forgets the frames kept so far; the draw count starts again from 0. */
    void reset();

private:
    void keep(frontpanelhw::drawing::DisplayBuffer const& buffer) const;

    unsigned chars_;
    unsigned lines_;
    bool enabled_ = true;
    mutable std::mutex mutex_;
    mutable std::vector<frontpanelhw::drawing::DisplayBuffer> frames_;
};

}  // namespace yxfrontpanel::testing
