#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/drawing_provider.h>
#include <yxfrontpanel/runtime/clock.h>
#include <yxfrontpanel/runtime/export.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string_view>

namespace yxfrontpanel {
class IMenuTree;
}

namespace yxfrontpanel::runtime {

/** How a panel runs. The defaults suit a 20x4 module driven by a person. */
struct PanelOptions {
    /** Most screens a second that reach the display (up to 1000; more is clamped). Changes
     *  inside one frame period give one draw of the newest screen; a change after a quiet
     *  period (a lone key press) is drawn at once. Zero sets no limit: every composed screen is
     *  drawn at once (for scripted runs that record every frame). */
    unsigned framesPerSecond = 30;
    /** Time without a key after which the home screen is shown; zero (the default) turns the
     *  home screen off. */
    std::chrono::milliseconds idleTimeout{0};
    /** Time without a key after which the display goes dark (the listener set with
     *  `Panel::setDarkListener` hears true; e.g. an OLED's power save against burn-in). The
     *  next key lights it again (the listener hears false) and is not passed on. Zero (the
     *  default) never darkens. */
    std::chrono::milliseconds darkTimeout{0};
    /** For sources that report releases but no repeats: how long an arrow key is held before it
     *  repeats, and the time between repeats. Enter and back never repeat. */
    std::chrono::milliseconds repeatDelay{500};
    /** The time between repeats of a held arrow key (see `repeatDelay`). */
    std::chrono::milliseconds repeatInterval{100};
    /** Stop `run` when every key source added has closed for good (scripted and replayed
     *  input). Off by default: a panel without keys still serves its posts and timers. */
    bool stopWhenInputsClose = false;
};

/** Runs one front panel: waits for keys from its key sources, feeds them to the root menu
 *  tree, runs work posted from other threads and timers, limits the frame rate and shows an
 *  idle home screen. Everything that composes a screen runs on the one thread inside `run`
 *  (the panel's thread), so screens are never composed or drawn from two threads at once.
 *
 *  Use: construct it on the display, build the menus on `provider()`, `setRoot`, add key
 *  sources, then call `run()` on the thread that shall own the panel; `stop()` from anywhere
 *  ends it. A stopped panel stays stopped: `run` returns at once, posts are refused.
 *
 *  Keys pressed while a hint or a confirmation tick blocks the panel's thread are not lost:
 *  they wait in their devices and are served, in order, after it. Posted work never runs
 *  inside a key's handling; it runs between keys.
 *
 *  Thread safety: `post`, `publish`, `pressKey`, `every`, `after`, `cancel`, `stop` and
 *  `stopFromSignal` may be called from any thread (the last one also from a signal handler);
 *  everything else is for the thread that configures the panel before `run`, or for the
 *  panel's thread (from posted work, timers and handlers). */
class YXFP_RUNTIME_EXPORT Panel {
public:
    /** Work to run on the panel's thread. */
    using Task = std::function<void()>;
    /** Identifies a timer for `cancel`; never 0 for a timer that was set. */
    using TimerId = std::uint64_t;
    /** Draws the home screen through the provider it is given. */
    using HomeScreen = std::function<void(IDrawingProvider const& provider)>;
    /** Sees every event of the key sources first (characters, resizes, closes and panel keys);
     *  returns true when it handled the event, so that the panel does not. */
    using EventHandler = std::function<bool(frontpanelhw::KeyEvent const& event)>;
    /** Hears that the display goes dark (true) or lights again (false); see
     *  `PanelOptions::darkTimeout`. On the panel's thread. */
    using DarkListener = std::function<void(bool dark)>;
    /** Sees every screen that reached the display, on the panel's thread. */
    using FrameListener = std::function<void(frontpanelhw::drawing::DisplayBuffer const& frame)>;

