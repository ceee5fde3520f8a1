// frontpanel-sim: the demo instrument panel in a terminal, headless, or from a key script.
#include <yxfrontpanel/components.h>

#include <iostream>
#include <string>
#include <vector>

#include "attachment.h"
#include "demo_panel.h"
#include "runners.h"
#include "sim_options.h"
#include <unistd.h>

int main(int argc, char** argv) {
    using namespace frontpanelsim;
    SimOptions options;
    try {
        options = parseOptions(std::vector<std::string>(argv + 1, argv + argc));
    } catch (UsageError const& error) {
        std::cerr << "frontpanel-sim: " << error.what() << '\n';
        return 2;
    }
    if (options.help) {
        std::cout << usage();
        return 0;
    }
    AppFactory const makeApp = [](yxfrontpanel::IDrawingProvider const& provider) {
        return std::make_unique<DemoPanel>(provider);
    };
    Attachments attachments = attachmentsFor(options);
    if (options.keyScript) {
        return runKeyScript(options, makeApp, std::move(attachments), std::cout, std::cerr);
    }
    if (options.headless) {
        return runHeadless(options, makeApp, std::move(attachments), std::cerr);
    }
#if YXFP_HAS_TERMINAL
    if (::isatty(STDIN_FILENO) == 0 || ::isatty(STDOUT_FILENO) == 0) {
        std::cerr << "frontpanel-sim: standard input and output must be a terminal for the "
                     "interactive panel; run a key script (--keys, --keys-file) or --headless\n";
        return 2;
    }
    return runInteractive(options, makeApp, std::move(attachments), std::cerr);
#else
    std::cerr << "frontpanel-sim: this build has no terminal display (install libncurses-dev and "
                 "rebuild); run a key script (--keys, --keys-file) or --headless instead\n";
    return 2;
#endif
}
