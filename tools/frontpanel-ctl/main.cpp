// frontpanel-ctl: sends command lines to a front panel's command server and prints the answers.
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include "ctl_options.h"
#include "ctl_run.h"

int main(int argc, char** argv) {
    using namespace frontpanelctl;
    CtlOptions options;
    try {
        options = parseCtlOptions(std::vector<std::string>(argv + 1, argv + argc));
        resolveToken(options, std::getenv("YXFP_TOKEN"));  // NOLINT(concurrency-mt-unsafe)
    } catch (UsageError const& error) {
        std::cerr << "frontpanel-ctl: " << error.what() << '\n';
        return 2;
    }
    for (auto const& warning : options.warnings) {
        std::cerr << "frontpanel-ctl: warning: " << warning << '\n';
    }
    if (options.help) {
        std::cout << ctlUsage();
        return 0;
    }
    return runCtl(options, std::cout, std::cerr);
}
