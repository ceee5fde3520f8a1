#include <frontpanelhw/display_types.h>
#include <frontpanelhw/hd44780_display.h>
#include <frontpanelhw/hd44780_gpio.h>
#include <frontpanelhw/hd44780_i2c.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using frontpanelhw::ExpanderBusOptions;
using frontpanelhw::ExpanderHd44780Bus;
using frontpanelhw::Hd44780BusError;
using frontpanelhw::Hd44780Geometry;
using frontpanelhw::drawing::DisplayBuffer;

/** An expander port that keeps every transfer. */
class RecordingPort : public frontpanelhw::IExpanderPort {
public:
    explicit RecordingPort(std::vector<std::vector<std::uint8_t>>& transfers)
        : transfers_(transfers) {}
    void write(std::uint8_t const* bytes, std::size_t size) override {
        transfers_.emplace_back(bytes, bytes + size);
    }

private:
    std::vector<std::vector<std::uint8_t>>& transfers_;
};

/** A temporary directory removed with everything in it. */
class TempDir {
public:
    TempDir() {
        std::string pattern = ::testing::TempDir() + "hd44780XXXXXX";
        path_ = ::mkdtemp(pattern.data());
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(TempDir const&) = delete;
    TempDir& operator=(TempDir const&) = delete;
    std::string file(char const* name) const { return path_ + "/" + name; }

private:
    std::string path_;
};

std::string messageOf(std::string const& path, std::uint8_t address = 0x27) {
    try {
        (void)frontpanelhw::openExpanderPort(path, address);
    } catch (Hd44780BusError const& error) {
        return error.what();
    }
    return "no error";
}

DisplayBuffer sampleFrame() {
    DisplayBuffer frame(16, 2);
    frame.setLineContent(0, 0, u"Voltage \x1E");
    frame.setLineContent(1, 0, u"  12.50 V");
    return frame;
}

TEST(ExpanderHd44780BusTest, UsualBackpackPinMap) {
    std::vector<std::vector<std::uint8_t>> transfers;
    ExpanderHd44780Bus bus(std::make_unique<RecordingPort>(transfers), ExpanderBusOptions{});
    // RS P0, E P2, backlight P3, D4-D7 on P4-P7: data nibble 0xA with E high.
    EXPECT_EQ(bus.expanderByte(true, true, 0xA), 0xAD);
    EXPECT_EQ(bus.expanderByte(false, false, 0x3), 0x38);
    bus.writeNibble(true, 0x5);
    EXPECT_TRUE(transfers.empty()) << "queued until flush";
    bus.flush();
    EXPECT_EQ(transfers, (std::vector<std::vector<std::uint8_t>>{{0x5D, 0x59}}));
}

TEST(ExpanderHd44780BusTest, PinMapAndBacklightPolarityAreConfigurable) {
    std::vector<std::vector<std::uint8_t>> transfers;
    ExpanderBusOptions options;
    options.pins = {7, 6, 5, 4, 0, 1, 2, 3, false};  // a reversed backpack, backlight active low
    ExpanderHd44780Bus bus(std::make_unique<RecordingPort>(transfers), options);
    EXPECT_EQ(bus.expanderByte(true, true, 0x1), 0x80 | 0x20 | 0x01);
    EXPECT_TRUE(bus.setBacklight(false));
    EXPECT_EQ(transfers.back(), std::vector<std::uint8_t>{0x10}) << "low level switches it off";
}

TEST(ExpanderHd44780BusTest, RefusesBadOptions) {
    std::vector<std::vector<std::uint8_t>> transfers;
    ExpanderBusOptions twice;
    twice.pins.d7 = twice.pins.rs;
    EXPECT_THROW(ExpanderHd44780Bus(std::make_unique<RecordingPort>(transfers), twice),
                 std::invalid_argument);
    ExpanderBusOptions pastSeven;
    pastSeven.pins.backlight = 8;
    EXPECT_THROW(ExpanderHd44780Bus(std::make_unique<RecordingPort>(transfers), pastSeven),
                 std::invalid_argument);
    ExpanderBusOptions tiny;
    tiny.maxTransferBytes = 1;
    EXPECT_THROW(ExpanderHd44780Bus(std::make_unique<RecordingPort>(transfers), tiny),
                 std::invalid_argument);
}

// Several nibbles go out in one transfer, never more than the configured size.
TEST(ExpanderHd44780BusTest, BatchesNibblesIntoTransfersOfBoundedSize) {
    std::vector<std::vector<std::uint8_t>> transfers;
    ExpanderBusOptions options;
    options.maxTransferBytes = 16;
    frontpanelhw::Hd44780Options displayOptions;
    displayOptions.wait = [](std::chrono::nanoseconds) {};
    frontpanelhw::Hd44780Display display(
        std::make_unique<ExpanderHd44780Bus>(std::make_unique<RecordingPort>(transfers), options),
        Hd44780Geometry::standard(16, 2), displayOptions);
    ASSERT_TRUE(display.draw(sampleFrame()));
    std::size_t total = 0;
    for (auto const& transfer : transfers) {
        EXPECT_LE(transfer.size(), 16U);
        EXPECT_EQ(transfer.size() % 2, 0U);
        total += transfer.size();
    }
    EXPECT_LT(transfers.size() * 8, total) << "transfers hold several nibbles";
    transfers.clear();
    auto frame = sampleFrame();
    frame.setLineContent(1, 2, u"13");
    ASSERT_TRUE(display.draw(frame));
    EXPECT_EQ(transfers.size(), 1U) << "a small change is one transfer";
}

TEST(ExpanderPortTest, AMissingDeviceGivesOneErrorNamingThePathAndTheReason) {
    std::string const message = messageOf("/dev/i2c-97");
    EXPECT_NE(message.find("/dev/i2c-97"), std::string::npos) << message;
    EXPECT_NE(message.find("No such file or directory"), std::string::npos) << message;
}

TEST(ExpanderPortTest, ACharacterDeviceThatIsNoI2cAdapterIsRefused) {
    std::string const message = messageOf("/dev/null");
    EXPECT_NE(message.find("/dev/null"), std::string::npos) << message;
    EXPECT_NE(message.find("0x27"), std::string::npos) << message;
}

TEST(ExpanderPortTest, ADirectoryIsRefused) {
    TempDir const dir;
    std::string const message = messageOf(dir.file(""));
    EXPECT_NE(message.find("neither an I2C device"), std::string::npos) << message;
}

// A regular file receives exactly the expander bytes the module would get.
TEST(ExpanderPortTest, ARegularFileCapturesTheRawExpanderBytes) {
    TempDir const dir;
    std::string const path = dir.file("capture.bin");
    std::ofstream(path).close();
    auto const drawOnto = [](std::unique_ptr<frontpanelhw::IExpanderPort> port) {
        frontpanelhw::Hd44780Options options;
        options.wait = [](std::chrono::nanoseconds) {};
        frontpanelhw::Hd44780Display display(
            std::make_unique<ExpanderHd44780Bus>(std::move(port), ExpanderBusOptions{}),
            Hd44780Geometry::standard(16, 2), options);
        EXPECT_TRUE(display.draw(sampleFrame()));
    };
    drawOnto(frontpanelhw::openExpanderPort(path, 0x27));

    std::vector<std::vector<std::uint8_t>> transfers;
    drawOnto(std::make_unique<RecordingPort>(transfers));
    std::vector<std::uint8_t> expected;
    for (auto const& transfer : transfers) {
        expected.insert(expected.end(), transfer.begin(), transfer.end());
    }

    std::ifstream file(path, std::ios::binary);
    std::vector<std::uint8_t> const captured{std::istreambuf_iterator<char>(file),
                                             std::istreambuf_iterator<char>()};
    EXPECT_EQ(captured, expected);
    EXPECT_GT(captured.size(), 40U);
}

TEST(ExpanderPortTest, AFifoWithoutReaderIsRefusedAtOnce) {
    TempDir const dir;
    std::string const path = dir.file("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    std::string const message = messageOf(path);
    EXPECT_NE(message.find(path), std::string::npos) << message;
    EXPECT_NE(message.find("no process reads"), std::string::npos) << message;
}

TEST(ExpanderPortTest, AFifoCarriesTheBytesToItsReader) {
    TempDir const dir;
    std::string const path = dir.file("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    int const reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    auto port = frontpanelhw::openExpanderPort(path, 0x27);
    std::uint8_t const bytes[] = {0x3C, 0x38, 0x2C};
    port->write(bytes, sizeof bytes);
    std::uint8_t received[8] = {};
    EXPECT_EQ(::read(reader, received, sizeof received), 3);
    EXPECT_EQ(received[0], 0x3C);
    EXPECT_EQ(received[2], 0x2C);
    port.reset();
    ::close(reader);
}

// The reader of a capture FIFO goes away: the write fails with a message, the process gets no
// SIGPIPE (its default action would end it), and once a reader is back the port writes again.
TEST(ExpanderPortTest, AFifoWhoseReaderLeftFailsWithoutSigpipeAndWorksWhenItIsBack) {
    struct DefaultSigpipe {
        DefaultSigpipe() { previous = std::signal(SIGPIPE, SIG_DFL); }
        ~DefaultSigpipe() { std::signal(SIGPIPE, previous); }
        void (*previous)(int);
    } const defaultAction;
    TempDir const dir;
    std::string const path = dir.file("fifo");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    int reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    auto port = frontpanelhw::openExpanderPort(path, 0x27);
    std::uint8_t const bytes[] = {0x3C, 0x38};
    port->write(bytes, sizeof bytes);
    ::close(reader);

    try {
        port->write(bytes, sizeof bytes);
        ADD_FAILURE() << "writing without a reader succeeded";
    } catch (frontpanelhw::Hd44780BusError const& error) {
        EXPECT_NE(std::string(error.what()).find("reader went away"), std::string::npos)
            << error.what();
    }
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0) << "a SIGPIPE is left pending";
    EXPECT_THROW(port->write(bytes, sizeof bytes), frontpanelhw::Hd44780BusError)
        << "still no reader";

    reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    port->write(bytes, sizeof bytes);
    std::uint8_t received[8] = {};
    EXPECT_EQ(::read(reader, received, sizeof received), 2);
    EXPECT_EQ(received[1], 0x38);
    port.reset();
    ::close(reader);
}

}  // namespace
