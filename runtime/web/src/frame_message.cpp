#include "frame_message.h"

#include <frontpanelhw/screen_text.h>

#include <cstdio>

namespace yxfrontpanel::runtime::detail {

std::string jsonString(std::string const& text) {
    std::string quoted = "\"";
    for (char const byte : text) {
        switch (byte) {
            case '"':
                quoted += "\\\"";
                break;
            case '\\':
                quoted += "\\\\";
                break;
            default:
                if (static_cast<unsigned char>(byte) < 0x20) {
                    char escape[8];
                    std::snprintf(escape, sizeof escape, "\\u%04x", byte);
                    quoted += escape;
                } else {
                    quoted += byte;
                }
        }
    }
    return quoted + '"';
}

std::string frameMessage(frontpanelhw::drawing::DisplayBuffer const& frame, bool local) {
    std::string message = "{\"type\":\"frame\",\"chars\":" + std::to_string(frame.getChars()) +
                          ",\"lines\":" + std::to_string(frame.getLineCount()) +
                          ",\"local\":" + (local ? "true" : "false") + ",\"text\":[";
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        message += (line == 0 ? "" : ",") + jsonString(frontpanelhw::lineText(frame, line));
    }
    message += "],\"inverted\":[";
    for (unsigned line = 0; line < frame.getLineCount(); ++line) {
        message += line == 0 ? "[" : ",[";
        bool first = true;
        for (auto const& range : frontpanelhw::invertedRanges(frame, line)) {
            message += (first ? "[" : ",[") + std::to_string(range.first) + "," +
                       std::to_string(range.last) + "]";
            first = false;
        }
        message += "]";
    }
    return message + "]}";
}

std::string helloMessage(bool control) {
    return std::string("{\"type\":\"hello\",\"control\":") + (control ? "true" : "false") + "}";
}

bool parseKeyMessage(std::string const& message, frontpanelhw::PanelKey& key) {
    using frontpanelhw::PanelKey;
    for (PanelKey const candidate : {PanelKey::Up, PanelKey::Down, PanelKey::Left, PanelKey::Right,
                                     PanelKey::Enter, PanelKey::Back}) {
        if (message == std::string("{\"key\":\"") + frontpanelhw::panelKeyName(candidate) + "\"}") {
            key = candidate;
            return true;
        }
    }
    return false;
}

}  // namespace yxfrontpanel::runtime::detail
