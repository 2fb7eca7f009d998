// Memory that the reads of properties take for each frame: none.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "keying/plugin/borders.h"
#include "props/store/store.h"

namespace {

thread_local int64_t t_taken = 0;

void *Take(size_t size) {
    ++t_taken;
    if (void *block = std::malloc(size != 0 ? size : 1)) return block;
    throw std::bad_alloc();
}

}    // namespace

void *operator new(size_t size) { return Take(size); }
void *operator new[](size_t size) { return Take(size); }
// Those too, or a sanitizer finds its own block in the wrong hands.
void *operator new(size_t size, const std::nothrow_t &) noexcept { return std::malloc(size != 0 ? size : 1); }
void *operator new[](size_t size, const std::nothrow_t &) noexcept { return std::malloc(size != 0 ? size : 1); }
void operator delete(void *block) noexcept { std::free(block); }
void operator delete[](void *block) noexcept { std::free(block); }
void operator delete(void *block, size_t) noexcept { std::free(block); }
void operator delete[](void *block, size_t) noexcept { std::free(block); }

namespace zck {
namespace {

constexpr PropName kThreads(ZCK_TEXT("Process.Threads"));
constexpr PropName kOutput(ZCK_TEXT("output.thread"));
constexpr PropName kBorders(ZCK_TEXT("keying.borders"));
constexpr PropName kMissing(ZCK_TEXT("missing"));

void Set(CPropsStore &store, TextView name, TextView value) {
    bool changed = false;
    ASSERT_EQ(store.Set(name, Bstr(value).get(), changed), S_OK);
}

/// The reads of one frame, with what they take.
void ExpectReads(CPropsStore &store) {
    Set(store, ZCK_TEXT("process.threads"), ZCK_TEXT("4"));
    Set(store, ZCK_TEXT("output.thread"), ZCK_TEXT("false"));
    // Longer than a text holds without taking memory.
    Set(store, ZCK_TEXT("keying.borders"), ZCK_TEXT("16 8 1600 8    and more"));
    // The first read parses, the later ones do not.
    for (int round = 0; round < 3; ++round) {
        Borders borders = {};
        const int64_t before = t_taken;
        const int32_t threads = store.GetInt(kThreads, 6);
        const bool output = store.GetBool(kOutput, true);
        const bool found = store.VisitText(kBorders, [&](TextView text) { borders = InsetsFromText(text).value(); });
        const bool missing = store.VisitText(kMissing, [](TextView) {});
        const int32_t fallback = store.GetInt(kMissing, 6) + (store.GetBool(kMissing, true) ? 1 : 0);
        EXPECT_EQ(t_taken, before) << round;
        EXPECT_EQ(threads, 4);
        EXPECT_FALSE(output);
        EXPECT_TRUE(found);
        EXPECT_EQ(borders.right, 1600);
        EXPECT_FALSE(missing);
        EXPECT_EQ(fallback, 7);
    }
}

TEST(Memory, ReadsOfAFrameTakeNone) {
    CPropsStore few;
    ExpectReads(few);
    CPropsStore many;
    for (int32_t i = 0; i < 100; ++i) Set(many, Text(ZCK_TEXT("n")).append(TextFromInt(i)), ZCK_TEXT("1"));
    ExpectReads(many);
}

TEST(Memory, TheCounterCounts) {
    const int64_t before = t_taken;
    CPropsStore store;
    EXPECT_GT(t_taken, before);
}

}    // namespace
}    // namespace zck
