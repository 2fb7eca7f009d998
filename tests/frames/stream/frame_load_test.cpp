#include "frames/stream/frame_load.h"

#include <cstring>

#include "frames/stream/byte_source.h"
#include "platform/memory_stream.h"
#include "tests/frames/stream/stored_bytes.h"

namespace zck::test {
namespace {

struct Result {
    HRESULT status = E_FAIL;
    FrameLoad load;
    PixelsAsked pixels;
};

void LoadStream(const std::string &bytes, int32_t flags, Result &result, size_t most = SIZE_MAX) {
    ByteStream stream(bytes);
    stream.object->m_most = most;
    result.load.flags = flags;
    std::memset(static_cast<void *>(&result.load.time), 0x77, sizeof(Z_TIME));
    result.status = FrameLoadStream(stream.stream.get(), result.pixels, result.load);
}

void LoadBlock(const std::string &bytes, int32_t flags, Result &result) {
    // A copy of its own, so that a sanitizer sees a read past its end.
    const std::vector<uint8_t> block(bytes.begin(), bytes.end());
    result.load.flags = flags;
    std::memset(static_cast<void *>(&result.load.time), 0x77, sizeof(Z_TIME));
    result.status = FrameLoadBlock(block.data(), static_cast<uint32_t>(block.size()), result.pixels, result.load);
}

void ExpectMedia(const SampleContent &sample, int32_t written, Result &result) {
    const int32_t flags = result.load.flags;
    const bool video = (flags & 3) != 0;
    const bool audio = (flags & 16) != 0;
    const bool media = (written & 19) != 0 && (flags & 19) != 0;
    EXPECT_EQ(media && video, result.load.bVideo);
    EXPECT_EQ(media && audio, result.load.bAudio);
    EXPECT_EQ(media, result.load.bTime);
    EXPECT_EQ(media, result.load.bProps);
    EXPECT_EQ(media && video && (written & 3) != 0 ? 1 : 0, result.pixels.count);
    const bool bytes = media && audio && (written & 16) != 0;
    EXPECT_EQ(bytes ? std::string(sample.m_audio.begin(), sample.m_audio.end()) : std::string(), Said(result.load.audio));
    if (!media) return;
    EXPECT_EQ(0x1111111111111111, result.load.time.rtStartTime);
    EXPECT_EQ((written & 3) != 0 ? 0x22222222 : 0, result.load.props.vidProps.nWidth);
    EXPECT_EQ((written & 16) != 0 ? 0x22222222 : 0, result.load.props.audProps.nChannels);
    EXPECT_EQ((written & 16) != 0 ? 0x22222222 : 0, result.load.props.ancData.audOutput.nTracksSplitBit);
    EXPECT_EQ(0, result.load.props.bLocked);
}

void ExpectNamed(int32_t written, Result &result) {
    const bool data = (written & 256) != 0 && (result.load.flags & 256) != 0;
    const NamedMaps &named = result.load.named;
    ASSERT_EQ(data ? 2U : 0U, named.data.Count());
    ASSERT_EQ(data ? 2U : 0U, named.texts.Count());
    if (!data) return;
    EXPECT_EQ("12345", Said(*named.data.At(0)));
    EXPECT_EQ(TextView(), named.data.Name(1));
    EXPECT_EQ(0U, named.data.At(1)->Size());
    EXPECT_EQ(8U, named.data.At(1)->Capacity());
    EXPECT_EQ(0x99, *named.data.At(1)->Data());
    EXPECT_EQ(Text(ZCK_TEXT("words")), named.texts.At(0));
    EXPECT_EQ(Text(), named.texts.At(1));
}

// A mask that contains media, or a writer without them.
TEST(FrameLoad, EveryWriterAndEveryReader) {
    const SampleContent sample;
    for (int32_t w = 0; w < 32; ++w) {
        for (int32_t r = 0; r < 32; ++r) {
            const auto bits = [](int32_t i) { return (i & 3) | (i & 4) << 2 | (i & 8) << 5 | (i & 16) << 5; };
            const int32_t written = bits(w);
            const int32_t read = bits(r) | (w == 7 ? INT32_MIN : 4);
            if ((written & 19) != 0 && (read & 19) == 0) continue;
            Result result;
            LoadStream(sample.Stream(written), read, result, 1 + static_cast<size_t>(r) * 100);
            EXPECT_EQ(S_OK, result.status) << written << " " << read;
            ExpectMedia(sample, written, result);
            ExpectNamed(written, result);
            Result fromBlock;
            LoadBlock(sample.Body(written) + std::string(20, '\0'), read, fromBlock);
            EXPECT_EQ(S_OK, fromBlock.status) << written << " " << read;
            ExpectMedia(sample, written, fromBlock);
            ExpectNamed(written, fromBlock);
        }
    }
}

// The reader does not step over media that it was not asked for, and reads on at the wrong place.
TEST(FrameLoad, AMaskWithoutMediaReadsMediaAsData) {
    // The video size is taken for the data flag, the two halves of the section's number for counts, and so on.
    const std::string media = Form().Number(1).Number(7).Number(1).Number(0).Number(0).Number(0, 8).Number(0).Number(0).Bytes();
    Result result;
    LoadStream("ZFRM" + media, eZFC_Data, result);
    EXPECT_EQ(S_OK, result.status);
    EXPECT_EQ(1U, result.load.named.data.Count());
    EXPECT_FALSE(result.load.bTime);
    const SampleContent sample;
    Result wrong;
    LoadStream(sample.Stream(eZFC_Full), eZFC_Data, wrong);
    EXPECT_EQ(E_ACCESSDENIED, wrong.status);
    Result block;
    LoadBlock(sample.Body(eZFC_Full), eZFC_Data, block);
    EXPECT_EQ(S_OK, block.status);
}

TEST(FrameLoad, TheMark) {
    for (const char *bytes : {"", "ZFR", "ZFRN____", "zfrm____"}) {
        Result result;
        LoadStream(bytes, eZFC_Full, result);
        EXPECT_EQ(E_FAIL, result.status) << bytes;
    }
    Result result;
    LoadStream("ZFRM", eZFC_Full, result);
    EXPECT_EQ(kErrorHandleEof, result.status);
}

TEST(FrameLoad, AnyFlagWordIsYes) {
    Result result;
    LoadStream("ZFRM" + Form().Number(0).Number(0x80000000).Number(0).Number(0).Number(0).Bytes(), eZFC_Data, result);
    EXPECT_EQ(S_OK, result.status);
    Result media;
    LoadStream("ZFRM" + Form().Number(0x100).Bytes(), eZFC_Audio, media);
    EXPECT_EQ(kErrorHandleEof, media.status);
}

// Where the fields of a whole sample end: mark, flag, size, number, size, sound, time, description, flag, ...
constexpr size_t kSizes = 4 + 4 + 4 + 8;
constexpr size_t kSound = kSizes + 4 + 1000;
constexpr size_t kTime = kSound + 48;
constexpr size_t kProps = kTime + 2144;

TEST(FrameLoad, AStreamThatIsCutEndsWithItsLastWholeField) {
    const SampleContent sample;
    const std::string whole = sample.Stream(eZFC_Full);
    const std::string body = sample.Body(eZFC_Full);
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        Result result;
        LoadStream(whole.substr(0, cut), eZFC_Full, result);
        const bool mark = cut < 4;
        ASSERT_TRUE(result.status == kErrorHandleEof || (result.status == E_FAIL && (mark || cut >= kProps + 8))) << cut;
        ASSERT_EQ(cut >= kSizes, result.load.bVideo) << cut;
        ASSERT_EQ(cut >= kSizes ? 1 : 0, result.pixels.count) << cut;
        ASSERT_EQ(cut >= kSound, result.load.bAudio) << cut;
        ASSERT_EQ(cut >= kSound ? 1000U : 0U, result.load.audio.Size()) << cut;
        ASSERT_EQ(cut >= kTime, result.load.bTime) << cut;
        ASSERT_EQ(cut >= kTime ? 0x1111111111111111 : 0x7777777777777777, result.load.time.rtEndTime) << cut;
        ASSERT_EQ(cut >= kProps, result.load.bProps) << cut;
        ASSERT_EQ((cut >= kProps + 8 + 14 + 4 + 5 ? 1U : 0U) + (cut >= kProps + 8 + 23 + 16 ? 1U : 0U),
                  result.load.named.data.Count())
            << cut;
    }
}

TEST(FrameLoad, ABlockThatIsCutHasWhatIsThere) {
    const SampleContent sample;
    const std::string whole = sample.Body(eZFC_Full);
    for (size_t cut = 0; cut < whole.size(); ++cut) {
        Result result;
        LoadBlock(whole.substr(0, cut), eZFC_Full, result);
        ASSERT_EQ(cut < 4 ? kErrorHandleEof : S_OK, result.status) << cut;
        if (cut < 4) continue;
        ASSERT_TRUE(result.load.bVideo && result.load.bAudio && result.load.bTime && result.load.bProps) << cut;
        const size_t sound = cut < kSizes ? 0 : std::min<size_t>(cut - kSizes, 1000);
        ASSERT_EQ(sound, result.load.audio.Size()) << cut;
        // The time of the frame stays where the block's has no bytes.
        int64_t time = 0x7777777777777777;
        const size_t end = kSound - 4 + 8;
        if (cut > end) std::memset(&time, 0x11, std::min<size_t>(cut - end, 8));
        ASSERT_EQ(time, result.load.time.rtEndTime) << cut;
    }
    Result video;
    LoadBlock(whole.substr(0, 7), eZFC_Full, video);
    EXPECT_EQ(0, video.pixels.count);    // the section's number is 0
    Result part;
    LoadBlock(whole.substr(0, 9), eZFC_Full, part);
    EXPECT_EQ(0x88U, part.pixels.m_section);
    EXPECT_EQ(0x01020304U, part.pixels.m_size);
}

TEST(FrameLoad, SoundThatIsPassedOverHasToBeThereInABlock) {
    const std::string head = Form().Number(1).Number(0).Number(0, 8).Number(100).Bytes();
    Result result;
    LoadBlock(head + std::string(99, 'x'), eZFC_Video, result);
    EXPECT_EQ(E_INVALIDARG, result.status);
    EXPECT_TRUE(result.load.bVideo);
    EXPECT_FALSE(result.load.bTime);
    Result whole;
    LoadBlock(head + std::string(100, 'x'), eZFC_Video, whole);
    EXPECT_EQ(S_OK, whole.status);
    // A stream may be sought past its end; the next field is missing then.
    Result stream;
    LoadStream("ZFRM" + head + std::string(99, 'x'), eZFC_Video, stream);
    EXPECT_EQ(kErrorHandleEof, stream.status);
}

TEST(FrameLoad, PixelsThatDoNotComeEndTheLoad) {
    const SampleContent sample;
    for (const bool block : {true, false}) {
        Result result;
        result.pixels.status = kErrorFileNotFound;
        if (block) {
            LoadBlock(sample.Body(eZFC_Full), eZFC_VideoRef_Audio, result);
        } else {
            LoadStream(sample.Stream(eZFC_Full), eZFC_VideoRef_Audio, result);
        }
        EXPECT_EQ(kErrorFileNotFound, result.status);
        EXPECT_TRUE(result.load.bVideo);
        EXPECT_FALSE(result.load.bAudio);
        EXPECT_FALSE(result.load.bTime);
    }
    // Nothing is opened without a size or a number.
    for (const uint64_t section : {0U, 5U}) {
        Result result;
        LoadBlock(Form().Number(1).Number(section == 0 ? 9 : 0).Number(section, 8).Bytes(), eZFC_Video, result);
        EXPECT_EQ(0, result.pixels.count);
        EXPECT_TRUE(result.load.bVideo);
    }
}

struct HostileCase {
    const char *name;
    std::string bytes;    // behind the flags
    HRESULT status;       // of a stream
    size_t data;
    size_t texts;
};

TEST(FrameLoad, CountsEndWithTheFirstEntryThatIsNotThere) {
    const std::string one = Form().Words(ZCK_TEXT("a")).Number(1).Raw("x").Bytes();
    const std::string two = Form().Words(ZCK_TEXT("b")).Number(0).Number(7, 8).Bytes();
    const std::string text = Form().Words(ZCK_TEXT("c")).Words(ZCK_TEXT("d")).Bytes();
    const HostileCase cases[] = {
        {"four billion entries", Form().Number(0xFFFFFFFF).Raw(one).Raw(two).Bytes(), E_FAIL, 2, 0},
        {"a value of four billion bytes", Form().Number(1).Words(ZCK_TEXT("a")).Number(0xFFFFFFFF).Bytes(), E_OUTOFMEMORY, 0,
         0},
        {"a value of two billion bytes", Form().Number(1).Words(ZCK_TEXT("a")).Number(0x7FFFFFFF).Bytes(), kErrorHandleEof, 0,
         0},
        {"a value that is cut", Form().Number(2).Raw(one).Words(ZCK_TEXT("b")).Number(2).Raw("x").Bytes(), kErrorHandleEof, 1,
         0},
        {"a value in place of an address that is cut", Form().Number(1).Words(ZCK_TEXT("a")).Number(0).Raw("1234567").Bytes(),
         kErrorHandleEof, 0, 0},
        {"a name that is too long", Form().Number(2).Raw(one).Number(0x100002).Raw(one).Bytes(), E_ACCESSDENIED, 1, 0},
        {"no length", Form().Number(1).Words(ZCK_TEXT("a")).Bytes(), kErrorHandleEof, 0, 0},
        {"four billion texts", Form().Number(0).Number(0xFFFFFFFF).Raw(text).Words(ZCK_TEXT("e")).Bytes(), E_FAIL, 0, 1},
        {"no count of texts", Form().Number(1).Raw(one).Bytes(), kErrorHandleEof, 1, 0},
        {"one name again and again", Form().Number(3).Raw(one).Raw(one).Raw(one).Number(0).Number(0).Bytes(), S_OK, 1, 0},
    };
    for (const HostileCase &c : cases) {
        const std::string bytes = Form().Number(0).Number(1).Raw(c.bytes).Bytes();
        Result stream;
        LoadStream("ZFRM" + bytes, eZFC_Data, stream);
        EXPECT_EQ(c.status, stream.status) << c.name;
        EXPECT_EQ(c.data, stream.load.named.data.Count()) << c.name;
        EXPECT_EQ(c.texts, stream.load.named.texts.Count()) << c.name;
        Result block;
        LoadBlock(bytes, eZFC_Data, block);
        EXPECT_EQ(S_OK, block.status) << c.name;
        EXPECT_EQ(c.data, block.load.named.data.Count()) << c.name;
        EXPECT_EQ(c.texts, block.load.named.texts.Count()) << c.name;
    }
}

TEST(FrameLoad, SoundOfFourBillionBytes) {
    const std::string head = Form().Number(1).Number(0).Number(0, 8).Number(0x80000000).Bytes();
    Result stream;
    LoadStream("ZFRM" + head + "xyz", eZFC_Audio, stream);
    EXPECT_EQ(E_OUTOFMEMORY, stream.status);
    EXPECT_FALSE(stream.load.bAudio);
    Result block;
    LoadBlock(head + "xyz", eZFC_Audio, block);
    EXPECT_EQ(S_OK, block.status);
    EXPECT_EQ("xyz", Said(block.load.audio));
}

// Objects that do not come are passed over; where none can come, the load ends with their count.
TEST(FrameLoad, ObjectsOfAnotherSystem) {
    const std::string head = "ZFRM" + Form().Number(0).Number(1).Number(0).Number(0).Bytes();
    Result none;
    LoadStream(head, eZFC_Data, none);
    EXPECT_EQ(kErrorHandleEof, none.status);
    Result some;
    LoadStream(head + Form().Number(5).Bytes(), eZFC_Data, some);
    EXPECT_EQ(MarshalingExists() ? E_FAIL : S_OK, some.status);
    EXPECT_EQ(0U, some.load.named.objects.Count());
}

}    // namespace
}    // namespace zck::test
