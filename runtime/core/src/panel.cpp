#include <yxbase2/log.h>
#include <yxfrontpanel/apply_key.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/runtime/panel.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <deque>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "flush_before_sleep.h"
#include "panel_provider.h"
#include "runtime_log.h"
#include "task_queue.h"
#include "timer_queue.h"
#include "wake_signal.h"
#include <poll.h>

namespace yxfrontpanel::runtime {

namespace detail {
void forgetSignalPanel(Panel* panel) noexcept;
}  // namespace detail

namespace {

using frontpanelhw::KeyEvent;
using frontpanelhw::PanelKey;
using frontpanelhw::drawing::DisplayBuffer;
using TimePoint = IClock::TimePoint;
using detail::logWarning;

namespace log = yxbase2::system::log;

constexpr char const* kLogCategory = "libYxFrontPanelRuntime";
// Events taken from one source in one turn, so that a flooding device cannot starve the rest.
constexpr int kMostEventsPerSourceAndTurn = 64;
// Going back through nested forms to the root never needs more steps than this.
constexpr int kMostBackSteps = 64;

bool isArrow(PanelKey key) {
    return key == PanelKey::Up || key == PanelKey::Down || key == PanelKey::Left ||
           key == PanelKey::Right;
}

std::chrono::nanoseconds framePeriod(unsigned framesPerSecond) {
    if (framesPerSecond == 0) {
        return std::chrono::nanoseconds::zero();  // no limit: every screen is drawn
    }
    unsigned const clamped = std::min(framesPerSecond, 1000U);
    return std::chrono::nanoseconds{std::chrono::seconds{1}} / clamped;
}

}  // namespace

class Panel::Impl {
public:
    Impl(frontpanelhw::IDisplay& display, PanelOptions options, std::shared_ptr<IClock> clock)
        : display_(display),
          options_(options),
          clock_(clock ? std::move(clock) : std::make_shared<SteadyClock>()),
          framePeriod_(framePeriod(options.framesPerSecond)),
          menuProvider_(display.getChars(), display.getLines(),
                        [this](DisplayBuffer const& buffer) { return composeMenu(buffer); }),
          homeProvider_(display.getChars(), display.getLines(),
                        [this](DisplayBuffer const& buffer) { return composeHome(buffer); }),
          menuScreen_(display.getChars(), display.getLines()),
          homeScreen_(display.getChars(), display.getLines()),
          shown_(display.getChars(), display.getLines()) {
        clockListener_ = clock_->addAdvanceListener([this] { wake_.signal(); });
    }

    ~Impl() { clock_->removeAdvanceListener(clockListener_); }

    Impl(Impl const&) = delete;
    Impl& operator=(Impl const&) = delete;

    // --- configuration -------------------------------------------------------------------

    IDrawingProvider const& provider() const { return menuProvider_; }
    void setRoot(IMenuTree& root) { root_ = &root; }
    IMenuTree* root() const { return root_; }
    IClock const& clock() const { return *clock_; }

    void addKeySource(std::shared_ptr<frontpanelhw::IKeySource> source) {
        if (source) {
            sources_.push_back(Source{std::move(source), false, -1});
        }
    }

    void setHomeScreen(HomeScreen draw) { homeScreenDraw_ = std::move(draw); }
    void setDarkListener(DarkListener listener) { darkListener_ = std::move(listener); }
    void setEventHandler(EventHandler handler) { eventHandler_ = std::move(handler); }

    std::size_t addFrameListener(FrameListener listener) {
        std::size_t const id = nextListenerId_++;
        frameListeners_.emplace_back(id, std::move(listener));
        return id;
    }

    std::size_t addStopListener(Task listener) {
        std::size_t const id = nextListenerId_++;
        stopListeners_.emplace_back(id, std::move(listener));
        return id;
    }

    void removeStopListener(std::size_t id) {
        stopListeners_.erase(std::remove_if(stopListeners_.begin(), stopListeners_.end(),
                                            [id](auto const& entry) { return entry.first == id; }),
                             stopListeners_.end());
    }

    void removeFrameListener(std::size_t id) {
        frameListeners_.erase(std::remove_if(frameListeners_.begin(), frameListeners_.end(),
                                             [id](auto const& entry) { return entry.first == id; }),
                              frameListeners_.end());
    }

    // --- any thread ----------------------------------------------------------------------

    void stop() noexcept {
        stopped_.store(true);
        tasks_.close();
        wake_.signal();
    }

