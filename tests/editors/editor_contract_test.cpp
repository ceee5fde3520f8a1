// The rules every editor shares through BaseEditor (focus, apply, caret walk), checked once for
// each editor. What differs between the editors is in their own test files.

#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <type_traits>

#include "editor_screen.h"
#include "recording_provider.h"
#include "standard_panel.h"

namespace {

using ip::IpV4Address;
using namespace yxfp_test;
using namespace yxfrontpanel;

// A voltage of 0..100 V with one decimal showing 5.5: "005.5 V" from column 6, digits at
// columns 6, 7, 8 and 10.
struct NumberEditor {
    using Editor = ValueEditor;
    static std::unique_ptr<ValueEditor> make(IDrawingProvider const& provider) {
        auto editor = std::make_unique<ValueEditor>(provider, u"Volt", 0.0, 100.0);
        editor->setPrecision(1);
        editor->setUnit(u"V");
        editor->setValue(5.5);
        return editor;
    }
    static void countApplies(ValueEditor& editor, int& calls) {
        editor.setApplyCallback([&calls](double) { ++calls; });
    }
    static constexpr unsigned kFirstPlace = 6;
    static constexpr unsigned kSecondPlace = 7;
    static constexpr unsigned kLastPlace = 10;
};

// The address 10.0.0.1: " 10.  0.  0.  1" from column 2, digits at columns 2 to 16.
struct AddressEditor {
    using Editor = IpAddressEditor;
    static std::unique_ptr<IpAddressEditor> make(IDrawingProvider const& provider) {
        auto editor = std::make_unique<IpAddressEditor>(provider, u"IP");
        editor->setValue(IpV4Address(10, 0, 0, 1));
        return editor;
    }
    static void countApplies(IpAddressEditor& editor, int& calls) {
        editor.setApplyCallback([&calls](std::string const&) { ++calls; });
    }
    static constexpr unsigned kFirstPlace = 2;
    static constexpr unsigned kSecondPlace = 3;
    static constexpr unsigned kLastPlace = 16;
};

template <class Kind>
class EditorContractTest : public ::testing::Test {
protected:
    using Editor = typename Kind::Editor;

    // The editor with its value, focused and editable, with the caret on the first place.
    Editor& open() {
        openForEditing(*editor_);
        return *editor_;
    }

    RecordingProvider provider_{kChars, kLines};
    std::unique_ptr<Editor> editor_ = Kind::make(provider_);
};

// Names the instantiations after the editors ("EditorContractTest/ValueEditor.…").
struct EditorName {
    template <class Kind>
    static std::string GetName(int /*index*/) {  // NOLINT(readability-identifier-naming)
        return std::is_same_v<Kind, NumberEditor> ? "ValueEditor" : "IpAddressEditor";
    }
};

using EditorKinds = ::testing::Types<NumberEditor, AddressEditor>;
TYPED_TEST_SUITE(EditorContractTest, EditorKinds, EditorName);

TYPED_TEST(EditorContractTest, EditorModePutsTheCaretOnTheFirstPlace) {
    this->open();
    EXPECT_EQ(caretColumn(*this->editor_), TypeParam::kFirstPlace);
    EXPECT_EQ(this->provider_.line(2), caretLine(TypeParam::kFirstPlace, kChars));
}

TYPED_TEST(EditorContractTest, LeftWrapsFromTheFirstPlaceToTheLastAndRightBack) {
    auto& editor = this->open();
    editor.moveMarker(-1);
    EXPECT_EQ(caretColumn(editor), TypeParam::kLastPlace);
    editor.moveMarker(+1);
    EXPECT_EQ(caretColumn(editor), TypeParam::kFirstPlace);
}

TYPED_TEST(EditorContractTest, MovingTheCaretRedrawsOnce) {
    auto& editor = this->open();
    this->provider_.reset();
    editor.moveMarker(-1);
    EXPECT_EQ(this->provider_.drawCount(), 1U);
    EXPECT_EQ(this->provider_.line(2), caretLine(TypeParam::kLastPlace, kChars));
}

TYPED_TEST(EditorContractTest, MoveMarkerWorksWithoutFocusOrEditorMode) {
    auto& editor = *this->editor_;
    editor.setEditorMode(true);
    editor.setEditorMode(false);
    editor.moveMarker(+1);
    EXPECT_EQ(caretColumn(editor), TypeParam::kSecondPlace);
    EXPECT_EQ(this->provider_.drawCount(), 0U);
}

TYPED_TEST(EditorContractTest, ChangeValueWithoutFocusDoesNothing) {
    auto& editor = *this->editor_;
    auto const before = editor.getEditValue();
    editor.setEditorMode(true);
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), before);
    EXPECT_EQ(this->provider_.drawCount(), 0U);
}

TYPED_TEST(EditorContractTest, ChangeValueOutsideEditorModeDoesNothing) {
    auto& editor = *this->editor_;
    auto const before = editor.getEditValue();
    editor.setFocus(true);
    this->provider_.reset();
    editor.changeValue(+1);
    EXPECT_EQ(editor.getEditValue(), before);
    EXPECT_EQ(this->provider_.drawCount(), 0U);
}

TYPED_TEST(EditorContractTest, RegainingTheFocusShowsTheCommittedValue) {
    auto& editor = this->open();
    editor.changeValue(+1);
    editor.setFocus(false);
    editor.setFocus(true);
    EXPECT_EQ(editor.getEditValue(), editor.getValue());
}

TYPED_TEST(EditorContractTest, LosingTheFocusDrawsNothing) {
    auto& editor = this->open();
    this->provider_.reset();
    editor.setFocus(false);
    EXPECT_EQ(this->provider_.drawCount(), 0U);
}

TYPED_TEST(EditorContractTest, ApplyCommitsAndReportsOnceInEditorMode) {
    auto& editor = this->open();
    int calls = 0;
    TypeParam::countApplies(editor, calls);
    editor.changeValue(+1);
    editor.apply();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(editor.getValue(), editor.getEditValue());
}

TYPED_TEST(EditorContractTest, ApplyOutsideEditorModeNeitherCommitsNorReports) {
    auto& editor = this->open();
    int calls = 0;
    TypeParam::countApplies(editor, calls);
    auto const committed = editor.getValue();
    editor.setEditorMode(false);
    editor.apply();
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(editor.getValue(), committed);
}

TYPED_TEST(EditorContractTest, ApplyWithoutCallbackRaisesBadFunctionCall) {
    auto& editor = this->open();
    EXPECT_THROW(editor.apply(), std::bad_function_call);
}

TYPED_TEST(EditorContractTest, ApplyWithoutCallbackOutsideEditorModeDoesNothing) {
    auto& editor = *this->editor_;
    editor.setFocus(true);
    EXPECT_NO_THROW(editor.apply());
}

}  // namespace
