// Long random key sequences, in and out of focus and editor mode, with values near, at and
// beyond the bounds: nothing may fail, and stepping must respect the bounds.

#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "recording_provider.h"
#include "standard_panel.h"

namespace {

using ip::IpV4Address;
using namespace yxfp_test;
using namespace yxfrontpanel;

constexpr int kKeysPerRun = 4000;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

int pick(std::mt19937& random, int count) {
    return std::uniform_int_distribution<int>(0, count - 1)(random);
}

int direction(std::mt19937& random) { return pick(random, 2) == 0 ? -1 : +1; }

// Draws uniformly from [low, high], or from a modest range where that is not a finite range.
double uniform(std::mt19937& random, double low, double high) {
    if (!(low <= high) || !std::isfinite(high - low)) {
        low = -1e6;
        high = 1e6;
    }
    return std::uniform_real_distribution<double>(low, high)(random);
}

// A value at, just inside, just beyond or far beyond the bounds, or an awkward number.
double pickValue(std::mt19937& random, double minValue, double maxValue) {
    double const low = std::fmin(minValue, maxValue);
    double const high = std::fmax(minValue, maxValue);
    double const span = std::isfinite(high - low) ? high - low : 1e6;
    switch (pick(random, 14)) {
        case 0:
            return minValue;
        case 1:
            return maxValue;
        case 2:
            return minValue - span * 0.01;
        case 3:
            return maxValue + span * 0.01;
        case 4:
            return std::nextafter(minValue, kInfinity);
        case 5:
            return std::nextafter(maxValue, -kInfinity);
        case 6:
            return std::nan("");
        case 7:
            return pick(random, 2) == 0 ? kInfinity : -kInfinity;
        case 8:
            return pick(random, 2) == 0 ? 1e300 : -1e300;
        case 9:
            return pick(random, 2) == 0 ? 1e-300 : -0.0;
        case 10:
            return uniform(random, low - span, high + span);
        default:
            return uniform(random, low, high);
    }
}

bool sameValue(double lhs, double rhs) {
    return (lhs == rhs && std::signbit(lhs) == std::signbit(rhs)) ||
           (std::isnan(lhs) && std::isnan(rhs));
}

// Applies `editor`: in editor mode exactly one more value reaches `applied`, one for which
// `isTheValue` holds; outside it none.
template <typename Editor, typename Applied, typename IsTheValue>
void expectApplyReports(Editor& editor, std::vector<Applied> const& applied,
                        IsTheValue isTheValue) {
    std::size_t const calls = applied.size();
    editor.apply();
    if (editor.getEditorMode()) {
        ASSERT_EQ(applied.size(), calls + 1);
        EXPECT_TRUE(isTheValue(applied.back())) << "applied " << applied.back();
    } else {
        EXPECT_EQ(applied.size(), calls);
    }
}

struct Range {
    double minValue;
    double maxValue;
    unsigned precision;
    std::u16string unit;
};

// The bounds invariant checked after every changeValue(+1 or -1):
//   if, before the call, both bounds are finite, minValue <= maxValue and
//   minValue <= editValue <= maxValue, then afterwards minValue <= editValue <= maxValue.
// Without focus or outside editor mode the edited value must not change at all.
void runValueEditor(Range const& range, unsigned seed) {
    std::mt19937 random(seed);
    RecordingProvider provider(kChars, kLines);
    ValueEditor editor(provider, u"Volt", range.minValue, range.maxValue);
    editor.setPrecision(range.precision);
    editor.setUnit(range.unit);
    editor.setValue(pickValue(random, range.minValue, range.maxValue));
    std::vector<double> applied;
    editor.setApplyCallback([&applied](double value) { applied.push_back(value); });
    std::u16string const headline = u"     >> Volt <<     ";

    int checkedSteps = 0;
    for (int key = 0; key < kKeysPerRun; ++key) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " key " + std::to_string(key));
        double const minValue = editor.getMinValue();
        double const maxValue = editor.getMaxValue();
        int const action = pick(random, 20);
        if (action < 6) {
            editor.moveMarker(direction(random));
        } else if (action < 12) {
            double const before = editor.getEditValue();
            bool const active = editor.getFocus() && editor.getEditorMode();
            editor.changeValue(direction(random));
            double const after = editor.getEditValue();
            if (!active) {
                EXPECT_TRUE(sameValue(after, before));
            } else if (std::isfinite(minValue) && std::isfinite(maxValue) && minValue <= maxValue &&
                       minValue <= before && before <= maxValue) {
                ++checkedSteps;
                EXPECT_TRUE(minValue <= after && after <= maxValue)
                    << before << " -> " << after << " in [" << minValue << ", " << maxValue << "]";
            }
        } else if (action == 12) {
            ASSERT_NO_FATAL_FAILURE(expectApplyReports(editor, applied, [&editor](double value) {
                return sameValue(value, editor.getValue());
            }));
        } else if (action == 13) {
            editor.setFocus(pick(random, 3) != 0);
        } else if (action == 14) {
            editor.setEditorMode(pick(random, 3) != 0);
        } else if (action < 17) {
            editor.setValue(pickValue(random, minValue, maxValue));
        } else if (action == 17) {
            double const bound = std::isfinite(minValue) ? minValue : range.minValue;
            editor.setMinValue(pickValue(random, bound - 1.0, bound + 1.0));
        } else if (action == 18) {
            double const bound = std::isfinite(maxValue) ? maxValue : range.maxValue;
            editor.setMaxValue(pickValue(random, bound - 1.0, bound + 1.0));
        } else {
            editor.setPrecision(static_cast<unsigned>(pick(random, 5)));
            editor.setUnit(pick(random, 2) == 0 ? u"" : range.unit);
        }
        if (editor.getFocus() && provider.drawCount() > 0) {
            ASSERT_EQ(provider.line(0), headline);
        }
        if (provider.drawCount() > 64) {
            provider.reset();
        }
    }
    // The run must really have exercised the invariant.
    EXPECT_GT(checkedSteps, kKeysPerRun / 20) << "seed " << seed;
}

