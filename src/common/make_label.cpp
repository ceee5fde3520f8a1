#include "common/make_label.h"

namespace yxfrontpanel::detail {

std::unique_ptr<Label> makeLabel(drawing::Point position, unsigned width,
                                 std::u16string const& text, drawing::TextAllignment alignment) {
    auto label = std::make_unique<Label>(position, width, text);
    label->setTextAllignment(alignment);
    return label;
}

}  // namespace yxfrontpanel::detail
