#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/vxi11_instrument.h>
#include <yxfrontpanel/runtime/vxi11_server.h>

#include <gtest/gtest.h>

#include <cstring>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

#include "remote_harness.h"
#include "scpi_client.h"
#include "vxi11_rpc.h"
#include <arpa/inet.h>
#include <netinet/in.h>
#include <rpc/rpc.h>
// After rpc.h (through vxi11_rpc.h), which it needs.
#include <rpc/pmap_prot.h>

namespace yxfrontpanel::runtime {
namespace {

constexpr long kFlagWaitLock = 1;
constexpr long kFlagEnd = 8;
constexpr long kFlagTermChar = 0x80;
constexpr long kReasonRequestCount = 1;
constexpr long kReasonTermChar = 2;
constexpr long kReasonEnd = 4;

/** Runs the commands at once, or holds them until `runHeld` when `hold` is set. */
struct TestExecutor {
    std::mutex mutex;
    bool hold = false;
    std::deque<std::function<void()>> held;

    bool post(std::function<void()> const& task) {
        {
            std::lock_guard<std::mutex> const lock(mutex);
            if (hold) {
                held.push_back(task);
                return true;
            }
        }
        task();
        return true;
    }
    void runHeld() {
        std::deque<std::function<void()>> tasks;
        {
            std::lock_guard<std::mutex> const lock(mutex);
            tasks.swap(held);
            hold = false;
        }
        for (auto& task : tasks) {
            task();
        }
    }
};

std::string longTrace() {
    std::string trace;
    for (int i = 0; i < 60000; ++i) {
        trace += static_cast<char>('0' + i % 10);
    }
    return trace;
}

class Vxi11ServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        auto table = std::make_shared<scpi::CommandTable>();
        scpi::addCommonCommands(*table, {"Maker", "Model 1", "SN7", "2.0"});
        // A query that runs on the executor's thread (not a reader).
        table->add("MEASure?", [](scpi::Request& request) { request.respond("1.25"); });
        // A response longer than most replies: 60000 digits counting 0 to 9 over and over.
        table->add("TRACe?", [](scpi::Request& request) { request.respond(longTrace()); });
        auto executor = executor_;
        serve(scpiInstruments(
            table, [executor](std::function<void()> const& task) { return executor->post(task); }));
    }

    /** Serves `instruments` on loopback and connects `client_` to the core channel. */
    void serve(Vxi11InstrumentFactory instruments) {
        Vxi11ServerOptions options;
        options.useRpcbind = false;
        options.portmapperPort = 0;
        server_ = std::make_unique<Vxi11Server>(std::move(instruments), options);
        server_->start();
        client_ = connect(DEVICE_CORE, DEVICE_CORE_VERSION, server_->corePort());
        ASSERT_NE(client_, nullptr);
    }

    void TearDown() override {
        if (client_ != nullptr) {
            clnt_destroy(client_);
        }
        server_->stop();
    }

    static CLIENT* connect(unsigned long program, unsigned long version, std::uint16_t port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int socket = RPC_ANYSOCK;
        return clnttcp_create(&address, program, version, &socket, 0, 0);
    }

    template <typename Args, typename Result>
    Result call(unsigned long procedure, xdrproc_t encode, Args args, xdrproc_t decode,
                CLIENT* client = nullptr) {
        Result result{};
        timeval const timeout{5, 0};
        enum clnt_stat const status = clnt_call(client != nullptr ? client : client_, procedure,
                                                encode, reinterpret_cast<char*>(&args), decode,
                                                reinterpret_cast<char*>(&result), timeout);
        EXPECT_EQ(status, RPC_SUCCESS);
        return result;
    }

    long createLink(CLIENT* client = nullptr) {
        Create_LinkParms parms{};
        parms.clientId = 1;
        parms.device = const_cast<char*>("inst0");
        auto const result = call<Create_LinkParms, Create_LinkResp>(
            create_link, reinterpret_cast<xdrproc_t>(xdr_Create_LinkParms), parms,
            reinterpret_cast<xdrproc_t>(xdr_Create_LinkResp), client);
        EXPECT_EQ(result.error, 0);
        return result.lid;
    }