TEST(EditorRandomKeysTest, ValueEditorSurvivesRandomKeysAndStepsWithinTheBounds) {
    std::vector<Range> const ranges{
        {0, 100, 1, u"V"},
        {-50, 50, 2, u""},
        {std::numeric_limits<double>::min(), std::numeric_limits<double>::max(), 0, u"Hz"},
        {-1e6, 1e-3, 3, u"A"},
        {-1, 1, 4, u"dBm"},
        {10, 5, 1, u""},  // crossed bounds as given to the constructor
    };
    unsigned seed = 20240601;
    for (Range const& range : ranges) {
        runValueEditor(range, seed++);
    }
}

std::string randomAddressText(std::mt19937& random) {
    static std::vector<std::string> const samples{
        "0.0.0.0",          "255.255.255.255", "192.168.1.2", "10.0.0.1.", "256.1.1.1", "-1.2.3.4",
        " 7.8.9.10",        "1.2.3.4x",        "abc",         "1.2.3",     "1..2.3",    "",
        "99999999999.1.1.1"};
    if (pick(random, 2) == 0) {
        return samples[static_cast<std::size_t>(pick(random, static_cast<int>(samples.size())))];
    }
    static std::string const alphabet = "0123456789.-+ x";
    std::string text;
    for (int length = pick(random, 19); length > 0; --length) {
        text += alphabet[static_cast<std::size_t>(pick(random, static_cast<int>(alphabet.size())))];
    }
    return text;
}

IpV4Address randomAddress(std::mt19937& random) {
    auto octet = [&random] {
        int const kinds[] = {0, 1, 9, 10, 99, 100, 199, 200, 249, 250, 254, 255};
        return static_cast<unsigned char>(pick(random, 2) == 0 ? kinds[pick(random, 12)]
                                                               : pick(random, 256));
    };
    unsigned char const a = octet();
    unsigned char const b = octet();
    unsigned char const c = octet();
    return IpV4Address(a, b, c, octet());
}

