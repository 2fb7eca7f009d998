#include "frames/stream/byte_source.h"

#include <cstring>

#include "tests/frames/stream/stored_bytes.h"

namespace zck::test {
namespace {

struct TextCase {
    const char *name;
    std::string bytes;
    HRESULT result;
    Text text;
};

std::vector<TextCase> TextCases() {
    const OLECHAR inside[] = {'a', 0, 0xD800};
    const std::string most(0x100000 - 2, 'x');
    return {
        {"nothing at all", "", E_FAIL, {}},
        {"a count in part", std::string(3, '\0'), E_FAIL, {}},
        {"a count of 0", Form().Number(0).Bytes(), S_OK, {}},
        {"a count of 1", Form().Number(1).Number(0).Bytes(), E_FAIL, {}},
        {"a count of 2 is empty too", Form().Number(2).Number(0, 2).Bytes(), S_OK, {}},
        {"an odd count", Form().Number(5).Number(0, 8).Bytes(), E_FAIL, {}},
        {"no zero at the end", Form().Number(4).Number('a', 2).Number(1, 2).Bytes(), E_FAIL, {}},
        {"cut before the zero", Form().Number(4).Number('a', 2).Number(0, 1).Bytes(), E_FAIL, {}},
        {"cut in the text", Form().Number(100).Number('a', 2).Bytes(), E_FAIL, {}},
        {"zeros and half pairs inside", Form().Words(TextView(inside, 3)).Bytes(), S_OK, Text(inside, 3)},
        {"the longest", Form().Number(0x100000).Raw(most).Number(0, 2).Bytes(), S_OK,
         Text(most.size() / 2, static_cast<OLECHAR>(0x7878))},
        {"longer", Form().Number(0x100002).Raw(most).Number(0, 4).Bytes(), E_ACCESSDENIED, {}},
        {"longer and odd", Form().Number(0xFFFFFFFF).Bytes(), E_ACCESSDENIED, {}},
    };
}

void ExpectText(const TextCase &c, ByteSource &source) {
    Text text(ZCK_TEXT("before"));
    uint8_t first = 0;
    ASSERT_EQ(S_OK, source.Read(&first, 1));
    EXPECT_EQ(c.result, source.ReadText(text)) << c.name;
    EXPECT_EQ(SUCCEEDED(c.result) ? c.text : Text(ZCK_TEXT("before")), text) << c.name;
    // After a failure the text can be read again.
    const size_t start = FAILED(c.result) ? 0 : c.bytes.size();
    std::string rest(c.bytes.size() - start, '\0');
    EXPECT_EQ(S_OK, source.Read(rest.data(), static_cast<uint32_t>(rest.size())));
    EXPECT_EQ(c.bytes.substr(start), rest) << c.name;
    EXPECT_EQ(kErrorHandleEof, source.Read(&first, 1));
}

TEST(ByteSource, TextsOfBothForms) {
    for (const TextCase &c : TextCases()) {
        const std::string bytes = "x" + c.bytes;
        // A copy of its own, so that a sanitizer sees a read past its end.
        const std::vector<uint8_t> block(bytes.begin(), bytes.end());
        BlockSource fromBlock(block.data(), static_cast<uint32_t>(block.size()));
        ExpectText(c, fromBlock);
        for (const size_t most : {SIZE_MAX, size_t{1000}, size_t{1}}) {
            if (bytes.size() > 100000 && most == 1) continue;
            ByteStream stream(bytes);
            stream.object->m_most = most;
            StreamSource source(stream.stream.get());
            ExpectText(c, source);
        }
    }
}

TEST(ByteSource, FieldsOfABlockTakeWhatIsThere) {
    const uint8_t block[] = {1, 2, 3};
    BlockSource source(block, 3);
    uint8_t to[5] = {9, 9, 9, 9, 9};
    EXPECT_EQ(S_OK, source.ReadField(to, 5));
    const uint8_t expected[5] = {1, 2, 3, 9, 9};
    EXPECT_EQ(0, std::memcmp(to, expected, 5));
    EXPECT_EQ(S_OK, source.ReadField(to, 5));
    EXPECT_EQ(kErrorHandleEof, source.Read(to, 1));
    EXPECT_EQ(0U, source.Bounded(7));
}

// A skip past the end leaves the place where it was.
TEST(ByteSource, SkipsInABlockEndWithIt) {
    const uint8_t block[] = {1, 2, 3};
    BlockSource source(block, 3);
    EXPECT_EQ(E_INVALIDARG, source.Skip(4));
    EXPECT_EQ(E_INVALIDARG, source.Skip(0xFFFFFFFF));
    EXPECT_EQ(S_OK, source.Skip(2));
    uint8_t last = 0;
    EXPECT_EQ(S_OK, source.Read(&last, 1));
    EXPECT_EQ(3, last);
}

TEST(ByteSource, LargeValuesOfStreamsOfAnyKind) {
    std::string bytes(5000001, '\0');
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>(i * 3 + (i >> 12));
    for (const bool seeks : {true, false}) {
        for (const size_t most : {SIZE_MAX, size_t{70001}}) {
            ByteStream stream(bytes);
            stream.object->m_seeks = seeks;
            stream.object->m_most = most;
            StreamSource source(stream.stream.get());
            CBLOBHolder<CHeapAlloc> holder;
            EXPECT_EQ(S_OK, source.ReadBlock(5000000, holder));
            EXPECT_TRUE(Said(holder) == bytes.substr(0, 5000000));
            EXPECT_EQ(kErrorHandleEof, source.ReadBlock(2, holder));
            EXPECT_EQ(0U, holder.Size());
        }
    }
}

// What a count says is not taken for granted.
TEST(ByteSource, CountsWithoutBytes) {
    for (const bool seeks : {true, false}) {
        ByteStream stream(std::string(3000000, 'x'));
        stream.object->m_seeks = seeks;
        StreamSource source(stream.stream.get());
        CBLOBHolder<CHeapAlloc> holder;
        EXPECT_EQ(kErrorHandleEof, source.ReadBlock(INT32_MAX, holder));
        EXPECT_EQ(0U, holder.Capacity());
        EXPECT_LE(stream.object->m_largestAsked, size_t{4} << 20);
        EXPECT_EQ(E_OUTOFMEMORY, source.ReadBlock(0x80000000, holder));
    }
    const uint8_t block[] = {1, 2, 3};
    BlockSource source(block, 3);
    CBLOBHolder<CHeapAlloc> holder;
    EXPECT_EQ(kErrorHandleEof, source.ReadBlock(0xFFFFFFFF, holder));
    EXPECT_EQ(0U, holder.Capacity());
}

TEST(ByteSource, FailuresOfStreamsAreHandedOn) {
    ByteStream stream("abcdefgh");
    stream.object->m_status = E_ACCESSDENIED;
    StreamSource source(stream.stream.get());
    uint32_t word = 0;
    EXPECT_EQ(E_ACCESSDENIED, source.Read(&word, 4));
    Text text;
    EXPECT_EQ(E_ACCESSDENIED, source.ReadText(text));
    stream.object->m_seeks = false;
    EXPECT_EQ(CByteStream::kInvalidFunction, source.Skip(1));
}

}    // namespace
}    // namespace zck::test
