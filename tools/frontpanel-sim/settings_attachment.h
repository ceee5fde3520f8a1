#pragma once

#include <yxfrontpanel/runtime/panel_save_scheduler.h>
#include <yxfrontpanel/runtime/settings_store.h>

#include <memory>
#include <string>

#include "attachment.h"
#include "device_errors.h"

namespace frontpanelsim {

/** --settings FILE: the application's settings kept in FILE. Attaching loads the file (a
 *  missing one gives the defaults, a corrupt one is moved aside with a warning on stderr) and
 *  binds the application to it; changes are saved two seconds after the first unsaved one, on
 *  the panel's clock, by the store's writer thread. A failed save (retried by the store) and a
 *  file the store refuses are reported on stderr and, as -315 "Configuration memory lost" with
 *  the reason, to the remote channels through `errors`. Detaching writes what is still unsaved
 *  and unbinds the application. */
class SettingsAttachment final : public Attachment {
public:
    /** The application name written into the file. */
    static constexpr char const* kApplicationName = "frontpanel-sim demo";
    /** The schema of the demo's settings. */
    static constexpr unsigned kSchemaVersion = 1;

    /** The settings in the file at `path`; save failures also go to `errors` (may be null). */
    explicit SettingsAttachment(std::string path, std::shared_ptr<DeviceErrors> errors = nullptr);
    ~SettingsAttachment() override;

    /** @throws std::invalid_argument when the application's settings cannot be declared. */
    void attach(SimContext const& context) override;
    void detach() noexcept override;

private:
    /** Writes what is unsaved, unbinds the application and closes the store; idempotent. */
    void unplug() noexcept;

    std::string path_;
    std::shared_ptr<DeviceErrors> errors_;
    PanelApp* app_ = nullptr;
    std::unique_ptr<yxfrontpanel::settings::SettingsStore> store_;
    std::unique_ptr<yxfrontpanel::settings::PanelSaveScheduler> saving_;
};

}  // namespace frontpanelsim
