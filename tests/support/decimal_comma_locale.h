#pragma once

#include <locale>

namespace yxfp_test {

/** Makes the process's global C++ locale one whose decimal point is ',' (as in many European
 *  locales) while it lives, without needing any installed locale, and restores the previous
 *  global locale when it goes. Streams created meanwhile format 3.5 as "3,5". */
class DecimalCommaLocale {
public:
    DecimalCommaLocale()
        : previous_(std::locale::global(std::locale(std::locale::classic(), new CommaPoint))) {}
    ~DecimalCommaLocale() { std::locale::global(previous_); }
    DecimalCommaLocale(DecimalCommaLocale const&) = delete;
    DecimalCommaLocale& operator=(DecimalCommaLocale const&) = delete;

private:
    struct CommaPoint : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
    };

    std::locale previous_;
};

}  // namespace yxfp_test