    long write(long lid, std::string const& data, long flags = kFlagEnd) {
        Device_WriteParms parms{};
        parms.lid = lid;
        parms.io_timeout = 1000;
        parms.flags = flags;
        parms.data.data_len = static_cast<u_int>(data.size());
        parms.data.data_val = const_cast<char*>(data.data());
        auto const result = call<Device_WriteParms, Device_WriteResp>(
            device_write, reinterpret_cast<xdrproc_t>(xdr_Device_WriteParms), parms,
            reinterpret_cast<xdrproc_t>(xdr_Device_WriteResp));
        EXPECT_EQ(result.size, data.size());
        return result.error;
    }

    struct Read {
        long error = 0;
        long reason = 0;
        std::string data;
    };

    Read read(long lid, unsigned long size = 1024, unsigned long timeout = 1000, long flags = 0,
              char termChar = '\n') {
        Device_ReadParms parms{};
        parms.lid = lid;
        parms.requestSize = size;
        parms.io_timeout = timeout;
        parms.flags = flags;
        parms.termChar = termChar;
        auto result = call<Device_ReadParms, Device_ReadResp>(
            device_read, reinterpret_cast<xdrproc_t>(xdr_Device_ReadParms), parms,
            reinterpret_cast<xdrproc_t>(xdr_Device_ReadResp));
        Read read{result.error, result.reason,
                  std::string(result.data.data_val, result.data.data_len)};
        xdr_free(reinterpret_cast<xdrproc_t>(xdr_Device_ReadResp),
                 reinterpret_cast<char*>(&result));
        return read;
    }

    long generic(unsigned long procedure, long lid) {
        Device_GenericParms parms{};
        parms.lid = lid;
        parms.io_timeout = 1000;
        return call<Device_GenericParms, Device_Error>(
                   procedure, reinterpret_cast<xdrproc_t>(xdr_Device_GenericParms), parms,
                   reinterpret_cast<xdrproc_t>(xdr_Device_Error))
            .error;
    }

    int readStb(long lid) {
        Device_GenericParms parms{};
        parms.lid = lid;
        auto const result = call<Device_GenericParms, Device_ReadStbResp>(
            device_readstb, reinterpret_cast<xdrproc_t>(xdr_Device_GenericParms), parms,
            reinterpret_cast<xdrproc_t>(xdr_Device_ReadStbResp));
        EXPECT_EQ(result.error, 0);
        return result.stb;
    }

    long lock(long lid, CLIENT* client, long flags = 0, unsigned long timeout = 0) {
        Device_LockParms parms{lid, flags, timeout};
        return call<Device_LockParms, Device_Error>(
                   device_lock, reinterpret_cast<xdrproc_t>(xdr_Device_LockParms), parms,
                   reinterpret_cast<xdrproc_t>(xdr_Device_Error), client)
            .error;
    }

    long byLink(unsigned long procedure, long lid, CLIENT* client = nullptr) {
        return call<Device_Link, Device_Error>(
                   procedure, reinterpret_cast<xdrproc_t>(xdr_Device_Link), lid,
                   reinterpret_cast<xdrproc_t>(xdr_Device_Error), client)
            .error;
    }

    std::shared_ptr<TestExecutor> executor_ = std::make_shared<TestExecutor>();
    std::unique_ptr<Vxi11Server> server_;
    CLIENT* client_ = nullptr;
};

TEST_F(Vxi11ServerTest, QueryAnswersWithEndWhenReadWhole) {
    long const lid = createLink();
    EXPECT_EQ(server_->linkCount(), 1U);
    EXPECT_EQ(write(lid, "*IDN?\n"), 0);
    Read const answer = read(lid);
    EXPECT_EQ(answer.error, 0);
    EXPECT_EQ(answer.reason, kReasonEnd);
    EXPECT_EQ(answer.data, "Maker,Model 1,SN7,2.0\n");
    EXPECT_EQ(byLink(destroy_link, lid), 0);
    EXPECT_EQ(server_->linkCount(), 0U);
    EXPECT_EQ(byLink(destroy_link, lid), 4);  // invalid link identifier
}

