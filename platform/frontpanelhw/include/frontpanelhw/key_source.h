#pragma once

#include <frontpanelhw/export.h>

#include <chrono>
#include <optional>

namespace frontpanelhw {

/** The six keys of the front panel. */
enum class PanelKey { Up, Down, Left, Right, Enter, Back };

/** What a key source read: a panel key (pressed, released, or repeated by the device while
 *  held), another typed character the application may handle itself (e.g. 'q' to quit), a
 *  change of the terminal's size (repaint the display), or the end of the input (the device
 *  went away or the terminal hung up). Build it with the static functions. */
struct KeyEvent {
    /** What was read. */
    enum class Kind { Panel, Character, Resize, Closed };
    /** How a panel key moved. Sources that only know key strokes report presses. */
    enum class Action { Press, Release, Repeat };

    /** What was read. */
    Kind kind;
    /** The key when kind is Panel, else PanelKey::Up. */
    PanelKey panelKey;
    /** The typed character when kind is Character, else 0. */
    char32_t character;
    /** How the key moved, for kind Panel; Press for every other kind. */
    Action action = Action::Press;

    /** One of the six panel keys, pressed unless `action` says otherwise. */
    static constexpr KeyEvent panel(PanelKey key, Action action = Action::Press) {
        return KeyEvent{Kind::Panel, key, 0, action};
    }
    /** A panel key was let go. */
    static constexpr KeyEvent release(PanelKey key) { return panel(key, Action::Release); }
    /** The device repeats a held panel key. */
    static constexpr KeyEvent repeat(PanelKey key) { return panel(key, Action::Repeat); }
    /** Any other typed character. */
    static constexpr KeyEvent typed(char32_t typed) {
        return KeyEvent{Kind::Character, PanelKey::Up, typed, Action::Press};
    }
    /** The terminal changed its size. */
    static constexpr KeyEvent resize() {
        return KeyEvent{Kind::Resize, PanelKey::Up, 0, Action::Press};
    }
    /** The input has ended. */
    static constexpr KeyEvent closed() {
        return KeyEvent{Kind::Closed, PanelKey::Up, 0, Action::Press};
    }
};

/** Events are equal when kind, panel key, character and action are equal. */
FRONTPANELHW_EXPORT bool operator==(KeyEvent const& lhs, KeyEvent const& rhs);
/** The negation of `operator==`. */
FRONTPANELHW_EXPORT bool operator!=(KeyEvent const& lhs, KeyEvent const& rhs);

/** The lower-case name of a panel key ("up", "down", "left", "right", "enter", "back"). */
FRONTPANELHW_EXPORT char const* panelKeyName(PanelKey key);

/** What a key source can tell about its keys. A source that reports releases but no repeats
 *  lets the panel runtime repeat held keys itself. */
struct KeySourceCapabilities {
    /** Action::Release events come when a key is let go. */
    bool releases = false;
    /** The device itself sends Action::Repeat while a key is held. */
    bool repeats = false;
};

/** An input device that gives panel keys: a terminal, a Linux input device, GPIO buttons.
 *  A loop waits on the descriptors of all its sources without spending CPU (poll(2)), and when
 *  one becomes readable, or when a source's `wakeWithin` has passed, calls that source's
 *  `poll(0)` until it returns nothing.
 *
 *  Thread safety: a source is used by one thread at a time (the loop's). */
class FRONTPANELHW_EXPORT IKeySource {
public:
    IKeySource() = default;
    IKeySource(IKeySource const&) = delete;
    IKeySource& operator=(IKeySource const&) = delete;
    virtual ~IKeySource();

    /** Waits up to `timeout` (zero or less: not at all) for an event and returns it; nothing
     *  when none arrived in time. After the input ended returns KeyEvent::closed() once, or on
     *  every call, as the source documents; a source that can reopen its device returns events
     *  again later. Never throws. */
    virtual std::optional<KeyEvent> poll(std::chrono::milliseconds timeout) = 0;

    /** A descriptor that becomes readable when `poll` may have an event; -1 when there is none
     *  (closed for good). It may change after a call of `poll` (a device reopened), so a loop
     *  asks again before every wait. */
    virtual int waitDescriptor() const = 0;

    /** The longest a loop may wait before calling `poll` again although the descriptor stayed
     *  quiet (a debounce or reopen timer of the source); nothing when only the descriptor
     *  matters. The default has none. */
    virtual std::optional<std::chrono::milliseconds> wakeWithin() const;

    /** Whether the source reports releases and repeats. The default reports neither. */
    virtual KeySourceCapabilities capabilities() const;
};

}  // namespace frontpanelhw
