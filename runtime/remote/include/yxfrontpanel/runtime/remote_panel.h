#pragma once

#include <frontpanelhw/display.h>
#include <frontpanelhw/display_types.h>
#include <frontpanelhw/key_source.h>
#include <yxfrontpanel/runtime/export.h>

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace yxfrontpanel {
class IMenuTree;
}

namespace yxfrontpanel::runtime {

class Panel;

/** What the panel showed at one moment, published by the panel's thread for readers on other
 *  threads (the command server's queries of the screen and the mode). */
struct YXFP_RUNTIME_EXPORT PanelSnapshot {
    /** The screen as UTF-8 lines (`IRemotePanel::screenLines`). */
    std::vector<std::string> lines;
    /** The inverted columns of each line (`IRemotePanel::invertedColumnsOf`). */
    std::vector<std::string> inverted;
    /** The local-mode flag: true in LOCAL. */
    bool local = true;
};

/** What a remote channel (the command server, a web page) does with a panel: press its keys,
 *  read its screen and switch the tree's local and remote mode. Everything except `pressKey`'s
 *  own posting runs on the panel's thread (from posted work). */
class YXFP_RUNTIME_EXPORT IRemotePanel {
public:
    IRemotePanel() = default;
    IRemotePanel(IRemotePanel const&) = delete;
    IRemotePanel& operator=(IRemotePanel const&) = delete;
    virtual ~IRemotePanel();

    /** Presses `key` exactly as the panel's own keys are pressed (it does not change the mode).
     *  Returns true when the press takes effect in a later turn of the panel's loop, so that a
     *  caller that reads the screen next must wait for that turn; false when it took effect at
     *  once. */
    virtual bool pressKey(frontpanelhw::PanelKey key) = 0;
    /** The screen the panel shows (the menus' newest screen, or the home screen while that is
     *  shown). */
    virtual frontpanelhw::drawing::DisplayBuffer const& screen() const = 0;
    /** The root tree's local-mode flag: true in LOCAL, false in REMOTE. */
    virtual bool isLocal() const = 0;
    /** Sets the root tree's local-mode flag (front-panel edits in REMOTE show the toolkit's
     *  local-mode hint instead of changing values). */
    virtual void setLocal(bool local) = 0;
    /** The root tree, or null when the panel has none. */
    virtual IMenuTree* root() const = 0;

    /** The screen as UTF-8 lines (see `frontpanelhw::lineText`). */
    std::vector<std::string> screenLines() const;
    /** The inverted columns of `line` as `frontpanelhw::formatColumnRanges` writes them; empty
     *  past the bottom. */
    std::string invertedColumnsOf(unsigned line) const;
    /** The newest state the panel's thread published, for readers on other threads; null when
     *  nothing is published (then such reads run on the panel's thread). Any thread. */
    virtual std::shared_ptr<PanelSnapshot const> published() const;
    /** The current state, read here (the panel's thread). */
    PanelSnapshot snapshot() const;
};

/** How an application switches and reads its local mode, for one that keeps its own flag and
 *  passes it on to its tree. Both run on the panel's thread. */
struct LocalMode {
    /** Returns true in LOCAL, false in REMOTE; when empty, the root tree's flag is read. */
    std::function<bool()> get;
    /** Switches to LOCAL (`local` true) or REMOTE; when empty, the root tree's flag is set. */
    std::function<void(bool local)> set;
};

/** The remote operations on a running `Panel`: keys go through `Panel::pressKey` (so the home
 *  screen and idle time see them as the panel's own keys), the screen is the panel's newest.
 *  The panel must outlive it. */
class YXFP_RUNTIME_EXPORT PanelControl final : public IRemotePanel {
public:
    /** Remote operations on `panel`; the local mode goes through `mode` where it has functions,
     *  otherwise to the root tree's flag. */
    explicit PanelControl(Panel& panel, LocalMode mode = {});
    ~PanelControl() override;

    /** Posts the key to the panel; always true (the press runs in the next turn). A stopped
     *  panel refuses it silently. Any thread. */
    bool pressKey(frontpanelhw::PanelKey key) override;
    frontpanelhw::drawing::DisplayBuffer const& screen() const override;
    bool isLocal() const override;
    void setLocal(bool local) override;
    IMenuTree* root() const override;
    /** Publishes the current screen and mode for `published`. Panel's thread only: called after
     *  each batch of remote work and on every frame. */
    void publish();
    std::shared_ptr<PanelSnapshot const> published() const override;

private:
    Panel& panel_;
    LocalMode mode_;
    mutable std::mutex publishedMutex_;
    std::shared_ptr<PanelSnapshot const> published_;
};

/** The remote operations on a bare menu tree drawn on a `MemoryDisplay`, without a panel loop:
 *  keys are applied at once on the calling thread. For tests, fuzzing and applications that
 *  drive their tree themselves. Tree and display must outlive it. */
class YXFP_RUNTIME_EXPORT TreeControl final : public IRemotePanel {
public:
    /** Remote operations on `tree`, whose screen is the last frame `display` received. */
    TreeControl(IMenuTree& tree, frontpanelhw::MemoryDisplay const& display);
    ~TreeControl() override;

    /** `applyKey` on the tree; false (the press took effect at once). */
    bool pressKey(frontpanelhw::PanelKey key) override;
    /** The display's last frame. */
    frontpanelhw::drawing::DisplayBuffer const& screen() const override;
    bool isLocal() const override;
    void setLocal(bool local) override;
    IMenuTree* root() const override;

private:
    IMenuTree& tree_;
    frontpanelhw::MemoryDisplay const& display_;
};

}  // namespace yxfrontpanel::runtime
