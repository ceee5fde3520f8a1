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

/** Reads the panel key a page's message names ({"key":"down"}) into `key`; false, leaving `key`
 *  alone, for any other message. */
bool parseKeyMessage(std::string const& message, frontpanelhw::PanelKey& key);

/** `text` as a JSON string literal, quotes included. */
std::string jsonString(std::string const& text);

}  // namespace yxfrontpanel::runtime::detail
