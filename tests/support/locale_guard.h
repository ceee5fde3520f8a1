#pragma once

#include <gtest/gtest.h>

#include <clocale>
#include <string>

namespace yxfp_test {

/** Switches the character type of the C locale to UTF-8 while it lives, as a terminal user's
 *  environment would, and restores the previous setting when it goes. Curses encodes and
 *  decodes wide characters in this locale. */
class Utf8Locale {
public:
    Utf8Locale() : previous_(std::setlocale(LC_CTYPE, nullptr)) {
        EXPECT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr) << "no C.UTF-8 locale";
    }
    ~Utf8Locale() { std::setlocale(LC_CTYPE, previous_.c_str()); }
    Utf8Locale(Utf8Locale const&) = delete;
    Utf8Locale& operator=(Utf8Locale const&) = delete;

private:
    std::string previous_;
};

}  // namespace yxfp_test
