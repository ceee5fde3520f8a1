#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/export.h>

namespace frontpanelhw {

/** The display device behind a drawing provider: tells its size and shows finished buffers. */
class FRONTPANELHW_EXPORT IDisplay {
public:
    IDisplay() = default;
    IDisplay(IDisplay const&) = delete;
    IDisplay& operator=(IDisplay const&) = delete;
    virtual ~IDisplay();

    /** Number of lines of the panel. */
    virtual unsigned getLines() const = 0;
    /** Number of character cells per line. */
    virtual unsigned getChars() const = 0;
    /** Shows `buffer`; returns true when it was shown. */
    virtual bool draw(drawing::DisplayBuffer const& buffer) = 0;
};

/** A display that only remembers what it was shown: for tests, headless runs and simulators. */
class FRONTPANELHW_EXPORT MemoryDisplay : public IDisplay {
public:
    /** A display of `chars` columns and `lines` lines that has drawn nothing yet. */
    MemoryDisplay(unsigned chars, unsigned lines);
    ~MemoryDisplay() override;

    unsigned getLines() const override;
    unsigned getChars() const override;
    /** Keeps a copy of `buffer` as the last frame, counts the call and returns true. */
    bool draw(drawing::DisplayBuffer const& buffer) override;

    /** Number of draw calls so far. */
    unsigned getDrawCount() const;
    /** The buffer of the last draw; a blank buffer of the display's size before the first. */
    drawing::DisplayBuffer const& getLastFrame() const;

private:
    unsigned chars_;
    unsigned lines_;
    unsigned drawCount_ = 0;
    drawing::DisplayBuffer lastFrame_;
};

}  // namespace frontpanelhw
