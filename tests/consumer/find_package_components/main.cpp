// Links every component it was configured with; components.h must agree with the package.
#include <yxfrontpanel/components.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <cstdio>

int main() {
    static_assert(YXFP_HAS_RUNTIME == 1, "the runtime is part of every installation");
    std::puts("components OK");
    return 0;
}