TEST_F(Vxi11ServerTest, LongResponseComesWholeInOneRead) {
    long const lid = createLink();
    EXPECT_EQ(write(lid, "TRAC?"), 0);
    Read const answer = read(lid, 65536);
    EXPECT_EQ(answer.error, 0);
    EXPECT_EQ(answer.reason, kReasonEnd);
    EXPECT_EQ(answer.data, longTrace() + "\n");
}

TEST_F(Vxi11ServerTest, CallsWithUnixCredentialsAreAnswered) {
    // AUTH_UNIX: a credential body of 36 bytes (stamp, machine name, uid, gid, two groups).
    AUTH* const none = client_->cl_auth;
    gid_t groups[] = {5, 6};
    client_->cl_auth = authunix_create(const_cast<char*>("host1"), 1000, 1000, 2, groups);
    ASSERT_NE(client_->cl_auth, nullptr);
    long const lid = createLink();
    EXPECT_EQ(write(lid, "*IDN?"), 0);
    EXPECT_EQ(read(lid).data, "Maker,Model 1,SN7,2.0\n");
    auth_destroy(client_->cl_auth);
    client_->cl_auth = none;
}

TEST_F(Vxi11ServerTest, WriteWithoutEndWaitsForTheRestOfTheMessage) {
    long const lid = createLink();
    EXPECT_EQ(write(lid, "*ID", 0), 0);
    EXPECT_EQ(readStb(lid) & 0x10, 0);
    EXPECT_EQ(write(lid, "N?"), 0);
    EXPECT_EQ(readStb(lid) & 0x10, 0x10);  // MAV
    EXPECT_EQ(read(lid).data, "Maker,Model 1,SN7,2.0\n");
    EXPECT_EQ(readStb(lid) & 0x10, 0);
}

TEST_F(Vxi11ServerTest, ReadStbReportsTheLinksStatusModel) {
    long const lid = createLink();
    write(lid, "*ESE 32");
    write(lid, "BOGUS");
    EXPECT_EQ(readStb(lid), 0x20);  // ESB: the command error is enabled
    write(lid, "*SRE 32");
    EXPECT_EQ(readStb(lid), 0x60);  // and MSS/RQS through the service request enable
    write(lid, "*CLS;*SRE 16");
    EXPECT_EQ(readStb(lid), 0);
    write(lid, "*IDN?");  // written, not read: MAV, and MSS since MAV is enabled
    EXPECT_EQ(readStb(lid), 0x50);
    EXPECT_EQ(generic(device_clear, lid), 0);
    EXPECT_EQ(readStb(lid), 0) << "device clear drops the unread response";
    write(lid, "*SRE?");
    EXPECT_EQ(read(lid).data, "16\n") << "device clear keeps the enables";
}

TEST_F(Vxi11ServerTest, ReadStbOfOneLinkIgnoresTheOthers) {
    long const lid = createLink();
    long const other = createLink();
    write(other, "*ESE 255;BOGUS");
    write(other, "*IDN?");
    EXPECT_EQ(readStb(other), 0x30);
    EXPECT_EQ(readStb(lid), 0);
}

TEST_F(Vxi11ServerTest, ReadStopsAtRequestCountAndTermChar) {
    long const lid = createLink();
    write(lid, "*IDN?;*IDN?");
    Read const first = read(lid, 5);
    EXPECT_EQ(first.data, "Maker");
    EXPECT_EQ(first.reason, kReasonRequestCount);
    Read const second = read(lid, 1024, 1000, kFlagTermChar, ';');
    EXPECT_EQ(second.data, ",Model 1,SN7,2.0;");
    EXPECT_EQ(second.reason, kReasonTermChar);
    Read const rest = read(lid);
    EXPECT_EQ(rest.data, "Maker,Model 1,SN7,2.0\n");
    EXPECT_EQ(rest.reason, kReasonEnd);
}

