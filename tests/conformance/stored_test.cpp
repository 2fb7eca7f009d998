// Stored frames: what is written and what is read back, byte by byte, of streams and of blocks.
#include <cstring>

#include "platform/memory_stream.h"
#include "tests/conformance/named_fixture.h"
#include "tests/support/byte_stream.h"

namespace conformance {
namespace {

using zck::ByteStream;

class Stored : public Frames {
protected:
    struct One {
        ComPtr<IZFrame_I> frame;
        ComPtr<IZFFrame> wide;
        Content model;
        Bytes pixels;
    };
    One Of(const ComPtr<IZFrame> &frame) {
        One one = {QueryFor<IZFrame_I>(frame.get()), QueryFor<IZFFrame>(frame.get()), {}, Video(frame).bytes()};
        one.model.props = Props(frame);
        one.model.videoBytes = static_cast<uint32_t>(one.pixels.size());
        if (FAILED(one.frame->FrameBufferIdGet(&one.model.section))) one.model.section = 0;
        return one;
    }
    One Empty() {
        ComPtr<IZFrame> frame;
        EXPECT_EQ(m_factory->FrameCreate(0, nullptr, frame.Put()), S_OK);
        return Of(frame);
    }
    One WithPixels() {
        return Of(Make(Picture(eZFCC_UYVY, 2 * m_dice(1, 9), m_dice(1, 9)), static_cast<uint32_t>(m_dice(1, 99))));
    }
    One Borrower(const One &of) {
        ComPtr<IZFrame> clone;
        EXPECT_EQ(of.frame->FrameClone(clone.Put(), eZFC_VideoRef, eZFCC_Default), S_OK);
        return Of(clone);
    }

    Name AnyText() {
        if (m_dice(0, 3) == 0) return AnyName(m_dice);
        Name name;
        const char16_t any[] = {u'a', u'Z', 0, 1, 0xD800, 0xFFFF, 0x141};
        for (int32_t i = m_dice(0, 9); i > 0; --i) name += any[m_dice(0, 6)];
        return name;
    }
    // Data and texts, which only a stored frame brings as they are.
    Named AnyNamed() {
        Named named;
        for (int32_t i = m_dice(0, 5); i > 0; --i) {
            Datum datum;
            datum.bytes = m_dice.Noise(static_cast<size_t>(m_dice(0, 2) == 0 ? 0 : m_dice(1, 70)));
            if (datum.bytes.empty()) datum.value = m_dice(-9, 9);
            named.data.Set(AnyText(), datum);
        }
        for (int32_t i = m_dice(0, 4); i > 0; --i) named.texts.Set(AnyText(), AnyText());
        return named;
    }
    // Puts all into a frame.
    void Fill(One &one);
    std::string Saved(const One &one, int32_t flags, bool block);
    // What a frame holds, in words.
    std::string Held(const One &one);
    std::string HeldBy(const One &one);
    HRESULT Loaded(const One &one, const std::string &bytes, int32_t flags, bool block, size_t &end);
    HRESULT Opened(const One &source, const Wanted &wanted);
    std::string Damaged(std::string bytes);
    void LoadOnce(One &one, const One &source);

