#include <yxfrontpanel/remote.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "remote_harness.h"

namespace {

using yxfp_test::RemoteHarness;

// The status of the server may be read from any thread, also while another starts and stops
// it (a data race here is what ThreadSanitizer reports).
TEST(RemoteControlTest, StatusIsReadableWhileAnotherThreadStartsAndStops) {
    RemoteHarness harness;
    harness.start();
    std::atomic<bool> done{false};
    std::vector<std::size_t> seenSizes;
    std::thread reader([&] {
        for (int read = 0; read < 100000 && !done.load(); ++read) {
            std::size_t const size = harness.remote->addresses().size();
            if (size != 0 && size != 2) {
                seenSizes.push_back(size);
            }
            harness.remote->clientCount();
        }
    });
    for (int cycle = 0; cycle < 20; ++cycle) {
        harness.remote->stop();
        harness.remote->start();
    }
    done.store(true);
    reader.join();
    EXPECT_TRUE(seenSizes.empty());
    EXPECT_EQ(harness.remote->addresses().size(), 2U);
}

}  // namespace