    /** A panel on `display`, which must outlive it. Without a clock the steady clock is used.
     *  @throws std::system_error when the wake-up descriptor cannot be created. */
    explicit Panel(frontpanelhw::IDisplay& display, PanelOptions options = {},
                   std::shared_ptr<IClock> clock = nullptr);
    /** Must not run while `run` is active on another thread: stop it and join that thread
     *  first. Work still pending is dropped without running. */
    ~Panel();
    Panel(Panel const&) = delete;
    Panel& operator=(Panel const&) = delete;

    /** The provider to build the menus and forms on. Its screens go through the panel's frame
     *  limit to the display; while the home screen is shown they are kept, not drawn. */
    IDrawingProvider const& provider() const;
    /** The tree the six keys go to; not owned, must outlive the panel. `run` gives it the focus
     *  when it has none. */
    void setRoot(IMenuTree& root);
    /** Adds a key source; the panel shares its ownership. Before `run` or on the panel's
     *  thread. An empty pointer is ignored. */
    void addKeySource(std::shared_ptr<frontpanelhw::IKeySource> source);
    /** The home screen shown after `PanelOptions::idleTimeout` without a key. It is drawn when
     *  shown and again after every turn of the loop in which posted work or a timer ran. */
    void setHomeScreen(HomeScreen draw);
    /** Installs what darkens and lights the display (see `PanelOptions::darkTimeout`), e.g.
     *  `[&oled](bool dark) { oled.setPowerSave(dark); }`; an empty one removes it. Before `run`
     *  or on the panel's thread. */
    void setDarkListener(DarkListener listener);
    /** Installs the handler that sees each key event first; an empty one removes it. */
    void setEventHandler(EventHandler handler);
    /** Adds a listener for every screen that reaches the display (menu or home screen); returns
     *  its id. */
    std::size_t addFrameListener(FrameListener listener);
    /** Removes a frame listener; unknown ids are ignored. */
    void removeFrameListener(std::size_t id);
    /** Adds work that runs once on the panel's thread when the loop ends because of `stop`
     *  (inside the `run` or `runOnce` that sees the stop, after that turn's work), e.g. writing
     *  what is not saved yet; returns its id. Listeners run in the order they were added, every
     *  one of them also when an earlier one throws (see `run`). */
    std::size_t addStopListener(Task listener);
    /** Removes a stop listener; unknown ids are ignored. */
    void removeStopListener(std::size_t id);

    /** Runs the loop on the calling thread until `stop`. Returns at once when already stopped.
     *  An exception thrown by a key's handling, posted work, a timer or the home screen leaves
     *  `run` as it is; the panel stays usable and may be run again, and plain posts queued
     *  behind the throwing one still run, once and in order, in the next turn. When a timer or
     *  a stop listener throws, the other timers due in that turn (or the other stop listeners)
     *  still run first and periodic timers keep their periods; each exception is logged once,
     *  naming the timer or listener id, and the first one then leaves `run`.
     *  @throws std::logic_error when the panel is already running (on any thread) or has no
     *  root tree. */
    void run();
    /** One turn of the loop without blocking longer than `maxWait`: serves ready keys, posted
     *  work, due timers and a due frame. For tests, and for applications with a loop of their
     *  own. Returns false once the panel is stopped.
     *  @throws std::logic_error as `run` does. */
    bool runOnce(std::chrono::milliseconds maxWait);
    /** Ends `run` after the work of the current turn. Work posted before it still runs if the
     *  loop reaches it in that turn; later posts are refused. Any thread; never blocks. */
    void stop() noexcept;
    /** `stop` for signal handlers: only async-signal-safe calls (a write to the wake-up
     *  descriptor). See `stopOnSignals`. */
    void stopFromSignal() noexcept;
    /** Whether `stop` was called. */
    bool isStopped() const noexcept;

