#pragma once

#include <frontpanelhw/key_source.h>

#include <memory>
#include <vector>

#include "attachment.h"
#include "input_option.h"

namespace frontpanelsim {

/** Opens the key source of one --input option.
 *  @throws InputDeviceError (a std::runtime_error) naming the device and what to do. */
std::shared_ptr<frontpanelhw::IKeySource> openInput(InputOption const& option);

/** The --input options of a run: opens each device when attached and adds its key source to
 *  the panel, beside the terminal's keys. In an interactive run a device that closes leaves the
 *  run going (the terminal ends it); in a headless run the run ends when every input has
 *  closed, unless one of them reopens its device. */
class InputDevices : public Attachment {
public:
    explicit InputDevices(std::vector<InputOption> inputs);
    ~InputDevices() override;

    /** @throws InputDeviceError when a device cannot be opened (the run fails, exit status 1).
     */
    void attach(SimContext const& context) override;
    void detach() noexcept override;
    /** True when an input reopens its device: the run then waits for it to come back. */
    bool keepsRunning() const override;

private:
    std::vector<InputOption> inputs_;
};

}  // namespace frontpanelsim
