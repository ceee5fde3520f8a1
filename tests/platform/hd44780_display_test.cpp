#include <frontpanelhw/display_types.h>
#include <frontpanelhw/hd44780_display.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "hd44780_rig.h"
#include "platform_capture.h"

namespace {

using frontpanelhw::Hd44780Geometry;
using frontpanelhw::Hd44780Rom;
using frontpanelhw::InvertedCellMarker;
using frontpanelhw::drawing::DisplayBuffer;
using yxfp_test::Hd44780Rig;
using yxfp_test::Hd44780Wiring;
using Cell = std::optional<std::pair<unsigned, unsigned>>;

DisplayBuffer frameOf(unsigned chars, std::vector<std::u16string> const& lines) {
    DisplayBuffer frame(chars, static_cast<unsigned>(lines.size()));
    for (unsigned line = 0; line < lines.size(); ++line) {
        frame.setLineContent(line, 0, lines[line]);
    }
    return frame;
}

DisplayBuffer withInverted(DisplayBuffer frame, unsigned line, unsigned first, unsigned last) {
    auto content = frame.getLine(line);
    content.setInverted(first, last, true);
    frame.setDisplayLine(line, content);
    return frame;
}

// Draws and checks that the module shows what the toolkit meant, by the datasheet's rules.
void expectShows(Hd44780Rig& rig, DisplayBuffer const& frame) {
    ASSERT_TRUE(rig.display().draw(frame));
    EXPECT_EQ(rig.screen(), Hd44780Rig::meant(frame));
    EXPECT_EQ(rig.model().violations(), std::vector<std::string>{});
}

TEST(Hd44780GeometryTest, StandardGeometriesUseTheUsualLineAddresses) {
    auto const g20x4 = Hd44780Geometry::standard(20, 4);
    EXPECT_EQ(g20x4.lineAddresses, (std::array<std::uint8_t, 4>{0x00, 0x40, 0x14, 0x54}));
    EXPECT_TRUE(g20x4.twoLineMode);
    auto const g16x4 = Hd44780Geometry::standard(16, 4);
    EXPECT_EQ(g16x4.lineAddresses, (std::array<std::uint8_t, 4>{0x00, 0x40, 0x10, 0x50}));
    EXPECT_EQ(Hd44780Geometry::standard(40, 2).address(39, 1), 0x67);
    auto const g8x1 = Hd44780Geometry::standard(8, 1);
    EXPECT_FALSE(g8x1.twoLineMode);
    EXPECT_EQ(g8x1.nextAddress(0x4F), 0x00);
    EXPECT_EQ(g20x4.nextAddress(0x27), 0x40);
    EXPECT_EQ(g20x4.nextAddress(0x67), 0x00);
    EXPECT_EQ(g20x4.nextAddress(0x13), 0x14);
}

TEST(Hd44780GeometryTest, FortyByFourIsRefusedWithTheReason) {
    try {
        (void)Hd44780Geometry::standard(40, 4);
        FAIL() << "no exception";
    } catch (std::invalid_argument const& error) {
        std::string const text = error.what();
        EXPECT_NE(text.find("40x4"), std::string::npos) << text;
        EXPECT_NE(text.find("two enable lines"), std::string::npos) << text;
    }
    EXPECT_THROW((void)Hd44780Geometry::standard(0, 2), std::invalid_argument);
    EXPECT_THROW((void)Hd44780Geometry::standard(20, 3), std::invalid_argument);
    EXPECT_THROW((void)Hd44780Geometry::standard(41, 2), std::invalid_argument);
}

TEST(Hd44780DisplayTest, FirstDrawInitialisesTheControllerAndShowsTheFrame) {
    Hd44780Rig rig(16, 2, Hd44780Rom::A00);
    expectShows(rig, frameOf(16, {u"Output", u"Voltage 12.00 V"}));
    EXPECT_TRUE(rig.model().fourBitMode());
    EXPECT_TRUE(rig.model().displayOn());
    EXPECT_EQ(rig.model().cursorCell(), Cell{}) << "no inverted cell, no cursor";
    EXPECT_GE(rig.waited(), std::chrono::milliseconds(40)) << "power-on wait";
}

TEST(Hd44780DisplayTest, AnUnchangedFrameSendsNothing) {
    Hd44780Rig rig(20, 4, Hd44780Rom::A00);
    auto const frame = frameOf(20, {u"a", u"b", u"c", u"d"});
    expectShows(rig, frame);
    auto const bytes = rig.port().bytes();
    expectShows(rig, frame);
    EXPECT_EQ(rig.port().bytes(), bytes);
}

TEST(Hd44780DisplayTest, ChangedCellsGoOutAsRunsWithOneAddressJumpEach) {
    Hd44780Rig rig(20, 4, Hd44780Rom::A00);
    expectShows(rig, frameOf(20, {u"", u"", u"", u""}));
    auto nibbles = rig.model().nibbles();
    expectShows(rig, frameOf(20, {u"", u"     x", u"", u""}));
    EXPECT_EQ(rig.model().nibbles() - nibbles, 4U) << "address jump and one character";
    nibbles = rig.model().nibbles();
    expectShows(rig, frameOf(20, {u"", u"     xyz", u"", u""}));
    EXPECT_EQ(rig.model().nibbles() - nibbles, 4U) << "the address counter stands after x";
    nibbles = rig.model().nibbles();
    expectShows(rig, frameOf(20, {u"", u"ab   xyz", u"", u""}));
    EXPECT_EQ(rig.model().nibbles() - nibbles, 6U) << "one jump, two characters";
    nibbles = rig.model().nibbles();
    // The end of line 0 (0x13) and the start of line 2 (0x14) lie next to each other in DDRAM.
    expectShows(rig, frameOf(20, {u"                   A", u"ab   xyz", u"B", u""}));
    EXPECT_EQ(rig.model().nibbles() - nibbles, 6U) << "one jump for both lines";
}

TEST(Hd44780DisplayTest, TheCursorMarksTheFirstInvertedCell) {
    Hd44780Rig rig(20, 4, Hd44780Rom::A00);
    auto const menu = frameOf(20, {u"Output", u"Network", u"Display", u"System"});
    expectShows(rig, withInverted(menu, 0, 0, 18));
    EXPECT_EQ(rig.model().cursorCell(), (Cell{{0, 0}}));
    EXPECT_TRUE(rig.model().cursorOn());
    EXPECT_FALSE(rig.model().blinkOn());
    // Moving the selection changes only inversion: the cursor moves, no character is sent.
    auto const nibbles = rig.model().nibbles();
    expectShows(rig, withInverted(menu, 2, 0, 18));
    EXPECT_EQ(rig.model().cursorCell(), (Cell{{0, 2}}));
    EXPECT_EQ(rig.model().nibbles() - nibbles, 2U) << "one address instruction";
    // A frame without inverted cells hides the cursor.
    expectShows(rig, menu);
    EXPECT_EQ(rig.model().cursorCell(), Cell{});
}

TEST(Hd44780DisplayTest, TheCursorReturnsToTheMarkAfterCharactersWereWritten) {
    Hd44780Rig rig(16, 2, Hd44780Rom::A02);
    expectShows(rig, withInverted(frameOf(16, {u">> Voltage <<", u"  12.00 V"}), 1, 3, 3));
    EXPECT_EQ(rig.model().cursorCell(), (Cell{{3, 1}}));
    expectShows(rig, withInverted(frameOf(16, {u">> Voltage <<", u"  13.00 V"}), 1, 3, 3));
    EXPECT_EQ(rig.model().cursorCell(), (Cell{{3, 1}}));
}

TEST(Hd44780DisplayTest, InvertedCellMarkerIsConfigurable) {
    auto const frame = withInverted(frameOf(16, {u"Output", u"Network"}), 1, 0, 14);
    Hd44780Rig blinking(16, 2, Hd44780Rom::A00, InvertedCellMarker::BlinkingCursor);
    expectShows(blinking, frame);
    EXPECT_EQ(blinking.model().cursorCell(), (Cell{{0, 1}}));
    EXPECT_TRUE(blinking.model().blinkOn());
    EXPECT_FALSE(blinking.model().cursorOn());
    Hd44780Rig none(16, 2, Hd44780Rom::A00, InvertedCellMarker::None);
    expectShows(none, frame);
    EXPECT_EQ(none.model().cursorCell(), Cell{});
}

TEST(Hd44780DisplayTest, GlyphsTheRomLacksAreDrawnInCgram) {
    for (Hd44780Rom const rom : {Hd44780Rom::A00, Hd44780Rom::A02}) {
        Hd44780Rig rig(20, 4, rom);
        DisplayBuffer frame = frameOf(20, {u"Output", u"Network", u"Display", u"System"});
        frame.setLineContent(0, 19, u"\x1E");
        frame.setLineContent(3, 19, u"\x1F");
        frame.setLineContent(2, 8,
                             u"\xDB\xDB\xB0\xB0 \xFB 20\xF8"
                             u"C");
        expectShows(rig, frame);
    }
}

std::u16string customCodes(std::u32string const& characters) {
    std::u16string codes;
    for (char32_t const character : characters) {
        // Every custom glyph here has a code of the toolkit's character set.
        for (unsigned code = 0; code <= 0xFFFF; ++code) {
            if (frontpanelhw::toUnicode(static_cast<char16_t>(code)) == character) {
                codes.push_back(static_cast<char16_t>(code));
                break;
            }
        }
    }
    return codes;
}

// Ten glyphs the A00 ROM lacks, in reading order.
std::u32string const kTenCustom = U"▲▼░▒▓°►◄↑↓";

TEST(Hd44780DisplayTest, MoreThanEightCustomGlyphsShowTheirFallbackAndLogIt) {
    yxfp_test::LogCapture const log;
    Hd44780Rig rig(20, 2, Hd44780Rom::A00);
    ASSERT_TRUE(rig.display().draw(frameOf(20, {customCodes(kTenCustom), u"ok"})));
    EXPECT_EQ(rig.screen()[0], U"▲▼░▒▓°►◄^v" + std::u32string(10, U' '));
    EXPECT_EQ(rig.model().violations(), std::vector<std::string>{});
    bool logged = false;
    for (auto const& record : log.records()) {
        logged =
            logged || (record.level == 7 &&
                       record.message.find("10 custom glyphs, 2 of them") != std::string::npos);
    }
    EXPECT_TRUE(logged);
}

TEST(Hd44780DisplayTest, LoadedGlyphsKeepTheirSlotAndTheLeastRecentlyUsedSlotIsReplaced) {
    Hd44780Rig rig(20, 2, Hd44780Rom::A00);
    // Slots 0-7 take the first eight glyphs.
    expectShows(rig, frameOf(20, {customCodes(kTenCustom.substr(0, 8)), u""}));
    // Only ▲ stays in use: it is the most recently used.
    expectShows(rig, frameOf(20, {customCodes(U"▲"), u""}));
    auto const slot0 = rig.model().glyphRows(0);
    // Two new glyphs take slots used longest ago, never ▲'s.
    expectShows(rig, frameOf(20, {customCodes(U"▲↑↓"), u""}));
    EXPECT_EQ(rig.model().glyphRows(0), slot0);
    // A frame whose glyphs are all loaded uploads nothing: two nibbles per cell changed plus
    // one address jump.
    auto const nibbles = rig.model().nibbles();
    expectShows(rig, frameOf(20, {customCodes(U"↓↑▲"), u""}));
    EXPECT_EQ(rig.model().nibbles() - nibbles, 2U * (2 + 2)) << "two single cells, ↑ stays";
}

TEST(Hd44780DisplayTest, CodesWithoutGlyphShowTheReplacement) {
    Hd44780Rig rig(16, 2, Hd44780Rom::A00);
    ASSERT_TRUE(rig.display().draw(frameOf(16, {u"a\x4E2D"
                                                u"b",
                                                u""})));
    EXPECT_EQ(rig.screen()[0], U"a?b" + std::u32string(13, U' '));
}

TEST(Hd44780DisplayTest, AFrameOfAnotherSizeIsCutOrPadded) {
    Hd44780Rig rig(16, 2, Hd44780Rom::A00);
    ASSERT_TRUE(rig.display().draw(frameOf(20, {u"0123456789abcdefghij", u"x", u"y"})));
    EXPECT_EQ(rig.screen(),
              (std::vector<std::u32string>{U"0123456789abcdef", U"x" + std::u32string(15, U' ')}));
    ASSERT_TRUE(rig.display().draw(frameOf(4, {u"ab"})));
    EXPECT_EQ(rig.screen(), (std::vector<std::u32string>{U"ab" + std::u32string(14, U' '),
                                                         std::u32string(16, U' ')}));
}

// A transport that fails at any byte of a frame: the draw reports it, and the next draw brings
// the module back to exactly the frame, within the datasheet's timing.
TEST(Hd44780DisplayTest, ATransferFailingAnywhereInAFrameIsRepairedByTheNextDraw) {
    yxfp_test::LogCapture const log;
    auto before =
        withInverted(frameOf(20, {u"Output", u"Network", u"Display", u"System"}), 1, 0, 18);
    before.setLineContent(0, 19, u"\x1F");
    auto middle =
        withInverted(frameOf(20, {u">> Voltage <<", u"   12.50 V", u"", u"\xDB\xB0"}), 1, 4, 4);
    auto const after =
        withInverted(frameOf(20, {u"Output", u"Network", u"Display \xF8", u"System"}), 2, 0, 18);
    unsigned long frameBytes = 0;
    {
        Hd44780Rig probe(20, 4, Hd44780Rom::A00);
        expectShows(probe, before);
        auto const start = probe.port().bytes();
        expectShows(probe, middle);
        frameBytes = probe.port().bytes() - start;
    }
    ASSERT_GT(frameBytes, 20U);
    for (std::size_t failAt = 0; failAt < frameBytes; ++failAt) {
        Hd44780Rig rig(20, 4, Hd44780Rom::A00);
        ASSERT_TRUE(rig.display().draw(before));
        rig.port().failAfter(failAt);
        EXPECT_FALSE(rig.display().draw(middle)) << "failing at byte " << failAt;
        rig.port().stopFailing();
        rig.advanceClock(std::chrono::milliseconds(250));  // the first retry is due
        ASSERT_TRUE(rig.display().draw(after));
        ASSERT_EQ(rig.screen(), Hd44780Rig::meant(after)) << "failing at byte " << failAt;
        ASSERT_EQ(rig.model().cursorCell(), (Cell{{0, 2}})) << "failing at byte " << failAt;
        ASSERT_EQ(rig.model().violations(), std::vector<std::string>{})
            << "failing at byte " << failAt;
    }
    std::size_t errors = 0;
    for (auto const& record : log.records()) {
        errors += record.level == 3 ? 1 : 0;
    }
    EXPECT_EQ(errors, frameBytes) << "one error line per failure";
}

TEST(Hd44780DisplayTest, RepeatedFailuresLogOneErrorAndThenDebugLines) {
    yxfp_test::LogCapture const log;
    Hd44780Rig rig(16, 2, Hd44780Rom::A00);
    rig.port().failAfter(0);
    auto const frame = frameOf(16, {u"a", u"b"});
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(rig.display().draw(frame));
        rig.advanceClock(std::chrono::seconds(1));
    }
    auto const records = log.records();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].level, 3);
    EXPECT_NE(records[0].message.find("test port: the transfer failed"), std::string::npos);
    EXPECT_EQ(records[1].level, 7);
    EXPECT_EQ(records[2].level, 7);
    rig.port().stopFailing();
    expectShows(rig, frame);
}

