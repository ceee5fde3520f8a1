#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/export.h>

#include <atomic>
#include <mutex>

namespace yxfrontpanel {

/** The one sink of finished screens: every menu and form hands its buffer to a provider, which
 *  puts it on the panel. Also tells the panel's size. */
class YXFP_EXPORT IDrawingProvider {
public:
    IDrawingProvider() = default;
    IDrawingProvider(IDrawingProvider const&) = delete;
    IDrawingProvider& operator=(IDrawingProvider const&) = delete;
    virtual ~IDrawingProvider();

    /** Switches drawing on or off; switching it on does not redraw anything. */
    virtual void enableDrawing(bool enable) = 0;
    /** Shows `buffer`; true when it reached the panel. */
    virtual bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const = 0;
    /** Number of lines of the panel. */
    virtual unsigned getLines() const = 0;
    /** Number of character cells per line. */
    virtual unsigned getChars() const = 0;
};

/** Forwards screens to a display device, one at a time. Screens come from the key thread and
 *  from threads that publish values, so a draw mutex keeps them from reaching the device
 *  together. Drawing starts enabled. The device is not owned and must outlive the provider. */
class YXFP_EXPORT DrawingProvider : public IDrawingProvider {
public:
    /** A provider for `display`, drawing enabled. */
    explicit DrawingProvider(frontpanelhw::IDisplay& display);
    ~DrawingProvider() override;

    /** Stores the flag (atomically, without locking); nothing is redrawn. */
    void enableDrawing(bool enable) override;
    /** While drawing is disabled returns false at once without locking. Otherwise hands the
     *  buffer to the device under the draw mutex and returns the device's answer.
     *  @throws std::system_error when the mutex cannot be locked. */
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const override;
    /** The device's number of lines. */
    unsigned getLines() const override;
    /** The device's number of characters per line. */
    unsigned getChars() const override;
    /** Whether drawing is enabled. */
    bool getDrawingEnabled() const;

private:
    frontpanelhw::IDisplay* display_;
    std::atomic<bool> drawingEnabled_{true};
    mutable std::mutex drawMutex_;
};

}  // namespace yxfrontpanel