    void stopFromSignal() noexcept {
        // Only lock-free atomics and a write(2): the task queue is closed by the loop.
        stopped_.store(true);
        wake_.signal();
    }

    bool isStopped() const noexcept { return stopped_.load(); }

    bool post(Task task) {
        if (stopped_.load()) {
            return false;
        }
        return wakeFor(tasks_.post(std::move(task)));
    }

    bool publish(std::string_view key, Task task) {
        if (stopped_.load()) {
            return false;
        }
        return wakeFor(tasks_.publish(key, std::move(task)));
    }

    bool pressKey(PanelKey key) {
        return post([this, key] { handleEvent(KeyEvent::panel(key), nullptr); });
    }

    TimerId every(std::chrono::nanoseconds period, Task task) {
        if (period.count() <= 0) {
            throw std::invalid_argument("Panel::every: the period must be positive");
        }
        return addTimer(period, period, std::move(task));
    }

    TimerId after(std::chrono::nanoseconds delay, Task task) {
        return addTimer(std::max(delay, std::chrono::nanoseconds::zero()),
                        std::chrono::nanoseconds::zero(), std::move(task));
    }

    bool cancel(TimerId id) { return timers_.cancel(id); }

    // --- the loop ------------------------------------------------------------------------

    void run() {
        RunGuard const guard(*this);
        while (turn(std::nullopt)) {
        }
    }

    bool runOnce(std::chrono::milliseconds maxWait) {
        RunGuard const guard(*this);
        return turn(std::max(maxWait, std::chrono::milliseconds::zero()));
    }

    // --- panel's thread ------------------------------------------------------------------

    DisplayBuffer const& currentScreen() const { return menuScreen_; }
    DisplayBuffer const& shownFrame() const { return shown_; }
    bool homeScreenShown() const { return homeShown_; }
    bool dark() const { return dark_; }

private:
    struct Source {
        std::shared_ptr<frontpanelhw::IKeySource> source;
        bool closed;               // reported Closed and has not come back yet
        int closedDescriptor;      // the descriptor that was current when it closed
        std::size_t polledAt = 0;  // index in the poll set of this turn; 0: not waited on
        bool broken = false;       // its descriptor reported a hang-up, error or bad descriptor
    };

    struct Repeat {
        bool active = false;
        PanelKey key = PanelKey::Up;
        frontpanelhw::IKeySource const* source = nullptr;
        TimePoint next{};
    };

    // Marks the panel as running on this thread for the length of run or runOnce.
    class RunGuard {
    public:
        explicit RunGuard(Impl& impl) : impl_(impl) {
            if (impl.root_ == nullptr) {
                throw std::logic_error("Panel: no root menu tree; call setRoot before running");
            }
            if (impl.running_.exchange(true)) {
                throw std::logic_error("Panel: already running");
            }
            impl.panelThread_.store(std::this_thread::get_id());
            flushBeforeSleep_.emplace([&impl] { impl.flushFrame(FramePeriod::Ignore); });
        }
        ~RunGuard() {
            flushBeforeSleep_.reset();
            impl_.panelThread_.store(std::thread::id{});
            impl_.running_.store(false);
        }
        RunGuard(RunGuard const&) = delete;
        RunGuard& operator=(RunGuard const&) = delete;

    private:
        Impl& impl_;
        // A hint's screen is shown before the hint blocks this thread.
        std::optional<detail::FlushBeforeSleep> flushBeforeSleep_;
    };

    TimerId addTimer(std::chrono::nanoseconds delay, std::chrono::nanoseconds period, Task task) {
        TimerId const id = timers_.add(clock_->now() + delay, period, std::move(task));
        wake_.signal();
        return id;
    }

    bool onPanelThread() const { return panelThread_.load() == std::this_thread::get_id(); }

    /** Wakes the loop for the first waiting work of its kind only: the loop looks at both
     *  queues before it waits, so later work behind it needs no system call. */
    bool wakeFor(detail::TaskQueue::Added added) {
        if (added == detail::TaskQueue::Added::First) {
            wake_.signal();
        }
        return added != detail::TaskQueue::Added::Refused;
    }

    /** One turn: wait, then keys, posts, publications, timers, repeat, idle, frame. */
    bool turn(std::optional<std::chrono::milliseconds> maxWait) {
        if (stopped_.load()) {
            return endStopped();
        }
        start();
        wait(maxWait);
        bool workRan = false;
        serveKeys();
        workRan |= runPosts();
        workRan |= runPublications();
        workRan |= timers_.runDue(clock_->now());
        runRepeat();
        bool const entered = enterHomeWhenIdle();
        if (workRan && homeShown_ && !entered) {
            drawHome();  // refreshed with what the work changed
        }
        darkenWhenIdle();
        flushFrame();
        if (stopped_.load()) {
            return endStopped();
        }
        return true;
    }

