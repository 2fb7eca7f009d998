#include "frames/memory/auto_obj.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/com_ptr.h"

namespace zck {
namespace {

class Thing final : public AutoObjBase<Thing> {
public:
    explicit Thing(int *alive) : m_alive(alive) { ++*m_alive; }
    ~Thing() override { --*m_alive; }

private:
    int *m_alive;
};

constexpr IID kOther = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

TEST(AutoObjBase, LivesFromItsMakersReferenceToTheLastRelease) {
    int alive = 0;
    auto *thing = new Thing(&alive);
    EXPECT_EQ(thing->RefCount(), 1u);
    EXPECT_EQ(thing->AddRef(), 2u);
    EXPECT_EQ(thing->Release(), 1u);
    EXPECT_EQ(alive, 1);
    EXPECT_EQ(thing->Release(), 0u);
    EXPECT_EQ(alive, 0);
}

TEST(AutoObjBase, AnswersOnlyTheUnknownObject) {
    int alive = 0;
    ComPtr<Thing> thing;
    thing.Attach(new Thing(&alive));
    EXPECT_EQ(thing->QueryInterface(IID_IUnknown, nullptr), E_POINTER);
    void *out = &alive;
    EXPECT_EQ(thing->QueryInterface(kOther, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(thing->RefCount(), 1u);
    EXPECT_EQ(thing->QueryInterface(IID_IUnknown, &out), S_OK);
    EXPECT_EQ(out, static_cast<IUnknown *>(thing.get()));
    EXPECT_EQ(static_cast<IUnknown *>(out)->Release(), 1u);
}

// Hosts call through the table, so its order is fixed: query, add, release, destructor.
TEST(AutoObjBase, TableStartsWithTheThreeSlotsOfTheUnknownObject) {
    int alive = 0;
    auto *thing = new Thing(&alive);
    using Count = ULONG(Z_STDCALL *)(IUnknown *);
    void **table = *reinterpret_cast<void ***>(static_cast<IUnknown *>(thing));
    EXPECT_EQ(reinterpret_cast<Count>(table[1])(thing), 2u);
    EXPECT_EQ(reinterpret_cast<Count>(table[2])(thing), 1u);
    reinterpret_cast<Count>(table[2])(thing);
    EXPECT_EQ(alive, 0);
}

TEST(AutoObjBase, CountsFromManyThreads) {
    int alive = 0;
    ComPtr<Thing> thing;
    thing.Attach(new Thing(&alive));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([copy = thing]() mutable {
            for (int n = 0; n < 2000; ++n) ComPtr<Thing> another(copy);
            copy.Reset();
        });
    for (auto &t : threads) t.join();
    threads.clear();
    EXPECT_EQ(thing->RefCount(), 1u);
    thing.Reset();
    EXPECT_EQ(alive, 0);
}

}    // namespace
}    // namespace zck
