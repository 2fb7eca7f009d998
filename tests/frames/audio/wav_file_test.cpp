// WAV files: bytes as written, files of other programs, appending.
#include "frames/audio/wav_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

#include "platform/status.h"
#include "tests/support/scratch_folder.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// Bytes of a file are put together from texts and numbers.
Bytes operator+(Bytes a, const Bytes &b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
Bytes Tag(const char *tag) { return Bytes(tag, tag + std::strlen(tag)); }
Bytes N16(uint32_t n) { return {static_cast<uint8_t>(n), static_cast<uint8_t>(n >> 8)}; }
Bytes N32(uint32_t n) { return N16(n) + N16(n >> 16); }
Bytes Chunk(const char *tag, const Bytes &body) {
    return Tag(tag) + N32(static_cast<uint32_t>(body.size())) + body + Bytes(body.size() % 2);
}
Bytes Format(uint32_t tag, uint32_t channels, uint32_t rate, uint32_t align, uint32_t bits) {
    return N16(tag) + N16(channels) + N32(rate) + N32(rate * align) + N16(align) + N16(bits);
}
const Bytes kRest = {0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71};
Bytes Extensible(uint32_t channels, uint32_t rate, uint32_t align, uint32_t bits, uint32_t valid, uint32_t mask, uint32_t sub) {
    return Format(0xFFFE, channels, rate, align, bits) + N16(22) + N16(valid) + N32(mask) + N16(sub) + kRest;
}
Bytes Riff(const Bytes &chunks) { return Tag("RIFF") + N32(static_cast<uint32_t>(chunks.size() + 4)) + Tag("WAVE") + chunks; }
Bytes Counting(size_t n) {
    Bytes bytes(n);
    std::iota(bytes.begin(), bytes.end(), uint8_t{1});
    return bytes;
}

class WavFile : public ::testing::Test {
protected:
    Text Path() const { return TextFromUtf8(m_folder.Path("sound.wav")); }
    Bytes Read() const {
        std::string bytes;
        EXPECT_EQ(S_OK, FileRead(Path(), 1 << 24, bytes));
        return Bytes(bytes.begin(), bytes.end());
    }
    void Write(const Bytes &bytes) const {
        ASSERT_EQ(S_OK, FileWrite(Path(), {reinterpret_cast<const char *>(bytes.data()), bytes.size()}));
    }
    HRESULT Save(Z_AUD_PROPS props, Bytes sound, bool append) const {
        return WavSave(Path(), append, {props, sound.data(), static_cast<uint32_t>(sound.size())});
    }

    struct Loaded {
        HRESULT status;
        Z_AUD_PROPS props = {};
        Bytes sound;
    };
    Loaded Load(int64_t first = 0, int64_t count = INT32_MAX) const {
        Loaded loaded;
        CBLOBHolder<CHeapAlloc> bytes;
        const Z_AUD_PROPS none = {};
        loaded.status = WavLoad(Path(), first, count, {none, nullptr, 0}, loaded.props, bytes);
        if (bytes.Size() != 0) loaded.sound.assign(bytes.Data(), bytes.Data() + bytes.Size());
        return loaded;
    }
    bool SameProps(const Z_AUD_PROPS &a, const Z_AUD_PROPS &b) const { return std::memcmp(&a, &b, sizeof(a)) == 0; }

    test::ScratchFolder m_folder;
};

TEST_F(WavFile, PlainHeader) {
    ASSERT_EQ(S_OK, Save({2, 48000, 16, 9}, Counting(8), false));
    EXPECT_EQ(Riff(Chunk("fmt ", Format(1, 2, 48000, 4, 16)) + Chunk("data", Counting(8))), Read());
    EXPECT_EQ(52u, Read().size());
}

struct HeaderCase {
    Z_AUD_PROPS props;
    Bytes format;
};

TEST_F(WavFile, ExtensibleHeaders) {
    const HeaderCase cases[] = {
        {{3, 8000, 16, 0}, Extensible(3, 8000, 6, 16, 16, 7, 1)},
        {{2, 96000, 24, 0}, Extensible(2, 96000, 6, 32, 24, 3, 1)},
        {{1, 96000, 20, 0}, Extensible(1, 96000, 3, 32, 20, 1, 1)},
        {{1, 48000, 32, 0}, Extensible(1, 48000, 4, 32, 32, 1, 1)},
        {{1, 48000, -32, 0}, Extensible(1, 48000, 4, 32, 32, 1, 3)},
        {{31, 1, 8, 0}, Extensible(31, 1, 31, 8, 8, 0x7FFFFFFF, 1)},
        {{32, 1, 8, 0}, Extensible(32, 1, 32, 8, 8, 0xFFFFFFFF, 1)},
        {{128, INT32_MAX, -64, 0}, Extensible(128, INT32_MAX, 1024, 64, 64, 0xFFFFFFFF, 3)},
    };
    for (const HeaderCase &c : cases) {
        const Bytes sound = Counting(static_cast<size_t>(c.format[12] + c.format[13] * 256) * 2);
        ASSERT_EQ(S_OK, Save(c.props, sound, false));
        EXPECT_EQ(Riff(Chunk("fmt ", c.format) + Chunk("data", sound)), Read()) << c.props.nBitsPerSample;
        // What was written reads back, and goes on.
        EXPECT_TRUE(SameProps(c.props, Load().props)) << c.props.nBitsPerSample;
        EXPECT_EQ(sound, Load().sound);
        ASSERT_EQ(S_OK, Save(c.props, sound, true));
        EXPECT_EQ(Riff(Chunk("fmt ", c.format) + Chunk("data", sound + sound)), Read()) << c.props.nBitsPerSample;
    }
}

TEST_F(WavFile, NoPadBehindOddData) {
    ASSERT_EQ(S_OK, Save({1, 8000, 8, 0}, Counting(3), false));
    Bytes expected = Tag("RIFF") + N32(39) + Tag("WAVE") + Chunk("fmt ", Format(1, 1, 8000, 1, 8)) + Tag("data") + N32(3);
    EXPECT_EQ(expected + Counting(3), Read());
    ASSERT_EQ(S_OK, Save({1, 8000, 8, 0}, Counting(1), true));
    EXPECT_EQ((Bytes{1, 2, 3, 1}), Load().sound);
}

TEST_F(WavFile, RecordsWithoutAHeaderTouchNoFile) {
    Write({7});
    for (const Z_AUD_PROPS props :
         {Z_AUD_PROPS{65536, 1, 8, 0}, {40000, 1, 16, 0}, {2000000000, 1, 32, 0}, {1, 1, INT32_MIN, 0}}) {
        EXPECT_EQ(kVfwEInvalidMediaType, Save(props, Counting(4), false));
        EXPECT_EQ(kVfwEInvalidMediaType, Save(props, Counting(4), true));
    }
    EXPECT_EQ(Bytes{7}, Read());
}

// Files that other programs write.
struct ForeignCase {
    const char *name;
    Bytes file;
    Z_AUD_PROPS props;
    Bytes sound;
};

std::vector<ForeignCase> Foreign() {
    const Bytes fmt = Chunk("fmt ", Format(1, 1, 48000, 2, 16));
    const Bytes list = Chunk("LIST", Counting(5));
    const Bytes head = Tag("RIFF") + N32(4) + Tag("WAVE");
    return {
        {"chunks before the format and before the data, odd ones too",
         Riff(list + fmt + Chunk("fact", Counting(4)) + list + Chunk("data", {1, 2, 3, 4}) + list),
         {1, 48000, 16, 0},
         {1, 2, 3, 4}},
        {"a format of 18 bytes",
         Riff(Chunk("fmt ", Format(3, 1, 48000, 4, 32) + N16(0)) + Chunk("data", {1, 2, 3, 4})),
         {1, 48000, -32, 0},
         {1, 2, 3, 4}},
        {"24 bits in the plain form",
         Riff(Chunk("fmt ", Format(1, 1, 48000, 3, 24)) + Chunk("data", {1, 2, 3})),
         {1, 48000, 24, 0},
         {1, 2, 3}},
        {"12 bits", Riff(Chunk("fmt ", Format(1, 1, 48000, 2, 12)) + Chunk("data", {1, 2})), {1, 48000, 12, 0}, {1, 2}},
        {"a longer format, and a second one that does not count",
         Riff(Chunk("fmt ", Extensible(1, 48000, 2, 16, 16, 4, 1) + Counting(6)) + Chunk("fmt ", Format(1, 9, 9, 9, 8)) +
              Chunk("data", {1, 2})),
         {1, 48000, 16, 0},
         {1, 2}},
        {"sizes that a writer did not finish",
         head + fmt + Tag("data") + N32(0xFFFFFFFF) + Counting(6),
         {1, 48000, 16, 0},
         Counting(6)},
        {"or did not begin", head + fmt + Tag("data") + N32(0) + Counting(6), {1, 48000, 16, 0}, Counting(6)},
        {"more than there is", head + fmt + Tag("data") + N32(100) + Counting(6), {1, 48000, 16, 0}, Counting(6)},
        {"a part of a sample", head + fmt + Tag("data") + N32(5) + Counting(5), {1, 48000, 16, 0}, Counting(4)},
    };
}

TEST_F(WavFile, ReadsFilesOfOtherPrograms) {
    for (const ForeignCase &c : Foreign()) {
        Write(c.file);
        const Loaded loaded = Load();
        EXPECT_EQ(S_OK, loaded.status) << c.name;
        EXPECT_TRUE(SameProps(c.props, loaded.props)) << c.name;
        EXPECT_EQ(c.sound, loaded.sound) << c.name;
    }
}

TEST_F(WavFile, AppendsToFilesOfOtherPrograms) {
    for (const ForeignCase &c : Foreign()) {
        if (c.props.nBitsPerSample == 12) continue;
        Write(c.file);
        ASSERT_EQ(S_OK, Save(c.props, Bytes(24, 9), true)) << c.name;
        const Bytes file = Read();
        const Loaded loaded = Load();
        EXPECT_TRUE(SameProps(c.props, loaded.props)) << c.name;
        Bytes sound = loaded.sound;
        EXPECT_EQ(c.sound, Bytes(sound.begin(), sound.begin() + static_cast<ptrdiff_t>(c.sound.size()))) << c.name;
        EXPECT_EQ(9, sound.back()) << c.name;
        // The whole size is right, and what stood before the sound still stands.
        const Bytes size = N32(static_cast<uint32_t>(file.size() - 8));
        EXPECT_EQ(size, Bytes(file.begin() + 4, file.begin() + 8)) << c.name;
        EXPECT_EQ(Bytes(c.file.begin() + 8, c.file.begin() + 40), Bytes(file.begin() + 8, file.begin() + 40)) << c.name;
    }
}

// The plain header says the width of a sample, not its bits: what came as 12 bits is called 16 from the first append on, and
// an append to our own file of 12 bits starts anew.
TEST_F(WavFile, TwelveBitsAreWrittenAsSixteen) {
    const Z_AUD_PROPS props = {1, 48000, 12, 0};
    Write(Riff(Chunk("fmt ", Format(1, 1, 48000, 2, 12)) + Chunk("data", {1, 2})));
    ASSERT_EQ(S_OK, Save(props, {3, 4}, true));
    EXPECT_EQ(Riff(Chunk("fmt ", Format(1, 1, 48000, 2, 16)) + Chunk("data", {1, 2, 3, 4})), Read());
    ASSERT_EQ(S_OK, Save(props, {5, 6}, true));
    EXPECT_EQ((Bytes{5, 6}), Load().sound);
}

TEST_F(WavFile, ChunksBehindTheSoundGiveWay) {
    const Bytes before = Chunk("LIST", Counting(5)) + Chunk("fmt ", Format(1, 1, 48000, 2, 16));
    Write(Riff(before + Chunk("data", {1, 2}) + Chunk("LIST", Counting(100))));
    ASSERT_EQ(S_OK, Save({1, 48000, 16, 0}, {3, 4}, true));
    EXPECT_EQ(Riff(before + Chunk("data", {1, 2, 3, 4})), Read());
}

TEST_F(WavFile, AnyOtherFileStartsAnewWhenAppendedTo) {
    const Bytes expected = Riff(Chunk("fmt ", Format(1, 1, 48000, 2, 16)) + Chunk("data", {1, 2}));
    const Bytes fmt = Chunk("fmt ", Format(1, 1, 48000, 2, 16));
    const Bytes files[] = {
        {},
        Counting(100),
        Riff(Chunk("fmt ", Format(1, 2, 48000, 4, 16)) + Chunk("data", Counting(8))),
        Riff(Chunk("fmt ", Format(1, 1, 44100, 2, 16)) + Chunk("data", Counting(8))),
        Riff(Chunk("fmt ", Format(1, 1, 48000, 2, 12)) + Chunk("data", Counting(8))),
        Riff(Chunk("fmt ", Format(3, 1, 48000, 2, 16)) + Chunk("data", Counting(8))),
        Riff(Chunk("data", Counting(8)) + fmt),
    };
    for (const Bytes &file : files) {
        Write(file);
        ASSERT_EQ(S_OK, Save({1, 48000, 16, 0}, {1, 2}, true));
        EXPECT_EQ(expected, Read());
    }
    // Without appending every file does.
    Write(Riff(fmt + Chunk("data", Counting(8))));
    ASSERT_EQ(S_OK, Save({1, 48000, 16, 0}, {1, 2}, false));
    EXPECT_EQ(expected, Read());
}

TEST_F(WavFile, RefusesWhatIsNoSoundFile) {
    const Bytes data = Chunk("data", Counting(8));
    const auto with = [&](const Bytes &format) { return Riff(Chunk("fmt ", format) + data); };
    Bytes wrongRest = Extensible(1, 48000, 2, 16, 16, 4, 1);
    wrongRest.back() = 0;
    Bytes shortExtra = Extensible(1, 48000, 2, 16, 16, 4, 1);
    shortExtra[16] = 21;
    Bytes many = Tag("RIFF") + N32(0) + Tag("WAVE");
    for (int i = 0; i < 65536; ++i) many.insert(many.end(), {'j', 'u', 'n', 'k', 0, 0, 0, 0});
    const Bytes files[] = {
        {},
        Tag("RIFF"),
        Tag("RIFX") + N32(4) + Tag("WAVE") + data,
        Tag("RIFF") + N32(4) + Tag("AVI ") + data,
        Riff(data),
        Riff(Chunk("fmt ", Format(1, 1, 48000, 2, 16))),
        with(Bytes(15, 1)),
        Tag("RIFF") + N32(4) + Tag("WAVE") + Tag("fmt ") + N32(0xFFFFFFF0) + Format(1, 1, 48000, 2, 16) + data,
        with(Format(2, 1, 48000, 2, 16)),
        with(Format(1, 0, 48000, 2, 16)),
        with(Format(1, 1, 0, 2, 16)),
        with(Format(1, 1, 0x80000000, 2, 16)),
        with(Format(1, 1, 48000, 0, 16)),
        with(Format(1, 2, 48000, 3, 16)),
        with(Format(1, 1, 48000, 3, 32)),
        with(Format(1, 1, 48000, 1, 0)),
        with(Extensible(1, 48000, 3, 32, 16, 4, 1)),
        with(Extensible(1, 48000, 2, 16, 16, 4, 2)),
        with(wrongRest),
        with(shortExtra),
        with(Format(0xFFFE, 1, 48000, 2, 16)),
        many + Chunk("fmt ", Format(1, 1, 48000, 2, 16)) + data,
    };
    int index = 0;
    for (const Bytes &file : files) {
        Write(file);
        EXPECT_EQ(kVfwEInvalidMediaType, Load().status) << index;
        ++index;
    }
}

TEST_F(WavFile, ReadsParts) {
    ASSERT_EQ(S_OK, Save({1, 48000, 16, 0}, Counting(10), false));
    EXPECT_EQ(Counting(10), Load().sound);
    EXPECT_EQ((Bytes{3, 4, 5, 6}), Load(1, 2).sound);
    EXPECT_EQ((Bytes{9, 10}), Load(4, 9).sound);
    EXPECT_EQ(kErrorHandleEof, Load(5, 1).status);
    EXPECT_EQ(kErrorHandleEof, Load(INT64_MAX / 4, 0).status);
    EXPECT_EQ(E_INVALIDARG, Load(-1, 1).status);
    EXPECT_EQ(E_INVALIDARG, Load(0, -1).status);
    // 0 is as long as the sound that is there: none.
    EXPECT_EQ(S_OK, Load(0, 0).status);
    EXPECT_TRUE(Load(0, 0).sound.empty());
    EXPECT_EQ(48000, Load(0, 0).props.nSamplesPerSec);
}

TEST_F(WavFile, AsLongAsOtherSound) {
    ASSERT_EQ(S_OK, Save({1, 3, 16, 0}, Counting(200), false));
    Bytes other(20);
    const auto samples = [&](int32_t rate, uint32_t count) {
        const Z_AUD_PROPS like = {1, rate, 16, 0};
        Z_AUD_PROPS props;
        CBLOBHolder<CHeapAlloc> bytes;
        EXPECT_EQ(S_OK, WavLoad(Path(), 0, 0, {like, other.data(), count * 2}, props, bytes));
        return bytes.Size() / 2;
    };
    EXPECT_EQ(10u, samples(3, 10));
    // Halves away from zero: 1.5 and 2.5.
    EXPECT_EQ(2u, samples(2, 1));
    EXPECT_EQ(3u, samples(6, 5));
    EXPECT_EQ(0u, samples(INT32_MAX, 10));
}

TEST_F(WavFile, StatusesOfTheSystem) {
    EXPECT_EQ(kErrorFileNotFound, Load().status);
    CBLOBHolder<CHeapAlloc> bytes;
    Z_AUD_PROPS props = {};
    EXPECT_TRUE(FAILED(WavLoad(TextFromUtf8(m_folder.Path()), 0, 1, {props, nullptr, 0}, props, bytes)));
    const OLECHAR letters[] = {'a', 0, 'b'};
    const TextView zero(letters, 3);
    Bytes sound = Counting(4);
    const Z_AUD_PROPS mono = {1, 48000, 16, 0};
    EXPECT_TRUE(FAILED(WavSave(TextFromUtf8(m_folder.Path("none/sound.wav")), true, {mono, sound.data(), 4})));
    EXPECT_TRUE(FAILED(WavSave(TextFromUtf8(m_folder.Path()), false, {mono, sound.data(), 4})));
    EXPECT_EQ(kErrorInvalidName, WavSave(zero, false, {mono, sound.data(), 4}));
}

TEST_F(WavFile, FilesEndAt32Bits) {
    // A file that says to be as large as one can be, without being it: data up to the end of the file.
    const Bytes head =
        Tag("RIFF") + N32(0) + Tag("WAVE") + Chunk("fmt ", Format(1, 1, 48000, 2, 16)) + Tag("data") + N32(0xFFFFFFFF);
    Write(head);
    const uint64_t size = 0xFFFFFFF8;
    {
        // Open for itself: one system lets nobody else write meanwhile.
        File file;
        ASSERT_EQ(S_OK, file.Open(Path(), FileMode::Update));
        if (FAILED(file.SetSize(size))) GTEST_SKIP() << "this file system holds no file of 4 GB";
    }
    EXPECT_EQ(kErrorFileTooLarge, Save({1, 48000, 16, 0}, Bytes(18), true));
    {
        File file;
        ASSERT_EQ(S_OK, file.Open(Path(), FileMode::Update));
        uint64_t still = 0;
        ASSERT_EQ(S_OK, file.Size(still));
        EXPECT_EQ(size, still);
    }
    EXPECT_EQ(E_OUTOFMEMORY, Load().status);
    EXPECT_EQ(Bytes(4), Load(0x7FFFFF00, 2).sound);
}

}    // namespace
}    // namespace zck
