#include <yxfrontpanel/inline_editor_menu_item.h>
#include <yxfrontpanel/ip.h>
#include <yxfrontpanel/ip_address_editor_menu_item.h>
#include <yxfrontpanel/menu_tree.h>
#include <yxfrontpanel/radio_menu_item.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/runtime/scpi_error.h>
#include <yxfrontpanel/runtime/scpi_number.h>
#include <yxfrontpanel/slider.h>
#include <yxfrontpanel/slider_menu_item.h>
#include <yxfrontpanel/tree_menu_item.h>
#include <yxfrontpanel/value_editor_menu_item.h>

#include <cctype>
#include <charconv>
#include <cmath>
#include <functional>
#include <iomanip>
#include <limits>
#include <locale>
#include <optional>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "utf.h"

namespace yxfrontpanel::runtime {

namespace {

using scpi::Error;
using scpi::ErrorCode;

std::vector<std::string_view> splitPath(std::string_view path) {
    std::vector<std::string_view> names;
    while (true) {
        std::size_t const slash = path.find('/');
        names.push_back(path.substr(0, slash));
        if (slash == std::string_view::npos) {
            return names;
        }
        path.remove_prefix(slash + 1);
    }
}

MenuItem* findIn(IMenuTree& tree, std::string_view name) {
    for (unsigned index = 0; index < tree.allItemCount(); ++index) {
        MenuItem* const item = tree.getItem(index);
        if (item != nullptr && utf16ToUtf8(item->getText()) == name) {
            return item;
        }
    }
    return nullptr;
}

std::optional<double> parseNumber(std::string const& text) {
    double value = 0.0;
    char const* begin = text.data();
    char const* const end = begin + text.size();
    if (begin != end && *begin == '+') {
        ++begin;
    }
    auto const [last, error] = std::from_chars(begin, end, value);
    if (begin == end || error != std::errc{} || last != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::optional<int> parseWhole(std::string const& text) {
    std::optional<double> const value = parseNumber(text);
    if (!value || std::floor(*value) != *value ||
        *value < static_cast<double>(std::numeric_limits<int>::min()) ||
        *value > static_cast<double>(std::numeric_limits<int>::max())) {
        return std::nullopt;
    }
    return static_cast<int>(*value);
}

std::string formatNumber(double value, unsigned precision) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    if (precision > 0) {
        out << std::fixed << std::setprecision(static_cast<int>(precision));
    } else {
        out << std::setprecision(std::numeric_limits<double>::digits10);
    }
    out << value;
    return out.str();
}

/** Strict dotted-quad check: the toolkit's own parser forgives what a remote write must not. */
void checkAddress(std::string const& text) {
    std::vector<std::string_view> fields;
    std::string_view rest = text;
    while (true) {
        std::size_t const dot = rest.find('.');
        fields.push_back(rest.substr(0, dot));
        if (dot == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(dot + 1);
    }
    if (fields.size() != 4) {
        throw Error(ErrorCode::IllegalParameterValue, "not an IPv4 address: " + text);
    }
    for (std::string_view field : fields) {
        if (field.empty() || field.size() > 3 ||
            field.find_first_not_of("0123456789") != std::string_view::npos) {
            throw Error(ErrorCode::IllegalParameterValue, "not an IPv4 address: " + text);
        }
        if (std::stoi(std::string(field)) > 255) {
            throw Error(ErrorCode::DataOutOfRange, "address field above 255: " + text);
        }
    }
}

/** Commits what the editor holds and tells the application, as the enter key in an editable
 *  editor does; the editor mode the panel set is restored afterwards. */
template <class Editor>
void applyAsConfirmedEdit(Editor& editor) {
    bool const mode = editor.getEditorMode();
    editor.setEditorMode(true);
    if constexpr (std::is_same_v<Editor, Slider>) {
        editor.apply();  // a slider without a callback only commits
        editor.setEditorMode(mode);
        return;
    } else if (editor.hasApplyCallback()) {
        editor.apply();  // what the application's callback throws passes through
    } else {
        // No application callback: the committed value is all there is to change.
        editor.setApplyCallback([](auto const&) {});
        editor.apply();
        editor.setApplyCallback({});
    }
    editor.setEditorMode(mode);
}

RadioMenuItem* findChoice(RadioTreeMenuItem& group, std::string const& text) {
    IMenuTree& choices = *group.getSubTree();
    std::optional<int> const id = parseWhole(text);
    for (unsigned index = 0; index < choices.allItemCount(); ++index) {
        auto* const choice = dynamic_cast<RadioMenuItem*>(choices.getItem(index));
        if (choice != nullptr &&
            (utf16ToUtf8(choice->getText()) == text || (id && choice->getId() == *id))) {
            return choice;
        }
    }
    return nullptr;
}

Error readOnly(std::string_view path) {
    return Error(ErrorCode::ExecutionError, "item is read-only: " + std::string(path));
}

Error noValue(std::string_view path) {
    return Error(ErrorCode::IllegalParameterValue, "item has no value: " + std::string(path));
}

}  // namespace

MenuItem& findMenuItem(IMenuTree& root, std::string_view path) {
    IMenuTree* tree = &root;
    MenuItem* item = nullptr;
    for (std::string_view const name : splitPath(path)) {
        if (item != nullptr) {
            auto* const menu = dynamic_cast<TreeMenuItem*>(item);
            tree = menu != nullptr ? menu->getSubTree() : nullptr;
        }
        item = tree != nullptr ? findIn(*tree, name) : nullptr;
        if (item == nullptr) {
            throw Error(ErrorCode::IllegalParameterValue, "no menu item " + std::string(path));
        }
    }
    if (item == nullptr) {  // an empty path names no item
        throw Error(ErrorCode::IllegalParameterValue, "no menu item " + std::string(path));
    }
    return *item;
}

namespace {

bool isDefault(std::string const& text) {
    std::string word = text;
    for (char& c : word) {
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    }
    return word == "DEF" || word == "DEFAULT";
}

/** `text` for a value editor: a number with an optional suffix in the editor's unit, MIN or
 *  MAX for its bounds, or DEF for `defaultValue`. */
double editorNumber(ValueEditor const& editor, std::string_view path, std::string const& text,
                    std::optional<double> defaultValue) {
    if (isDefault(text) && !defaultValue) {
        throw Error(ErrorCode::IllegalParameterValue,
                    "no default value known for " + std::string(path));
    }
    double const value = scpi::parseNumber(
        text, utf16ToUtf8(editor.getUnit()),
        scpi::NumericBounds{editor.getMinValue(), editor.getMaxValue(), defaultValue.value_or(0)});
    if (!std::isfinite(value)) {
        throw Error(ErrorCode::DataTypeError, "not a number: " + text);
    }
    return value;
}

}  // namespace

std::optional<double> MenuDefaults::note(IMenuTree& root, std::string_view path) {
    // Looked up first: an unknown path is refused even when a stale entry could answer.
    auto* const number = dynamic_cast<ValueEditorMenuItem*>(&findMenuItem(root, path));
    if (number == nullptr) {
        return std::nullopt;
    }
    if (auto const known = values_.find(path); known != values_.end()) {
        return known->second;
    }
    double const value = number->getEditor().getValue();
    values_.emplace(std::string(path), value);
    return value;
}

MenuValue readMenuBound(IMenuTree& root, std::string_view path, std::string const& which,
                        std::optional<double> defaultValue) {
    MenuItem& item = findMenuItem(root, path);
    auto* const number = dynamic_cast<ValueEditorMenuItem*>(&item);
    if (number == nullptr) {
        throw Error(ErrorCode::IllegalParameterValue, "no bounds for " + std::string(path));
    }
    ValueEditor const& editor = number->getEditor();
    double const value = editorNumber(editor, path, which, defaultValue);
    if (!isDefault(which) && value != editor.getMinValue() && value != editor.getMaxValue()) {
        throw Error(ErrorCode::IllegalParameterValue, "not MIN, MAX or DEF: " + which);
    }
    return MenuValue{formatNumber(value, editor.getPrecision()), true};
}

MenuValue readMenuValue(IMenuTree& root, std::string_view path) {
    MenuItem& item = findMenuItem(root, path);
    if (auto* const number = dynamic_cast<ValueEditorMenuItem*>(&item)) {
        ValueEditor const& editor = number->getEditor();
        return MenuValue{formatNumber(editor.getValue(), editor.getPrecision()), true};
    }
    if (auto* const address = dynamic_cast<IpAddressEditorMenuItem*>(&item)) {
        return MenuValue{ip::toString(address->getEditor().getValue()), false};
    }
    if (auto* const choice = dynamic_cast<InlineEditorMenuItem*>(&item)) {
        std::optional<int> const key = choice->getCurrentKey();
        if (!key) {
            return MenuValue{};
        }
        return MenuValue{utf16ToUtf8(choice->getValues().at(*key)), false};
    }
    if (auto* const group = dynamic_cast<RadioTreeMenuItem*>(&item)) {
        IMenuTree& choices = *group->getSubTree();
        for (unsigned index = 0; index < choices.allItemCount(); ++index) {
            auto* const entry = dynamic_cast<RadioMenuItem*>(choices.getItem(index));
            if (entry != nullptr && entry->isChecked()) {
                return MenuValue{utf16ToUtf8(entry->getText()), false};
            }
        }
        return MenuValue{};
    }
    if (auto* const slider = dynamic_cast<SliderMenuItem*>(&item)) {
        return MenuValue{std::to_string(slider->getSlider().getValue()), true};
    }
    throw noValue(path);
}

void writeMenuValue(IMenuTree& root, std::string_view path, std::string const& text,
                    std::optional<double> defaultValue) {
    MenuItem& item = findMenuItem(root, path);
    if (!item.getAvailable()) {
        throw Error(ErrorCode::ExecutionError, "item not available: " + std::string(path));
    }
    if (auto* const number = dynamic_cast<ValueEditorMenuItem*>(&item)) {
        ValueEditor& editor = number->getEditor();
        std::optional<double> const value = editorNumber(editor, path, text, defaultValue);
        if (*value < editor.getMinValue() || *value > editor.getMaxValue()) {
            throw Error(ErrorCode::DataOutOfRange,
                        text + " outside " + formatNumber(editor.getMinValue(), 0) + " to " +
                            formatNumber(editor.getMaxValue(), 0));
        }
        number->setValue(*value);
        applyAsConfirmedEdit(editor);
        return;
    }
    if (auto* const address = dynamic_cast<IpAddressEditorMenuItem*>(&item)) {
        checkAddress(text);
        address->setValue(text);
        applyAsConfirmedEdit(address->getEditor());
        return;
    }
    if (auto* const choice = dynamic_cast<InlineEditorMenuItem*>(&item)) {
        if (!choice->editable.load()) {
            throw readOnly(path);
        }
        std::optional<int> key;
        for (auto const& [valueKey, valueText] : choice->getValues()) {
            if (utf16ToUtf8(valueText) == text) {
                key = valueKey;
            }
        }
        if (!key) {
            std::optional<int> const asKey = parseWhole(text);
            if (asKey && choice->getValues().count(*asKey) > 0) {
                key = asKey;
            }
        }
        if (!key) {
            throw Error(ErrorCode::IllegalParameterValue,
                        "no value " + text + " in " + std::string(path));
        }
        choice->setValue(*key);
        if (choice->valueCallback) {
            choice->valueCallback(*key);
        }
        return;
    }
    if (auto* const group = dynamic_cast<RadioTreeMenuItem*>(&item)) {
        RadioMenuItem* const entry = findChoice(*group, text);
        if (entry == nullptr) {
            throw Error(ErrorCode::IllegalParameterValue,
                        "no choice " + text + " in " + std::string(path));
        }
        if (!entry->getEditor()) {
            throw readOnly(path);
        }
        group->setValue(entry->getId());
        if (group->valueCallback) {
            group->valueCallback(entry->getId());
        }
        return;
    }
    if (auto* const slider = dynamic_cast<SliderMenuItem*>(&item)) {
        if (slider->getReadOnly()) {
            throw readOnly(path);
        }
        std::optional<int> const level = parseWhole(text);
        if (!level) {
            throw Error(ErrorCode::DataTypeError, "not a whole number: " + text);
        }
        if (!slider->setValue(*level)) {
            throw Error(ErrorCode::DataOutOfRange, text + " outside the slider's range");
        }
        applyAsConfirmedEdit(slider->getSlider());
        return;
    }
    throw noValue(path);
}

}  // namespace yxfrontpanel::runtime
