#include <frontpanelhw/display.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/testing/frame_text.h>
#include <yxfrontpanel/testing/manual_clock.h>

#include <exception>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "graphic_module_display.h"
#include "key_script.h"
#include "measurement_feed.h"
#include "module_display.h"
#include "runners.h"

namespace frontpanelsim {

namespace {

using yxfrontpanel::testing::ManualClock;

// Keeps the frames with the script step during which each was drawn: every frame when all are
// printed, otherwise only the newest, so that a script of any length runs in the same memory.
class FrameLog : public frontpanelhw::IDisplay {
public:
    struct Entry {
        std::size_t step;
        std::string word;
        frontpanelhw::drawing::DisplayBuffer frame;
    };

    FrameLog(unsigned chars, unsigned lines, bool keepAll)
        : chars_(chars), lines_(lines), keepAll_(keepAll) {}

    unsigned getLines() const override { return lines_; }
    unsigned getChars() const override { return chars_; }
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) override {
        if (!keepAll_) {
            entries_.clear();
        }
        entries_.push_back(Entry{step_, word_, buffer});
        ++drawn_;
        return true;
    }

    void beginStep(std::size_t step, std::string word) {
        step_ = step;
        word_ = std::move(word);
    }
    std::vector<Entry> const& entries() const { return entries_; }
    /** Frames drawn so far, kept or not. */
    std::size_t drawn() const { return drawn_; }

private:
    unsigned chars_;
    unsigned lines_;
    std::size_t step_ = 0;
    std::string word_ = "start";
    bool keepAll_;
    std::vector<Entry> entries_;
    std::size_t drawn_ = 0;
};

// Timed hints would make a scripted run wait for nothing: let their time pass at once. The
// script's clock stands still meanwhile, so that only tick and wait move it.
// The hook found on entry is put back on exit.
class InstantSleep {
public:
    InstantSleep()
        : outer_(yxbase2::system::this_thread::setSleepHook([](std::chrono::nanoseconds) {})) {}
    ~InstantSleep() { yxbase2::system::this_thread::setSleepHook(outer_); }
    InstantSleep(InstantSleep const&) = delete;
    InstantSleep& operator=(InstantSleep const&) = delete;

private:
    yxbase2::system::this_thread::SleepHook outer_;
};

// What each word of a key script does to the running panel: the one table of script words.
// Keys go through the panel as a key source's would (the idle time and home screen included);
// the work runs in the panel's next turn.
void applyStep(Session& session, ManualClock& clock, ScriptStep const& step) {
    using frontpanelhw::PanelKey;
    auto& panel = session.panel();
    auto& app = session.app();
    switch (step.action) {
        case ScriptAction::Up:
            return static_cast<void>(panel.pressKey(PanelKey::Up));
        case ScriptAction::Down:
            return static_cast<void>(panel.pressKey(PanelKey::Down));
        case ScriptAction::Left:
            return static_cast<void>(panel.pressKey(PanelKey::Left));
        case ScriptAction::Right:
            return static_cast<void>(panel.pressKey(PanelKey::Right));
        case ScriptAction::Enter:
            return static_cast<void>(panel.pressKey(PanelKey::Enter));
        case ScriptAction::Back:
            return static_cast<void>(panel.pressKey(PanelKey::Back));
        case ScriptAction::Local:
            return static_cast<void>(panel.post([&app] { app.setLocal(true); }));
        case ScriptAction::Remote:
            return static_cast<void>(panel.post([&app] { app.setLocal(false); }));
        case ScriptAction::Tick:
            return clock.advance(kMeasurementPeriod);
        case ScriptAction::Wait:
            return clock.advance(step.duration);
        case ScriptAction::Restart:
            return;  // the runner builds a new session; see runKeyScript
    }
}

void print(FrameLog::Entry const& entry, std::size_t number, std::ostream& out) {
    out << yxfrontpanel::testing::formatScriptFrame(number, entry.step, entry.word, entry.frame);
}

}  // namespace

int runKeyScript(SimOptions const& options, AppFactory const& makeApp, Attachments attachments,
                 std::ostream& out, std::ostream& err) {
    std::vector<ScriptStep> steps;
    try {
        steps = parseKeyScript(*options.keyScript);
    } catch (ScriptError const& error) {
        err << "frontpanel-sim: " << options.keyScriptSource << ": " << error.what() << '\n';
        return 1;
    }

    auto const [screenChars, screenLines] = runScreenSize(options);
    FrameLog display(screenChars, screenLines, options.print == PrintMode::All);
    std::unique_ptr<frontpanelhw::IDisplay> panelDisplay;
    try {
        panelDisplay = makeDisplay(options.display, display);
    } catch (std::exception const& error) {
        err << "frontpanel-sim: --display: " << error.what() << '\n';
        return 1;
    }
    auto const clock = std::make_shared<ManualClock>();
    InstantSleep const instantSleep;
    std::size_t failedStep = 0;
    try {
        // A run of the application on the script's display and clock; `restart` ends it (the
        // attachments detach, so the settings are written) and starts the next one, whose
        // attachments the command line asks for afresh (so the settings file is read again).
        auto const start = [&](Attachments parts) {
            auto session = std::make_unique<Session>(
                *panelDisplay, panelOptionsFor(options, RunKind::KeyScript, parts), clock, makeApp,
                options, RunKind::KeyScript);
            parts.insert(parts.begin(), std::make_unique<ClockedAcquisition>());
            session->attach(std::move(parts));
            session->panel().runOnce(std::chrono::milliseconds{0});  // the first screen
            return session;
        };
        std::unique_ptr<Session> session = start(std::move(attachments));
        for (ScriptStep const& step : steps) {
            failedStep = step.position;
            display.beginStep(step.position, step.word);
            if (step.action == ScriptAction::Restart) {
                session->panel().stop();
                session.reset();
                session = start(attachmentsFor(options));
                continue;
            }
            applyStep(*session, *clock, step);
            if (!session->panel().runOnce(std::chrono::milliseconds{0})) {
                break;  // an attachment stopped the panel
            }
        }
    } catch (std::exception const& error) {
        err << "frontpanel-sim: step " << failedStep << " failed: " << error.what() << '\n';
        return 1;
    }

    auto const& entries = display.entries();
    if (options.print == PrintMode::All) {
        for (std::size_t index = 0; index < entries.size(); ++index) {
            print(entries[index], index + 1, out);
        }
    } else if (options.print == PrintMode::Last && !entries.empty()) {
        print(entries.back(), display.drawn(), out);
    }
    return 0;
}

}  // namespace frontpanelsim
