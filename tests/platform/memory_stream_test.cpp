#include "platform/memory_stream.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/com_ptr.h"
#include "platform/object.h"

namespace zck {
namespace {

LARGE_INTEGER Move(int64_t distance) {
    LARGE_INTEGER move = {};
    move.QuadPart = distance;
    return move;
}

uint64_t Seek(IStream *stream, int64_t distance, DWORD origin) {
    ULARGE_INTEGER position = {};
    EXPECT_EQ(S_OK, stream->Seek(Move(distance), origin, &position));
    return position.QuadPart;
}

std::vector<uint8_t> Read(IStream *stream, ULONG count) {
    std::vector<uint8_t> bytes(count);
    ULONG got = 0;
    EXPECT_TRUE(SUCCEEDED(stream->Read(bytes.data(), count, &got)));
    bytes.resize(got);
    return bytes;
}

TEST(MemoryStream, WritesReadsAndSeeks) {
    const int32_t before = ModuleCount::Get();
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, MemoryStreamCreate(stream.Put()));
    ULONG put = 0;
    EXPECT_EQ(S_OK, stream->Write("abcdef", 6, &put));
    EXPECT_EQ(6U, put);
    EXPECT_EQ(2U, Seek(stream.get(), -4, STREAM_SEEK_END));
    EXPECT_EQ(std::vector<uint8_t>({'c', 'd'}), Read(stream.get(), 2));
    EXPECT_EQ(S_OK, stream->Write("XYZ", 3, nullptr));
    EXPECT_EQ(0U, Seek(stream.get(), 0, STREAM_SEEK_SET));
    EXPECT_EQ(std::vector<uint8_t>({'a', 'b', 'c', 'd', 'X', 'Y', 'Z'}), Read(stream.get(), 100));
    EXPECT_TRUE(Read(stream.get(), 1).empty());
    EXPECT_TRUE(FAILED(stream->Seek(Move(-8), STREAM_SEEK_CUR, nullptr)));
    EXPECT_EQ(7U, Seek(stream.get(), 0, STREAM_SEEK_CUR));
    EXPECT_TRUE(FAILED(stream->Seek(Move(0), 7, nullptr)));
    EXPECT_TRUE(QueryFor<IStream>(stream.get()));
    ComPtr<IUnknown> sequential;
    EXPECT_EQ(S_OK, stream->QueryInterface(IID_ISequentialStream, sequential.PutVoid()));
    sequential.Reset();
    stream.Reset();
    EXPECT_EQ(before, ModuleCount::Get());
}

// What lies in a gap is the system's.
TEST(MemoryStream, GrowsByWritingBehindItsEndAndBySize) {
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, MemoryStreamCreate(stream.Put()));
    EXPECT_EQ(4U, Seek(stream.get(), 4, STREAM_SEEK_SET));
    EXPECT_TRUE(Read(stream.get(), 1).empty());
    EXPECT_EQ(S_OK, stream->Write("x", 1, nullptr));
    EXPECT_EQ(5U, Seek(stream.get(), 0, STREAM_SEEK_END));
    ULARGE_INTEGER size = {};
    size.QuadPart = 2;
    EXPECT_EQ(S_OK, stream->SetSize(size));
    EXPECT_EQ(2U, Seek(stream.get(), 0, STREAM_SEEK_END));
    size.QuadPart = 6;
    EXPECT_EQ(S_OK, stream->SetSize(size));
    EXPECT_EQ(6U, Seek(stream.get(), 0, STREAM_SEEK_END));
    STATSTG stat = {};
    EXPECT_EQ(S_OK, stream->Stat(&stat, 1));
    EXPECT_EQ(6U, stat.cbSize.QuadPart);
}

TEST(MemoryStream, ManyBytesInPiecesOfAnySize) {
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, MemoryStreamCreate(stream.Put()));
    std::vector<uint8_t> bytes(1000003);
    for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 7 + (i >> 8));
    for (size_t at = 0, piece = 1; at < bytes.size(); at += piece, piece = piece * 3 + 1) {
        piece = std::min(piece, bytes.size() - at);
        EXPECT_EQ(S_OK, stream->Write(bytes.data() + at, static_cast<ULONG>(piece), nullptr));
    }
    Seek(stream.get(), 0, STREAM_SEEK_SET);
    ComPtr<IStream> copy;
    ASSERT_EQ(S_OK, MemoryStreamCreate(copy.Put()));
    ULARGE_INTEGER all = {};
    all.QuadPart = bytes.size() + 5;
    ULARGE_INTEGER got = {};
    ULARGE_INTEGER put = {};
    EXPECT_EQ(S_OK, stream->CopyTo(copy.get(), all, &got, &put));
    EXPECT_EQ(bytes.size(), got.QuadPart);
    EXPECT_EQ(bytes.size(), put.QuadPart);
    Seek(copy.get(), 1, STREAM_SEEK_SET);
    bytes.erase(bytes.begin());
    EXPECT_EQ(bytes, Read(copy.get(), 2000000));
}

// A clone has its own position in the same bytes.
TEST(MemoryStream, ClonesShareBytes) {
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, MemoryStreamCreate(stream.Put()));
    EXPECT_EQ(S_OK, stream->Write("abc", 3, nullptr));
    Seek(stream.get(), 1, STREAM_SEEK_SET);
    ComPtr<IStream> clone;
    ASSERT_EQ(S_OK, stream->Clone(clone.Put()));
    EXPECT_EQ(S_OK, clone->Write("X", 1, nullptr));
    EXPECT_EQ(std::vector<uint8_t>({'X', 'c'}), Read(stream.get(), 5));
    EXPECT_EQ(std::vector<uint8_t>({'c'}), Read(clone.get(), 5));
}

TEST(Marshaling, WithoutAnObjectThereIsNothing) {
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, MemoryStreamCreate(stream.Put()));
    EXPECT_TRUE(FAILED(ObjectMarshal(stream.get(), nullptr)));
    IUnknown *object = stream.get();
    EXPECT_TRUE(FAILED(ObjectUnmarshal(stream.get(), &object)));
    EXPECT_EQ(nullptr, object);
}

}    // namespace
}    // namespace zck
