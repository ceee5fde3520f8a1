#pragma once

#include <yxfrontpanel/runtime/export.h>

#include <string>

namespace yxfrontpanel::runtime {

/** Who the instrument is: the four fields that `*IDN?` answers on every remote channel and that
 *  the web panel's LXI identification names. The application fills it in once and hands the
 *  same value to each channel. */
struct YXFP_RUNTIME_EXPORT InstrumentIdentity {
    /** The first field, the maker; "YxFrontPanel" by default. */
    std::string manufacturer = "YxFrontPanel";
    /** The second field, the model; "Panel" by default. */
    std::string model = "Panel";
    /** The third field, the serial number; "0" by default. */
    std::string serialNumber = "0";
    /** The fourth field, the firmware version; "0" by default. */
    std::string firmwareVersion = "0";
};

/** `identity` as the channels show it: a comma in a field separates the fields of `*IDN?`, so
 *  each one becomes a blank. */
YXFP_RUNTIME_EXPORT InstrumentIdentity shownIdentity(InstrumentIdentity identity);

}  // namespace yxfrontpanel::runtime
