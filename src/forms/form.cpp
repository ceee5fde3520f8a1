#include <yxfrontpanel/control.h>
#include <yxfrontpanel/form.h>

#include <algorithm>

namespace yxfrontpanel {

using frontpanelhw::drawing::DisplayBuffer;

Form::Form(IDrawingProvider const& provider)
    : drawingProvider_(provider),
      displayBuffer_(provider.getChars(), provider.getLines()),
      self_(std::make_shared<Form*>(this)) {}

Form::~Form() = default;

void Form::setFocus(bool focus) {
    if (focus_.load() == focus) {
        return;
    }
    focus_.store(focus);
    if (focus) {
        draw();
    }
}

bool Form::getFocus() const { return focus_.load(); }

bool Form::addControl(Control* control) {
    if (control == nullptr) {
        return false;
    }
    std::weak_ptr<Form*> const form = self_;
    control->onDrawCallback([form](drawing::Point location, DisplayBuffer& cells) {
        auto const alive = form.lock();
        // Controls on a form are one line high; a buffer without lines has nothing to show.
        if (!alive || cells.getLineCount() == 0) {
            return;
        }
        (*alive)->displayBuffer_.setLineContent(location.y, location.x, cells.getLineString(0));
    });
    control->setRedrawParentCallback([form] {
        if (auto const alive = form.lock()) {
            (*alive)->draw();
        }
    });
    controls_.push_back(control);
    return true;
}

bool Form::removeControl(Control const* control) {
    auto const end = std::remove(controls_.begin(), controls_.end(), control);
    bool const found = end != controls_.end();
    controls_.erase(end, controls_.end());
    return found;
}

void Form::draw() {
    if (!focus_.load()) {
        return;
    }
    displayBuffer_.clear();
    for (Control* control : controls_) {
        if (control->getVisible()) {
            // false: a control asking its parent to redraw here would recurse into this draw.
            control->draw(false);
        }
    }
    drawingProvider_.draw(displayBuffer_);
}

DisplayBuffer const& Form::getDisplayBuffer() const { return displayBuffer_; }

}  // namespace yxfrontpanel
