#include <yxfrontpanel/runtime/panel.h>
#include <yxfrontpanel/runtime/panel_save_scheduler.h>

#include <utility>

namespace yxfrontpanel::settings {

PanelSaveScheduler::PanelSaveScheduler(runtime::Panel& panel, SettingsStore& store)
    : panel_(panel),
      store_(store),
      // Handed to the store's writer thread: the stopping panel does not wait for the device.
      // A failed save is logged by the store and written again by `finish`.
      stopListener_(panel_.addStopListener([this] {
          if (store_.hasUnsavedChanges()) {
              store_.saveInBackground();
          }
      })) {
    store_.setScheduler(this);
}

PanelSaveScheduler::~PanelSaveScheduler() {
    // The store logs a failed save itself; a destructor has nobody else to tell.
    try {
        static_cast<void>(finish());
    } catch (...) {  // NOLINT(bugprone-empty-catch): nothing may leave a destructor
    }
}

ISaveScheduler::Handle PanelSaveScheduler::schedule(std::chrono::nanoseconds delay, Task task) {
    return panel_.after(delay, std::move(task));
}

void PanelSaveScheduler::cancel(Handle handle) { panel_.cancel(handle); }

SaveResult PanelSaveScheduler::finish() {
    std::call_once(detached_, [this] {
        panel_.removeStopListener(stopListener_);
        store_.setScheduler(nullptr);
    });
    static_cast<void>(store_.waitForSaves());
    return store_.flush();
}

}  // namespace yxfrontpanel::settings