    /** The loop's end after `stop`: later posts are refused, the stop listeners run once. */
    bool endStopped() {
        tasks_.close();
        if (!stopListenersRan_) {
            stopListenersRan_ = true;
            // Every listener runs, also after one threw (the settings' final save is one);
            // a copy, so that a listener may remove listeners.
            auto const listeners = stopListeners_;
            detail::ThrowCollector thrown;
            for (auto const& entry : listeners) {
                thrown.run(entry.second, "stop listener", entry.first);
            }
            thrown.rethrowFirst();
        }
        return false;
    }

    void start() {
        if (started_) {
            return;
        }
        started_ = true;
        lastActivity_ = clock_->now();
        if (!root_->getFocus() && !root_->itemHasFocus()) {
            root_->setFocus(true);
        }
    }

    // --- waiting ---

    void wait(std::optional<std::chrono::milliseconds> maxWait) {
        std::vector<pollfd>& fds = pollFds_;
        fds.clear();
        fds.push_back(pollfd{wake_.descriptor(), POLLIN, 0});
        for (Source& entry : sources_) {
            entry.polledAt = 0;
            entry.broken = false;
            int const descriptor = entry.source->waitDescriptor();
            if (descriptor >= 0 && !(entry.closed && descriptor == entry.closedDescriptor)) {
                entry.polledAt = fds.size();
                fds.push_back(pollfd{descriptor, POLLIN, 0});
            }
        }
        int const timeout = waitMilliseconds(maxWait);
        int const ready = ::poll(fds.data(), fds.size(), timeout);
        if (ready < 0 && errno != EINTR) {
            log::write(log::Level::Warning, kLogCategory, "Panel: poll failed, errno ", errno);
        }
        if (ready > 0) {
            for (Source& entry : sources_) {
                short const failed = POLLHUP | POLLERR | POLLNVAL;
                entry.broken = entry.polledAt != 0 && (fds[entry.polledAt].revents & failed) != 0;
            }
        }
        if ((fds[0].revents & POLLIN) != 0) {
            wake_.drain();  // a system call saved in every turn that nothing woke
        }
    }

    /** The poll(2) timeout: the nearest deadline, -1 for none. */
    int waitMilliseconds(std::optional<std::chrono::milliseconds> maxWait) const {
        std::optional<std::chrono::nanoseconds> wait;
        auto const consider = [&wait](std::chrono::nanoseconds candidate) {
            candidate = std::max(candidate, std::chrono::nanoseconds::zero());
            if (!wait || candidate < *wait) {
                wait = candidate;
            }
        };
        if (maxWait) {
            consider(*maxWait);
        }
        for (Source const& entry : sources_) {
            if (auto const within = entry.source->wakeWithin()) {
                consider(*within);
            }
        }
        if (!postsToRun_.empty() || tasks_.hasPosts()) {
            consider(std::chrono::nanoseconds::zero());
        }
        if (auto const deadline = nextClockDeadline()) {
            TimePoint const now = clock_->now();
            if (*deadline <= now) {
                consider(std::chrono::nanoseconds::zero());
            } else if (clock_->movesByItself()) {
                consider(*deadline - now);
            }
        }
        if (!wait) {
            return -1;
        }
        // Round up, so that the loop never wakes a moment before its deadline and spins.
        auto const milliseconds = std::chrono::ceil<std::chrono::milliseconds>(*wait).count();
        return static_cast<int>(
            std::min<std::int64_t>(milliseconds, std::int64_t{24} * 3600 * 1000));
    }

    /** The earliest time on the panel's clock at which the loop has work. */
    std::optional<TimePoint> nextClockDeadline() const {
        std::optional<TimePoint> deadline = timers_.nextDue();
        auto const consider = [&deadline](TimePoint candidate) {
            if (!deadline || candidate < *deadline) {
                deadline = candidate;
            }
        };
        if (framePending_ || tasks_.hasPublications()) {
            consider(nextFrameTime());
        }
        if (repeat_.active) {
            consider(repeat_.next);
        }
        if (idleEnabled() && !homeShown_) {
            consider(lastActivity_ + options_.idleTimeout);
        }
        if (darkEnabled() && !dark_) {
            consider(lastActivity_ + options_.darkTimeout);
        }
        return deadline;
    }

