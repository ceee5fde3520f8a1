#pragma once

// The VXI-11 instrument server: the panel for VISA's TCPIP::host::INSTR resources (library
// YxFrontPanelVxi11, built with libtirpc).

#include <yxfrontpanel/runtime/vxi11_instrument.h>
#include <yxfrontpanel/runtime/vxi11_protocol.h>
#include <yxfrontpanel/runtime/vxi11_server.h>