// What the editor must accept for `text`: the parsed address, or 0.0.0.0 when parsing fails.
IpV4Address expectedFromText(std::string const& text, bool& parses) {
    try {
        IpV4Address const address = ip::fromString(text);
        parses = true;
        return address;
    } catch (std::exception const&) {
        parses = false;
        return IpV4Address(0U);
    }
}

void expectOnlyOctetStepped(IpV4Address const& before, IpV4Address const& after, unsigned block,
                            int delta) {
    for (unsigned octet = 0; octet < 4; ++octet) {
        if (octet != block) {
            EXPECT_EQ(after[octet], before[octet]) << "octet " << octet;
        } else if (delta > 0) {
            EXPECT_GE(after[octet], before[octet]);
        } else {
            EXPECT_LE(after[octet], before[octet]);
        }
    }
}

// Checked after every changeValue: without focus, outside editor mode or with the caret off the
// digits nothing changes; otherwise only the octet under the caret moves, in the direction of
// the key, and the stepped address is committed at once. After every key the value line shows
// the edited address (once one has been shown).
void runIpAddressEditor(unsigned seed) {
    std::mt19937 random(seed);
    RecordingProvider provider(kChars, kLines);
    IpAddressEditor editor(provider, u"IP");
    std::vector<std::string> applied;
    editor.setApplyCallback([&applied](std::string const& text) { applied.push_back(text); });

    int steps = 0;
    for (int key = 0; key < kKeysPerRun; ++key) {
        SCOPED_TRACE("seed " + std::to_string(seed) + " key " + std::to_string(key));
        int const action = pick(random, 16);
        if (action < 5) {
            editor.moveMarker(direction(random));
        } else if (action < 10) {
            IpV4Address const before = editor.getEditValue();
            unsigned const block = editor.getSelectedBlock();
            bool const active = editor.getFocus() && editor.getEditorMode() && block <= 3;
            int const delta = direction(random);
            editor.changeValue(delta);
            IpV4Address const after = editor.getEditValue();
            if (active) {
                ++steps;
                expectOnlyOctetStepped(before, after, block, delta);
                EXPECT_EQ(editor.getValue(), after);
            } else {
                EXPECT_EQ(after, before);
            }
        } else if (action == 10) {
            ASSERT_NO_FATAL_FAILURE(
                expectApplyReports(editor, applied, [&editor](std::string const& text) {
                    return text == ip::toString(editor.getValue());
                }));
        } else if (action == 11) {
            editor.setFocus(pick(random, 3) != 0);
        } else if (action == 12) {
            editor.setEditorMode(pick(random, 3) != 0);
        } else if (action == 13) {
            IpV4Address const address = randomAddress(random);
            editor.setValue(address);
            EXPECT_EQ(editor.getValue(), address);
        } else if (action == 14) {
            std::string const text = randomAddressText(random);
            bool parses = false;
            IpV4Address const expected = expectedFromText(text, parses);
            EXPECT_EQ(editor.setValue(text), parses) << text;
            EXPECT_EQ(editor.getValue(), expected) << text;
        } else {
            editor.drawValue(randomAddress(random));
        }
        std::u16string const& shown = editor.getValueLabel().getText();
        if (!shown.empty()) {
            EXPECT_EQ(shown, yxfrontpanel::stringhelper::toU16(
                                 ip::toFullWidthString(editor.getEditValue(), ' ')));
        }
        if (editor.getFocus() && provider.drawCount() > 0) {
            ASSERT_EQ(provider.line(0), u"      >> IP <<      ");
        }
        if (provider.drawCount() > 64) {
            provider.reset();
        }
    }
    EXPECT_GT(steps, kKeysPerRun / 20) << "seed " << seed;
}

TEST(EditorRandomKeysTest, IpAddressEditorSurvivesRandomKeysAndStepsOnlyTheCaretsOctet) {
    for (unsigned seed : {7U, 1234U, 99991U}) {
        runIpAddressEditor(seed);
    }
}

}  // namespace
