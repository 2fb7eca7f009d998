#include "frames/stream/frame_save.h"

#include "platform/memory_stream.h"
#include "tests/frames/stream/stored_bytes.h"

namespace zck::test {
namespace {

// Every set of the bits that mean something, and bits that mean nothing.
std::vector<int32_t> AllFlags() {
    std::vector<int32_t> all;
    for (int i = 0; i < 32; ++i) {
        const int32_t flags = (i & 3) | (i & 4) << 2 | (i & 8) << 5 | (i & 16) << 5;
        all.insert(all.end(), {flags, flags | 4, flags | INT32_MIN});
    }
    return all;
}

std::string SavedBlock(const FrameContent &content) {
    int32_t size = -1;
    void *block = nullptr;
    EXPECT_EQ(S_OK, FrameSaveBlock(content, size, block));
    std::string bytes(static_cast<const char *>(block), static_cast<size_t>(size));
    CoTaskMemFree(block);
    return bytes;
}

std::string SavedStream(const FrameContent &content) {
    ByteStream stream;
    EXPECT_EQ(S_OK, FrameSaveStream(content, stream.stream.get()));
    return stream.object->m_bytes;
}

TEST(FrameSave, BothFormsFieldByField) {
    const SampleContent sample;
    for (const int32_t flags : AllFlags()) {
        EXPECT_EQ(sample.Stream(flags), SavedStream(sample.With(flags))) << flags;
        EXPECT_EQ(sample.Stream(flags).size() - ((flags & 256) != 0 ? 4 : 0), FrameStreamBytes(sample.With(flags)));
        std::string body = sample.Body(flags);
        body.resize((body.size() + 31) / 32 * 32);    // zeros behind the used bytes
        EXPECT_EQ(body, SavedBlock(sample.With(flags))) << flags;
    }
}

TEST(FrameSave, DataAlone) {
    NamedMaps none;
    FrameContent content;
    content.flags = eZFC_Data;
    content.named = &none;
    EXPECT_EQ("ZFRM" + Form().Number(0).Number(1).Number(0).Number(0).Number(0).Bytes(), SavedStream(content));
    EXPECT_EQ(32U, SavedBlock(content).size());
}

TEST(FrameSave, ABlockOfWholeGrainsHasNothingBehind) {
    NamedMaps named;
    FrameContent content;
    content.flags = eZFC_Data;
    content.named = &named;
    // 16 bytes of counts; a name of one letter and its length are 12.
    for (const uint32_t bytes : {3U, 4U, 5U}) {
        DataBlobPtr blob;
        ASSERT_EQ(S_OK, DataBlobCreate("12345678", bytes, bytes, blob));
        named.data.Set(ZCK_TEXT("n"), blob);
        EXPECT_EQ(bytes <= 4 ? 32U : 64U, SavedBlock(content).size()) << bytes;
    }
}

// Units behind a zero travel in the stream form, and end a text in the block form.
TEST(FrameSave, ZerosInsideOfTexts) {
    const OLECHAR units[] = {'a', 0, 'b'};
    const OLECHAR zero[] = {0};
    NamedMaps named;
    named.texts.Set(TextView(units, 3), Text(TextView(zero, 1)));
    FrameContent content;
    content.flags = eZFC_Data;
    content.named = &named;
    const std::string head = Form().Number(0).Number(1).Number(0).Number(1).Bytes();
    EXPECT_EQ("ZFRM" + head + Form().Words(TextView(units, 3)).Words(TextView(zero, 1)).Number(0).Bytes(),
              SavedStream(content));
    const std::string block = head + Form().Words(ZCK_TEXT("a")).Words(TextView()).Bytes();
    EXPECT_EQ(block, SavedBlock(content).substr(0, block.size()));
}

struct FailureCase {
    const char *name;
    size_t least;    // writes of fewer bytes fail
    size_t most;     // of more bytes they are cut
    HRESULT result;
};

// Small writes to a healthy stream do not fail, so nobody looks at them.
TEST(FrameSave, OnlyTheMarkSoundAndValuesHaveToBeWritten) {
    SampleContent sample;
    const FailureCase cases[] = {
        {"the mark", 5, SIZE_MAX, E_ACCESSDENIED},
        {"the mark in part", 0, 3, kStgMediumFull},
        {"sound", 0, 999, kStgMediumFull},
        {"time and description", 0, 1000, S_OK},
    };
    for (const FailureCase &c : cases) {
        ByteStream stream;
        stream.object->m_least = c.least;
        stream.object->m_most = c.most;
        EXPECT_EQ(c.result, FrameSaveStream(sample.With(eZFC_Audio), stream.stream.get())) << c.name;
    }
    DataBlobPtr blob;
    const std::string large(5000, 'x');
    ASSERT_EQ(S_OK, DataBlobCreate(large.data(), 5000, 5000, blob));
    sample.m_named.data.Set(ZCK_TEXT("five"), blob);
    ByteStream stream;
    stream.object->m_most = 4999;
    EXPECT_EQ(kStgMediumFull, FrameSaveStream(sample.With(eZFC_Data), stream.stream.get()));
    stream.object->m_most = 5000;
    EXPECT_EQ(S_OK, FrameSaveStream(sample.With(eZFC_Data), stream.stream.get()));
    // All writes but the mark are refused or cut.
    ByteStream deaf;
    deaf.object->m_after = 1;
    EXPECT_EQ(S_OK, FrameSaveStream(sample.With(eZFC_Video), deaf.stream.get()));
    EXPECT_EQ("ZFRM", deaf.object->m_bytes);
}

}    // namespace
}    // namespace zck::test
