#pragma once

// Remote control: the SCPI command parser, the command server on TCP and Unix sockets, and the
// remote operations on a panel and its menu values (library YxFrontPanelRemote).

#include <yxfrontpanel/runtime.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/panel_commands.h>
#include <yxfrontpanel/runtime/remote_control.h>
#include <yxfrontpanel/runtime/remote_endpoint.h>
#include <yxfrontpanel/runtime/remote_panel.h>
#include <yxfrontpanel/runtime/remote_server.h>
#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_device_status.h>
#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_number.h>
#include <yxfrontpanel/runtime/scpi_parser.h>
#include <yxfrontpanel/runtime/scpi_status.h>
