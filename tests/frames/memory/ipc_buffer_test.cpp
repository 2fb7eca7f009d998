#include "frames/memory/ipc_buffer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "platform/section.h"
#include "platform/status.h"

namespace zck {
namespace {

bool IsClosed(const IPCBuffer &b) {
    return b.DataSize(0) == 0 && b.DataPointer(0) == nullptr && b.BufferId() == 0 && !b.IsFresh();
}

uint32_t StoredTotal(const IPCBuffer &b) {
    uint32_t total = 0;
    std::memcpy(&total, b.DataPointer(0) - IPCBuffer::kHeaderBytes, 4);
    return total;
}

TEST(IPCBuffer, StartsClosedAndClosesTwice) {
    IPCBuffer b;
    EXPECT_TRUE(IsClosed(b));
    b.CloseBuffer();
    EXPECT_TRUE(IsClosed(b));
    ASSERT_EQ(b.AllocBuffer(100), S_OK);
    b.CloseBuffer();
    b.CloseBuffer();
    EXPECT_TRUE(IsClosed(b));
}

TEST(IPCBuffer, SizesAreMultiplesOf512WithTheHeader) {
    const struct {
        uint32_t wanted, total;
    } cases[] = {{0, 512}, {1, 512}, {480, 512}, {481, 1024}, {992, 1024}, {993, 1536}, {8294400, 8294912}};
    for (const auto &c : cases) {
        IPCBuffer b;
        ASSERT_EQ(b.AllocBuffer(c.wanted), S_OK);
        EXPECT_EQ(b.DataSize(0), c.total - 32) << c.wanted;
        EXPECT_EQ(StoredTotal(b), c.total);
        EXPECT_TRUE(b.IsFresh());
        EXPECT_TRUE(std::all_of(b.DataPointer(0), b.DataPointer(0) + b.DataSize(0), [](uint8_t v) { return v == 0; }));
        const uint8_t *header = b.DataPointer(0) - 32;
        EXPECT_TRUE(std::all_of(header + 4, header + 32, [](uint8_t v) { return v == 0; }));
        std::memset(b.DataPointer(0), 0xAA, b.DataSize(0));
    }
}

TEST(IPCBuffer, OffsetsShortenTheDataAndNeverWrap) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(480), S_OK);
    EXPECT_EQ(b.DataSize(100), 380u);
    EXPECT_EQ(b.DataSize(479), 1u);
    EXPECT_EQ(b.DataSize(480), 0u);
    EXPECT_EQ(b.DataSize(0xFFFFFFFF), 0u);
    EXPECT_EQ(b.DataPointer(100), b.DataPointer(0) + 100);
    EXPECT_EQ(b.DataPointer(480), b.DataPointer(0) + 480);
    EXPECT_EQ(b.DataPointer(481), nullptr);
}

TEST(IPCBuffer, KeepsASectionWhoseTotalReaches) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(480), S_OK);
    uint8_t *data = b.DataPointer(0);
    *data = 7;
    // 512 bytes are there, though only 480 can be used.
    EXPECT_EQ(b.AllocBuffer(512), S_OK);
    EXPECT_EQ(b.DataPointer(0), data);
    EXPECT_EQ(*data, 7);
    EXPECT_EQ(b.DataSize(0), 480u);
    EXPECT_EQ(b.AllocBuffer(513), S_OK);
    EXPECT_EQ(b.DataSize(0), 992u);
    EXPECT_EQ(*b.DataPointer(0), 0);
}

TEST(IPCBuffer, SizesThatDoNotFit32BitsAreRefused) {
    for (uint32_t n : {0xFFFFFFFFu, 0xFFFFFFFFu - 542}) {
        IPCBuffer b;
        ASSERT_EQ(b.AllocBuffer(100), S_OK);
        EXPECT_EQ(b.AllocBuffer(n), E_OUTOFMEMORY);
        EXPECT_TRUE(IsClosed(b));
    }
}

TEST(IPCBuffer, NumberIsTheAddressAndTheNextAfterACollision) {
    IPCBuffer b;
    const uint64_t address = reinterpret_cast<uintptr_t>(&b);
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    EXPECT_EQ(b.BufferId(), address);
    b.CloseBuffer();
    Section first;
    Section second;
    ASSERT_EQ(first.Create(address, 512), S_OK);
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    EXPECT_EQ(b.BufferId(), address + 1);
    b.CloseBuffer();
    ASSERT_EQ(second.Create(address + 1, 512), S_OK);
    ASSERT_EQ(b.AllocBuffer(1), S_OK);
    EXPECT_EQ(b.BufferId(), address + 2);
}

