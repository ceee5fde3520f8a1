#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/scpi_commands.h>

#include <memory>

namespace yxfrontpanel::runtime {

class IRemotePanel;

/** How the panel commands behave. */
struct PanelCommandOptions {
    /** A `MENU:VALue` write switches the panel to REMOTE first, so that front-panel edits show
     *  the local-mode hint while a program sets values. */
    bool remoteOnMenuWrite = true;
};

/** Registers the panel commands on `table`, all acting on `panel` (the handlers share it, so it
 *  lives as long as the table): `SYSTem:KEY UP|DOWN|LEFT|RIGHT|ENTER|BACK`, `DISPlay:TEXT? [n]`,
 *  `DISPlay:INVerted? n`, `SYSTem:REMote`, `SYSTem:LOCal`, `SYSTem:MODE?` and
 *  `MENU:VALue[?] "path"[,value]`. */
YXFP_RUNTIME_EXPORT void addPanelCommands(scpi::CommandTable& table,
                                          std::shared_ptr<IRemotePanel> const& panel,
                                          PanelCommandOptions options = {});

}  // namespace yxfrontpanel::runtime
