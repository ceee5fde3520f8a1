#include <yxfrontpanel/i_form.h>

namespace yxfrontpanel {

// Out of line so that the interface's vtable has one home in the library.
IForm::~IForm() = default;

}  // namespace yxfrontpanel
