#include "props/persist/stream_text.h"

#include <gtest/gtest.h>

#include "platform/com_ptr.h"
#include "tests/props/values/say.h"
#include "tests/support/byte_stream.h"

namespace zck {
namespace {

/// Bytes of a literal with zeros inside.
template <size_t n>
std::string Of(const char (&literal)[n]) {
    return std::string(literal, n - 1);
}

std::string Counted(uint32_t count, const std::string &rest) {
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes.push_back(static_cast<char>(count >> (8 * i) & 0xFF));
    return bytes + rest;
}

struct Result {
    HRESULT hr;
    std::string text;
    size_t position;
};

/// Reads from behind two other bytes.
Result Read(const std::string &bytes) {
    ByteStream from("##" + bytes, 2);
    Text text = In("before");
    const HRESULT hr = StreamTextRead(from.stream.get(), text);
    return {hr, Say(text), from.object->m_position};
}

void ExpectRefused(const std::string &bytes, HRESULT expected) {
    const Result result = Read(bytes);
    EXPECT_EQ(result.hr, expected);
    EXPECT_EQ(result.text, "before");
    EXPECT_EQ(result.position, 2u);
}

TEST(StreamText, IsACountUnitsAndAZero) {
    ByteStream to;
    EXPECT_EQ(StreamTextWrite(to.stream.get(), In("a\u20AC")), S_OK);
    EXPECT_EQ(to.object->m_bytes, Of("\x06\0\0\0a\0\xAC\x20\0\0"));
    EXPECT_EQ(to.object->m_position, 10u);
    const Result read = Read(to.object->m_bytes + "rest");
    EXPECT_EQ(read.hr, S_OK);
    EXPECT_EQ(read.text, "a\u20AC");
    EXPECT_EQ(read.position, 12u);
}

TEST(StreamText, NoTextIsACountOfZero) {
    ByteStream to;
    EXPECT_EQ(StreamTextWrite(to.stream.get(), {}), S_OK);
    EXPECT_EQ(to.object->m_bytes, Of("\0\0\0\0"));
    for (const std::string &bytes : {Of("\0\0\0\0rest"), Of("\2\0\0\0\0\0rest")}) {
        const Result read = Read(bytes);
        EXPECT_EQ(read.hr, S_OK);
        EXPECT_EQ(read.text, "");
        EXPECT_EQ(read.position, 2 + bytes.size() - 4);
    }
}

TEST(StreamText, ZerosInsideStay) {
    const Result read = Read(Of("\x08\0\0\0a\0\0\0b\0\0\0"));
    EXPECT_EQ(read.hr, S_OK);
    EXPECT_EQ(read.text, Of("a\0b"));
}

TEST(StreamText, WhatIsCutShortOrOddIsRefused) {
    const std::string whole = Of("\x06\0\0\0a\0b\0\0\0");
    for (size_t n = 0; n < whole.size(); ++n) ExpectRefused(whole.substr(0, n), E_FAIL);
    ExpectRefused(Of("\1\0\0\0\0\0\0\0"), E_FAIL);
    ExpectRefused(Of("\3\0\0\0a\0\0\0\0"), E_FAIL);
    ExpectRefused(Of("\5\0\0\0a\0\0\0\0\0"), E_FAIL);
    ExpectRefused(Of("\4\0\0\0a\0\1\0"), E_FAIL);
    ExpectRefused(Of("\4\0\0\0a\0\0\1"), E_FAIL);
}

TEST(StreamText, ALargeCountIsRefusedUnread) {
    const std::string units(kStreamTextBytesMax, '\0');
    EXPECT_EQ(Read(Counted(kStreamTextBytesMax, units)).hr, S_OK);
    ExpectRefused(Counted(kStreamTextBytesMax + 1, units + "  "), E_ACCESSDENIED);
    ExpectRefused(Counted(kStreamTextBytesMax + 2, units + "  "), E_ACCESSDENIED);
    ExpectRefused(Counted(0xFFFFFFFF, ""), E_ACCESSDENIED);
}

TEST(StreamText, ATextThatCouldNotBeReadIsNotWritten) {
    ByteStream to("##", 2);
    EXPECT_EQ(StreamTextWrite(to.stream.get(), Text(kStreamTextBytesMax / 2, 'x')), E_ACCESSDENIED);
    EXPECT_EQ(to.object->m_bytes, "##");
    EXPECT_EQ(StreamTextWrite(to.stream.get(), Text(kStreamTextBytesMax / 2 - 1, 'x')), S_OK);
    EXPECT_EQ(to.object->m_bytes.size(), 2 + 4 + kStreamTextBytesMax);
}

TEST(StreamText, AFailedWriteGoesBack) {
    ByteStream to("##", 2);
    to.object->m_most = 5;
    EXPECT_EQ(StreamTextWrite(to.stream.get(), In("abc")), E_FAIL);
    EXPECT_EQ(to.object->m_position, 2u);
    to.object->m_status = StatusOf(0x80030070);
    EXPECT_EQ(StreamTextWrite(to.stream.get(), In("abc")), StatusOf(0x80030070));
    EXPECT_EQ(to.object->m_position, 2u);
}

TEST(StreamText, TheStreamsOwnFailureIsTold) {
    ByteStream from(Of("\4\0\0\0a\0\0\0"));
    from.object->m_status = StatusOf(0x80030005);
    Text text;
    EXPECT_EQ(StreamTextRead(from.stream.get(), text), StatusOf(0x80030005));
}

TEST(StreamText, AStreamWithoutAPositionWillDo) {
    ByteStream both;
    both.object->m_seeks = false;
    EXPECT_EQ(StreamTextWrite(both.stream.get(), In("abc")), S_OK);
    both.object->m_position = 0;
    Text text;
    EXPECT_EQ(StreamTextRead(both.stream.get(), text), S_OK);
    EXPECT_EQ(Say(text), "abc");
}

}    // namespace
}    // namespace zck
