#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <chrono>
#include <cstddef>
#include <mutex>

namespace yxfrontpanel::runtime {
class Panel;
}

namespace yxfrontpanel::settings {

/**
 * Saves a settings store on a panel's timers: while it lives, every change of the store
 *        schedules one coalesced save with `Panel::after` (see `SettingsStoreOptions::saveDelay`).
 *
 * Construction makes it the store's scheduler. When the timer is due, the panel's thread only
 * hands a snapshot of the values to the store's writer thread, which writes and flushes the file;
 * keys are served meanwhile. A failed save is retried on the panel's timers with the store's
 * backoff. When the panel's loop ends because of `Panel::stop`, whatever is still unsaved is
 * handed to the writer thread, so that the changes of the last moments before the stop are not
 * lost. `finish` (or the destructor) detaches it, waits for the writer and writes anything
 * changed since. The panel and the store must outlive it. Not copyable.
 */
class YXFP_RUNTIME_EXPORT PanelSaveScheduler final : public ISaveScheduler {
public:
    /** Becomes `store`'s scheduler; saves then run on `panel`'s timers. */
    PanelSaveScheduler(runtime::Panel& panel, SettingsStore& store);
    /** `finish()`, its failure only logged. */
    ~PanelSaveScheduler() override;

    /** `Panel::after(delay, task)`. Any thread. */
    Handle schedule(std::chrono::nanoseconds delay, Task task) override;
    /** `Panel::cancel(handle)`. Any thread. */
    void cancel(Handle handle) override;

    /** Stops scheduling, cancels a scheduled save, waits for the store's writer thread and
     *  writes the changes not yet written (`SettingsStore::flush`); returns that result. Later
     * calls only flush again. Call it on the panel's thread or after the panel stopped. */
    SaveResult finish();

private:
    runtime::Panel& panel_;
    SettingsStore& store_;
    std::size_t stopListener_;
    std::once_flag detached_;
};

}  // namespace yxfrontpanel::settings