TEST_F(Vxi11ServerTest, DeviceClearDropsAPendingQuery) {
    long const lid = createLink();
    executor_->hold = true;
    write(lid, "MEAS?");
    Read const timedOut = read(lid, 1024, 20);
    EXPECT_EQ(timedOut.error, 15);  // I/O timeout
    EXPECT_EQ(generic(device_clear, lid), 0);
    executor_->runHeld();
    EXPECT_EQ(readStb(lid) & 0x10, 0);
    write(lid, "*IDN?");
    EXPECT_EQ(read(lid).data, "Maker,Model 1,SN7,2.0\n");
}

TEST_F(Vxi11ServerTest, ReaderWaitsBehindTheLinksRunningMessage) {
    long const lid = createLink();
    executor_->hold = true;
    write(lid, "MEAS?");
    write(lid, "*IDN?");
    EXPECT_EQ(readStb(lid) & 0x10, 0);
    executor_->runHeld();
    EXPECT_EQ(read(lid).data, "1.25\nMaker,Model 1,SN7,2.0\n");
}

TEST_F(Vxi11ServerTest, ErrorQueueBelongsToTheLink) {
    long const lid = createLink();
    long const other = createLink();
    write(lid, "BOGUS");
    write(other, "SYST:ERR?");
    EXPECT_EQ(read(other).data, "0,\"No error\"\n");
    write(lid, "SYST:ERR?");
    EXPECT_EQ(read(lid).data, "-113,\"Undefined header;BOGUS\"\n");
}

TEST_F(Vxi11ServerTest, LockKeepsOtherLinksOutUntilUnlocked) {
    long const mine = createLink();
    CLIENT* other = connect(DEVICE_CORE, DEVICE_CORE_VERSION, server_->corePort());
    ASSERT_NE(other, nullptr);
    long const theirs = createLink(other);
    EXPECT_EQ(lock(mine, client_), 0);
    EXPECT_EQ(lock(theirs, other), 11);                     // locked by another link
    EXPECT_EQ(lock(theirs, other, kFlagWaitLock, 10), 11);  // still, after the lock timeout
    EXPECT_EQ(byLink(device_unlock, theirs, other), 12);    // no lock held by this link
    EXPECT_EQ(byLink(device_unlock, mine), 0);
    EXPECT_EQ(lock(theirs, other), 0);
    EXPECT_EQ(byLink(device_unlock, theirs, other), 0);
    clnt_destroy(other);
}

TEST_F(Vxi11ServerTest, RefusesLinksBeyondTheLimitUntilOneCloses) {
    std::vector<long> links;
    for (std::size_t i = 0; i < Vxi11ServerOptions{}.maxLinks; ++i) {
        links.push_back(createLink());
    }
    Create_LinkParms parms{};
    parms.device = const_cast<char*>("inst0");
    auto const refused = call<Create_LinkParms, Create_LinkResp>(
        create_link, reinterpret_cast<xdrproc_t>(xdr_Create_LinkParms), parms,
        reinterpret_cast<xdrproc_t>(xdr_Create_LinkResp));
    EXPECT_EQ(refused.error, 9);  // out of resources
    EXPECT_EQ(byLink(destroy_link, links.front()), 0);
    EXPECT_NE(createLink(), 0);
}

TEST_F(Vxi11ServerTest, TriggerIsRefusedWithoutATriggerHook) {
    long const lid = createLink();
    // The SCPI sessions have no trigger hook of their own.
    EXPECT_EQ(generic(device_trigger, lid), 8);  // operation not supported
}

