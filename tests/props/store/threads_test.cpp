#include <atomic>
#include <thread>
#include <vector>

#include "tests/props/store/props_object.h"

namespace zck {
namespace {

using ThreadsTest = PropsTest;

constexpr int kRounds = 400;

TEST_F(ThreadsTest, ReadersSeeWholeValuesWhileWritersWrite) {
    ASSERT_EQ(Set("", "n=7 long=aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa p::q=1"), S_OK);
    std::atomic<int> writing{2};
    std::atomic<int> wrong{0};
    const auto writer = [&](const char *number, const char *text) {
        for (int i = 0; i < kRounds; ++i) {
            Set("n", number);
            Set("long", text);
            Set("p::q", number);
            Set("t::u", text);
            Remove("t");
        }
        --writing;
    };
    const auto reader = [&] {
        const CPropsStore &store = m_object->Store();
        while (writing > 0) {
            const int32_t n = store.GetInt(ZCK_TEXT("n"), -1);
            const int32_t q = store.GetInt(ZCK_TEXT("p::q"), -1);
            const std::string text = Get("long");
            const bool uniform = text.size() == 32 && text == std::string(32, text[0]);
            if ((n != 7 && n != 8 && n != 9) || (q != 1 && q != 8 && q != 9) || !uniform) ++wrong;
            Get("");
            At("", 1);
            Count("p");
        }
    };
    std::vector<std::jthread> threads;
    threads.emplace_back(writer, "8", "bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb");
    threads.emplace_back(writer, "9", "cccccccccccccccccccccccccccccccc");
    threads.emplace_back(reader);
    threads.emplace_back(reader);
    threads.clear();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(Get("t"), kAbsent);
}

}    // namespace
}    // namespace zck
