// frontpanel-sim: the demo instrument panel in a terminal, headless, or from a key script.
#include <iostream>
#include <string>
#include <vector>

#include "attachment.h"
#include "demo_panel.h"
#include "runners.h"
#include "sim_options.h"

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
    return runInteractive(options, makeApp, std::move(attachments), std::cerr);
}