    Dice m_dice{1};
};

void Stored::Fill(One &one) {
    Content &model = one.model;
    model.audio = m_dice.Noise(static_cast<size_t>(m_dice(0, 2) == 0 ? 0 : m_dice(1, 300)));
    EXPECT_EQ(one.frame->FrameAudioReset(static_cast<int32_t>(model.audio.size()), AddressOf(model.audio.data())), S_OK);
    model.props.audProps = {m_dice(-1, 3), 48000, 16, m_dice(0, 9)};
    model.props.ancData.audOutput.arrEBUMode_I[5] = static_cast<float>(m_dice(0, 9));
    model.props.ancData.eFlags = eZAF_AL_Valid;
    model.props.bLocked = m_dice(0, 1);
    EXPECT_EQ(one.frame->FrameAVPropsSet(&model.props), S_OK);
    const Bytes time = m_dice.Noise(sizeof model.time);
    std::memcpy(static_cast<void *>(&model.time), time.data(), sizeof model.time);
    EXPECT_EQ(one.frame->FrameTimeSet(&model.time), S_OK);
    model.named = AnyNamed();
    // What does not marshal is neither written nor counted.
    EXPECT_EQ(one.wide->ZFObjectSet(TextOf("thing").get(), nullptr), S_OK);
    ByteStream stream(StoredFrame(model, 256, false));
    EXPECT_EQ(one.frame->ZFLoadFromStream(stream.stream.get(), 256), S_OK);
}

std::string Stored::Saved(const One &one, int32_t flags, bool block) {
    if (!block) {
        ComPtr<IUnknown> made;
        EXPECT_EQ(one.frame->ZFSaveToStream(made.Put(), flags), S_OK);
        const ComPtr<IStream> stream = QueryFor<IStream>(made.get());
        std::string bytes(1 << 16, '\0');
        ULONG count = 0;
        EXPECT_GE(stream->Read(bytes.data(), 1 << 16, &count), S_OK);
        return bytes.substr(0, count);
    }
    int32_t size = 0;
    int64_t address = 0;
    EXPECT_EQ(one.wide->ZFSaveAll(&size, &address, flags), S_OK);
    const Bytes bytes = BytesAt(address, size);
    CoTaskMemFree(PointerOf(address));
    return std::string(bytes.begin(), bytes.end());
}

std::string WordsOf(const Content &content, const Bytes &pixels) {
    std::string s = Words(content.props.vidProps) + " " + std::to_string(content.props.audProps.nChannels) + " " +
                    std::to_string(content.props.audProps.nTrackSplitBits) + " locked " +
                    std::to_string(content.props.bLocked) + "\n";
    const auto raw = [&s](const void *at, size_t size) { s += std::string(static_cast<const char *>(at), size) + "|"; };
    raw(&content.props.ancData, sizeof content.props.ancData);
    raw(&content.time, sizeof content.time);
    raw(content.audio.data(), content.audio.size());
    raw(pixels.data(), pixels.size());
    return s + Listed(content.named);
}

std::string Stored::Held(const One &one) {
    Content content;
    content.props = Props(one.frame);
    content.time = Time(one.frame);
    content.audio = Audio(one.frame).bytes();
    return WordsOf(content, Video(one.frame).bytes()) + Listed(one.wide.get());
}

std::string Stored::HeldBy(const One &one) { return WordsOf(one.model, one.pixels); }

constexpr int32_t kFlags[] = {0,   1,   2,   3,   16,  17,  18,  19, 256, 257,       258,
                              272, 273, 274, 275, 512, 785, 786, 4,  -1,  INT32_MIN, 0x10000};

TEST_F(Stored, BytesOfAnyFrameWithAnyFlags) {
    for (uint32_t round = 0; round < 100; ++round) {
        m_dice = Dice(round);
        One source = WithPixels();
        One one = m_dice(0, 2) == 0 ? Empty() : m_dice(0, 1) != 0 ? source : Borrower(source);
        Fill(one);
        ASSERT_EQ(Held(one), HeldBy(one)) << round;
        for (const int32_t flags : kFlags) {
            const std::string want = StoredFrame(one.model, flags, false);
            ASSERT_EQ(Saved(one, flags, false), want) << "round " << round << " flags " << flags;
            std::string block = StoredFrame(one.model, flags, true);
            block.resize((block.size() + 31) / 32 * 32);
            ASSERT_EQ(Saved(one, flags, true), block) << "round " << round << " flags " << flags;
            // At the position of a stream, over what is there.
            const std::string before = "before";
            ByteStream stream(before + "behind", before.size());
            ASSERT_EQ(one.frame->ZFAddToStream(stream.stream.get(), flags), S_OK);
            ASSERT_EQ(stream.object->m_bytes.substr(0, before.size() + want.size()), before + want);
        }
    }
}

HRESULT Stored::Loaded(const One &one, const std::string &bytes, int32_t flags, bool block, size_t &end) {
    if (block) return one.wide->ZFLoadAll(static_cast<int32_t>(bytes.size()), AddressOf(bytes.data()), flags);
    ByteStream stream("some" + bytes, 4);
    const HRESULT hr = one.frame->ZFLoadFromStream(stream.stream.get(), flags);
    end = stream.object->m_position - 4;
    return hr;
}

// What opening a section answers of which the source's is the only one.
HRESULT Stored::Opened(const One &source, const Wanted &wanted) {
    if (wanted.section != source.model.section || source.model.section == 0) return Z_E_FILE_NOT_FOUND;
    return wanted.bytes <= source.model.videoBytes ? S_OK : E_UNEXPECTED;
}

// Cut, or with a number where none is expected.
std::string Stored::Damaged(std::string bytes) {
    if (m_dice(0, 1) == 0) return bytes;
    for (int32_t i = m_dice(0, 2); i > 0 && bytes.size() >= 12; --i) {
        const uint32_t planted[] = {0, 1, 2, 3, 4, 5, 0x100000, 0x100001, 0x100002, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 40};
        const size_t size = bytes.size();
        size_t at = static_cast<size_t>(m_dice(0, static_cast<int32_t>(size) - 4));
        // Most of a stored frame with media is its record; the numbers stand before and behind it.
        if (m_dice(0, 1) != 0 && size > 2300)
            at = m_dice(0, 1) != 0 ? static_cast<size_t>(m_dice(0, 30)) : size - 4 - static_cast<size_t>(m_dice(0, 99));
        std::memcpy(&bytes[at], &planted[m_dice(0, 12)], 4);
    }
    if (m_dice(0, 2) != 0) {
        size_t most = bytes.size();
        if (m_dice(0, 2) == 0) most = std::min<size_t>(most, 60);
        bytes.resize(static_cast<size_t>(m_dice(0, static_cast<int32_t>(most))));
    }
    return bytes;
}

constexpr int64_t kNobodys = 0x7FFFFFFFFFFF;    // a section that nobody has

void Stored::LoadOnce(One &one, const One &source) {
    Content written = source.model;
    if (m_dice(0, 4) == 0) written.section = kNobodys;
    if (m_dice(0, 4) == 0) written.videoBytes = 0x10000000;
    const bool block = m_dice(0, 1) != 0;
    const int32_t stored = kFlags[m_dice(0, 18)], flags = m_dice(0, 3) == 0 ? kFlags[m_dice(0, 21)] : stored;
    const std::string bytes = Damaged(StoredFrame(written, stored, block));
    // The section is opened by what the bytes ask for, which a first walk finds.
    Wanted wanted;
    Content aside = one.model;
    Load first = {bytes, flags, block};
    LoadFrame(first, S_OK, aside, wanted);
    // Where the system marshals, a count of objects is followed by objects.
    if (first.objects != 0 && zck::MarshalingExists()) return;
    // Another section than these two may be of anybody, and the source's holds a little more than the picture.
    const bool known = wanted.section == source.model.section || wanted.section == kNobodys;
    const bool between = wanted.bytes > source.model.videoBytes && wanted.bytes < 100000;
    if (wanted.open && (!known || between)) return;
    const HRESULT opened = Opened(source, wanted);
    Load load = {bytes, flags, block};
    wanted = {};
    const HRESULT want = LoadFrame(load, opened, one.model, wanted);
    if (wanted.release) one.pixels.clear();
    if (wanted.open && SUCCEEDED(opened))
        one.pixels.assign(source.pixels.begin(), source.pixels.begin() + static_cast<std::ptrdiff_t>(wanted.bytes));
    size_t end = 0;
    const std::string said = (block ? "block of " : "stream of ") + std::to_string(bytes.size()) + " stored with " +
                             std::to_string(stored) + " loaded with " + std::to_string(flags) + " video " +
                             std::to_string(wanted.bytes);
    ASSERT_EQ(static_cast<uint32_t>(Loaded(one, bytes, flags, block, end)), static_cast<uint32_t>(want)) << said;
    ASSERT_EQ(Held(one), HeldBy(one)) << said;
    // A text that cannot be read leaves the position where it began.
    const bool placed = SUCCEEDED(want) || want == E_FAIL || want == Z_E_ACCESS_DENIED;
    ASSERT_TRUE(block || !placed || bytes.size() < 4 || end == load.at) << said << ": " << load.at << " is " << end;
}

// Frames of their own, frames that borrow and empty ones, with whole and with damaged bytes.
TEST_F(Stored, WhatIsReadOfAnyBytes) {
    for (uint32_t round = 0; round < 1000; ++round) {
        m_dice = Dice(round);
        One source = WithPixels();
        Fill(source);
        One lender = WithPixels();
        One one = m_dice(0, 2) == 0 ? Empty() : m_dice(0, 1) != 0 ? WithPixels() : Borrower(lender);
        Fill(one);
        for (int step = 0; step < 5; ++step) {
            LoadOnce(one, source);
            ASSERT_FALSE(HasFailure()) << "round " << round << " step " << step;
        }
    }
}

// Counts of a text around every limit, with the bytes there, cut, and with another end.
TEST_F(Stored, CountsOfTexts) {
    for (const uint32_t count :
         {0U, 1U, 2U, 3U, 4U, 5U, 0xFFFFEU, 0xFFFFFU, 0x100000U, 0x100001U, 0x100002U, 0x80000000U, 0xFFFFFFFFU})
        for (const int32_t kind : {0, 1, 2})
            for (const bool block : {false, true}) {
                std::string bytes = StoredFrame({}, 256, block);
                bytes.erase(bytes.size() - (block ? 4 : 8));    // GCC warns of a `resize` that it takes for a growing one
                const uint32_t words[] = {1, count};
                bytes.append(reinterpret_cast<const char *>(words), 8);
                std::string text(count <= 0x100002 ? count : 8, 'x');
                if (text.size() >= 2) text.replace(text.size() - 2, 2, kind == 1 ? "\0x" : "\0\0", 2);
                if (kind == 2 && !text.empty()) text.pop_back();
                bytes += text + std::string(4, '\0');
                if (!block) bytes += std::string(4, '\0');
                One one = Empty();
                Wanted wanted;
                Load load = {bytes, 256, block};
                const HRESULT want = LoadFrame(load, S_OK, one.model, wanted);
                size_t end = load.at;
                ASSERT_EQ(Loaded(one, bytes, 256, block, end), want) << count << " " << kind << block;
                ASSERT_EQ(end, load.at) << count << " " << kind;
                ASSERT_TRUE(Held(one) == HeldBy(one)) << count << " " << kind << block;
            }
}

TEST_F(Stored, Arguments) {
    const One one = Empty();
    int32_t size = 5;
    int64_t address = 5;
    EXPECT_EQ(one.frame->ZFSaveToStream(nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFAddToStream(nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(one.frame->ZFLoadFromStream(nullptr, 0), E_INVALIDARG);
    const ComPtr<IUnknown> plain = PlainObject();
    EXPECT_EQ(one.frame->ZFAddToStream(plain.get(), 0), E_NOINTERFACE);
    EXPECT_EQ(one.frame->ZFLoadFromStream(plain.get(), 0), E_NOINTERFACE);
    EXPECT_EQ(one.wide->ZFSaveAll(nullptr, &address, 0), E_INVALIDARG);
    EXPECT_EQ(one.wide->ZFSaveAll(&size, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(one.wide->ZFLoadAll(4, 0, 0), E_INVALIDARG);
    EXPECT_EQ(one.wide->ZFLoadAll(-1, AddressOf(&size), 0), E_INVALIDARG);
    EXPECT_EQ(one.wide->ZFLoadAll(0, 0, 0), Z_E_HANDLE_EOF);
}

// A frame that borrows its pixels takes the memory itself with bit 2, and a copy without it.
TEST_F(Stored, BorrowersMap) {
    for (const int32_t flags : {1, 2, 3}) {
        const One source = WithPixels(), lender = WithPixels();
        for (const bool borrows : {false, true}) {
            const One one = borrows ? Borrower(lender) : WithPixels();
            size_t end = 0;
            ASSERT_EQ(Loaded(one, StoredFrame(source.model, flags, borrows), flags, borrows, end), S_OK);
            ASSERT_EQ(Video(one.frame).bytes(), Video(source.frame).bytes());
            Video(source.frame).data()[0] ^= 0xFF;
            const bool maps = borrows && (flags & 2) != 0;
            EXPECT_EQ(Video(one.frame).bytes() == Video(source.frame).bytes(), maps) << flags << borrows;
        }
    }
}

}    // namespace
}    // namespace conformance
