#include <yxfrontpanel/components.h>

#include <cstdint>
#include <future>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "web_panel_fixture.h"

#if YXFP_HAS_PNG
#include <frontpanelhw/graphic/cell_renderer.h>
#include <frontpanelhw/graphic/font.h>
#include <frontpanelhw/graphic/mono_bitmap.h>
#include <frontpanelhw/graphic/png_image.h>
#endif

namespace {

using yxfp_test::LoopbackConnection;
using yxfp_test::WebPanelTest;
using yxfrontpanel::runtime::WebPanelOptions;

using Response = yxfp_test::HttpResponse;

class WebPanelScreenshotTest : public WebPanelTest {
protected:
    std::string hostPort(std::string const& name) const {
        return name + ":" + std::to_string(server->port());
    }
};

// Without a provider (no PNG support built) the screenshot says what to install.
TEST_F(WebPanelScreenshotTest, WithoutProviderScreenshotIsNotImplemented) {
    start();
    LoopbackConnection client(server->port());
    Response const response = yxfp_test::splitResponse(client.get("/screenshot.png"));
    EXPECT_EQ(response.head.rfind("HTTP/1.1 501 Not Implemented\r\n", 0), 0U) << response.head;
    EXPECT_NE(response.head.find("text/plain"), std::string::npos);
    EXPECT_NE(response.body.find("libpng-dev"), std::string::npos) << response.body;
}

// The provider runs on the panel's thread; what it throws comes back as 500 with its reason.
TEST_F(WebPanelScreenshotTest, FailingProviderAnswersServerError) {
    WebPanelOptions options;
    options.screenshotPng = []() -> std::string { throw std::runtime_error("no memory left"); };
    start(options);
    LoopbackConnection client(server->port());
    Response const response = yxfp_test::splitResponse(client.get("/screenshot.png"));
    EXPECT_EQ(response.head.rfind("HTTP/1.1 500 Internal Server Error\r\n", 0), 0U)
        << response.head;
    EXPECT_NE(response.body.find("no memory left"), std::string::npos) << response.body;
}

// The provider's bytes are served as they are, never cached; the provider ran on the panel's
// thread, where the panel's screen may be read.
TEST_F(WebPanelScreenshotTest, ServesTheProvidersBytesFromThePanelsThread) {
    WebPanelOptions options;
    // Written on the panel's thread, read here after the answer came.
    std::mutex threadMutex;
    std::thread::id providerThread;
    options.screenshotPng = [&threadMutex, &providerThread] {
        std::lock_guard<std::mutex> const lock(threadMutex);
        providerThread = std::this_thread::get_id();
        return std::string("\x89PNG fake\0bytes", 15);
    };
    start(options);
    LoopbackConnection client(server->port());
    Response const response = yxfp_test::splitResponse(client.get("/screenshot.png"));
    EXPECT_EQ(response.head.rfind("HTTP/1.1 200 OK\r\n", 0), 0U) << response.head;
    EXPECT_NE(response.head.find("\r\nContent-Type: image/png\r\n"), std::string::npos);
    EXPECT_NE(response.head.find("\r\nCache-Control: no-store\r\n"), std::string::npos);
    EXPECT_NE(response.head.find("\r\nContent-Length: 15\r\n"), std::string::npos);
    EXPECT_EQ(response.body, std::string("\x89PNG fake\0bytes", 15));
    std::lock_guard<std::mutex> const lock(threadMutex);
    EXPECT_EQ(providerThread, runner.get_id());
}

// DNS rebinding: another site's page gets no screenshot, exactly as it gets no `/`.
TEST_F(WebPanelScreenshotTest, ForeignHostIsRefused) {
    WebPanelOptions options;
    bool called = false;
    options.screenshotPng = [&called] {
        called = true;
        return std::string("png");
    };
    options.accessToken = "secret";
    start(options);
    LoopbackConnection client(server->port());
    client.setHost(hostPort("evil.example"));
    std::string const response = client.get("/screenshot.png");
    EXPECT_EQ(response.rfind("HTTP/1.1 421 Misdirected Request\r\n", 0), 0U)
        << response.substr(0, 200);
    LoopbackConnection page(server->port());
    page.setHost(hostPort("evil.example"));
    EXPECT_EQ(page.get("/").rfind("HTTP/1.1 421 Misdirected Request\r\n", 0), 0U);
    // Had the refused request posted the provider, it would have run before this post.
    std::promise<void> served;
    panel->post([&served] { served.set_value(); });
    served.get_future().wait();
    EXPECT_FALSE(called);
}

#if YXFP_HAS_PNG
std::uint32_t bigEndian(std::string const& bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < 4; ++index) {
        value = (value << 8U) | static_cast<unsigned char>(bytes.at(at + index));
    }
    return value;
}

// With the PNG encoder the screenshot is a PNG of the panel's screen: columns x cell width by
// lines x cell height.
TEST_F(WebPanelScreenshotTest, ScreenshotIsAPngOfThePanelsSize) {
    using namespace frontpanelhw::graphic;
    WebPanelOptions options;
    // Runs on the panel's thread once the panel is running, so `panel` is set by then.
    options.screenshotPng = [this] {
        frontpanelhw::drawing::DisplayBuffer const screen = panel->shownFrame();
        CellRenderer renderer(Font::builtin6x8());
        MonoBitmap bitmap(screen.getChars() * renderer.font().cellWidth(),
                          screen.getLineCount() * renderer.font().cellHeight());
        renderer.render(screen, bitmap);
        std::vector<std::uint8_t> const png = encodePng(bitmap);
        return std::string(png.begin(), png.end());
    };
    start(options);
    LoopbackConnection client(server->port());
    Response const response = yxfp_test::splitResponse(client.get("/screenshot.png"));
    ASSERT_EQ(response.head.rfind("HTTP/1.1 200 OK\r\n", 0), 0U) << response.head;
    EXPECT_NE(response.head.find("\r\nContent-Type: image/png\r\n"), std::string::npos);
    std::string const& png = response.body;
    ASSERT_GE(png.size(), 24U);
    EXPECT_EQ(png.substr(0, 8), std::string("\x89PNG\r\n\x1a\n", 8));
    EXPECT_EQ(png.substr(12, 4), "IHDR");
    EXPECT_EQ(bigEndian(png, 16), 20U * Font::builtin6x8().cellWidth());
    EXPECT_EQ(bigEndian(png, 20), 4U * Font::builtin6x8().cellHeight());
}
#endif

}  // namespace
