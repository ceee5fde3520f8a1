#include <yxfrontpanel/control.h>

namespace yxfrontpanel {

Label::Label(drawing::Point location, unsigned int width, std::u16string const& text)
    : Control(location, drawing::Rectangle{width, 1}) {
    setText(text);
}

Label::Label(std::u16string const& text)
    : Label(drawing::Point{0, 0}, static_cast<unsigned>(text.size()), text) {}

Label::Label() : Label(std::u16string()) {}

Label::~Label() = default;

void Label::draw(bool redrawParent) {
    buffer().clear();
    // Unsigned on purpose: a text wider than the label wraps the start column to a huge value,
    // which the buffer's clipping turns into "nothing shown" instead of a cut-off text.
    unsigned const width = getSize().width;
    auto const length = static_cast<unsigned>(getText().size());
    switch (alignment_) {
        case drawing::TextAllignment::Left:
            startColumn_ = 0;
            break;
        case drawing::TextAllignment::Right:
            startColumn_ = width - length;
            break;
        case drawing::TextAllignment::Center:
            startColumn_ = (width - length) / 2;
            break;
    }
    buffer().setLineContent(0, startColumn_, getText());
    endColumn_ = startColumn_ + length;
    Control::draw(redrawParent);
}

void Label::setTextAllignment(drawing::TextAllignment alignment) {
    alignment_ = alignment;
    draw(true);
}

drawing::TextAllignment Label::getTextAllignment() const { return alignment_; }

unsigned Label::getStartColumn() const { return startColumn_; }

unsigned Label::getEndColumn() const { return endColumn_; }

}  // namespace yxfrontpanel
