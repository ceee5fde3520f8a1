#include <yxfrontpanel/control.h>
#include <yxfrontpanel/scrollable_label.h>
#include <yxfrontpanel/string_helper.h>

#include <algorithm>

#include "common/make_label.h"
#include "common/scroll_indicator.h"

namespace yxfrontpanel {

ScrollableLabel::ScrollableLabel(IDrawingProvider const& provider)
    : provider_(provider),
      textWidth_(std::max(provider.getChars(), 1U) - 1),
      visibleLines_(provider.getLines()),
      buffer_(textWidth_ + 1, visibleLines_) {}

ScrollableLabel::~ScrollableLabel() = default;

void ScrollableLabel::setFocus(bool focus) {
    focus_.store(focus);
    if (focus) {
        draw();
    }
}

bool ScrollableLabel::getFocus() const { return focus_.load(); }

void ScrollableLabel::setText(std::u16string const& text, drawing::TextAllignment alignment) {
    lines_ = stringhelper::splitStringToLines(text, textWidth_);
    alignment_ = alignment;
    draw();
}

void ScrollableLabel::draw() {
    if (!focus_.load()) {
        return;
    }
    createLblList();
    for (auto& label : labels_) {
        label->draw(false);
    }
    if (labels_.empty()) {
        return;
    }
    for (unsigned line = 0; line < buffer_.getLineCount(); ++line) {
        frontpanelhw::drawing::DisplayLine copy = buffer_.getLine(line);
        addScrollbar(copy, line);
        buffer_.setDisplayLine(line, copy);
    }
    provider_.draw(buffer_);
}

void ScrollableLabel::moveUp() {
    if (firstLine_ > 0) {
        --firstLine_;
        draw();
    }
}

void ScrollableLabel::moveDown() {
    if (std::size_t{firstLine_} + visibleLines_ < lines_.size()) {
        ++firstLine_;
        draw();
    }
}

void ScrollableLabel::addScrollbar(frontpanelhw::drawing::DisplayLine& line,
                                   unsigned lineIndex) const {
    while (line.size() <= textWidth_) {
        line.addCharacter(frontpanelhw::drawing::DisplayChar{u' ', false});
    }
    char16_t const indicator =
        detail::scrollIndicator(lineIndex, visibleLines_, firstLine_, lines_.size());
    line.setCharacter(textWidth_, frontpanelhw::drawing::DisplayChar{indicator, false});
}

void ScrollableLabel::createLblList() {
    if (lines_.empty()) {
        return;
    }
    labels_.clear();
    for (unsigned index = 0; index < visibleLines_; ++index) {
        std::u16string const text =
            index < lines_.size() ? lines_.at(std::size_t{firstLine_} + index) : std::u16string();
        auto label = detail::makeLabel(drawing::Point{0, index}, textWidth_, text, alignment_);
        label->onDrawCallback(
            [this](drawing::Point position, frontpanelhw::drawing::DisplayBuffer& rendered) {
                buffer_.setLineContent(position.y, position.x, rendered.getLineString(0));
            });
        labels_.push_back(std::move(label));
    }
}

unsigned ScrollableLabel::getFirstLine() const { return firstLine_; }

std::vector<std::u16string> const& ScrollableLabel::getLines() const { return lines_; }

}  // namespace yxfrontpanel
