#include "key_text.h"

#include <cctype>

namespace frontpanelhw::detail {

std::string_view trimmedText(std::string_view text) {
    auto const isBlank = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::optional<PanelKey> panelKeyFromName(std::string_view name) {
    for (PanelKey const key : {PanelKey::Up, PanelKey::Down, PanelKey::Left, PanelKey::Right,
                               PanelKey::Enter, PanelKey::Back}) {
        std::string_view const known = panelKeyName(key);
        bool same = known.size() == name.size();
        for (std::size_t i = 0; same && i < name.size(); ++i) {
            same = std::tolower(static_cast<unsigned char>(name[i])) == known[i];
        }
        if (same) {
            return key;
        }
    }
    return std::nullopt;
}

}  // namespace frontpanelhw::detail
