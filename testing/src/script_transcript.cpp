#include <yxfrontpanel/testing/frame_text.h>
#include <yxfrontpanel/testing/key_script.h>
#include <yxfrontpanel/testing/recording_display.h>
#include <yxfrontpanel/testing/script_transcript.h>

#include <cstddef>
#include <vector>

namespace yxfrontpanel::testing {

std::string recordKeyScript(KeyScript const& script, std::string const& keys,
                            RecordingDisplay const& display) {
    std::vector<KeyScriptStep> const steps = script.parse(keys);
    std::string transcript;
    std::size_t printed = 0;
    auto const printNewFrames = [&](std::size_t step, std::string const& word) {
        std::vector<frontpanelhw::drawing::DisplayBuffer> const frames = display.frames();
        for (; printed < frames.size(); ++printed) {
            transcript += formatScriptFrame(printed + 1, step, word, frames[printed]);
        }
    };
    printNewFrames(0, "start");
    for (KeyScriptStep const& step : steps) {
        step.perform();
        printNewFrames(step.position, step.word);
    }
    return transcript;
}

}  // namespace yxfrontpanel::testing
