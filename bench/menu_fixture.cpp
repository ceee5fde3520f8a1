#include "menu_fixture.h"

#include <fstream>
#include <string>

#include <malloc.h>
#include <unistd.h>

namespace yxfp_bench {

std::size_t residentBytes() {
    std::ifstream statm("/proc/self/statm");
    std::size_t pages = 0;
    std::size_t resident = 0;
    statm >> pages >> resident;
    return resident * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

std::size_t heapBytesInUse() {
    struct mallinfo2 const info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

bool DiscardingProvider::draw(frontpanelhw::drawing::DisplayBuffer const& buffer) const {
    // Reading the buffer's size keeps the composed frame observable for the optimiser.
    frames_ += buffer.getLineCount() > 0 ? 1 : 0;
    return true;
}

std::unique_ptr<yxfrontpanel::IMenuTree> plainMenu(yxfrontpanel::IDrawingProvider const& provider,
                                                   std::size_t count) {
    auto menu = yxfrontpanel::MenuTreeFactory().create(provider);
    for (std::size_t index = 1; index <= count; ++index) {
        std::string const digits = std::to_string(index);
        menu->addItem(
            std::make_shared<PlainItem>(u"Item " + std::u16string(digits.begin(), digits.end())));
    }
    menu->setFocus(true);
    return menu;
}

}  // namespace yxfp_bench
