#include <yxfrontpanel/runtime/instrument_identity.h>

#include <algorithm>

namespace yxfrontpanel::runtime {

InstrumentIdentity shownIdentity(InstrumentIdentity identity) {
    for (std::string* field : {&identity.manufacturer, &identity.model, &identity.serialNumber,
                               &identity.firmwareVersion}) {
        std::replace(field->begin(), field->end(), ',', ' ');
    }
    return identity;
}

}  // namespace yxfrontpanel::runtime
