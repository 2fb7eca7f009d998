// Sections between two processes.
#include <gtest/gtest.h>

#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "frames/memory/ipc_buffer.h"
#include "frames/memory/ipc_buffer_heap.h"
#include "platform/status.h"
#include "tests/support/child_process.h"
#include "tests/support/eventually.h"

namespace zck {
namespace {

using test::ChildProcess;
using test::ChildRole;

constexpr uint32_t kBytes = 100000;

uint8_t Pattern(uint32_t k) { return static_cast<uint8_t>(k * 7 + k / 251); }

bool HasPattern(const IPCBuffer &b) {
    for (uint32_t k = 0; k < kBytes; ++k)
        if (*b.DataPointer(k) != Pattern(k)) return false;
    return true;
}

void WritePattern(const IPCBuffer &b) {
    for (uint32_t k = 0; k < kBytes; ++k) *b.DataPointer(k) = Pattern(k);
}

std::string Hex(uint64_t id) {
    char text[17];
    std::snprintf(text, sizeof(text), "%" PRIX64, id);
    return text;
}

uint64_t FromHex(const std::string &text) { return std::stoull(text, nullptr, 16); }

// Opens the section, looks at it, writes one byte. 0 when all is as it should be.
int Reader(const std::vector<std::string> &args) {
    IPCBuffer b;
    if (b.OpenBuffer(FromHex(args[0])) != S_OK) return 2;
    if (b.DataSize(0) != std::stoul(args[1])) return 3;
    if (!HasPattern(b)) return 4;
    *b.DataPointer(5) = 0xC3;
    return 0;
}
const ChildRole kReader("reader", Reader);

// Makes a section, tells its number and waits for the end of its input.
int Owner(const std::vector<std::string> &) {
    IPCBuffer b;
    if (b.AllocBuffer(kBytes) != S_OK) return 2;
    WritePattern(b);
    std::cout << Hex(b.BufferId()) << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) {
    }
    return 0;
}
const ChildRole kOwner("owner", Owner);

// Opens a section and holds it until the end of its input.
int Holder(const std::vector<std::string> &args) {
    IPCBuffer b;
    std::cout << (b.OpenBuffer(FromHex(args[0])) == S_OK ? "open" : "failed") << std::endl;
    std::string line;
    while (std::getline(std::cin, line)) {
    }
    return b.DataPointer(0) != nullptr && HasPattern(b) ? 0 : 3;
}
const ChildRole kHolder("holder", Holder);

// Waits until a section has gone: a killed process is taken apart by the system.
bool Goes(uint64_t id) {
    return test::Eventually([&] {
        IPCBuffer b;
        return b.OpenBuffer(id) == kErrorFileNotFound;
    });
}

TEST(TwoProcesses, ASectionIsOpenedByItsNumber) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(kBytes), S_OK);
    WritePattern(b);
    ChildProcess child;
    ASSERT_TRUE(child.Start("reader", {Hex(b.BufferId()), std::to_string(b.DataSize(0))}));
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(*b.DataPointer(5), 0xC3);
}

TEST(TwoProcesses, APooledSectionIsOpenedByItsNumber) {
    IPCBufferHeap heap;
    IPCBuffer *b = nullptr;
    ASSERT_EQ(heap.GetBuffer(kBytes, &b, 3), S_OK);
    WritePattern(*b);
    ChildProcess child;
    ASSERT_TRUE(child.Start("reader", {Hex(b->BufferId()), std::to_string(b->DataSize(0))}));
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(heap.ReturnFrame(b), S_OK);
}

TEST(TwoProcesses, ANumberThatNobodyHoldsIsNotFound) {
    ChildProcess child;
    ASSERT_TRUE(child.Start("reader", {"5EC7104000000002", "480"}));
    EXPECT_EQ(child.Wait(), 2);
}

TEST(TwoProcesses, AReaderKeepsASectionWhoseMakerHasEnded) {
    ChildProcess owner;
    ASSERT_TRUE(owner.Start("owner"));
    const uint64_t id = FromHex(owner.ReadLine());
    IPCBuffer b;
    ASSERT_EQ(b.OpenBuffer(id), S_OK);
    EXPECT_TRUE(HasPattern(b));
    EXPECT_EQ(owner.Wait(), 0);
    EXPECT_TRUE(HasPattern(b));
    ChildProcess second;
    ASSERT_TRUE(second.Start("reader", {Hex(id), std::to_string(b.DataSize(0))}));
    EXPECT_EQ(second.Wait(), 0);
    b.CloseBuffer();
    EXPECT_EQ(b.OpenBuffer(id), kErrorFileNotFound);
}

TEST(TwoProcesses, AKilledMakerLeavesNothingBehind) {
    ChildProcess owner;
    ASSERT_TRUE(owner.Start("owner"));
    const uint64_t id = FromHex(owner.ReadLine());
    {
        IPCBuffer b;
        ASSERT_EQ(b.OpenBuffer(id), S_OK);
    }
    owner.Kill();
    EXPECT_TRUE(Goes(id));
}

TEST(TwoProcesses, AKilledMakerDoesNotTakeThePixelsFromAReader) {
    ChildProcess owner;
    ASSERT_TRUE(owner.Start("owner"));
    const uint64_t id = FromHex(owner.ReadLine());
    IPCBuffer b;
    ASSERT_EQ(b.OpenBuffer(id), S_OK);
    owner.Kill();
    EXPECT_TRUE(HasPattern(b));
    IPCBuffer again;
    EXPECT_EQ(again.OpenBuffer(id), S_OK);
    again.CloseBuffer();
    b.CloseBuffer();
    EXPECT_TRUE(Goes(id));
}

TEST(TwoProcesses, AKilledReaderDoesNotDisturbTheMaker) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(kBytes), S_OK);
    WritePattern(b);
    const uint64_t id = b.BufferId();
    ChildProcess holder;
    ASSERT_TRUE(holder.Start("holder", {Hex(id)}));
    ASSERT_EQ(holder.ReadLine(), "open");
    holder.Kill();
    EXPECT_TRUE(HasPattern(b));
    ChildProcess another;
    ASSERT_TRUE(another.Start("holder", {Hex(id)}));
    ASSERT_EQ(another.ReadLine(), "open");
    EXPECT_EQ(another.Wait(), 0);
    b.CloseBuffer();
    EXPECT_TRUE(Goes(id));
}

// Another process has the number that this object's address gives.
TEST(TwoProcesses, CollidingNumbersMoveOn) {
    IPCBuffer b;
    ASSERT_EQ(b.AllocBuffer(kBytes), S_OK);
    WritePattern(b);
    const uint64_t id = b.BufferId();
    ChildProcess holder;
    ASSERT_TRUE(holder.Start("holder", {Hex(id)}));
    ASSERT_EQ(holder.ReadLine(), "open");
    b.CloseBuffer();    // the child keeps the section
    ASSERT_EQ(b.AllocBuffer(kBytes), S_OK);
    EXPECT_EQ(b.BufferId(), id + 1);
    EXPECT_EQ(*b.DataPointer(1), 0);
    EXPECT_EQ(holder.Wait(), 0);
}

}    // namespace
}    // namespace zck