TEST(Hd44780DisplayTest, ARequestedRedrawInitialisesAgain) {
    Hd44780Rig rig(16, 2, Hd44780Rom::A00);
    auto const frame = frameOf(16, {u"a", u"b"});
    expectShows(rig, frame);
    auto const waited = rig.waited();
    rig.display().requestRedraw();
    expectShows(rig, frame);
    EXPECT_GE(rig.waited() - waited, std::chrono::microseconds(4100)) << "initialised again";
    EXPECT_LT(rig.waited() - waited, std::chrono::milliseconds(40)) << "no power-on wait again";
}

// A module that is gone: one try, then draws fail at once without touching the bus until the
// retry time, which doubles with each failure up to its limit; retries skip the power-on wait.
TEST(Hd44780DisplayTest, AMissingModuleIsTriedAgainWithBackoffAndNoPowerOnWait) {
    using std::chrono::milliseconds;
    yxfp_test::LogCapture const log;
    frontpanelhw::Hd44780Options options;
    options.recovery.firstRetry = milliseconds(100);
    options.recovery.longestRetry = milliseconds(400);
    Hd44780Rig rig(16, 2, Hd44780Rom::A00, InvertedCellMarker::UnderlineCursor, Hd44780Wiring::I2c,
                   options);
    auto const frame = frameOf(16, {u"05.00 V", u"192.168.1.100"});
    expectShows(rig, frame);
    rig.display().requestRedraw();
    rig.port().failAfter(0);
    EXPECT_FALSE(rig.display().draw(frame));
    std::vector<long> triedAt;  // ms after the first failure
    for (long ms = 1; ms <= 1600; ++ms) {
        rig.advanceClock(milliseconds(1));
        auto const transfers = rig.port().transfers();
        auto const waited = rig.waited();
        EXPECT_FALSE(rig.display().draw(frame));
        if (rig.port().transfers() != transfers) {
            triedAt.push_back(ms);
            EXPECT_LT(rig.waited() - waited, milliseconds(40)) << "retry at " << ms << " ms";
        }
    }
    EXPECT_EQ(triedAt, (std::vector<long>{100, 300, 700, 1100, 1500}));
    rig.port().stopFailing();
    rig.advanceClock(milliseconds(400));
    expectShows(rig, frame);
}