    /** Runs `task` on the panel's thread exactly once, in the order of posting for each posting
     *  thread. Returns false (and drops the task) once the panel is stopped. */
    bool post(Task task);
    /** Like `post`, but for each `key` only the newest task waiting to run is kept: a thread
     *  that publishes faster than the panel draws causes at most one update per frame. In steady
     *  state (key seen before, a task small enough for std::function's own storage) no heap
     *  allocation happens. Returns false once stopped. */
    bool publish(std::string_view key, Task task);
    /** Presses `key` as a key source would (the home screen and idle time included), on the
     *  panel's thread: for remote control. Returns false once stopped. */
    bool pressKey(frontpanelhw::PanelKey key);
    /** Calls `task` every `period` on the panel's clock, first after one period, until
     *  cancelled. A late timer runs once and keeps its rhythm (no burst of catch-up calls).
     *  @throws std::invalid_argument for a period of zero or less. */
    TimerId every(std::chrono::nanoseconds period, Task task);
    /** Calls `task` once after `delay` (zero or less: at the next turn of the loop). */
    TimerId after(std::chrono::nanoseconds delay, Task task);
    /** Cancels a timer; false when it is unknown, already ran (one-shot) or was cancelled.
     *  Called from another thread than the panel's, it returns only after a callback of this
     *  timer that is running now has finished, so that what the callback uses may be freed
     *  then; from the panel's thread (inside a callback) it never waits. */
    bool cancel(TimerId id);

    /** The newest screen the menus composed (what the display shows, or will show at the next
     *  frame); blank before the first. Panel's thread only. */
    frontpanelhw::drawing::DisplayBuffer const& currentScreen() const;
    /** The screen the display shows now (menu or home screen). Panel's thread only. */
    frontpanelhw::drawing::DisplayBuffer const& shownFrame() const;
    /** Whether the home screen is shown. Panel's thread only. */
    bool homeScreenShown() const;
    /** Whether the display is dark after `PanelOptions::darkTimeout`. Panel's thread only. */
    bool dark() const;
    /** The root tree, or null before `setRoot`. */
    IMenuTree* root() const;
    /** The panel's clock. */
    IClock const& clock() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

/** Keeps the handlers of `stopOnSignals` installed while it lives and then puts back the
 *  handlers (and the panel) found when it was made. Movable, not copyable; keep it in a
 *  variable: a guard that is not kept restores the handlers at once. */
class YXFP_RUNTIME_EXPORT SignalStopGuard {
public:
    /** Restores the signals' previous handlers, and the previous panel of `stopOnSignals`. */
    ~SignalStopGuard();
    /** Takes over the other guard's duty; the other one then restores nothing. */
    SignalStopGuard(SignalStopGuard&& other) noexcept;
    SignalStopGuard& operator=(SignalStopGuard&&) = delete;
    SignalStopGuard(SignalStopGuard const&) = delete;
    SignalStopGuard& operator=(SignalStopGuard const&) = delete;

private:
    friend SignalStopGuard stopOnSignals(Panel& panel, std::initializer_list<int> signals);
    class Saved;
    explicit SignalStopGuard(std::unique_ptr<Saved> saved) noexcept;
    std::unique_ptr<Saved> saved_;
};

/** Installs handlers for `signals` (e.g. SIGINT and SIGTERM) that call `panel.stopFromSignal()`,
 *  with SA_RESTART so that the application's blocking calls are not interrupted. One panel at a
 *  time: a later call replaces the earlier panel until its guard goes. While no panel is
 *  attached (after `clearSignalStop`, or once the panel is destroyed) a signal gets the
 *  disposition it had before: the handler puts it back and raises the signal again, so that
 *  SIGINT still ends the program by default.
 *  @returns the guard that restores the previous handlers when it goes.
 *  @throws std::system_error when a handler cannot be installed (those installed already are
 *  restored). */
[[nodiscard]] YXFP_RUNTIME_EXPORT SignalStopGuard stopOnSignals(Panel& panel,
                                                                std::initializer_list<int> signals);
/** Forgets the panel of `stopOnSignals`: until the guard restores them, the handlers pass each
 *  signal on to the disposition it had before. */
YXFP_RUNTIME_EXPORT void clearSignalStop() noexcept;

}  // namespace yxfrontpanel::runtime
