// The transports that feed a controller model (an I2C expander port, GPIO lines) and the text
// of what a model shows.
#include <frontpanelhw/code_page.h>

#include "hd44780_model.h"

namespace yxfp_model {

ModelExpanderPort::ModelExpanderPort(Hd44780Model& model, frontpanelhw::ExpanderPinMap const& pins,
                                     unsigned busHz)
    : model_(model), pins_(pins), busHz_(busHz) {}

void ModelExpanderPort::failAfter(std::size_t bytes) { failAfter_ = bytes; }

void ModelExpanderPort::stopFailing() { failAfter_.reset(); }

void ModelExpanderPort::write(std::uint8_t const* bytes, std::size_t size) {
    ++transfers_;
    model_.advance(i2cBusTime(1, 0, busHz_));
    for (std::size_t i = 0; i < size; ++i) {
        if (failAfter_ && *failAfter_ == 0) {
            throw frontpanelhw::Hd44780BusError("test port: the transfer failed");
        }
        if (failAfter_) {
            --*failAfter_;
        }
        ++bytes_;
        stream_.push_back(bytes[i]);
        model_.advance(i2cBusTime(0, 1, busHz_));
        model_.expanderByte(bytes[i], pins_);
    }
}

void ModelLineOutput::setLevels(std::uint8_t levels) {
    using namespace frontpanelhw::hd44780_lines;
    ++changes_;
    model_.setPins((levels & kRs) != 0, false, (levels & kEnable) != 0,
                   static_cast<std::uint8_t>((levels >> kDataShift) & 0x0F));
}

std::chrono::nanoseconds i2cBusTime(unsigned long transfers, unsigned long bytes, unsigned busHz) {
    // Start, address byte with its acknowledge, stop: 11 bit times per transfer.
    unsigned long long const bits = transfers * 11ULL + bytes * 9ULL;
    return std::chrono::nanoseconds(static_cast<long long>(bits * 1000000000ULL / busHz));
}

std::string renderModel(Hd44780Model const& model) {
    std::string text;
    for (unsigned line = 0; line < model.geometry().lines; ++line) {
        for (char32_t const glyph : model.line(line)) {
            text += frontpanelhw::toUtf8(glyph);
        }
        text += '\n';
    }
    return text;
}

}  // namespace yxfp_model