    // --- keys ---

    void serveKeys() {
        for (std::size_t index = 0; index < sources_.size(); ++index) {
            for (int count = 0; count < kMostEventsPerSourceAndTurn; ++count) {
                Source& entry = sources_[index];
                if (entry.closed && entry.source->waitDescriptor() == entry.closedDescriptor &&
                    !entry.source->wakeWithin()) {
                    break;  // closed for now; nothing to read until it reopens
                }
                auto event = entry.source->poll(std::chrono::milliseconds::zero());
                if (!event && entry.broken && count == 0) {
                    // A descriptor that fails but a source that does not say so would wake the
                    // loop forever: the source counts as closed.
                    log::write(log::Level::Warning, kLogCategory,
                               "Panel: a key source's descriptor ", entry.source->waitDescriptor(),
                               " failed; the source is treated as closed");
                    event = KeyEvent::closed();
                }
                if (!event) {
                    break;
                }
                if (event->kind == KeyEvent::Kind::Closed) {
                    if (!entry.closed) {
                        entry.closed = true;
                        entry.closedDescriptor = entry.source->waitDescriptor();
                        handleEvent(*event, entry.source.get());
                        stopWhenAllInputsClosed();
                    }
                    break;
                }
                entry.closed = false;
                handleEvent(*event, entry.source.get());
            }
        }
    }

    void stopWhenAllInputsClosed() {
        if (!options_.stopWhenInputsClose || sources_.empty()) {
            return;
        }
        bool const allClosed = std::all_of(sources_.begin(), sources_.end(),
                                           [](Source const& entry) { return entry.closed; });
        if (allClosed) {
            stop();
        }
    }

    void handleEvent(KeyEvent const& event, frontpanelhw::IKeySource const* source) {
        bool const isKeyStroke =
            event.kind == KeyEvent::Kind::Character ||
            (event.kind == KeyEvent::Kind::Panel && event.action != KeyEvent::Action::Release);
        if (isKeyStroke) {
            lastActivity_ = clock_->now();
        }
        if (eventHandler_ && eventHandler_(event)) {
            return;
        }
        switch (event.kind) {
            case KeyEvent::Kind::Panel:
                return handlePanelKey(event, source);
            case KeyEvent::Kind::Resize:
                return redrawShown();
            case KeyEvent::Kind::Character:
            case KeyEvent::Kind::Closed:
                return;
        }
    }

    void handlePanelKey(KeyEvent const& event, frontpanelhw::IKeySource const* source) {
        if (event.action == KeyEvent::Action::Release) {
            if (repeat_.active && repeat_.key == event.panelKey && repeat_.source == source) {
                repeat_.active = false;
            }
            return;
        }
        if (event.action == KeyEvent::Action::Repeat && repeat_.source == source) {
            repeat_.active = false;  // the source repeats by itself after all
        }
        if (event.action == KeyEvent::Action::Press) {
            repeat_.active = false;
            if (source != nullptr && isArrow(event.panelKey)) {
                auto const capabilities = source->capabilities();
                if (capabilities.releases && !capabilities.repeats) {
                    repeat_ =
                        Repeat{true, event.panelKey, source, clock_->now() + options_.repeatDelay};
                }
            }
        }
        bool const wasDark = dark_;
        if (dark_) {
            setDark(false);
        }
        if (homeShown_) {
            leaveHome();  // the key that wakes the panel is not passed on
            return;
        }
        if (wasDark) {
            return;  // nor the key that lights the display
        }
        applyKey(*root_, event.panelKey);
    }

    void runRepeat() {
        if (!repeat_.active) {
            return;
        }
        TimePoint const now = clock_->now();
        if (now < repeat_.next) {
            return;
        }
        lastActivity_ = now;
        repeat_.next = std::max(repeat_.next + options_.repeatInterval, now);
        if (!homeShown_) {
            applyKey(*root_, repeat_.key);
        }
    }

    // --- posted work ---

    bool runPosts() {
        tasks_.takePosts(postsToRun_);
        bool const ran = !postsToRun_.empty();
        // Each task leaves the list before it runs: when one throws, the exception leaves the
        // loop and the tasks behind it run first in the next turn, still once and in order.
        while (!postsToRun_.empty()) {
            Task task = std::move(postsToRun_.front());
            postsToRun_.pop_front();
            runTask(task);
        }
        return ran;
    }

