#pragma once

#include <yxfrontpanel/yxfrontpanel.h>

#include <atomic>
#include <string>

namespace yxfp_test {

/** A number item of the range 0 to 10000 that counts the values reaching it through
 *  `setValue`; the count may be read from any thread. */
class CountingValueItem : public yxfrontpanel::ValueEditorMenuItem {
public:
    CountingValueItem(yxfrontpanel::IDrawingProvider const& provider, std::u16string const& name)
        : ValueEditorMenuItem(provider, name, 0.0, 10000.0) {}

    void setValue(double value) override {
        ++values;
        ValueEditorMenuItem::setValue(value);
    }

    std::atomic<int> values{0};
};

}  // namespace yxfp_test
