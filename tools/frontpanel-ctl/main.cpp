// frontpanel-ctl: sends command lines to a front panel's command server and prints the answers.
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
    } catch (UsageError const& error) {
        std::cerr << "frontpanel-ctl: " << error.what() << '\n';
        return 2;
    }
    if (options.help) {
        std::cout << ctlUsage();
        return 0;
    }
    return runCtl(options, std::cout, std::cerr);
}