    bool runPublications() {
        // At most once per frame period: a publisher faster than the frame rate gives one
        // update per frame with its newest value.
        if (!tasks_.hasPublications() || clock_->now() < nextFrameTime()) {
            return false;
        }
        tasks_.takePublications(publicationsToRun_);
        bool const ran = !publicationsToRun_.empty();
        for (Task& task : publicationsToRun_) {
            runTask(task);
        }
        publicationsToRun_.clear();
        return ran;
    }

    static void runTask(Task& task) {
        if (task) {
            task();
        }
    }

    // --- idle home screen ---

    bool idleEnabled() const {
        return options_.idleTimeout.count() > 0 && static_cast<bool>(homeScreenDraw_);
    }

    /** Shows the home screen when the idle time is over; true when it did so now. */
    bool enterHomeWhenIdle() {
        if (!idleEnabled() || homeShown_ || clock_->now() - lastActivity_ < options_.idleTimeout) {
            return false;
        }
        setHomeShown(true);
        repeat_.active = false;
        // Close every open form and editor without applying, as back would, then return the
        // menu to its top; the menu's screens are kept meanwhile, not drawn.
        for (int step = 0; step < kMostBackSteps && !root_->getFocus(); ++step) {
            root_->backToMenu();
        }
        if (auto* tree = dynamic_cast<MenuTree*>(root_)) {
            tree->recalcAvailableItems();
        }
        root_->setFocus(true);
        drawHome();
        return true;
    }

    void leaveHome() {
        setHomeShown(false);
        lastActivity_ = clock_->now();
        flushFrame();
    }

    void drawHome() { homeScreenDraw_(homeProvider_); }

    // --- dark display ---

    bool darkEnabled() const {
        return options_.darkTimeout.count() > 0 && static_cast<bool>(darkListener_);
    }

    void darkenWhenIdle() {
        if (darkEnabled() && !dark_ && clock_->now() - lastActivity_ >= options_.darkTimeout) {
            repeat_.active = false;
            setDark(true);
        }
    }

    void setDark(bool dark) {
        dark_ = dark;
        if (darkListener_) {
            darkListener_(dark);
        }
    }

    // --- frames ---

    TimePoint nextFrameTime() const {
        return everDrawn_ ? lastDraw_ + framePeriod_ : TimePoint::min();
    }

    bool composeMenu(DisplayBuffer const& buffer) {
        bool drawNow = false;
        {
            std::lock_guard<std::mutex> const lock(screenMutex_);
            menuScreen_ = buffer;
            if (homeShown_) {
                return true;  // kept for when the home screen goes
            }
            framePending_ = true;
            drawNow = onPanelThread();
        }
        if (drawNow) {
            flushFrame();
        } else {
            wake_.signal();
        }
        return true;
    }

    bool composeHome(DisplayBuffer const& buffer) {
        {
            std::lock_guard<std::mutex> const lock(screenMutex_);
            if (!homeShown_) {
                return false;
            }
            homeScreen_ = buffer;
            framePending_ = true;
        }
        flushFrame();
        return true;
    }

    void setHomeShown(bool shown) {
        std::lock_guard<std::mutex> const lock(screenMutex_);
        homeShown_ = shown;
        framePending_ = true;
    }

    /** Whether a draw waits for the end of the frame period (`Respect`) or not (`Ignore`: the
     *  panel's thread is about to block, so the screen would not be seen otherwise). */
    enum class FramePeriod { Respect, Ignore };

    /** Draws the pending screen when the frame period allows. The display and the frame
     *  listeners are called without the lock, so that they may compose screens themselves. */
    void flushFrame(FramePeriod period = FramePeriod::Respect) {
        if (!onPanelThread()) {
            return;
        }
        {
            std::lock_guard<std::mutex> const lock(screenMutex_);
            if (!framePending_) {
                return;
            }
            TimePoint const now = clock_->now();
            if (period == FramePeriod::Respect && now < nextFrameTime()) {
                return;  // drawn when the frame period is over
            }
            framePending_ = false;
            everDrawn_ = true;
            lastDraw_ = now;
            shown_ = homeShown_ ? homeScreen_ : menuScreen_;
        }
        display_.draw(shown_);
        for (auto const& entry : frameListeners_) {
            entry.second(shown_);
        }
    }

    void redrawShown() {
        {
            std::lock_guard<std::mutex> const lock(screenMutex_);
            framePending_ = true;
        }
        flushFrame();
    }

