#pragma once

#include <frontpanelhw/evdev_key_source.h>
#include <frontpanelhw/input_key_map.h>
#include <frontpanelhw/key_source.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "encoder_steps.h"
#include <linux/input.h>

namespace frontpanelhw::detail {

/** Turns the bytes of a stream of `struct input_event` records into key events: keys through
 *  the key map, encoder axes through EncoderSteps, SYN_DROPPED by skipping to the next
 *  SYN_REPORT and then resynchronising the held keys. Records split across reads are joined;
 *  records that make no sense are skipped with a log line (the first few of them). */
class InputEventDecoder {
public:
    /** Fills `bits` (one bit per key code, as EVIOCGKEY does) with the keys the device holds
     *  now; false when the input cannot tell (a pipe or file). */
    using KeyStateQuery = std::function<bool(std::vector<unsigned char>& bits)>;

    InputEventDecoder(InputKeyMap keys, EncoderOptions encoder, std::string name);

    /** Whether the device's repeats are passed on (else dropped). */
    void setForwardRepeats(bool forward) { forwardRepeats_ = forward; }
    /** How to learn the device's key state after dropped events; none: release every key. */
    void setKeyStateQuery(KeyStateQuery query) { keyStateQuery_ = std::move(query); }
    /** Whether a repeat of a held key has been passed on. */
    bool sawRepeats() const { return sawRepeats_; }
    EncoderSteps& encoder() { return encoder_; }

    /** Decodes `size` bytes; appends the events to `out`. */
    void feed(char const* data, std::size_t size, std::deque<KeyEvent>& out);
    /** The input ended: logs a partial record left over, releases held keys into `out` and
     *  starts afresh for a reopened device. */
    void finish(std::deque<KeyEvent>& out);

private:
    void handle(input_event const& record, std::deque<KeyEvent>& out);
    void handleKey(int code, int value, std::deque<KeyEvent>& out);
    void addSteps(EncoderStep step, std::deque<KeyEvent>& out);
    void setHeld(int code, bool down, std::deque<KeyEvent>& out);
    void resynchronise(std::deque<KeyEvent>& out);
    void skipped(input_event const& record, char const* why);

    InputKeyMap keys_;
    EncoderSteps encoder_;
    std::string name_;
    bool forwardRepeats_ = false;
    bool sawRepeats_ = false;
    KeyStateQuery keyStateQuery_;
    std::vector<char> partial_;
    bool dropping_ = false;
    std::set<int> heldCodes_;
    std::map<PanelKey, unsigned> heldCodesPerKey_;
    unsigned skippedRecords_ = 0;
};

}  // namespace frontpanelhw::detail
