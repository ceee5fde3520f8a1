#pragma once

#include <yxfrontpanel/runtime/export.h>
#include <yxfrontpanel/runtime/instrument_identity.h>
#include <yxfrontpanel/runtime/panel.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace yxfrontpanel::runtime {

/** Where and how a WebPanelServer serves. */
struct WebPanelOptions {
    /** The address to listen on: loopback unless another one is named. */
    std::string address = "127.0.0.1";
    /** The TCP port; 0 picks a free one (see `WebPanelServer::port`). */
    std::uint16_t port = 8080;
    /** When not empty, only pages that present it may press keys; every other page is a
     *  read-only viewer. A page presents it in the WebSocket's first message
     *  (`{"token":"..."}`, what the served page does when opened as `/?token=...`) or in the
     *  opening handshake (`Authorization: Bearer ...`, or `?token=` on the socket's URL). At
     *  most 256 bytes; longer ones are refused. When empty, every page may press keys; it must
     *  not be empty when `address` is not a loopback address. */
    std::string accessToken;
    /** Most pages connected at once; more are refused. */
    unsigned maxViewers = 8;
    /** Further host names the panel answers to (the `Host` a browser sends, without the port),
     *  besides the listening address, `localhost`, `127.0.0.1` and `[::1]`. Requests naming
     *  any other host are refused (421), which keeps other sites out through DNS rebinding. */
    std::vector<std::string> hostNames;
    /** A page that has not taken a frame for this long (by the panel's clock) while a newer one
     *  waits is dropped; the other pages never wait for it. */
    std::chrono::milliseconds stalledViewerTimeout{10000};
    /** Who the instrument is, for the LXI identification document at `/lxi/identification`:
     *  give it the value the remote channels answer `*IDN?` with
     *  (`RemoteControlOptions::identity`). Without one that path answers 404. */
    std::optional<InstrumentIdentity> identity;
    /** The VISA resource strings of the instrument's other interfaces, listed in the LXI
     *  identification after the web panel's own address: `TCPIP::HOST::PORT::SOCKET` for the
     *  raw SCPI socket, `TCPIP::HOST::inst0::INSTR` for VXI-11 (only those that are serving). */
    std::vector<std::string> instrumentAddresses;
    /** The current screen as a PNG file, called on the panel's thread for `/screenshot.png`:
     *  the provider `RemoteControlOptions::screenshotPng` gets. When empty that path answers
     *  501 (the build has no PNG support). */
    std::function<std::string()> screenshotPng;
};

/** A remote front panel in the browser: serves one self-contained page at `/` (with its style
 *  sheet and script), the current screen as a PNG at `/screenshot.png`, the LXI identification
 *  at `/lxi/identification` and, over a WebSocket at `/panel` on the same port, pushes every frame
 * the panel draws to every open page and takes key presses from pages that may press keys (they go
 * to the panel through `pressKey`, exactly like a key source's). A page that reads slowly gets only
 * the newest frame when it can take one; it never blocks the panel. Requests whose Host is not one
 * of the panel's and WebSocket connections whose Origin names another host are refused.
 *
 *  The server runs its own thread; frames are encoded on the panel's thread. Construct and
 *  destroy it on the thread that configures the panel, before `run` or while it runs; it must
 *  be destroyed before the panel. */
class YXFP_RUNTIME_EXPORT WebPanelServer {
public:
    /** Starts serving `panel` at once.
     *  @throws std::invalid_argument when `address` is not a loopback address and no access
     *          token is set.
     *  @throws std::runtime_error naming the address and port when it cannot listen there. */
    explicit WebPanelServer(Panel& panel, WebPanelOptions options = {});
    /** Closes every connection and stops the server's thread. */
    ~WebPanelServer();
    WebPanelServer(WebPanelServer const&) = delete;
    WebPanelServer& operator=(WebPanelServer const&) = delete;

    /** The port it listens on (the chosen one when the options asked for 0). */
    std::uint16_t port() const;
    /** Pages connected now. Any thread. */
    unsigned viewerCount() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace yxfrontpanel::runtime