TEST_F(Vxi11ServerTest, PortmapperAnswersGetPortOverTcpAndUdp) {
    ASSERT_TRUE(server_->portmapperPort().has_value());
    std::uint16_t const port = *server_->portmapperPort();
    pmap mapping{DEVICE_CORE, DEVICE_CORE_VERSION, IPPROTO_TCP, 0};
    CLIENT* tcp = connect(PMAPPROG, PMAPVERS, port);
    ASSERT_NE(tcp, nullptr);
    u_long answer = call<pmap, u_long>(PMAPPROC_GETPORT, reinterpret_cast<xdrproc_t>(xdr_pmap),
                                       mapping, reinterpret_cast<xdrproc_t>(xdr_u_long), tcp);
    EXPECT_EQ(answer, server_->corePort());
    pmap unknown{0x20000001, 1, IPPROTO_TCP, 0};
    answer = call<pmap, u_long>(PMAPPROC_GETPORT, reinterpret_cast<xdrproc_t>(xdr_pmap), unknown,
                                reinterpret_cast<xdrproc_t>(xdr_u_long), tcp);
    EXPECT_EQ(answer, 0U);
    clnt_destroy(tcp);

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int socket = RPC_ANYSOCK;
    CLIENT* udp = clntudp_create(&address, PMAPPROG, PMAPVERS, timeval{1, 0}, &socket);
    ASSERT_NE(udp, nullptr);
    answer = call<pmap, u_long>(PMAPPROC_GETPORT, reinterpret_cast<xdrproc_t>(xdr_pmap), mapping,
                                reinterpret_cast<xdrproc_t>(xdr_u_long), udp);
    EXPECT_EQ(answer, server_->corePort());
    clnt_destroy(udp);
}

}  // namespace
}  // namespace yxfrontpanel::runtime

namespace yxfrontpanel::runtime {
namespace {

/** A remote control with its raw command server and a VXI-11 server on its command table, as
 *  an application serves both. */
class Vxi11RemoteControlTest : public Vxi11ServerTest {
protected:
    void SetUp() override {
        harness_.start();
        // The table lives as long as the remote control, which outlives the server.
        std::shared_ptr<scpi::CommandTable const> const table(std::shared_ptr<void>{},
                                                              &harness_.remote->commands());
        Panel* const panel = &harness_.panel;
        serve(scpiInstruments(
            table, [panel](std::function<void()> task) { return panel->post(std::move(task)); }));
    }

    /** One query over the link, without its newline. */
    std::string linkQuery(long lid, std::string const& query) {
        EXPECT_EQ(write(lid, query), 0);
        std::string answer = read(lid).data;
        if (!answer.empty() && answer.back() == '\n') {
            answer.pop_back();
        }
        return answer;
    }