// The module lost power while it was away: after the retry it is initialised again and its
// custom glyphs are loaded again (CGRAM is undefined after power-on).
TEST(Hd44780DisplayTest, AModuleBackFromAPowerLossGetsItsCustomGlyphsAgain) {
    Hd44780Rig rig(20, 4, Hd44780Rom::A00);
    auto frame = frameOf(20, {u"Output", u"Network", u"Display", u"System"});
    frame.setLineContent(0, 19, u"\x1E");
    frame.setLineContent(3, 19, u"\x1F");
    frame.setLineContent(2, 8, u"\xDB\xDB\xB0\xB0 20\xF8");
    expectShows(rig, frame);
    rig.display().requestRedraw();  // a draw that reaches the bus
    rig.port().failAfter(0);
    EXPECT_FALSE(rig.display().draw(frame));
    rig.model().powerCycle();
    rig.port().stopFailing();
    rig.advanceClock(std::chrono::seconds(1));
    rig.model().advance(std::chrono::milliseconds(50));
    expectShows(rig, frame);
}

// Noise or ESD scrambled the controller without any transport error: with a resync interval
// the driver initialises again and redraws; without one (the default) it does not.
TEST(Hd44780DisplayTest, APeriodicResyncRepairsAScrambledModuleWhenSwitchedOn) {
    for (bool const resync : {false, true}) {
        frontpanelhw::Hd44780Options options;
        if (resync) {
            options.recovery.resyncInterval = std::chrono::seconds(10);
        }
        Hd44780Rig rig(16, 2, Hd44780Rom::A00, InvertedCellMarker::UnderlineCursor,
                       Hd44780Wiring::I2c, options);
        auto const frame = frameOf(16, {u"Out 1  05.00 V", u"S/N YX-2026/07"});
        expectShows(rig, frame);
        rig.model().powerCycle();
        rig.model().advance(std::chrono::milliseconds(50));
        rig.advanceClock(std::chrono::seconds(9));
        ASSERT_TRUE(rig.display().draw(frame));
        EXPECT_NE(rig.screen(), Hd44780Rig::meant(frame)) << "not yet due";
        rig.advanceClock(std::chrono::seconds(1));
        ASSERT_TRUE(rig.display().draw(frame));
        if (resync) {
            EXPECT_EQ(rig.screen(), Hd44780Rig::meant(frame));
        } else {
            EXPECT_NE(rig.screen(), Hd44780Rig::meant(frame)) << "no resync by default";
        }
    }
}

