// The store of channels: counts, sizes, splitting and joining.
#include "frames/audio/channels_buffer.h"

#include <gtest/gtest.h>

#include "frames/audio/channel_map.h"
#include "frames/media/audio_props.h"
#include "platform/status.h"

namespace zck {
namespace {

constexpr Z_AUD_PROPS kStereo16 = {2, 48000, 16, 0};

template <class Sample>
std::vector<Sample> ChannelOf(ZChannelsBuffer &store, int32_t index) {
    const auto *samples = reinterpret_cast<const Sample *>(store.Channel(index));
    return {samples, samples + store.BytesOf(index) / sizeof(Sample)};
}

TEST(ChannelsBuffer, CountIsClampedAndChannelsStartEmpty) {
    ZChannelsBuffer store;
    EXPECT_EQ(0, store.Count());
    EXPECT_EQ(0u, store.Bytes());
    EXPECT_EQ(S_OK, store.SetCount(200));
    EXPECT_EQ(128, store.Count());
    EXPECT_EQ(0u, store.Bytes());
    EXPECT_EQ(nullptr, store.Channel(0));
    EXPECT_EQ(S_OK, store.SetCount(3));
    EXPECT_EQ(3, store.Count());
    EXPECT_EQ(S_OK, store.SetCount(INT32_MIN));
    EXPECT_EQ(0, store.Count());
}

TEST(ChannelsBuffer, SizesOfAllChannels) {
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.Reserve(8, 2, true));
    std::fill_n(store.Channel(1), 8, uint8_t{7});
    // A block that is large enough keeps its bytes, unless they are zeroed.
    ASSERT_EQ(S_OK, store.Reserve(6, -1, false));
    EXPECT_EQ(6u, store.Bytes());
    EXPECT_EQ(7, store.Channel(1)[5]);
    // Only added bytes are zeroed.
    ASSERT_EQ(S_OK, store.Resize(8, -1, true));
    EXPECT_EQ(7, store.Channel(1)[5]);
    EXPECT_EQ(0, store.Channel(1)[6]);
    ASSERT_EQ(S_OK, store.Resize(100, 3, true));
    EXPECT_EQ(7, store.Channel(1)[5]);
    EXPECT_EQ(0, store.Channel(1)[99]);
    EXPECT_EQ(0, store.Channel(2)[99]);
    ASSERT_EQ(S_OK, store.Reserve(4, -1, true));
    EXPECT_EQ(0, store.Channel(1)[3]);
}

TEST(ChannelsBuffer, MissingChannelsAreStoodInFor) {
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.Reserve(4, 1, true));
    for (const int32_t index : {1, -1, 128, INT32_MAX, INT32_MIN}) {
        uint8_t *spare = store.Channel(index, 3);
        ASSERT_NE(nullptr, spare);
        EXPECT_EQ(0, spare[0] | spare[1] | spare[2] | spare[3]);
        std::fill_n(spare, 4, uint8_t{9});
    }
    EXPECT_EQ(nullptr, store.Channel(0, 4));
    uint8_t *const *table = store.Pointers(2, 0, 3);
    EXPECT_EQ(store.Channel(0, 2), table[0]);
    EXPECT_EQ(table[1], table[2]);
}

TEST(ChannelsBuffer, MapTexts) {
    const auto parse = [](TextView text) { return ChannelMapParse(text); };
    using List = std::vector<int32_t>;
    EXPECT_EQ((List{1, 0}), parse(ZCK_TEXT("1,0")));
    EXPECT_EQ((List{1, 1, 0, 1}), parse(ZCK_TEXT(" 1.5;1-0 - +1")));
    EXPECT_EQ((List{-3, 0, 0, 12}), parse(ZCK_TEXT("-3/--3/.5/12")));
    EXPECT_EQ((List{INT32_MAX, INT32_MIN}), parse(ZCK_TEXT("99999999999 -99999999999")));
    EXPECT_EQ(List{}, parse(ZCK_TEXT("left, right")));
    EXPECT_EQ(List{}, parse({}));
    Text longest;
    for (int i = 0; i < 300; ++i) longest += ZCK_TEXT("1 ");
    EXPECT_EQ(128u, parse(longest).size());
}

TEST(ChannelsBuffer, SplitsAndMaps) {
    const int16_t block[] = {1, 10, 2, 20, 3, 30};
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.FromInterleaved(&kStereo16, 12, block, {}, -1));
    EXPECT_EQ(WorkForm::Int16, store.Form());
    EXPECT_EQ((std::vector<int16_t>{1, 2, 3}), ChannelOf<int16_t>(store, 0));
    EXPECT_EQ((std::vector<int16_t>{10, 20, 30}), ChannelOf<int16_t>(store, 1));
    ASSERT_EQ(S_OK, store.FromInterleaved(&kStereo16, 12, block, ZCK_TEXT("1,5,1"), 24));
    EXPECT_EQ((std::vector<float>{10 / 32768.0F, 20 / 32768.0F, 30 / 32768.0F}), ChannelOf<float>(store, 2));
    EXPECT_EQ((std::vector<float>{0, 0, 0}), ChannelOf<float>(store, 1));
    EXPECT_EQ(3, store.Count());
    ASSERT_EQ(S_OK, store.FromInterleaved(&kStereo16, 8, nullptr, {}, -1));
    EXPECT_EQ((std::vector<int16_t>{0, 0}), ChannelOf<int16_t>(store, 1));
}

