#include <string>

#include "web_panel_fixture.h"

namespace {

using yxfp_test::LoopbackConnection;
using yxfp_test::WebPanelTest;
using yxfrontpanel::runtime::InstrumentIdentity;
using yxfrontpanel::runtime::WebPanelOptions;

using Response = yxfp_test::HttpResponse;

/** The text of the first element `name` in `xml`; "(missing)" when there is none. */
std::string elementText(std::string const& xml, std::string const& name) {
    std::string const open = "<" + name + ">";
    std::size_t const start = xml.find(open);
    std::size_t const end = xml.find("</" + name + ">");
    if (start == std::string::npos || end == std::string::npos || end < start) {
        return "(missing)";
    }
    return xml.substr(start + open.size(), end - start - open.size());
}

class WebPanelLxiTest : public WebPanelTest {
protected:
    static WebPanelOptions withIdentity() {
        WebPanelOptions options;
        options.identity = InstrumentIdentity{"Acme & Sons", "PSU <2000>", "SN-17", "2.3.4"};
        options.instrumentAddresses = {"TCPIP::127.0.0.1::5025::SOCKET",
                                       "TCPIP::127.0.0.1::inst0::INSTR"};
        return options;
    }

    std::string hostPort(std::string const& name) const {
        return name + ":" + std::to_string(server->port());
    }
};

// The identification names the identity given (escaped for XML), its own URL and every
// interface: the web panel's and the ones the options list.
TEST_F(WebPanelLxiTest, IdentificationNamesTheIdentityAndTheInterfaces) {
    start(withIdentity());
    LoopbackConnection client(server->port());
    Response const response = yxfp_test::splitResponse(client.get("/lxi/identification"));
    EXPECT_EQ(response.head.rfind("HTTP/1.1 200 OK\r\n", 0), 0U) << response.head;
    EXPECT_NE(response.head.find("\r\nContent-Type: text/xml"), std::string::npos) << response.head;
    std::string const& xml = response.body;
    EXPECT_EQ(xml.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n", 0), 0U) << xml;
    EXPECT_NE(xml.find("<LXIDevice xmlns=\"http://www.lxistandard.org/"
                       "InstrumentIdentification/1.0\""),
              std::string::npos)
        << xml;
    EXPECT_EQ(elementText(xml, "Manufacturer"), "Acme &amp; Sons");
    EXPECT_EQ(elementText(xml, "Model"), "PSU &lt;2000&gt;");
    EXPECT_EQ(elementText(xml, "SerialNumber"), "SN-17");
    EXPECT_EQ(elementText(xml, "FirmwareRevision"), "2.3.4");
    std::string const base = "http://" + hostPort("127.0.0.1");
    EXPECT_EQ(elementText(xml, "IdentificationURL"), base + "/lxi/identification");
    EXPECT_NE(xml.find("InterfaceType=\"LXI\" IPType=\"IPv4\""), std::string::npos) << xml;
    EXPECT_NE(xml.find("<InstrumentAddressString>" + base +
                       "/</InstrumentAddressString>\n"
                       "    <InstrumentAddressString>TCPIP::127.0.0.1::5025::SOCKET"
                       "</InstrumentAddressString>\n"
                       "    <InstrumentAddressString>TCPIP::127.0.0.1::inst0::INSTR"
                       "</InstrumentAddressString>\n"),
              std::string::npos)
        << xml;
    EXPECT_EQ(elementText(xml, "IPAddress"), "127.0.0.1");
    EXPECT_EQ(xml.substr(xml.size() - 13), "</LXIDevice>\n");
}

// A comma separates the fields of *IDN?, so the identification shows a blank there too: the
// fields stay those *IDN? answers.
TEST_F(WebPanelLxiTest, IdentificationShowsTheFieldsAsIdnAnswersThem) {
    WebPanelOptions options;
    options.identity = InstrumentIdentity{"Acme, Inc.", "M1", "0,1", "1"};
    start(options);
    LoopbackConnection client(server->port());
    std::string const xml = yxfp_test::splitResponse(client.get("/lxi/identification")).body;
    EXPECT_EQ(elementText(xml, "Manufacturer"), "Acme  Inc.");
    EXPECT_EQ(elementText(xml, "SerialNumber"), "0 1");
}

// A HEAD gets the head alone.
TEST_F(WebPanelLxiTest, HeadRequestGetsNoBody) {
    start(withIdentity());
    LoopbackConnection client(server->port());
    client.send("HEAD /lxi/identification HTTP/1.1\r\nHost: " + hostPort("127.0.0.1") +
                "\r\nConnection: close\r\n\r\n");
    Response const response = yxfp_test::splitResponse(client.readAll());
    EXPECT_EQ(response.head.rfind("HTTP/1.1 200 OK\r\n", 0), 0U) << response.head;
    EXPECT_TRUE(response.body.empty()) << response.body;
}

// Without an identity there is nothing to identify: 404 saying why.
TEST_F(WebPanelLxiTest, WithoutIdentityIdentificationIsNotFound) {
    start();
    LoopbackConnection client(server->port());
    Response const response = yxfp_test::splitResponse(client.get("/lxi/identification"));
    EXPECT_EQ(response.head.rfind("HTTP/1.1 404 Not Found\r\n", 0), 0U) << response.head;
    EXPECT_NE(response.head.find("text/plain"), std::string::npos);
    EXPECT_NE(response.body.find("identity"), std::string::npos) << response.body;
}

// DNS rebinding: another site's page that resolves to the panel is refused as for `/`.
TEST_F(WebPanelLxiTest, ForeignHostIsRefused) {
    start(withIdentity());
    LoopbackConnection client(server->port());
    client.setHost(hostPort("evil.example"));
    std::string const response = client.get("/lxi/identification");
    EXPECT_EQ(response.rfind("HTTP/1.1 421 Misdirected Request\r\n", 0), 0U)
        << response.substr(0, 200);
    EXPECT_EQ(response.find("Acme"), std::string::npos);
}

// A further host name the panel answers to is the one the addresses name.
TEST_F(WebPanelLxiTest, IdentificationUsesTheHostTheClientNamed) {
    WebPanelOptions options = withIdentity();
    options.hostNames = {"panel.lab"};
    start(options);
    LoopbackConnection client(server->port());
    client.setHost(hostPort("panel.lab"));
    std::string const xml = yxfp_test::splitResponse(client.get("/lxi/identification")).body;
    EXPECT_EQ(elementText(xml, "IdentificationURL"),
              "http://" + hostPort("panel.lab") + "/lxi/identification");
    EXPECT_EQ(elementText(xml, "Hostname"), "panel.lab");
}

}  // namespace
