#include <yxfrontpanel/progress_bar.h>

namespace yxfrontpanel {

namespace {

// Copies the characters (never the inversion) of a part's rendered line into the widget line.
Control::DrawCallback copyInto(frontpanelhw::drawing::DisplayBuffer& target) {
    return [&target](drawing::Point position, frontpanelhw::drawing::DisplayBuffer& rendered) {
        target.setLineContent(0, position.x, rendered.getLineString(0));
    };
}

}  // namespace

PowerWidget::PowerWidget(drawing::Point position, unsigned barWidth, unsigned textWidth, int min,
                         int max, char16_t symbol, std::u16string const& text)
    : Label(position, barWidth + textWidth + 1, u""),
      composed_(barWidth + textWidth + 1, 1),
      textLabel_(drawing::Point{barWidth + 1, 0}, textWidth, u"") {
    composed_.setLineContent(0, 0, std::u16string(1, symbol));
    textLabel_.setTextAllignment(drawing::TextAllignment::Right);
    textLabel_.onDrawCallback(copyInto(composed_));
    bar_ = std::make_unique<ProgressBar>(drawing::Point{1, 0}, barWidth, min, max);
    bar_->onDrawCallback(copyInto(composed_));
    composed_.setLineContent(0, 1, bar_->getText());
    setValue(0, text);
}

PowerWidget::~PowerWidget() = default;

void PowerWidget::setValue(int value, std::u16string const& text) {
    bar_->setValue(value);
    textLabel_.setText(text);
    setText(composed_.getLineString(0));
}

void PowerWidget::setMax(int value) { bar_->setMax(value); }

ProgressBar const& PowerWidget::getBar() const { return *bar_; }

}  // namespace yxfrontpanel
