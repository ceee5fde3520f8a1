#include <yxfrontpanel/slider.h>
#include <yxfrontpanel/slider_menu_item.h>

namespace yxfrontpanel {

SliderMenuItem::SliderMenuItem(IDrawingProvider const& provider, std::u16string const& text,
                               std::u16string const& minCaption, std::u16string const& maxCaption,
                               unsigned captionWidth, unsigned barWidth, int minimum)
    : MenuItem(text),
      slider_(std::make_unique<Slider>(provider, text, minCaption, maxCaption, captionWidth,
                                       barWidth, minimum)) {
    setForm(slider_.get());
}

SliderMenuItem::~SliderMenuItem() = default;

bool SliderMenuItem::enter() {
    if (getFocus()) {
        slider_->apply();
    }
    // While the slider is open this refuses, so a commit deliberately leaves it open.
    return MenuItem::enter();
}

void SliderMenuItem::setLocal(bool local) {
    if (!readOnly_) {
        slider_->setEditorMode(local);
    }
}

bool SliderMenuItem::left() { return slider_->moveLeft(); }

bool SliderMenuItem::right() { return slider_->moveRight(); }

void SliderMenuItem::connectSlider(std::function<void(int)> const& callback) {
    slider_->setCallback(callback);
}

bool SliderMenuItem::setValue(int value) { return slider_->setValue(value); }

void SliderMenuItem::setReadOnly(bool readOnly) { readOnly_ = readOnly; }

bool SliderMenuItem::getReadOnly() const { return readOnly_; }

Slider& SliderMenuItem::getSlider() const { return *slider_; }

}  // namespace yxfrontpanel
