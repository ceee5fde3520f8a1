#include <yxfrontpanel/control.h>
#include <yxfrontpanel/string_helper.h>

namespace yxfrontpanel {

Control::Control(drawing::Point location, drawing::Rectangle size)
    : text_(u"Ctrl"), location_(location), size_(size) {
    if (size.width != 0 || size.height != 0) {
        buffer_ = std::make_unique<frontpanelhw::drawing::DisplayBuffer>(size.width, size.height);
    }
}

Control::~Control() = default;

void Control::setVisible(bool visible) {
    if (visible_.load() == visible) {
        return;
    }
    visible_.store(visible);
    draw(true);
}

void Control::draw(bool redrawParent) {
    if (!onDraw_ || !*onDraw_) {
        return;
    }
    if (visible_.load()) {
        (*onDraw_)(location_, buffer());
    } else {
        frontpanelhw::drawing::DisplayBuffer blank(size_.width, size_.height);
        (*onDraw_)(location_, blank);
    }
    if (redrawParent) {
        this->redrawParent();
    }
}

bool Control::getVisible() const { return visible_.load(); }

void Control::setText(std::u16string const& text) {
    if (text == text_) {
        return;
    }
    if (textReplacing_ != nullptr) {
        textReplacing_(*this);
    }
    // A fresh copy has exactly the text's capacity (assignment may round it up): a menu holds
    // one such text per item.
    text_ = std::u16string(text);
    draw(true);
}

void Control::setText(std::string const& text) { setText(stringhelper::toU16(text)); }

void Control::setLocation(drawing::Point const& location, bool redraw) {
    if (location == location_) {
        return;
    }
    location_ = location;
    if (redraw) {
        draw(true);
    }
}

void Control::onDrawCallback(DrawCallback const& callback) {
    if (onDraw_) {
        *onDraw_ = callback;
    } else if (callback) {
        onDraw_ = std::make_unique<DrawCallback>(callback);
    }
}

void Control::setTextReplacingHook(TextReplacingHook hook) { textReplacing_ = hook; }

void Control::setRedrawParentCallback(std::function<void()> const& callback) {
    redrawParent_ = callback;
}

void Control::overwriteSize(drawing::Rectangle const& size) { size_ = size; }

bool Control::redrawParent() {
    if (!redrawParent_) {
        return false;
    }
    redrawParent_();
    return true;
}

std::u16string const& Control::getText() const { return text_; }

drawing::Point Control::getLocation() const { return location_; }

drawing::Rectangle Control::getSize() const { return size_; }

namespace {
// What a control of no cells shows.
frontpanelhw::drawing::DisplayBuffer const& noCells() {
    static frontpanelhw::drawing::DisplayBuffer const kNoCells(0, 0);
    return kNoCells;
}
}  // namespace

frontpanelhw::drawing::DisplayBuffer const& Control::getBuffer() const {
    return buffer_ ? *buffer_ : noCells();
}

bool Control::getShown() const { return shown_.load(); }

void Control::setShown(bool shown) { shown_.store(shown); }

frontpanelhw::drawing::DisplayBuffer& Control::buffer() {
    if (!buffer_) {
        buffer_ = std::make_unique<frontpanelhw::drawing::DisplayBuffer>(0, 0);
    }
    return *buffer_;
}

}  // namespace yxfrontpanel
