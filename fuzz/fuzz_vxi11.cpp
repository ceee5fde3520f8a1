// Fuzz target for the VXI-11 server's request decoding: the input is a TCP byte stream cut into
// RPC records by the record marking, each record decoded (RPC call header, then the XDR
// arguments of the core channel, the abort channel or the portmapper) and answered by a device
// whose instrument echoes every message at once. Checks that every reply is an RPC reply to the
// call's transaction id and that the links stay within their limit; reads and locks never wait.
#include <yxfrontpanel/runtime/vxi11_instrument.h>
#include <yxfrontpanel/runtime/vxi11_protocol.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace {

namespace runtime = yxfrontpanel::runtime;

/** Answers every message with itself. */
class EchoInstrument : public runtime::Vxi11Instrument {
public:
    void execute(std::string message, std::function<void(std::string)> done) override {
        done(std::move(message));
    }
    std::uint8_t statusByte(bool messageAvailable) override {
        return messageAvailable ? 0x14 : 0x04;
    }
};

constexpr std::size_t kMaxLinks = 4;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    runtime::Vxi11Device device([] { return std::make_unique<EchoInstrument>(); }, kMaxLinks,
                                std::chrono::milliseconds{0});
    device.setCorePort(1024);
    runtime::RpcRecordReader reader(std::size_t{64} * 1024);
    if (!reader.feed(std::string_view(reinterpret_cast<char const*>(data), size))) {
        return 0;
    }
    while (std::optional<std::string> record = reader.next()) {
        std::optional<std::string> const reply = device.call(*record, 1);
        if (!reply) {
            continue;
        }
        // xid echoed, message type REPLY, accepted.
        if (reply->size() < 24 || reply->compare(0, 4, *record, 0, 4) != 0 || (*reply)[7] != 1 ||
            (*reply)[11] != 0) {
            std::abort();
        }
        if (device.linkCount() > kMaxLinks) {
            std::abort();
        }
    }
    device.disconnect(1);
    if (device.linkCount() != 0) {
        std::abort();
    }
    return 0;
}
