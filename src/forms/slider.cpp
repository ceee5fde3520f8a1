#include <yxfrontpanel/control.h>
#include <yxfrontpanel/progress_bar.h>
#include <yxfrontpanel/slider.h>
#include <yxfrontpanel/text_constants.h>

#include <cstdint>
#include <stdexcept>
#include <utility>

#include "common/glyphs.h"
#include "common/make_label.h"
#include "common/saturated_int.h"

namespace yxfrontpanel {

namespace {

constexpr unsigned kHeadlineLine = 0;
constexpr unsigned kBarLine = 1;
constexpr unsigned kScaleLine = 2;
constexpr char16_t kCursorCode = detail::kUpArrowGlyph;
constexpr char16_t kTickCode = 0x27;

// Sums near the ends of `int` (a minimum close to INT_MAX, a bar value at INT_MIN) saturate
// instead of overflowing.
using detail::saturatedInt;

std::unique_ptr<Label> makeLabel(unsigned column, unsigned line, unsigned width,
                                 std::u16string const& text, drawing::TextAllignment alignment) {
    return detail::makeLabel(drawing::Point{column, line}, width, text, alignment);
}

}  // namespace

Slider::Slider(IDrawingProvider const& provider, std::u16string const& title,
               std::u16string const& minCaption, std::u16string const& maxCaption,
               unsigned captionWidth, unsigned barWidth, int minimum)
    : Form(provider) {
    // Summed in 64 bits so that huge widths cannot wrap around into a layout that "fits".
    std::uint64_t const needed = std::uint64_t{barWidth} + 2 * std::uint64_t{captionWidth};
    if (needed > provider.getChars()) {
        throw std::out_of_range("Labels and Bar does not fit into line!");
    }
    initHeadline(provider.getChars(), title);
    initBarLine(captionWidth, barWidth, minimum, minCaption, maxCaption);
    initScaleLine(captionWidth, barWidth);
}

Slider::~Slider() = default;

template <class T>
void Slider::replace(std::unique_ptr<T>& owned, std::unique_ptr<T> fresh) {
    // The form must not keep a pointer to a control that is about to be destroyed.
    removeControl(owned.get());
    owned = std::move(fresh);
    addControl(owned.get());
}

void Slider::initHeadline(unsigned width, std::u16string const& title) {
    replace(headline_, makeLabel(0, kHeadlineLine, width,
                                 std::u16string(kMarkerOpen) + title + std::u16string(kMarkerClose),
                                 drawing::TextAllignment::Center));
    draw();
}

void Slider::initBarLine(unsigned captionWidth, unsigned barWidth, int minimum,
                         std::u16string const& minCaption, std::u16string const& maxCaption) {
    replace(minCaption_,
            makeLabel(0, kBarLine, captionWidth, minCaption, drawing::TextAllignment::Center));
    auto bar =
        std::make_unique<ProgressBar>(drawing::Point{captionWidth, kBarLine}, barWidth, minimum,
                                      saturatedInt(std::int64_t{minimum} + barWidth));
    bar->setValue(saturatedInt(std::int64_t{minimum} + 1));
    replace(bar_, std::move(bar));
    replace(maxCaption_, makeLabel(captionWidth + barWidth, kBarLine, captionWidth, maxCaption,
                                   drawing::TextAllignment::Center));
    draw();
}

void Slider::initScaleLine(unsigned captionWidth, unsigned barWidth) {
    int const first = bar_ ? bar_->getMin() : 0;
    replace(scale_, makeLabel(captionWidth, kScaleLine, barWidth, createCursor(first),
                              drawing::TextAllignment::Left));
    replace(valueText_, makeLabel(captionWidth + barWidth, kScaleLine, captionWidth, u"Val:0",
                                  drawing::TextAllignment::Right));
    draw();
}

void Slider::setFocus(bool focus) {
    if (focus) {
        int const committed = value_.load();
        if (getBarValCorrected() != committed) {
            setValueInternal(committed);
        }
    }
    Form::setFocus(focus);
}

bool Slider::setValue(int value) {
    if (!setValueInternal(value)) {
        return false;
    }
    value_.store(value);
    return true;
}

bool Slider::setValueInternal(int value) {
    if (value < bar_->getMin() || value >= bar_->getMax()) {
        return false;
    }
    // Unfocused while the three controls change, so that the screen is drawn once at the end.
    bool const focus = getFocus();
    Form::setFocus(false);
    bar_->setValue(value + 1);  // below the bar's maximum, so no overflow
    valueText_->setText("Val:" + std::to_string(value));
    scale_->setText(createCursor(value));
    Form::setFocus(focus);
    return true;
}

bool Slider::moveLeft() { return moveCursor(-1); }

bool Slider::moveRight() { return moveCursor(+1); }

bool Slider::moveCursor(int delta) {
    if (!editorMode_.load()) {
        return false;
    }
    std::int64_t const target = std::int64_t{getBarValCorrected()} + delta;
    if (target != saturatedInt(target)) {
        return false;
    }
    return setValueInternal(static_cast<int>(target));
}

int Slider::getBarValCorrected() const { return saturatedInt(std::int64_t{bar_->getValue()} - 1); }

void Slider::apply() {
    int const committed = getBarValCorrected();
    value_.store(committed);
    if (editorMode_.load() && callback_) {
        callback_(committed);
    }
}

void Slider::setEditorMode(bool on) {
    editorMode_.store(on);
    scale_->setText(createCursor(value_.load()));
}

bool Slider::getEditorMode() const { return editorMode_.load(); }

int Slider::getValue() const { return value_.load(); }

void Slider::setCallback(std::function<void(int)> callback) { callback_.swap(callback); }

std::u16string Slider::createCursor(int position) const {
    if (!bar_) {
        return {};
    }
    bool const showCursor = editorMode_.load();
    std::int64_t const end = bar_->getSize().width;
    std::u16string scale;
    // Up to the bar's width in cells, not its maximum value: with a positive minimum the row is
    // shorter than the bar, with a negative one longer (the scale label cuts it to the bar).
    for (std::int64_t i = bar_->getMin(); i < end; ++i) {
        scale += (showCursor && i == position) ? kCursorCode : kTickCode;
    }
    return scale;
}

}  // namespace yxfrontpanel
