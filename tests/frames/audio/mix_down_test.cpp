#include <gtest/gtest.h>

#include "frames/audio/channels_buffer.h"

namespace zck {
namespace {

// Channel c holds the bit c, so that a sum tells its parts.
ZChannelsBuffer &Bits(ZChannelsBuffer &store, int32_t channels) {
    store.Clear();
    store.SetForm(WorkForm::Int16);
    EXPECT_EQ(S_OK, store.Reserve(2, channels, true));
    for (int32_t c = 0; c < channels; ++c) *reinterpret_cast<int16_t *>(store.Channel(c)) = static_cast<int16_t>(1 << c);
    return store;
}

std::vector<int32_t> Sums(ZChannelsBuffer &store) {
    std::vector<int32_t> sums;
    for (int32_t c = 0; c < store.Count(); ++c) sums.push_back(*reinterpret_cast<int16_t *>(store.Channel(c)));
    return sums;
}

struct MixCase {
    int32_t channels, target;
    std::vector<int32_t> sums;
};

TEST(MixDown, EveryTarget) {
    const MixCase cases[] = {
        {6, 2, {1 + 4 + 8 + 16, 2 + 4 + 8 + 32}},
        {2, 1, {3}},
        {12, 1, {4095}},
        {11, 2, {1 + 4 + 8 + 16 + 64 + 256 + 512, 2 + 4 + 8 + 32 + 128 + 256 + 1024}},
        // Channel 2 stays from three on, and so forth.
        {6, 3, {1 + 8 + 16, 2 + 8 + 32, 4}},
        {6, 4, {1 + 16, 2 + 32, 4, 8}},
        {6, 5, {1, 2 + 32, 4, 8, 16}},
        {11, 6, {1 + 64 + 512, 2 + 128 + 1024, 4, 8, 16 + 64 + 256 + 512, 32 + 128 + 256 + 1024}},
        {11, 7, {1 + 512, 2 + 128 + 1024, 4, 8, 16 + 256 + 512, 32 + 128 + 256 + 1024, 64}},
        {11, 8, {1 + 512, 2 + 1024, 4, 8, 16 + 256 + 512, 32 + 256 + 1024, 64, 128}},
        {11, 9, {1 + 512, 2 + 1024, 4, 8, 16 + 512, 32 + 1024, 64, 128, 256}},
        {11, 10, {1, 2 + 1024, 4, 8, 16, 32 + 1024, 64, 128, 256, 512}},
        // Beyond the eleventh channel there is nothing to go into.
        {13, 12, {1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048}},
    };
    for (const MixCase &c : cases) {
        ZChannelsBuffer store;
        EXPECT_TRUE(Bits(store, c.channels).MixDown(c.target, false));
        EXPECT_EQ(c.sums, Sums(store)) << c.channels << " to " << c.target;
    }
}

TEST(MixDown, MoreOrNoChannels) {
    ZChannelsBuffer store;
    EXPECT_FALSE(Bits(store, 2).MixDown(0, false));
    EXPECT_FALSE(store.MixDown(INT32_MIN, false));
    EXPECT_EQ(2, store.Count());
    EXPECT_TRUE(store.MixDown(4, false));
    EXPECT_EQ(4, store.Count());
    EXPECT_EQ(0u, store.BytesOf(3));
    // Without samples the count alone changes.
    ZChannelsBuffer empty;
    ASSERT_EQ(S_OK, empty.SetCount(5));
    EXPECT_TRUE(empty.MixDown(2, true));
    EXPECT_EQ(2, empty.Count());
}

TEST(MixDown, IntegersSaturateFloatsDoNot) {
    ZChannelsBuffer store;
    store.SetForm(WorkForm::Int16);
    ASSERT_EQ(S_OK, store.Reserve(4, 3, true));
    for (int32_t c = 0; c < 3; ++c) {
        reinterpret_cast<int16_t *>(store.Channel(c))[0] = 30000;
        reinterpret_cast<int16_t *>(store.Channel(c))[1] = -30000;
    }
    ASSERT_TRUE(store.MixDown(1, false));
    EXPECT_EQ(32767, reinterpret_cast<int16_t *>(store.Channel(0))[0]);
    EXPECT_EQ(-32768, reinterpret_cast<int16_t *>(store.Channel(0))[1]);
    ASSERT_EQ(S_OK, store.Reserve(4, 3, true));
    for (int32_t c = 0; c < 3; ++c) *reinterpret_cast<float *>(store.Channel(c)) = 0.75F;
    ASSERT_TRUE(store.MixDown(1, true));
    EXPECT_EQ(2.25F, *reinterpret_cast<float *>(store.Channel(0)));
}

TEST(MixDown, TheShorterChannelCounts) {
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, Bits(store, 2).SetCount(3));
    EXPECT_TRUE(store.MixDown(1, false));
    EXPECT_EQ((std::vector<int32_t>{3}), Sums(store));
}

}    // namespace
}    // namespace zck
