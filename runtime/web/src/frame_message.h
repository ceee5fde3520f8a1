#pragma once

#include <frontpanelhw/display_types.h>
#include <frontpanelhw/key_source.h>

#include <string>

namespace yxfrontpanel::runtime::detail {

/** The JSON text a page receives for one frame:
 *  {"type":"frame","chars":20,"lines":4,"local":true,"text":["...",...],
 *   "inverted":[[[0,18]],[],[],[]]}
 *  with each line's glyphs as the terminal display shows them (UTF-8) and its inverted runs as
 *  [first,last] column pairs. */
std::string frameMessage(frontpanelhw::drawing::DisplayBuffer const& frame, bool local);

/** The JSON text that tells a page whether it may press keys:
 *  {"type":"hello","control":true}. */
std::string helloMessage(bool control);

/** A message from a page, read as JSON (any valid spelling): a key press `{"key":"down"}` or
 *  the access token `{"token":"..."}` as the first message. */
struct ClientMessage {
    enum class Kind { Other, Key, Token };
    Kind kind = Kind::Other;
    frontpanelhw::PanelKey key{};
    std::string token;
};

/** Reads a page's message; `Kind::Other` for anything that is not a JSON object with one known
 *  member of the right type. */
ClientMessage parseClientMessage(std::string const& message);

/** `text` as a JSON string literal, quotes included. */
std::string jsonString(std::string const& text);

}  // namespace yxfrontpanel::runtime::detail
