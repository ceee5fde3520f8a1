#pragma once

#include <frontpanelhw/display_types.h>

#include <cstddef>
#include <iosfwd>
#include <vector>

#include "attachment.h"
#include "sim_options.h"

namespace frontpanelsim {

/** --print in a --headless run: keeps every screen that reached the display and, when the run
 *  has ended, writes all of them or the last one to `out`, each after a line "frame N". */
class PrintedFrames : public Attachment {
public:
    PrintedFrames(PrintMode mode, std::ostream& out);
    ~PrintedFrames() override;

    void attach(SimContext const& context) override;
    /** Writes the frames. */
    void detach() noexcept override;

private:
    PrintMode mode_;
    std::ostream& out_;
    yxfrontpanel::runtime::Panel* panel_ = nullptr;
    std::size_t listener_ = 0;
    std::vector<frontpanelhw::drawing::DisplayBuffer> frames_;
};

}  // namespace frontpanelsim
