#include <yxfrontpanel/drawing_provider.h>

namespace yxfrontpanel {

IDrawingProvider::~IDrawingProvider() = default;

DrawingProvider::DrawingProvider(frontpanelhw::IDisplay& display) : display_(&display) {}

DrawingProvider::~DrawingProvider() = default;

void DrawingProvider::enableDrawing(bool enable) { drawingEnabled_.store(enable); }

bool DrawingProvider::draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const {
    if (!drawingEnabled_.load()) {
        return false;
    }
    std::lock_guard<std::mutex> lock(drawMutex_);
    return display_->draw(buffer);
}

unsigned DrawingProvider::getLines() const { return display_->getLines(); }

unsigned DrawingProvider::getChars() const { return display_->getChars(); }

bool DrawingProvider::getDrawingEnabled() const { return drawingEnabled_.load(); }

}  // namespace yxfrontpanel
