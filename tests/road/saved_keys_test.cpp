// Frames of saved keys through the library as a host loads it.
#include "tests/road/saved_keys.h"

#include <gtest/gtest.h>

namespace zck {
namespace {

TEST(SavedKeys, ThePictureIsTheOneThatWasKeyed) { EXPECT_EQ(PictureHash(), 0xAD6E5C7DBDFC2C2B); }

TEST(SavedKeys, FramesAreThoseThatWereWrittenDown) {
    for (const SavedKey &saved : SavedKeys())
        for (int thread = 0; thread < 3; ++thread) ExpectSavedFrame(saved, thread);
}

}    // namespace
}    // namespace zck