TEST(Hd44780DisplayTest, GpioWiringWaitsForEveryInstructionItself) {
    for (Hd44780Rom const rom : {Hd44780Rom::A00, Hd44780Rom::A02}) {
        Hd44780Rig rig(20, 4, rom, InvertedCellMarker::UnderlineCursor, Hd44780Wiring::Gpio);
        auto frame =
            withInverted(frameOf(20, {u"Output", u"Network", u"Display", u"System"}), 3, 0, 18);
        frame.setLineContent(0, 19, u"\x1E");
        expectShows(rig, frame);
        EXPECT_EQ(rig.model().cursorCell(), (Cell{{0, 3}}));
        EXPECT_EQ(rig.lines().changes(), rig.model().nibbles() * 3)
            << "three level changes per nibble";
        EXPECT_FALSE(rig.display().setBacklight(false)) << "no backlight line";
    }
}

TEST(Hd44780DisplayTest, BacklightFollowsTheSwitch) {
    Hd44780Rig rig(16, 2, Hd44780Rom::A00);
    expectShows(rig, frameOf(16, {u"a", u"b"}));
    EXPECT_TRUE(rig.model().backlight());
    EXPECT_TRUE(rig.display().setBacklight(false));
    EXPECT_FALSE(rig.model().backlight());
    expectShows(rig, frameOf(16, {u"c", u"d"}));
    EXPECT_FALSE(rig.model().backlight()) << "stays off while drawing";
    EXPECT_TRUE(rig.display().setBacklight(true));
    EXPECT_TRUE(rig.model().backlight());
}

