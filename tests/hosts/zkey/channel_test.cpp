#include "hosts/zkey/channel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

namespace {

using zkey::Channel;

TEST(Channel, KeepsOrderAndEndsAfterTheLastItem) {
    Channel<std::unique_ptr<int>> channel(2);
    std::thread sender([&] {
        for (int i = 0; i < 1000; ++i) ASSERT_TRUE(channel.Push(std::make_unique<int>(i)));
        channel.Close();
    });
    int expected = 0;
    while (auto item = channel.Pop()) EXPECT_EQ(**item, expected++);
    EXPECT_EQ(expected, 1000);
    sender.join();
}

TEST(Channel, HoldsNoMoreThanItsBound) {
    Channel<int> channel(3);
    std::atomic<int> sent{0};
    std::thread sender([&] {
        while (channel.Push(0)) ++sent;
    });
    while (sent < 3) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(sent, 3);
    channel.Cancel();
    sender.join();
    EXPECT_FALSE(channel.Pop());
}

}    // namespace
