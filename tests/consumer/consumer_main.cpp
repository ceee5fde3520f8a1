// A product build in miniature: only the umbrella header and the installed libraries.
#include <yxfrontpanel/yxfrontpanel.h>

#include <iostream>
#include <string>

#ifdef YXFP_EXPECT_CXX20
// Built with -std=c++20 before the pkg-config flags: nothing in them may lower the standard.
static_assert(__cplusplus >= 202002L, "the package's compiler flags changed the C++ standard");
#endif

int main() {
    frontpanelhw::MemoryDisplay display(20, 4);
    yxfrontpanel::DrawingProvider provider(display);

    yxfrontpanel::Label label(yxfrontpanel::drawing::Point{0, 0}, 20, u"Ready");
    label.setTextAllignment(yxfrontpanel::drawing::TextAllignment::Center);
    frontpanelhw::drawing::DisplayBuffer screen(provider.getChars(), provider.getLines());
    screen.setLineContent(0, 0, label.getBuffer().getLineString(0));
    if (!provider.draw(screen) ||
        display.getLastFrame().getLineString(0) != u"       Ready        ") {
        std::cerr << "the label did not reach the display\n";
        return 1;
    }

    // Catching by type across the shared library needs the exception's type info exported.
    try {
        (void)ip::fromString("not an address");
        std::cerr << "no exception for bad address text\n";
        return 1;
    } catch (ip::InvalidIpAddressFormat const& error) {
        if (std::string(error.what()) != "Invalid IP address format: not an address") {
            std::cerr << "unexpected message: " << error.what() << '\n';
            return 1;
        }
    }
    std::cout << "consumer OK: " << ip::toString(ip::IpV4Address(192, 168, 1, 2)) << '\n';
    return 0;
}
