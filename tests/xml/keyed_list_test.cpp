#include "xml/keyed_list.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace zck::XMLParse {
namespace {

using List = KeyedList<int>;

TEST(KeyedList, KeepsOrderAndFindsByKey) {
    List list;
    EXPECT_TRUE(list.Empty());
    EXPECT_EQ(list.Find(1), List::kNone);
    list.Append(7, 70);
    list.Append(8, 80);
    list.Append(7, 71);
    EXPECT_EQ(list.Size(), 3U);
    EXPECT_EQ(list.Find(7), 0U);
    EXPECT_EQ(list.Find(7, 1), 2U);
    EXPECT_EQ(list.Find(7, 2), List::kNone);
    EXPECT_EQ(list.Find(8), 1U);
}

TEST(KeyedList, NoKeyFindsAnUnkeyedElement) {
    List list;
    list.AppendUnkeyed(1);
    list.InsertUnkeyed(0, 2);
    EXPECT_EQ(list.Find(0), List::kNone);
    EXPECT_EQ(list[0], 2);
}

TEST(KeyedList, PastTheEndAppends) {
    List list;
    list.Insert(99, 1, 10);
    list.Insert(List::kNone, 2, 20);
    EXPECT_EQ(list[0], 10);
    EXPECT_EQ(list[1], 20);
}

/// What the list shall do, in the plainest way.
struct Model {
    struct Entry {
        uint64_t key;
        bool keyed;
        int element;
    };
    std::vector<Entry> entries;

    size_t Find(uint64_t key, size_t nth) const {
        for (size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].keyed && entries[i].key == key && nth-- == 0) return i;
        }
        return List::kNone;
    }
};

void ExpectSame(const List &list, const Model &model, uint64_t keys) {
    ASSERT_EQ(list.Size(), model.entries.size());
    for (size_t i = 0; i < list.Size(); ++i) ASSERT_EQ(list[i], model.entries[i].element) << i;
    for (uint64_t key = 0; key < keys; ++key) {
        for (size_t nth = 0; nth < 4; ++nth) ASSERT_EQ(list.Find(key, nth), model.Find(key, nth)) << key << " " << nth;
    }
}

TEST(KeyedList, AnySequenceIsThatOfAPlainList) {
    constexpr uint32_t kSeed = 5;
    constexpr uint64_t kKeys = 12;
    RecordProperty("seed", kSeed);
    std::mt19937 random(kSeed);
    List list;
    Model model;
    for (int step = 0; step < 4000; ++step) {
        const uint64_t key = random() % kKeys;
        const size_t at = random() % (model.entries.size() + 1);
        const auto place = model.entries.begin() + static_cast<std::ptrdiff_t>(at);
        const uint32_t what = random() % 8;
        if (what < 3 || model.entries.size() < 3) {
            list.Insert(at, key, step);
            model.entries.insert(place, {key, true, step});
        } else if (what == 3) {
            list.InsertUnkeyed(at, step);
            model.entries.insert(place, {0, false, step});
        } else if (what == 4 && at < model.entries.size()) {
            list.Rekey(at, key);
            place->key = key;
            place->keyed = true;
        } else if (at < model.entries.size() && (what > 5 || model.entries.size() > 40)) {
            EXPECT_EQ(list.Remove(at), place->element);
            model.entries.erase(place);
        }
        ExpectSame(list, model, kKeys);
        if (HasFatalFailure()) FAIL() << "step " << step;
        if (step == 2000) {
            list.Clear();
            model.entries.clear();
        }
    }
}

}    // namespace
}    // namespace zck::XMLParse