    yxfp_test::RemoteHarness harness_;
};

TEST_F(Vxi11RemoteControlTest, ConditionReachesEveryClientThroughItsOwnFilters) {
    yxfp_test::ScpiClient rising(harness_.tcpAddress());
    yxfp_test::ScpiClient falling(harness_.unixAddress());
    long const lid = createLink();
    // Answered once the server accepted the connection and opened its session.
    ASSERT_EQ(rising.query("STAT:QUES:ENAB 4;*SRE 8;*SRE?"), "8");
    ASSERT_EQ(falling.query("STAT:QUES:PTR 0;NTR 4;NTR?"), "4");
    ASSERT_EQ(linkQuery(lid, "STAT:QUES:ENAB 4;ENAB?"), "4");

    harness_.remote->setCondition(scpi::StatusModel::Set::Questionable, 0x4, 0x4);
    EXPECT_EQ(rising.query("STAT:QUES:COND?"), "4");
    EXPECT_EQ(rising.query("*STB?"), "72");  // QUES summary and MSS
    EXPECT_EQ(rising.query("STAT:QUES?"), "4");
    EXPECT_EQ(rising.query("STAT:QUES?"), "0") << "the event is cleared when read";
    EXPECT_EQ(falling.query("STAT:QUES:COND?"), "4");
    EXPECT_EQ(falling.query("STAT:QUES?"), "0") << "a rise does not pass its filter";
    EXPECT_EQ(readStb(lid), 0x08);
    EXPECT_EQ(linkQuery(lid, "STAT:QUES:COND?"), "4");
    EXPECT_EQ(linkQuery(lid, "STAT:QUES?"), "4");

    harness_.remote->setCondition(scpi::StatusModel::Set::Questionable, 0x4, 0);
    EXPECT_EQ(falling.query("STAT:QUES?"), "4") << "the fall passes its filter";
    EXPECT_EQ(rising.query("STAT:QUES:COND?"), "0");
    EXPECT_EQ(rising.query("STAT:QUES?"), "0");
    EXPECT_EQ(linkQuery(lid, "STAT:QUES:COND?;:STAT:QUES?"), "0;0");
}

TEST_F(Vxi11RemoteControlTest, ConditionBitsOutsideTheMaskStay) {
    yxfp_test::ScpiClient client(harness_.tcpAddress());
    ASSERT_EQ(client.query("STAT:OPER:COND?"), "0");
    harness_.remote->setCondition(scpi::StatusModel::Set::Operation, 0x1, 0xffff);
    harness_.remote->setCondition(scpi::StatusModel::Set::Operation, 0x110, 0x100);
    EXPECT_EQ(client.query("STAT:OPER:COND?"), "257");
    EXPECT_EQ(client.query("STAT:QUES:COND?"), "0");
}

TEST_F(Vxi11RemoteControlTest, LaterClientsStartWithTheConditionAndNoEvent) {
    harness_.remote->setCondition(scpi::StatusModel::Set::Operation, 0x10, 0x10);
    yxfp_test::ScpiClient client(harness_.tcpAddress());
    EXPECT_EQ(client.query("STAT:OPER:COND?"), "16");
    EXPECT_EQ(client.query("STAT:OPER?"), "0");
    long const lid = createLink();
    EXPECT_EQ(linkQuery(lid, "STAT:OPER:COND?;:STAT:OPER?"), "16;0");
}

TEST_F(Vxi11RemoteControlTest, ReportedErrorReachesEveryClientsQueue) {
    yxfp_test::ScpiClient first(harness_.tcpAddress());
    yxfp_test::ScpiClient second(harness_.unixAddress());
    long const lid = createLink();
    ASSERT_EQ(first.query("*ESE 8;*ESE?"), "8");
    ASSERT_EQ(second.query("*ESR?"), "0");
    ASSERT_EQ(linkQuery(lid, "*ESE 8;*ESE?"), "8");

    harness_.remote->reportError(-315, "settings.ini: No space left on device");
    std::string const error =
        "-315,\"Configuration memory lost;settings.ini: No space left on device\"";
    EXPECT_EQ(first.query("*STB?"), "32");  // ESB: device-specific error enabled
    EXPECT_EQ(first.query("SYST:ERR?"), error);
    EXPECT_EQ(first.query("*ESR?"), "8");
    EXPECT_EQ(second.query("SYST:ERR?"), error);
    EXPECT_EQ(second.query("*ESR?"), "8");
    EXPECT_EQ(readStb(lid), 0x20);
    EXPECT_EQ(linkQuery(lid, "SYST:ERR?;*ESR?"), error + ";8");
    EXPECT_EQ(first.query("SYST:ERR:COUN?"), "0") << "one entry per client";
}

TEST(Vxi11ServerRegistrationTest, ServesTheCorePortWhenThePortmapperPortIsTaken) {
    // Another socket holds the portmapper port (as port 111 is out of reach without root).
    int const holder = ::socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_GE(holder, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    ASSERT_EQ(::bind(holder, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(::listen(holder, 1), 0);
    socklen_t length = sizeof address;
    ::getsockname(holder, reinterpret_cast<sockaddr*>(&address), &length);
    Vxi11ServerOptions options;
    options.useRpcbind = false;
    options.portmapperPort = ntohs(address.sin_port);
    auto table = std::make_shared<scpi::CommandTable>();
    scpi::addCommonCommands(*table, {});
    Vxi11Server server(scpiInstruments(table,
                                       [](std::function<void()> const& task) {
                                           task();
                                           return true;
                                       }),
                       options);
    EXPECT_FALSE(server.portmapperPort().has_value());
    EXPECT_EQ(server.registration(),
              "no rpcbind, and portmapper port " + std::to_string(ntohs(address.sin_port)) +
                  " cannot be bound (Address already in use); clients must name core port " +
                  std::to_string(server.corePort()));
    EXPECT_NE(server.corePort(), 0);
    ::close(holder);
}

TEST(Vxi11ServerRegistrationTest, RefusesAHostThatIsNotAnIpv4Address) {
    Vxi11ServerOptions options;
    options.host = "not-an-address";
    auto table = std::make_shared<scpi::CommandTable>();
    EXPECT_THROW(
        Vxi11Server(scpiInstruments(table, [](std::function<void()> const&) { return false; }),
                    options),
        std::invalid_argument);
}

}  // namespace
}  // namespace yxfrontpanel::runtime
