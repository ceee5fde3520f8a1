#pragma once

#include <yxfrontpanel/control.h>
#include <yxfrontpanel/drawing.h>

#include <memory>
#include <string>

namespace yxfrontpanel::detail {

/** A label of `width` cells at `position` showing `text` with `alignment`. */
std::unique_ptr<Label> makeLabel(drawing::Point position, unsigned width,
                                 std::u16string const& text, drawing::TextAllignment alignment);

}  // namespace yxfrontpanel::detail
