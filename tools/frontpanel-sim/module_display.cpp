#include "module_display.h"

#include <frontpanelhw/code_page.h>
#include <frontpanelhw/hd44780_display.h>
#include <frontpanelhw/hd44780_i2c.h>

#include <array>
#include <thread>
#include <utility>

#include "graphic_module_display.h"
#include "hd44780_model.h"
#include "oled_module_display.h"

namespace frontpanelsim {

namespace {

using frontpanelhw::drawing::DisplayBuffer;

// The panel's cell code for a glyph the module shows: the code whose glyph it is (see
// toUnicode), '?' for a glyph the panel's character set lacks.
char16_t codeForGlyph(char32_t glyph) {
    static auto const lowHalf = [] {
        std::array<char32_t, 0x100> glyphs{};
        for (unsigned code = 0; code < glyphs.size(); ++code) {
            glyphs[code] = frontpanelhw::toUnicode(static_cast<char16_t>(code));
        }
        return glyphs;
    }();
    for (unsigned code = 1; code < lowHalf.size(); ++code) {
        if (lowHalf[code] == glyph) {
            return static_cast<char16_t>(code);
        }
    }
    if (glyph >= 0x100 && glyph <= 0xFFFF &&
        frontpanelhw::toUnicode(static_cast<char16_t>(glyph)) == glyph) {
        return static_cast<char16_t>(glyph);
    }
    return u'?';
}

/** The driver on the controller model; `screen` shows the model. */
class ModelView : public frontpanelhw::IDisplay {
public:
    ModelView(frontpanelhw::IDisplay& screen, frontpanelhw::Hd44780Rom rom)
        : screen_(screen),
          model_(frontpanelhw::Hd44780Geometry::standard(screen.getChars(), screen.getLines()),
                 rom) {
        // The module shows the driver's custom glyphs as the characters they draw.
        model_.nameCgramGlyphs([](std::array<std::uint8_t, 8> const& rows) {
            auto const* custom = frontpanelhw::findHd44780CustomGlyph(rows);
            return custom != nullptr ? custom->character : char32_t{0xFFFD};
        });
        frontpanelhw::ExpanderBusOptions const busOptions;
        frontpanelhw::Hd44780Options options;
        options.rom = rom;
        options.wait = [this](std::chrono::nanoseconds duration) { model_.advance(duration); };
        module_ = std::make_unique<frontpanelhw::Hd44780Display>(
            std::make_unique<frontpanelhw::ExpanderHd44780Bus>(
                std::make_unique<yxfp_model::ModelExpanderPort>(model_, busOptions.pins,
                                                                busOptions.maxBusHz),
                busOptions),
            model_.geometry(), std::move(options));
    }

    unsigned getLines() const override { return screen_.getLines(); }
    unsigned getChars() const override { return screen_.getChars(); }

    bool draw(DisplayBuffer const& buffer) override {
        bool const shown = module_->draw(buffer);
        DisplayBuffer view(getChars(), getLines());
        auto const cursor = model_.cursorCell();
        for (unsigned line = 0; line < getLines(); ++line) {
            frontpanelhw::drawing::DisplayLine cells;
            for (unsigned column = 0; column < getChars(); ++column) {
                bool const marked = cursor && cursor->first == column && cursor->second == line;
                cells.addCharacter({codeForGlyph(model_.glyph(column, line)), marked});
            }
            view.setDisplayLine(line, cells);
        }
        return screen_.draw(view) && shown;
    }

private:
    frontpanelhw::IDisplay& screen_;
    yxfp_model::Hd44780Model model_;
    std::unique_ptr<frontpanelhw::Hd44780Display> module_;
};

/** The panel's own display and a real module side by side. */
class ModuleTee : public frontpanelhw::IDisplay {
public:
    ModuleTee(frontpanelhw::IDisplay& screen, DisplayOption const& option) : screen_(screen) {
        auto const geometry =
            frontpanelhw::Hd44780Geometry::standard(screen.getChars(), screen.getLines());
        auto port = frontpanelhw::openExpanderPort(option.path, option.address);
        frontpanelhw::Hd44780Options options;
        options.rom = option.rom;
        // Really wait: a key script hooks the toolkit's sleeps away, the module must not be.
        options.wait = [](std::chrono::nanoseconds duration) {
            std::this_thread::sleep_for(duration);
        };
        module_ = std::make_unique<frontpanelhw::Hd44780Display>(
            std::make_unique<frontpanelhw::ExpanderHd44780Bus>(std::move(port),
                                                               frontpanelhw::ExpanderBusOptions{}),
            geometry, std::move(options));
    }

    unsigned getLines() const override { return screen_.getLines(); }
    unsigned getChars() const override { return screen_.getChars(); }

    bool draw(DisplayBuffer const& buffer) override {
        bool const sent = module_->draw(buffer);
        return screen_.draw(buffer) && sent;
    }

private:
    frontpanelhw::IDisplay& screen_;
    std::unique_ptr<frontpanelhw::Hd44780Display> module_;
};

/** The run's display as it is. */
class Passthrough : public frontpanelhw::IDisplay {
public:
    explicit Passthrough(frontpanelhw::IDisplay& screen) : screen_(screen) {}
    unsigned getLines() const override { return screen_.getLines(); }
    unsigned getChars() const override { return screen_.getChars(); }
    bool draw(DisplayBuffer const& buffer) override { return screen_.draw(buffer); }

private:
    frontpanelhw::IDisplay& screen_;
};

}  // namespace

std::unique_ptr<frontpanelhw::IDisplay> makeDisplay(DisplayOption const& option,
                                                    frontpanelhw::IDisplay& screen) {
    switch (option.kind) {
        case DisplayOption::Kind::Hd44780Model:
            return std::make_unique<ModelView>(screen, option.rom);
        case DisplayOption::Kind::Hd44780Device:
            return std::make_unique<ModuleTee>(screen, option);
        case DisplayOption::Kind::Pixels:
        case DisplayOption::Kind::Png:
        case DisplayOption::Kind::Framebuffer:
            return makeGraphicDisplay(option, screen);
        case DisplayOption::Kind::GraphicModule:
            return makeGraphicModuleDisplay(option.graphicModule, screen,
                                            frontpanelhw::graphic::Font::fromName(option.font));
        case DisplayOption::Kind::Terminal:
            break;
    }
    return std::make_unique<Passthrough>(screen);
}

}  // namespace frontpanelsim
