#include <frontpanelhw/display.h>
#include <yxbase2/this_thread.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/testing/frame_text.h>

#include <exception>
#include <ostream>
#include <string>
#include <vector>

#include "key_script.h"
#include "runners.h"

namespace frontpanelsim {

namespace {

// Keeps every frame with the script step during which it was drawn.
class FrameLog : public frontpanelhw::IDisplay {
public:
    struct Entry {
        std::size_t step;
        std::string word;
        frontpanelhw::drawing::DisplayBuffer frame;
    };

    FrameLog(unsigned chars, unsigned lines) : chars_(chars), lines_(lines) {}

    unsigned getLines() const override { return lines_; }
    unsigned getChars() const override { return chars_; }
    bool draw(frontpanelhw::drawing::DisplayBuffer const& buffer) override {
        entries_.push_back(Entry{step_, word_, buffer});
        return true;
    }

    void beginStep(std::size_t step, std::string word) {
        step_ = step;
        word_ = std::move(word);
    }
    std::vector<Entry> const& entries() const { return entries_; }

private:
    unsigned chars_;
    unsigned lines_;
    std::size_t step_ = 0;
    std::string word_ = "start";
    std::vector<Entry> entries_;
};

// Timed hints would make a scripted run wait for nothing: let their time pass at once.
class InstantSleep {
public:
    InstantSleep() {
        yxbase2::system::this_thread::setSleepHook([](std::chrono::nanoseconds) {});
    }
    ~InstantSleep() { yxbase2::system::this_thread::setSleepHook({}); }
    InstantSleep(InstantSleep const&) = delete;
    InstantSleep& operator=(InstantSleep const&) = delete;
};

void print(FrameLog::Entry const& entry, std::size_t number, std::ostream& out) {
    out << yxfrontpanel::testing::formatScriptFrame(number, entry.step, entry.word, entry.frame);
}

}  // namespace

int runHeadless(SimOptions const& options, AppFactory const& makeApp, std::ostream& out,
                std::ostream& err) {
    PanelApp* running = nullptr;
    auto const script = simulatorKeyScript([&running]() -> PanelApp& { return *running; });
    std::vector<yxfrontpanel::testing::KeyScriptStep> steps;
    try {
        steps = script.parse(*options.keyScript);
    } catch (yxfrontpanel::testing::KeyScriptError const& error) {
        err << "frontpanel-sim: " << options.keyScriptSource << ": " << error.what() << '\n';
        return 1;
    }

    FrameLog display(options.chars, options.lines);
    yxfrontpanel::DrawingProvider provider(display);
    InstantSleep const instantSleep;
    std::size_t failedStep = 0;
    try {
        auto app = makeApp(provider);
        running = app.get();
        app->start();
        for (auto const& step : steps) {
            failedStep = step.position;
            display.beginStep(step.position, step.word);
            step.perform();
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
        print(entries.back(), entries.size(), out);
    }
    return 0;
}

}  // namespace frontpanelsim
