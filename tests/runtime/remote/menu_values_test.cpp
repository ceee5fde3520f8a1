#include <frontpanelhw/display.h>
#include <yxfrontpanel/runtime/menu_values.h>
#include <yxfrontpanel/yxfrontpanel.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace {

using yxfrontpanel::runtime::readMenuValue;
using yxfrontpanel::runtime::writeMenuValue;

// A root menu with a voltage editor and an address editor, whose callbacks the test sets.
class MenuValuesTest : public ::testing::Test {
protected:
    MenuValuesTest() : root(yxfrontpanel::MenuTreeFactory().create(provider)) {
        voltage =
            std::make_shared<yxfrontpanel::ValueEditorMenuItem>(provider, u"Voltage", 0.0, 30.0);
        root->addItem(voltage);
        address = std::make_shared<yxfrontpanel::IpAddressEditorMenuItem>(provider, u"Address");
        address->setValue("192.168.1.100");
        root->addItem(address);
    }

    frontpanelhw::MemoryDisplay display{20, 4};
    yxfrontpanel::DrawingProvider provider{display};
    std::unique_ptr<yxfrontpanel::IMenuTree> root;
    std::shared_ptr<yxfrontpanel::ValueEditorMenuItem> voltage;
    std::shared_ptr<yxfrontpanel::IpAddressEditorMenuItem> address;
};

TEST_F(MenuValuesTest, AWriteWithoutApplicationCallbackCommitsTheValue) {
    writeMenuValue(*root, "Voltage", "12");
    writeMenuValue(*root, "Address", "10.0.0.2");
    EXPECT_EQ(readMenuValue(*root, "Voltage").text, "12");
    EXPECT_EQ(readMenuValue(*root, "Address").text, "10.0.0.2");
}

// The application's own std::bad_function_call is its failure, not "no callback": it passes
// through as every other exception of the callback does.
TEST_F(MenuValuesTest, TheApplicationsBadFunctionCallPassesThrough) {
    voltage->connectEditor([](double) { std::function<void()>{}(); });
    address->connectEditor([](std::string const&) { throw std::bad_function_call(); });
    EXPECT_THROW(writeMenuValue(*root, "Voltage", "12"), std::bad_function_call);
    EXPECT_THROW(writeMenuValue(*root, "Address", "10.0.0.2"), std::bad_function_call);
}

}  // namespace
