#pragma once

#include <frontpanelhw/display_types.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/i_form.h>
#include <yxfrontpanel/menu_item.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace yxfp_test {

/** A full-screen form that records every focus change. Given a provider it behaves like a real
 *  form on screen: gaining the focus draws one frame with its title on line 0. */
class FormStub : public yxfrontpanel::IForm {
public:
    FormStub() = default;
    FormStub(yxfrontpanel::IDrawingProvider const& provider, std::u16string title)
        : provider_(&provider), title_(std::move(title)) {}

    void setFocus(bool focus) override {
        focusCalls.push_back(focus);
        bool const gained = focus && !focus_;
        focus_ = focus;
        if (gained && provider_ != nullptr) {
            frontpanelhw::drawing::DisplayBuffer screen(provider_->getChars(),
                                                        provider_->getLines());
            screen.setLineContent(0, 0, title_);
            provider_->draw(screen);
        }
    }
    bool getFocus() const override { return focus_; }

    /** Every value given to setFocus, oldest first. */
    std::vector<bool> focusCalls;

private:
    yxfrontpanel::IDrawingProvider const* provider_ = nullptr;
    std::u16string title_;
    bool focus_ = false;
};

/** A plain menu item for tests: the key operations only count their calls and answer with a
 *  configurable result; enter and exit are counted and then behave as in every item. It may own
 *  a `FormStub` that enter opens. */
class TestItem : public yxfrontpanel::MenuItem {
public:
    /** An item without a form: enter opens nothing. */
    explicit TestItem(std::u16string const& text) : MenuItem(text) {}

    /** An item with a form stub (drawing its title through `provider` when given). */
    static std::shared_ptr<TestItem> withForm(
        std::u16string const& text, yxfrontpanel::IDrawingProvider const* provider = nullptr) {
        auto item = std::make_shared<TestItem>(text);
        item->form_ = provider != nullptr ? std::make_unique<FormStub>(*provider, u"Form " + text)
                                          : std::make_unique<FormStub>();
        item->setForm(item->form_.get());
        return item;
    }

    bool enter() override {
        ++enters;
        return MenuItem::enter();
    }
    bool exit() override {
        ++exits;
        return MenuItem::exit();
    }
    void setLocal(bool local) override { localCalls.push_back(local); }
    bool left() override { return counted(lefts); }
    bool right() override { return counted(rights); }
    bool up() override { return counted(ups); }
    bool down() override { return counted(downs); }

    /** The calls of up, down, left and right so far, in that order, to compare whole. */
    std::vector<int> keyCalls() const { return {ups, downs, lefts, rights}; }

    /** The owned form stub, null for an item without form. */
    FormStub* form() const { return form_.get(); }

    using MenuItem::setOwnText;

    int enters = 0;
    int exits = 0;
    int lefts = 0;
    int rights = 0;
    int ups = 0;
    int downs = 0;
    std::vector<bool> localCalls;
    /** What left, right, up and down answer. */
    bool keyResult = false;

private:
    /** Counts a call of a key operation and gives its answer. */
    bool counted(int& calls) const {
        ++calls;
        return keyResult;
    }

    std::unique_ptr<FormStub> form_;
};

}  // namespace yxfp_test
