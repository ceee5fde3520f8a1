#pragma once

#include <yxfrontpanel/drawing_provider.h>

#include <atomic>
#include <functional>

namespace yxfrontpanel::runtime::detail {

/** A drawing provider that hands each composed screen to the panel instead of the display, so
 *  that the panel decides when it is drawn (frame limit, home screen). */
class PanelProvider : public IDrawingProvider {
public:
    /** Receives each composed screen; returns whether it was taken. */
    using Sink = std::function<bool(frontpanelhw::drawing::DisplayBuffer const& buffer)>;

    PanelProvider(unsigned chars, unsigned lines, Sink sink);
    ~PanelProvider() override;

    /** Stores the flag; while off, screens are refused. */
    void enableDrawing(bool enable) override;
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const override;
    unsigned getLines() const override;
    unsigned getChars() const override;

private:
    unsigned chars_;
    unsigned lines_;
    Sink sink_;
    std::atomic<bool> enabled_{true};
};

}  // namespace yxfrontpanel::runtime::detail
