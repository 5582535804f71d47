#include "fairmutex.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace {

using panel::FairMutex;

void waitForClaims(const FairMutex& mutex, std::uint64_t count) {
    while (mutex.claims() < count) {
        std::this_thread::yield();
    }
}

TEST(FairMutex, IsGrantedInTheOrderInWhichItWasAskedFor) {
    FairMutex mutex;
    std::vector<int> order;
    std::vector<std::thread> threads;
    mutex.lock();
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&, i] {
            const std::lock_guard lock(mutex);
            order.push_back(i);
        });
        waitForClaims(mutex, static_cast<std::uint64_t>(i) + 2);
    }
    mutex.unlock();
    mutex.lock(); // asked for last, so granted last
    EXPECT_THAT(order, testing::ElementsAre(0, 1, 2, 3));
    mutex.unlock();
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(mutex.claims(), 0U);
}

} // namespace
