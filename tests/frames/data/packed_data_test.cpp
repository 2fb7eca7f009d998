#include "frames/data/packed_data.h"

#include <gtest/gtest.h>

#include <vector>

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

DataBlobPtr Blob(const Bytes &bytes) {
    DataBlobPtr blob;
    const auto size = static_cast<uint32_t>(bytes.size());
    EXPECT_EQ(S_OK, DataBlobCreate(bytes.data(), size, size, blob));
    return blob;
}

DataBlobPtr Inline(int64_t value) {
    DataBlobPtr blob;
    EXPECT_EQ(S_OK, DataBlobCreate(&value, kInlineBytes, 0, blob));
    return blob;
}

Bytes Packed(const DataMap &map) {
    int32_t size = -1;
    void *block = nullptr;
    EXPECT_EQ(S_OK, DataPack(map, size, block));
    EXPECT_EQ(size == 0, block == nullptr);
    const auto *at = static_cast<const uint8_t *>(block);
    Bytes bytes(at, at + size);
    CoTaskMemFree(block);
    return bytes;
}

TEST(PackedData, EntriesFollowEachOther) {
    DataMap map;
    EXPECT_TRUE(Packed(map).empty());
    map.Set(ZCK_TEXT("ab"), Blob({1, 2, 3}));
    map.Set(ZCK_TEXT("C608"), Inline(5));
    map.Set(ZCK_TEXT("longer"), Blob({9}));
    const Bytes expected = {'a', 'b', 0, 0, 3, 0, 0, 0, 1, 2,   3,   'C', '6', '0', '8', 8, 0, 0,
                            0,   5,   0, 0, 0, 0, 0, 0, 0, 'l', 'o', 'n', 'g', 1,   0,   0, 0, 9};
    EXPECT_EQ(expected, Packed(map));

    DataMap back;
    EXPECT_EQ(S_OK, DataUnpack(expected.data(), static_cast<int64_t>(expected.size()), back));
    ASSERT_EQ(3U, back.Count());
    EXPECT_EQ(Text(ZCK_TEXT("0x00006261")), back.Name(0));    // two letters and two zeros are not printable
    EXPECT_EQ(8U, back.At(1)->Size());
    EXPECT_EQ(Text(ZCK_TEXT("long")), back.Name(2));
    EXPECT_EQ(expected, Packed(back));
}

// Copies go by the codes of names.
TEST(PackedData, WhatACopyKeeps) {
    DataMap map;
    const DataBlobPtr first = Blob({1});
    map.Set(ZCK_TEXT("name"), first);
    map.Set(ZCK_TEXT("#zz.."), Blob({2}));
    map.Set(ZCK_TEXT("0x0000"), Blob({3}));
    map.Set(TextView(), Blob({4}));
    map.Set(ZCK_TEXT("last"), first);
    const DataBlobPtr second = Blob({5});
    map.Set(ZCK_TEXT("names"), second);
    map.Set(ZCK_TEXT("val."), Inline(7));
    ASSERT_EQ(7U, map.Count());
    DataMap copy;
    EXPECT_EQ(S_OK, DataTakeCoded(map, copy));
    ASSERT_EQ(3U, copy.Count());
    EXPECT_EQ(Text(ZCK_TEXT("name")), copy.Name(0));
    EXPECT_EQ(second.get(), copy.At(0).get());    // the later value in the earlier place, its bytes shared
    EXPECT_EQ(Text(ZCK_TEXT("last")), copy.Name(1));
    EXPECT_EQ(8U, copy.At(2)->Size());
    DataMap unpacked;
    const Bytes packed = Packed(map);
    EXPECT_EQ(S_OK, DataUnpack(packed.data(), static_cast<int64_t>(packed.size()), unpacked));
    EXPECT_EQ(Packed(unpacked), Packed(copy));
}

struct PackedCase {
    const char *name;
    Bytes packed;
    std::vector<Bytes> entries;
};

TEST(PackedData, BytesFromOutside) {
    const PackedCase cases[] = {
        {"nothing", {}, {}},
        {"a head without its end", {'A', 'A', 'A', 'A', 1, 0, 0}, {}},
        {"code 0 is passed over with its bytes", {0, 0, 0, 0, 1, 0, 0, 0, 7, 'A', 'A', 'A', 'A', 1, 0, 0, 0, 6}, {{6}}},
        {"code 0 that is longer than the block ends the walk", {0, 0, 0, 0, 2, 0, 0, 0, 7}, {}},
        {"one that does not fit ends the walk", {'A', 'A', 'A', 'A', 1, 0, 0, 0, 7, 'B', 'B', 'B', 'B', 2, 0, 0, 0, 1}, {{7}}},
        {"lengths have no sign", {'A', 'A', 'A', 'A', 0xFF, 0xFF, 0xFF, 0xFF, 7, 7, 7, 7, 7, 7, 7, 7}, {}},
        {"length 0 takes the head that follows, which is a head all the same",
         {'A', 'A', 'A', 'A', 0, 0, 0, 0, 'B', 'B', 'B', 'B', 1, 0, 0, 0, 9},
         {{}, {9}}},
        {"length 0 without eight bytes", {'A', 'A', 'A', 'A', 0, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7}, {}},
    };
    for (const PackedCase &c : cases) {
        DataMap map;
        const Bytes block(c.packed);    // of exactly this size, so that a sanitizer sees a read past its end
        EXPECT_EQ(S_OK, DataUnpack(block.data(), static_cast<int64_t>(block.size()), map)) << c.name;
        ASSERT_EQ(c.entries.size(), map.Count()) << c.name;
        for (size_t i = 0; i < map.Count(); ++i) {
            const DataBlob &blob = *map.At(i);
            EXPECT_EQ(c.entries[i], Bytes(blob.Data(), blob.Data() + blob.Size())) << c.name;
        }
    }
}

}    // namespace
}    // namespace zck
