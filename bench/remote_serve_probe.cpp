// A panel with a 50-item menu and its command server, for measurements from outside
// (bench/remote_soak.py): remote_serve_probe HOST:PORT [TOKEN]. Runs until SIGINT or SIGTERM.
#include <frontpanelhw/display.h>
#include <yxbase2/log.h>
#include <yxfrontpanel/remote.h>

#include <csignal>
#include <iostream>
#include <string>

#include "menu_fixture.h"

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::cerr << "usage: remote_serve_probe HOST:PORT [TOKEN]\n";
        return 2;
    }
    yxbase2::system::log::setMaxLevel(3);  // no line per connect in the measurement
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::runtime::Panel panel(display);
    auto const menu = yxfp_bench::plainMenu(panel.provider(), 50);
    panel.setRoot(*menu);
    yxfrontpanel::runtime::RemoteControlOptions options;
    options.server.listen = {argv[1]};
    if (argc == 3) {
        options.server.accessToken = argv[2];
    }
    yxfrontpanel::runtime::RemoteControl remote(panel, options);
    remote.start();
    auto const signals = yxfrontpanel::runtime::stopOnSignals(panel, {SIGINT, SIGTERM});
    panel.run();
    remote.stop();
    yxfrontpanel::runtime::clearSignalStop();
    return 0;
}