TEST(ChannelsBuffer, PartsOfASampleAreSilent) {
    const uint8_t block[] = {0, 0, 64, 0, 0, 192, 1, 2};
    const Z_AUD_PROPS props = {2, 48000, 24, 0};
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.FromInterleaved(&props, 8, block, {}, -1));
    ASSERT_EQ(5u, store.Bytes());
    EXPECT_EQ(0.5F, *reinterpret_cast<float *>(store.Channel(0)));
    EXPECT_EQ(-0.5F, *reinterpret_cast<float *>(store.Channel(1)));
    EXPECT_EQ(0, store.Channel(0)[4]);
}

TEST(ChannelsBuffer, RefusesAndKeepsWhatItHolds) {
    const int16_t block[] = {1, 2};
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.FromInterleaved(&kStereo16, 4, block, {}, -1));
    const Z_AUD_PROPS invalid = {0, 48000, 16, 0};
    EXPECT_EQ(kVfwEInvalidMediaType, store.FromInterleaved(&invalid, 4, block, {}, -1));
    EXPECT_EQ(kVfwEInvalidMediaType, store.FromInterleaved(nullptr, 4, block, {}, -1));
    EXPECT_EQ(E_INVALIDARG, store.FromInterleaved(&kStereo16, -4, block, {}, -1));
    EXPECT_EQ(E_INVALIDARG, store.FromInterleaved(&kStereo16, 4, block, ZCK_TEXT("x"), -1));
    for (const int32_t bits : {0, 1, 8, 33, -2, -24, -33, INT32_MIN, INT32_MAX}) {
        EXPECT_EQ(kVfwEInvalidMediaType, store.FromInterleaved(&kStereo16, 4, block, {}, bits)) << bits;
        const Z_AUD_PROPS props = {1, 48000, bits, 0};
        EXPECT_EQ(kVfwEInvalidMediaType, store.FromInterleaved(&props, 4, block, {}, 16)) << bits;
    }
    EXPECT_EQ((std::vector<int16_t>{2}), ChannelOf<int16_t>(store, 1));
}

TEST(ChannelsBuffer, ManyChannels) {
    const Z_AUD_PROPS wide = {200, 48000, 16, 0};
    std::vector<int16_t> block(400);
    for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<int16_t>(i);
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.FromInterleaved(&wide, 800, block.data(), {}, -1));
    ASSERT_EQ(128, store.Count());
    EXPECT_EQ((std::vector<int16_t>{127, 327}), ChannelOf<int16_t>(store, 127));
    std::vector<int16_t> joined(400, -1);
    ASSERT_EQ(S_OK, Interleave(store, 0, wide, 2, joined.data()));
    EXPECT_EQ(327, joined[327]);
    EXPECT_EQ(-1, joined[328]);
    EXPECT_EQ(-1, joined[128]);
    const Z_AUD_PROPS absurd = {2000000000, 1, 32, 0};
    ASSERT_EQ(S_OK, store.FromInterleaved(&absurd, 800, block.data(), {}, -1));
    EXPECT_EQ(0u, store.Bytes());
}

TEST(ChannelsBuffer, JoinsWhatIsThere) {
    const int16_t block[] = {1, 10, 2, 20, 3, 30};
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.FromInterleaved(&kStereo16, 12, block, {}, -1));
    // From the second sample on, one sample more than there is, and a third channel.
    const Z_AUD_PROPS three = {3, 48000, 16, 0};
    std::vector<int16_t> joined(10, -7);
    ASSERT_EQ(S_OK, Interleave(store, 1, three, 3, joined.data()));
    EXPECT_EQ((std::vector<int16_t>{2, 20, -7, 3, 30, -7, -7, -7, -7, -7}), joined);
    // Channels of unequal length.
    ASSERT_EQ(S_OK, store.SetCount(3));
    joined.assign(10, -7);
    ASSERT_EQ(S_OK, Interleave(store, 0, three, 3, joined.data()));
    EXPECT_EQ((std::vector<int16_t>{1, 10, -7, 2, 20, -7, 3, 30, -7, -7}), joined);
    EXPECT_EQ(kVfwEInvalidMediaType, Interleave(store, 0, {2, 1, 8, 0}, 1, joined.data()));
}

TEST(ChannelsBuffer, EveryFormAndBack) {
    for (const int32_t bits : {9, 12, 16, 17, 20, 24, 25, 32, -25, -32}) {
        const Z_AUD_PROPS props = {3, 48000, bits, 0};
        std::vector<uint8_t> block(static_cast<size_t>(AudioBytes(&props, 50)));
        for (size_t i = 0; i < block.size(); ++i) block[i] = static_cast<uint8_t>(i * 37 + 11);
        // A 32-bit integer keeps the 24 bits that a float has.
        if (bits >= 25) {
            for (size_t i = 0; i < block.size(); i += 4) block[i] = 0;
        }
        ZChannelsBuffer store;
        ASSERT_EQ(S_OK, store.FromInterleaved(&props, static_cast<int64_t>(block.size()), block.data(), {}, -1));
        std::vector<uint8_t> joined(block.size());
        ASSERT_EQ(S_OK, Interleave(store, 0, props, 50, joined.data()));
        EXPECT_EQ(block, joined) << bits;
    }
}

TEST(ChannelsBuffer, CopiesAndSwaps) {
    const int16_t block[] = {1, 10, 2, 20};
    ZChannelsBuffer store;
    ASSERT_EQ(S_OK, store.FromInterleaved(&kStereo16, 8, block, {}, -1));
    ZChannelsBuffer copy;
    ASSERT_EQ(S_OK, copy.CopyFrom(store));
    store.Clear();
    EXPECT_EQ(0, store.Count());
    EXPECT_EQ((std::vector<int16_t>{10, 20}), ChannelOf<int16_t>(copy, 1));
    store.Swap(copy);
    EXPECT_EQ(2, store.Count());
    EXPECT_EQ(WorkForm::None, copy.Form());
}

}    // namespace
}    // namespace zck