TEST(IPCBuffer, OpensTheSamePixelsByNumber) {
    IPCBuffer a;
    IPCBuffer b;
    ASSERT_EQ(a.AllocBuffer(1000), S_OK);
    std::memset(a.DataPointer(0), 0x31, 1000);
    ASSERT_EQ(b.OpenBuffer(a.BufferId()), S_OK);
    EXPECT_EQ(b.BufferId(), a.BufferId());
    EXPECT_EQ(b.DataSize(0), a.DataSize(0));
    EXPECT_NE(b.DataPointer(0), a.DataPointer(0));
    EXPECT_EQ(std::memcmp(b.DataPointer(0), a.DataPointer(0), a.DataSize(0)), 0);
    EXPECT_FALSE(b.IsFresh());
    *b.DataPointer(999) = 0x77;
    EXPECT_EQ(*a.DataPointer(999), 0x77);
}

TEST(IPCBuffer, ASectionLivesAsLongAsAnyHandle) {
    IPCBuffer a;
    IPCBuffer b;
    IPCBuffer c;
    ASSERT_EQ(a.AllocBuffer(1000), S_OK);
    const uint64_t id = a.BufferId();
    *a.DataPointer(0) = 5;
    ASSERT_EQ(b.OpenBuffer(id), S_OK);
    a.CloseBuffer();
    ASSERT_EQ(c.OpenBuffer(id), S_OK);
    EXPECT_EQ(*c.DataPointer(0), 5);
    b.CloseBuffer();
    c.CloseBuffer();
    EXPECT_EQ(a.OpenBuffer(id), kErrorFileNotFound);
    EXPECT_TRUE(IsClosed(a));
}

TEST(IPCBuffer, OpeningClosesWhatWasOpen) {
    IPCBuffer a;
    ASSERT_EQ(a.AllocBuffer(1000), S_OK);
    const uint64_t id = a.BufferId();
    EXPECT_EQ(a.OpenBuffer(12345), kErrorFileNotFound);
    EXPECT_TRUE(IsClosed(a));
    EXPECT_EQ(a.OpenBuffer(id), kErrorFileNotFound);
}

// Sections of anybody: what the header says is believed only within what is mapped.
TEST(IPCBuffer, DoesNotBelieveAHeader) {
    constexpr uint64_t kId = 0x5EC7104000000001;
    const struct {
        uint32_t stored;
        uint32_t usable;
    } good[] = {{0, 0}, {31, 0}, {32, 0}, {33, 1}, {512, 480}, {4096, 4064}};
    for (const auto &c : good) {
        Section s;
        ASSERT_EQ(s.Create(kId, 4096), S_OK);
        ASSERT_EQ(s.Map(), S_OK);
        std::memcpy(s.View(), &c.stored, 4);
        IPCBuffer b;
        ASSERT_EQ(b.OpenBuffer(kId), S_OK);
        EXPECT_EQ(b.DataSize(0), c.usable) << c.stored;
        EXPECT_EQ(b.BufferId(), kId);
        EXPECT_NE(b.DataPointer(0), nullptr);
    }
    Section s;
    ASSERT_EQ(s.Create(kId, 4096), S_OK);
    ASSERT_EQ(s.Map(), S_OK);
    for (uint32_t lie : {static_cast<uint32_t>(s.Size()) + 1, 0xFFFFFFFFu, 0x80000000u}) {
        std::memcpy(s.View(), &lie, 4);
        IPCBuffer b;
        EXPECT_EQ(b.OpenBuffer(kId), E_UNEXPECTED);
        EXPECT_TRUE(IsClosed(b));
    }
}

TEST(IPCBuffer, IsNotFreshAfterItsFirstUse) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(10), S_OK);
    b.MarkUsed();
    EXPECT_FALSE(b.IsFresh());
    ASSERT_EQ(b.AllocBuffer(10), S_OK);    // kept
    EXPECT_FALSE(b.IsFresh());
    ASSERT_EQ(b.AllocBuffer(1000), S_OK);    // new
    EXPECT_TRUE(b.IsFresh());
}

}    // namespace
}    // namespace zck
