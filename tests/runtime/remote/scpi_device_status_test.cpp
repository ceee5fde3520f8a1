#include <yxfrontpanel/runtime/scpi_commands.h>
#include <yxfrontpanel/runtime/scpi_device_status.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

namespace {

using namespace yxfrontpanel::runtime::scpi;
using Set = StatusModel::Set;

std::uint16_t condition(Session& session, Set set) {
    return session.status.with(set, [](StatusRegister& r) { return r.condition; });
}

std::uint16_t event(Session& session, Set set) {
    return session.status.with(set, [](StatusRegister& r) { return r.event; });
}

TEST(DeviceStatusTest, ConditionPassesEachSessionsOwnFilters) {
    auto device = std::make_shared<DeviceStatus>();
    Session rising(device);
    Session falling(device);
    falling.status.with(Set::Questionable, [](StatusRegister& r) {
        r.positiveTransition = 0;
        r.negativeTransition = 0x7fff;
    });
    device->setCondition(Set::Questionable, 0x0003, 0x0001);
    EXPECT_EQ(condition(rising, Set::Questionable), 0x0001);
    EXPECT_EQ(condition(falling, Set::Questionable), 0x0001);
    EXPECT_EQ(event(rising, Set::Questionable), 0x0001);
    EXPECT_EQ(event(falling, Set::Questionable), 0);
    device->setCondition(Set::Questionable, 0x0001, 0);
    EXPECT_EQ(event(falling, Set::Questionable), 0x0001);
    EXPECT_EQ(condition(rising, Set::Operation), 0) << "the other set is untouched";
}

TEST(DeviceStatusTest, MaskLeavesASessionsOwnBitsAlone) {
    auto device = std::make_shared<DeviceStatus>();
    Session session(device);
    session.status.setCondition(Set::Operation, 0x0100);  // the session's own bit
    device->setCondition(Set::Operation, 0x0010, 0xffff);
    EXPECT_EQ(condition(session, Set::Operation), 0x0110);
    EXPECT_EQ(device->condition(Set::Operation), 0x0010);
}

TEST(DeviceStatusTest, ALaterSessionStartsWithTheConditionAndNoEvent) {
    auto device = std::make_shared<DeviceStatus>();
    device->setCondition(Set::Operation, 0xffff, 0xffff);
    Session session(device);
    EXPECT_EQ(condition(session, Set::Operation), 0x7fff) << "bit 15 is never set";
    EXPECT_EQ(event(session, Set::Operation), 0);
}

TEST(DeviceStatusTest, ErrorsReachOnlyAttachedSessions) {
    auto device = std::make_shared<DeviceStatus>();
    Session alone;
    auto gone = std::make_unique<Session>(device);
    Session attached(device);
    gone.reset();  // detached by its destructor: no report reaches freed memory
    device->reportError(ErrorEntry{ErrorCode::ConfigurationMemoryLost, "disk full"});
    EXPECT_EQ(attached.errors.pop().format(), R"(-315,"Configuration memory lost;disk full")");
    EXPECT_EQ(attached.status.takeEvents(), StatusModel::DeviceError);
    EXPECT_EQ(alone.errors.size(), 0U);
}

// The application sets conditions from its own thread while clients come and go.
TEST(DeviceStatusTest, ConditionChangesWhileSessionsComeAndGo) {
    auto device = std::make_shared<DeviceStatus>();
    constexpr int kChanges = 2000;
    std::thread application([device] {
        for (int i = 0; i < kChanges; ++i) {
            device->setCondition(Set::Questionable, 0x00ff, static_cast<std::uint16_t>(i));
        }
    });
    std::vector<std::unique_ptr<Session>> sessions;
    for (int i = 0; i < 200; ++i) {
        sessions.push_back(std::make_unique<Session>(device));
        if (i % 3 == 0) {
            sessions.erase(sessions.begin());
        }
    }
    application.join();
    std::uint16_t const last = (kChanges - 1) & 0x00ff;
    EXPECT_EQ(device->condition(Set::Questionable), last);
    for (auto const& session : sessions) {
        EXPECT_EQ(condition(*session, Set::Questionable), last);
    }
}

}  // namespace
