#include <yxfrontpanel/runtime/vxi11_protocol.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace yxfrontpanel::runtime {
namespace {

/** `body` framed as one fragment, last or not. */
std::string fragment(std::string const& body, bool last) {
    std::string framed = rpcFrame(body);
    if (!last) {
        framed[0] = static_cast<char>(static_cast<unsigned char>(framed[0]) & 0x7F);
    }
    return framed;
}

std::vector<std::string> drain(RpcRecordReader& reader) {
    std::vector<std::string> records;
    while (std::optional<std::string> record = reader.next()) {
        records.push_back(*record);
    }
    return records;
}

TEST(RpcRecordTest, FrameStartsWithTheLastFragmentMarkAndLength) {
    std::string const framed = rpcFrame("abc");
    EXPECT_EQ(framed, std::string("\x80\x00\x00\x03"
                                  "abc",
                                  7));
    auto const mark = rpcRecordMark(0x012345);
    EXPECT_EQ(std::string(mark.data(), mark.size()), std::string("\x80\x01\x23\x45", 4));
}

TEST(RpcRecordTest, ReaderReturnsTwoRecordsOfOneReceive) {
    RpcRecordReader reader(1024);
    ASSERT_TRUE(reader.feed(rpcFrame("first") + rpcFrame("second")));
    EXPECT_EQ(drain(reader), (std::vector<std::string>{"first", "second"}));
}

TEST(RpcRecordTest, ReaderJoinsARecordSplitAcrossReceivesAtEveryByte) {
    std::string const stream = rpcFrame("whole") + rpcFrame("next record");
    for (std::size_t cut = 0; cut <= stream.size(); ++cut) {
        RpcRecordReader reader(1024);
        ASSERT_TRUE(reader.feed(std::string_view(stream).substr(0, cut)));
        std::vector<std::string> records = drain(reader);
        ASSERT_TRUE(reader.feed(std::string_view(stream).substr(cut)));
        for (std::string& record : drain(reader)) {
            records.push_back(record);
        }
        EXPECT_EQ(records, (std::vector<std::string>{"whole", "next record"})) << "cut " << cut;
    }
}

TEST(RpcRecordTest, ReaderJoinsFragmentsUpToTheLastOne) {
    RpcRecordReader reader(1024);
    ASSERT_TRUE(reader.feed(fragment("one ", false) + fragment("two ", false)));
    EXPECT_EQ(reader.next(), std::nullopt);
    ASSERT_TRUE(reader.feed(fragment("three", true) + rpcFrame("alone")));
    EXPECT_EQ(drain(reader), (std::vector<std::string>{"one two three", "alone"}));
}

TEST(RpcRecordTest, ReaderRefusesARecordLongerThanItsLimit) {
    RpcRecordReader reader(8);
    ASSERT_TRUE(reader.feed(fragment("1234", false)));
    EXPECT_FALSE(reader.feed(fragment("56789", true)));
}

}  // namespace
}  // namespace yxfrontpanel::runtime
