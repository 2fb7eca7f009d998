// The tables are contracts with hosts: the order of the slots must not move.
#include <gtest/gtest.h>

#include "tests/support/slot.h"
#include "zchromakey/zchromakey.h"

namespace {

using zck::test::Slot;

TEST(PublicSlots, Props) {
    EXPECT_EQ(3U, Slot(&IZProps::PropsSet));
    EXPECT_EQ(4U, Slot(&IZProps::PropsGet));
    EXPECT_EQ(5U, Slot(&IZProps::PropsGetCount));
    EXPECT_EQ(6U, Slot(&IZProps::PropsGetByIndex));
    EXPECT_EQ(7U, Slot(&IZProps::PropsRemove));
    EXPECT_EQ(8U, Slot(&IZProps::PropsInfoGet));
    EXPECT_EQ(9U, Slot(&IZProps::PropsOptionGetCount));
    EXPECT_EQ(10U, Slot(&IZProps::PropsOptionGetByIndex));
    EXPECT_EQ(11U, Slot(&IZProps::PropsOptionSetByIndex));
    EXPECT_EQ(12U, Slot(&IZProps::PropsOptionGet));
}

TEST(PublicSlots, Persist) {
    EXPECT_EQ(3U, Slot(&IZPersist::PersistSaveToFile));
    EXPECT_EQ(4U, Slot(&IZPersist::PersistSaveToString));
    EXPECT_EQ(5U, Slot(&IZPersist::PersistLoad));
}

TEST(PublicSlots, Keyer) {
    EXPECT_EQ(3U, Slot(&IZPlugin::OnMediaReceive));
    EXPECT_EQ(4U, Slot(&IZPlugin::OnMediaEnd));
    EXPECT_EQ(5U, Slot(&IZPlugin::OnMediaFlush));
    EXPECT_EQ(3U, Slot(&IZChromaKey::KeySet));
    EXPECT_EQ(4U, Slot(&IZChromaKey::KeyGet));
    EXPECT_EQ(5U, Slot(&IZChromaKey::KeyRawSet));
    EXPECT_EQ(6U, Slot(&IZChromaKey::KeyRawGet));
}

// Where the system has no such interfaces these are our own, and a host's stream is called by them.
TEST(PublicSlots, Streams) {
    EXPECT_EQ(3U, Slot(&IPersistStream::GetClassID));
    EXPECT_EQ(4U, Slot(&IPersistStream::IsDirty));
    EXPECT_EQ(5U, Slot(&IPersistStream::Load));
    EXPECT_EQ(6U, Slot(&IPersistStream::Save));
    EXPECT_EQ(7U, Slot(&IPersistStream::GetSizeMax));
    EXPECT_EQ(3U, Slot(&IStream::Read));
    EXPECT_EQ(4U, Slot(&IStream::Write));
    EXPECT_EQ(5U, Slot(&IStream::Seek));
    EXPECT_EQ(6U, Slot(&IStream::SetSize));
    EXPECT_EQ(7U, Slot(&IStream::CopyTo));
    EXPECT_EQ(8U, Slot(&IStream::Commit));
    EXPECT_EQ(9U, Slot(&IStream::Revert));
    EXPECT_EQ(10U, Slot(&IStream::LockRegion));
    EXPECT_EQ(11U, Slot(&IStream::UnlockRegion));
    EXPECT_EQ(12U, Slot(&IStream::Stat));
    EXPECT_EQ(13U, Slot(&IStream::Clone));
}

}    // namespace