    frontpanelhw::IDisplay& display_;
    PanelOptions options_;
    std::shared_ptr<IClock> clock_;
    std::size_t clockListener_ = 0;
    std::chrono::nanoseconds framePeriod_;
    IMenuTree* root_ = nullptr;

    detail::WakeSignal wake_;
    detail::TaskQueue tasks_;
    detail::TimerQueue timers_;
    std::atomic<bool> stopped_{false};
    std::atomic<bool> running_{false};
    std::atomic<std::thread::id> panelThread_{};

    detail::PanelProvider menuProvider_;
    detail::PanelProvider homeProvider_;
    HomeScreen homeScreenDraw_;
    DarkListener darkListener_;
    EventHandler eventHandler_;
    std::vector<std::pair<std::size_t, FrameListener>> frameListeners_;
    std::vector<std::pair<std::size_t, Task>> stopListeners_;
    bool stopListenersRan_ = false;
    std::size_t nextListenerId_ = 1;
    std::vector<Source> sources_;

    // Panel's thread only (the screens also under screenMutex_, as other threads may compose).
    std::mutex screenMutex_;
    DisplayBuffer menuScreen_;
    DisplayBuffer homeScreen_;
    DisplayBuffer shown_;
    std::atomic<bool> framePending_{false};  // written under screenMutex_
    bool everDrawn_ = false;
    TimePoint lastDraw_{};
    bool started_ = false;
    bool homeShown_ = false;
    bool dark_ = false;
    TimePoint lastActivity_{};
    Repeat repeat_;
    std::vector<pollfd> pollFds_;
    std::deque<Task> postsToRun_;
    std::vector<Task> publicationsToRun_;
};

Panel::Panel(frontpanelhw::IDisplay& display, PanelOptions options, std::shared_ptr<IClock> clock)
    : impl_(std::make_unique<Impl>(display, options, std::move(clock))) {}

Panel::~Panel() { detail::forgetSignalPanel(this); }

IDrawingProvider const& Panel::provider() const { return impl_->provider(); }
void Panel::setRoot(IMenuTree& root) { impl_->setRoot(root); }
void Panel::addKeySource(std::shared_ptr<frontpanelhw::IKeySource> source) {
    impl_->addKeySource(std::move(source));
}
void Panel::setHomeScreen(HomeScreen draw) { impl_->setHomeScreen(std::move(draw)); }
void Panel::setDarkListener(DarkListener listener) { impl_->setDarkListener(std::move(listener)); }
void Panel::setEventHandler(EventHandler handler) { impl_->setEventHandler(std::move(handler)); }
std::size_t Panel::addFrameListener(FrameListener listener) {
    return impl_->addFrameListener(std::move(listener));
}
void Panel::removeFrameListener(std::size_t id) { impl_->removeFrameListener(id); }
std::size_t Panel::addStopListener(Task listener) {
    return impl_->addStopListener(std::move(listener));
}
void Panel::removeStopListener(std::size_t id) { impl_->removeStopListener(id); }
void Panel::run() { impl_->run(); }
bool Panel::runOnce(std::chrono::milliseconds maxWait) { return impl_->runOnce(maxWait); }
void Panel::stop() noexcept { impl_->stop(); }
void Panel::stopFromSignal() noexcept { impl_->stopFromSignal(); }
bool Panel::isStopped() const noexcept { return impl_->isStopped(); }
bool Panel::post(Task task) { return impl_->post(std::move(task)); }
bool Panel::publish(std::string_view key, Task task) {
    return impl_->publish(key, std::move(task));
}
bool Panel::pressKey(frontpanelhw::PanelKey key) { return impl_->pressKey(key); }
Panel::TimerId Panel::every(std::chrono::nanoseconds period, Task task) {
    return impl_->every(period, std::move(task));
}
Panel::TimerId Panel::after(std::chrono::nanoseconds delay, Task task) {
    return impl_->after(delay, std::move(task));
}
bool Panel::cancel(TimerId id) { return impl_->cancel(id); }
DisplayBuffer const& Panel::currentScreen() const { return impl_->currentScreen(); }
DisplayBuffer const& Panel::shownFrame() const { return impl_->shownFrame(); }
bool Panel::homeScreenShown() const { return impl_->homeScreenShown(); }
bool Panel::dark() const { return impl_->dark(); }
IMenuTree* Panel::root() const { return impl_->root(); }
IClock const& Panel::clock() const { return impl_->clock(); }

}  // namespace yxfrontpanel::runtime
