#include <gtest/gtest.h>

#include <string>

#include "websocket_stream.h"

namespace {

using yxfrontpanel::runtime::detail::WebSocketEvent;
using yxfrontpanel::runtime::detail::WebSocketReader;

/** A client frame (masked unless `masked` is false). */
std::string clientFrame(unsigned char first, std::string const& payload, bool masked = true) {
    std::string frame(1, static_cast<char>(first));
    unsigned char const maskBit = masked ? 0x80 : 0x00;
    if (payload.size() < 126) {
        frame += static_cast<char>(maskBit | payload.size());
    } else {
        frame += static_cast<char>(maskBit | 126);
        frame += static_cast<char>(payload.size() >> 8);
        frame += static_cast<char>(payload.size() & 0xFF);
    }
    if (!masked) {
        return frame + payload;
    }
    char const key[4] = {0x11, 0x22, 0x33, 0x44};
    frame.append(key, 4);
    for (std::size_t index = 0; index < payload.size(); ++index) {
        frame += static_cast<char>(payload[index] ^ key[index % 4]);
    }
    return frame;
}

TEST(WebSocketReaderTest, TextMessagesArriveWholeEvenByteByByte) {
    WebSocketReader reader(512);
    std::string const bytes = clientFrame(0x81, R"({"key":"up"})") + clientFrame(0x01, "ab") +
                              clientFrame(0x89, "p") + clientFrame(0x80, "cd");
    std::vector<std::string> seen;
    for (char const byte : bytes) {
        reader.feed(std::string(1, byte));
        for (auto event = reader.next(); event.kind != WebSocketEvent::Kind::None;
             event = reader.next()) {
            seen.push_back((event.kind == WebSocketEvent::Kind::Ping ? "ping:" : "text:") +
                           event.payload);
        }
    }
    EXPECT_EQ(seen, (std::vector<std::string>{R"(text:{"key":"up"})", "ping:p", "text:abcd"}));
}

TEST(WebSocketReaderTest, UnmaskedFrameFailsWithProtocolError) {
    WebSocketReader reader(512);
    reader.feed(clientFrame(0x81, R"({"key":"up"})", false));
    WebSocketEvent const event = reader.next();
    EXPECT_EQ(event.kind, WebSocketEvent::Kind::Fail);
    EXPECT_EQ(event.code, 1002);
    EXPECT_EQ(event.reason, "unmasked frame");
    EXPECT_EQ(reader.next().kind, WebSocketEvent::Kind::Fail);
}

TEST(WebSocketReaderTest, BadFramesFail) {
    struct Case {
        std::string bytes;
        std::uint16_t code;
    };
    for (Case const& bad :
         {Case{clientFrame(0xC1, "x"), 1002}, Case{clientFrame(0x83, "x"), 1002},
          Case{clientFrame(0x09, "x"), 1002}, Case{clientFrame(0x89, std::string(126, 'p')), 1002},
          Case{clientFrame(0x80, "x"), 1002}, Case{clientFrame(0x82, "x"), 1003},
          Case{clientFrame(0x81, std::string(513, 'x')), 1009}}) {
        WebSocketReader reader(512);
        reader.feed(bad.bytes);
        WebSocketEvent const event = reader.next();
        EXPECT_EQ(event.kind, WebSocketEvent::Kind::Fail) << event.reason;
        EXPECT_EQ(event.code, bad.code) << event.reason;
    }
}

TEST(WebSocketReaderTest, OversizedLengthFailsBeforeThePayloadArrives) {
    WebSocketReader reader(512);
    reader.feed(std::string("\x81\xFF\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10));
    EXPECT_EQ(reader.next().code, 1009);
}

TEST(WebSocketReaderTest, CloseEndsTheStream) {
    WebSocketReader reader(512);
    reader.feed(clientFrame(0x88, std::string("\x03\xE9", 2)) + clientFrame(0x81, "late"));
    WebSocketEvent const event = reader.next();
    EXPECT_EQ(event.kind, WebSocketEvent::Kind::Close);
    EXPECT_EQ(event.code, 1001);
    EXPECT_EQ(reader.next().kind, WebSocketEvent::Kind::Close);
}

}  // namespace