TEST(Hd44780DisplayTest, ConstructorRefusesAMissingTransport) {
    EXPECT_THROW(frontpanelhw::Hd44780Display(nullptr, Hd44780Geometry::standard(16, 2)),
                 std::invalid_argument);
}

}  // namespace

namespace {

// The worst case per frame that docs/displays.md states: a full redraw of a 20x4 module with
// every line changed and seven custom glyphs to load, over I2C, is at most 964 expander bytes in
// 10 transfers (22 ms at 400 kHz, 88 ms at 100 kHz) and 6.7 ms of waits.
TEST(Hd44780DisplayTest, AFullRedrawStaysWithinTheDocumentedWorstCase) {
    Hd44780Rig rig(20, 4, Hd44780Rom::A00);
    auto first = frameOf(20, {u"", u"", u"", u""});
    first.setLineContent(0, 0,
                         u"\x1E\x1F\xDB\xB0\xB1\xB2\xF8\x10\x11"
                         u"Abcdefghijk");
    expectShows(rig, first);
    auto const bytes = rig.port().bytes();
    auto const transfers = rig.port().transfers();
    auto const waited = rig.waited();
    rig.display().requestRedraw();
    auto full = frameOf(
        20, {u"", u"09876543210987654321", u"abcdefghijklmnopqrst", u"ABCDEFGHIJKLMNOPQRST"});
    full.setLineContent(0, 0,
                        u"\x10\x11\xDB\xB0\xB1\xB2\xF8\x1E\x1F"
                        u"Zbcdefghijk");
    expectShows(rig, full);
    EXPECT_LE(rig.port().bytes() - bytes, 964U);
    EXPECT_LE(rig.port().transfers() - transfers, 10U);
    EXPECT_LE(rig.waited() - waited, std::chrono::microseconds(6700));
    EXPECT_LE(yxfp_test::i2cBusTime(rig.port().transfers() - transfers, rig.port().bytes() - bytes,
                                    100000),
              std::chrono::milliseconds(88));
}

}  // namespace
