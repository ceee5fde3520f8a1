// Requests of GPIO lines through libgpiod's 2.x API (Debian 13's libgpiod-dev 2.1).
#include "gpiod_v2_request.h"

#include <cctype>
#include <cerrno>

namespace frontpanelhw::detail {

std::string gpioChipPath(std::string const& chip) {
    if (chip.find('/') != std::string::npos) {
        return chip;
    }
    bool const number = !chip.empty() && std::isdigit(static_cast<unsigned char>(chip[0])) != 0;
    return "/dev/" + (number ? "gpiochip" + chip : chip);
}

GpiodV2Request::GpiodV2Request(std::string const& chip, std::vector<unsigned> const& offsets,
                               gpiod_line_settings* settings, std::string const& consumer) {
    chip_ = ::gpiod_chip_open(gpioChipPath(chip).c_str());
    if (chip_ == nullptr) {
        error_ = errno;
        return;
    }
    gpiod_line_config* lines = ::gpiod_line_config_new();
    gpiod_request_config* config = ::gpiod_request_config_new();
    if (lines != nullptr && config != nullptr && settings != nullptr &&
        ::gpiod_line_config_add_line_settings(lines, offsets.data(), offsets.size(), settings) ==
            0) {
        ::gpiod_request_config_set_consumer(config, consumer.c_str());
        request_ = ::gpiod_chip_request_lines(chip_, config, lines);
    }
    if (request_ == nullptr) {
        error_ = errno != 0 ? errno : ENOMEM;
    }
    ::gpiod_request_config_free(config);
    ::gpiod_line_config_free(lines);
}

GpiodV2Request::~GpiodV2Request() {
    if (request_ != nullptr) {
        ::gpiod_line_request_release(request_);
    }
    if (chip_ != nullptr) {
        ::gpiod_chip_close(chip_);
    }
}

}  // namespace frontpanelhw::detail
