// The sample buffer over clones and cuts, its missing arguments; clones into and out of every kind of format; the checked
// description at its edges.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

#include "tests/conformance/frame_fixture.h"
#include "tests/conformance/picture_model.h"

namespace conformance {
namespace {

constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);
constexpr HRESULT kNotFound = static_cast<HRESULT>(0x80070002);

class SampleBuffers : public Frames {
protected:
    void SetUp() override {
        Frames::SetUp();
        m_frame = Make(Picture(eZFCC_UYVY, 16, 8));
        m_sample = QueryFor<INSSBuffer3>(m_frame.get());
        ASSERT_TRUE(m_sample);
    }
    static DWORD LengthOf(const ComPtr<INSSBuffer3> &sample) {
        DWORD length = 12345;
        EXPECT_EQ(sample->GetLength(&length), S_OK);
        return length;
    }
    ComPtr<IZFrame> m_frame;
    ComPtr<INSSBuffer3> m_sample;
};

TEST_F(SampleBuffers, AllStagesAreTheFrame) {
    const ComPtr<IUnknown> identity = QueryFor<IUnknown>(m_frame.get());
    for (const IID &id : {ZIidOf<INSSBuffer>(), ZIidOf<INSSBuffer2>(), ZIidOf<INSSBuffer3>()}) {
        IUnknown *out = nullptr;
        ASSERT_EQ(m_frame->QueryInterface(id, reinterpret_cast<void **>(&out)), S_OK);
        EXPECT_EQ(QueryFor<IUnknown>(out).get(), identity.get());
        EXPECT_TRUE(QueryFor<IZFrame>(out));
        out->Release();
    }
}

TEST_F(SampleBuffers, MissingArguments) {
    EXPECT_EQ(m_sample->GetLength(nullptr), E_POINTER);
    EXPECT_EQ(m_sample->GetMaxLength(nullptr), E_POINTER);
    EXPECT_EQ(m_sample->GetBuffer(nullptr), E_POINTER);
    BYTE bytes[4] = {1, 2, 3, 4};
    const GUID id = {7, 8, 9, {}};
    EXPECT_EQ(m_sample->GetProperty(id, bytes, nullptr), E_POINTER);
    EXPECT_EQ(m_sample->SetSampleProperties(4, bytes), S_OK);
    EXPECT_EQ(m_sample->GetSampleProperties(4, nullptr), E_POINTER);
}

TEST_F(SampleBuffers, ALengthThatWasSetStaysWithItsFrame) {
    EXPECT_EQ(LengthOf(m_sample), 256U);
    EXPECT_EQ(m_sample->SetLength(100), S_OK);
    EXPECT_EQ(LengthOf(m_sample), 100U);
    for (const int32_t type : {1, 2, 785, 786}) {
        ComPtr<IZFrame> clone;
        ASSERT_EQ(m_frame->FrameClone(clone.Put(), Bits({type}), eZFCC_Default), S_OK);
        EXPECT_EQ(LengthOf(QueryFor<INSSBuffer3>(clone.get())), 256U) << type;
        ComPtr<IZFFrame> wide;
        ASSERT_EQ(QueryFor<IZFFrame>(m_frame.get())->ZFClone(wide.Put(), Bits({type}), eZFCC_Default), S_OK);
        EXPECT_EQ(LengthOf(QueryFor<INSSBuffer3>(wide.get())), 256U) << type;
    }
    // Another description is not another buffer.
    Z_AV_PROPS props = {};
    props.vidProps = Picture(eZFCC_UYVY, 4, 2);
    EXPECT_EQ(m_frame->FrameAVPropsSet(&props), S_OK);
    EXPECT_EQ(LengthOf(m_sample), 100U);
    EXPECT_EQ(m_sample->SetLength(256), S_OK);
    EXPECT_EQ(LengthOf(m_sample), 256U);
    EXPECT_EQ(m_sample->SetLength(0x80000000U), E_OUTOFMEMORY);
    EXPECT_EQ(LengthOf(m_sample), 256U);
}

TEST_F(SampleBuffers, ACutIsABufferOfItsOwn) {
    ComPtr<IZFrame> cut;
    tagRECT rect = {4, 2, 12, 6};
    ASSERT_EQ(m_frame->FrameCut(0, &rect, cut.Put()), S_OK);
    const ComPtr<INSSBuffer3> sample = QueryFor<INSSBuffer3>(cut.get());
    const DWORD rest = 256 - (2 * 32 + 4 * 2);
    DWORD most = 0, length = 0;
    BYTE *at = nullptr;
    EXPECT_EQ(sample->GetMaxLength(&most), S_OK);
    EXPECT_EQ(most, rest);
    EXPECT_EQ(LengthOf(sample), rest);
    EXPECT_EQ(sample->GetBufferAndLength(&at, &length), S_OK);
    EXPECT_EQ(at, Video(m_frame).data() + 72);
    EXPECT_EQ(length, rest);
    EXPECT_EQ(sample->SetLength(rest + 1), E_OUTOFMEMORY);
    EXPECT_EQ(sample->SetLength(rest), S_OK);
}

TEST_F(SampleBuffers, AFrameWithoutPixels) {
    ComPtr<IZFrame_I> bare;
    ASSERT_EQ(m_factory->FrameAlloc(0, 0, nullptr, bare.Put()), S_OK);
    const ComPtr<INSSBuffer3> sample = QueryFor<INSSBuffer3>(bare.get());
    BYTE *at = reinterpret_cast<BYTE *>(&at);
    EXPECT_EQ(sample->GetBuffer(&at), S_OK);
    EXPECT_EQ(at, nullptr);
    EXPECT_EQ(LengthOf(sample), 0U);
    EXPECT_EQ(sample->SetLength(1), E_OUTOFMEMORY);
    EXPECT_EQ(sample->SetLength(0), S_OK);
}

TEST_F(SampleBuffers, PropertiesByIdentifier) {
    const GUID id = {0xAB, 0xCD, 0xEF, {0, 1, 2, 3, 4, 5, 6, 0xFF}};
    BYTE in[9] = {9, 8, 7, 6, 5, 4, 3, 2, 1}, out[9] = {};
    EXPECT_EQ(m_sample->SetProperty(id, in, 9), S_OK);
    int32_t size = 0;
    int64_t at = 0;
    EXPECT_EQ(QueryFor<IZFFrame>(m_frame.get())->ZFDataGet(TextOf("{000000AB-00CD-00EF-0001-0203040506FF}").get(), &size, &at),
              S_OK);
    EXPECT_EQ(size, 9);
    // A second one takes its place.
    EXPECT_EQ(m_sample->SetProperty(id, in + 4, 3), S_OK);
    DWORD need = 9;
    EXPECT_EQ(m_sample->GetProperty(id, out, &need), S_OK);
    EXPECT_EQ(need, 3U);
    EXPECT_EQ(std::memcmp(out, in + 4, 3), 0);
    EXPECT_EQ(out[3], 0);
    // One digit makes another name.
    GUID other = id;
    other.Data4[7] = 0xFE;
    need = 9;
    EXPECT_EQ(m_sample->GetProperty(other, nullptr, &need), kNotFound);
    // The sample's own are found under their code, in either family.
    EXPECT_EQ(m_sample->SetSampleProperties(5, in), S_OK);
    EXPECT_EQ(m_frame->FrameDataGet(0x3253534E, &size, &at), S_OK);    // "NSS2"
    EXPECT_EQ(size, 5);
    EXPECT_EQ(std::memcmp(PointerOf(at), in, 5), 0);
    EXPECT_EQ(m_sample->GetSampleProperties(4, out), E_OUTOFMEMORY);
    // And they travel with clones.
    ComPtr<IZFrame> clone;
    ASSERT_EQ(m_frame->FrameClone(clone.Put(), eZFC_Props, eZFCC_Default), S_OK);
    std::memset(out, 0, sizeof out);
    EXPECT_EQ(QueryFor<INSSBuffer3>(clone.get())->GetSampleProperties(9, out), S_OK);
    EXPECT_EQ(std::memcmp(out, in, 5), 0);
}

class PlanarClones : public Frames {};

// The bytes of a new picture converted from another one.
Bytes Converted(const Bytes &src, const Z_VID_PROPS &from, const Z_VID_PROPS &to) {
    Bytes dst(static_cast<size_t>(BufferSize(&to)), 0);
    if (ConvertModel(src, dst, from, to).hr == S_OK) return dst;
    std::fill(dst.begin(), dst.end(), uint8_t{0});
    PictureModel(src, ShapeOf(from), dst, ShapeOf(to), nullptr, nullptr);
    return dst;
}

TEST_F(PlanarClones, EveryPairOfFormats) {
    const eZFCC all[] = {eZFCC_I420, eZFCC_YV12,  eZFCC_NV12,  eZFCC_YVYU,   eZFCC_YUY2, eZFCC_UYVY, eZFCC_HDYC,
                         eZFCC_v210, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB8, eZFCC_r210};
    const auto alike = [](eZFCC f) { return f == eZFCC_HDYC ? eZFCC_UYVY : f == eZFCC_RGB32 ? eZFCC_ARGB32 : f; };
    int32_t blank = 0;
    for (const eZFCC from : all)
        for (const eZFCC to : all)
            for (const auto &[w, h] : {std::pair<int32_t, int32_t>{16, 6}, {19, 5}, {1, 3}, {46, 1}}) {
                if (alike(from) == alike(to)) continue;
                Z_VID_PROPS p = Picture(from, w, Rgb(from) && w != 19 ? -h : h);
                p.eInterlace = w == 16 ? eZI_Field1First : eZI_Progressive;
                if (!Is420(from)) p.nRowBytes += 64;
                const ComPtr<IZFrame> source = MakeRich(p);
                Z_VID_PROPS want = p;
                want.fccType = to;
                want.nRowBytes = static_cast<int32_t>(Row(to, w));
                want.nHeight = Rgb(to) ? -h : h;
                const Bytes pixels = Converted(Video(source).bytes(), p, want);
                if (pixels == Bytes(pixels.size(), 0)) ++blank;
                for (const int32_t type : {2, 785}) {
                    ComPtr<IZFrame> clone;
                    ASSERT_EQ(source->FrameClone(clone.Put(), Bits({type}), to), S_OK) << Words(p) << "\n" << Words(want);
                    EXPECT_EQ(Words(Props(clone).vidProps), Words(want));
                    ASSERT_EQ(Video(clone).bytes(), pixels) << Words(p) << "\n" << Words(want);
                    EXPECT_EQ(Audio(clone).bytes(), Audio(source).bytes());
                    ComPtr<IZFFrame> wide;
                    ASSERT_EQ(QueryFor<IZFFrame>(source.get())->ZFClone(wide.Put(), Bits({type}), to), S_OK);
                    EXPECT_EQ(Words(Props(wide).vidProps), Words(want));
                    ASSERT_EQ(Video(wide).bytes(), pixels) << Words(p) << "\n" << Words(want);
                }
            }
    // Pictures that nobody converts are new and empty; most are none of these.
    EXPECT_GT(blank, 100);
    EXPECT_LT(blank, 300);
}

TEST_F(PlanarClones, PlanesThatTheRecordOverstates) {
    for (const eZFCC fcc : {eZFCC_I420, eZFCC_YV12, eZFCC_NV12}) {
        const ComPtr<IZFrame> source = Make(Picture(fcc, 16, 6));
        Z_AV_PROPS props = {};
        props.vidProps = Picture(fcc, 16, 8);
        ASSERT_EQ(source->FrameAVPropsSet(&props), S_OK);
        ComPtr<IZFrame> clone;
        for (const eZFCC to : {eZFCC_RGB32, eZFCC_UYVY, fcc == eZFCC_I420 ? eZFCC_YV12 : eZFCC_I420})
            EXPECT_EQ(source->FrameClone(clone.Put(), eZFC_Full, to), kBadMedia) << std::hex << fcc << " " << to;
        EXPECT_FALSE(clone);
        // A plain clone takes the bytes that are there.
        ASSERT_EQ(source->FrameClone(clone.Put(), eZFC_Full, fcc), S_OK);
        EXPECT_EQ(Video(clone).size, 144);
    }
}

TEST_F(PlanarClones, AFormatWithoutASizeIsRefused) {
    const ComPtr<IZFrame> source = Make(Picture(eZFCC_UYVY, 16, 6));
    for (const eZFCC to : {Fcc(0x41424344), eZFCC_GPU_RGB444, eZFCC_GPU_YUV422}) {
        ComPtr<IZFrame> clone;
        EXPECT_EQ(source->FrameClone(clone.Put(), eZFC_Full, to), kBadMedia) << std::hex << to;
        ComPtr<IZFFrame> wide;
        EXPECT_EQ(QueryFor<IZFFrame>(source.get())->ZFClone(wide.Put(), eZFC_Full, to), kBadMedia) << std::hex << to;
        ComPtr<IZFrame_I> inner;
        EXPECT_EQ(m_factory->FrameCloneConvert(source.get(), inner.Put(), eZFC_VideoRef, to), kBadMedia);
        EXPECT_EQ(m_wide->ZFCloneConvert(source.get(), wide.Put(), eZFC_VideoRef, to), kBadMedia);
        EXPECT_FALSE(clone || wide || inner);
    }
}

TEST_F(PlanarClones, TheSectionOfAReferenceIsItsSources) {
    const ComPtr<IZFrame> source = Make(Picture(eZFCC_UYVY, 16, 6));
    int64_t own = 0;
    ASSERT_EQ(QueryFor<IZFrame_I>(source.get())->FrameBufferIdGet(&own), S_OK);
    ComPtr<IZFrame> clone;
    ASSERT_EQ(source->FrameClone(clone.Put(), eZFC_Reference, eZFCC_Default), S_OK);
    ZF_INFO info = {};
    ASSERT_EQ(QueryFor<IZFFrame>(clone.get())->ZFInfoGet(&info), S_OK);
    EXPECT_EQ(info.llSectionId, own);
    // A converted picture has one of its own.
    ASSERT_EQ(source->FrameClone(clone.Put(), eZFC_Reference, eZFCC_RGB32), S_OK);
    ASSERT_EQ(QueryFor<IZFFrame>(clone.get())->ZFInfoGet(&info), S_OK);
    EXPECT_NE(info.llSectionId, own);
    EXPECT_NE(info.llSectionId, 0);
    ASSERT_EQ(source->FrameClone(clone.Put(), eZFC_Props, eZFCC_Default), S_OK);
    ASSERT_EQ(QueryFor<IZFFrame>(clone.get())->ZFInfoGet(&info), S_OK);
    EXPECT_EQ(info.llSectionId, 0);
    EXPECT_EQ(info.cbVideo, 0);
    EXPECT_EQ(info.pbVideo, 0);
}

class CheckedRecords : public Frames {
protected:
    static void Set(const ComPtr<IZFrame> &frame, const Z_VID_PROPS &p, HRESULT want = S_OK) {
        Z_AV_PROPS props = {};
        props.vidProps = p;
        EXPECT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(&props, nullptr), want) << Words(p);
    }
};

TEST_F(CheckedRecords, NoneLeavesThePictureAsItIs) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    const Z_VID_PROPS before = Props(frame).vidProps;
    EXPECT_EQ(QueryFor<IZFFrame>(frame.get())->ZFAVPropsSet(nullptr, nullptr), S_OK);
    EXPECT_EQ(Words(Props(frame).vidProps), Words(before));
    Set(frame, {});
    EXPECT_EQ(Words(Props(frame).vidProps), Words(before));
}

TEST_F(CheckedRecords, AFormatOnlyIsCutToTheBuffer) {
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_UYVY, 16, 8));
    Z_VID_PROPS p = {};
    p.eVideoFormat = eZVF_HD1080_50i;
    Set(frame, p);
    const Z_VID_PROPS seen = Props(frame).vidProps;
    EXPECT_EQ(seen.eVideoFormat, eZVF_HD1080_50i);
    EXPECT_EQ(seen.fccType, eZFCC_UYVY);    // the caller named none, and the frame's stays
    EXPECT_EQ(seen.nWidth, 16);
    EXPECT_EQ(seen.nHeight, 8);
    EXPECT_EQ(seen.nRowBytes, 32);
    EXPECT_EQ(seen.eInterlace, eZI_Field1First);
    EXPECT_EQ(seen.dblRate, 25.0);
    EXPECT_EQ(seen.nAspectX, 16);
}

TEST_F(CheckedRecords, RowsOfPaddedFormatsHoldTheirPixelsOnly) {
    struct Case {
        eZFCC fcc;
        int32_t width, most;
    };
    // Rows are padded to 4 bytes, to 48 pixels in 10 bits.
    for (const Case &c :
         {Case{eZFCC_RGB24, 5, 5}, {eZFCC_RGB24, 7, 8}, {eZFCC_v210, 10, 48}, {eZFCC_UYVY, 7, 8}, {eZFCC_RGB32, 7, 7}}) {
        const ComPtr<IZFrame> frame = Make(Picture(c.fcc, c.width, Rgb(c.fcc) ? -4 : 4));
        Z_VID_PROPS p = Picture(c.fcc, 500, Rgb(c.fcc) ? -400 : 400);
        Set(frame, p);
        const Z_VID_PROPS seen = Props(frame).vidProps;
        EXPECT_EQ(seen.nWidth, c.most) << Words(seen);
        EXPECT_EQ(seen.nHeight, Rgb(c.fcc) ? -4 : 4);
        EXPECT_EQ(seen.nRowBytes, Row(c.fcc, c.width));
    }
}

TEST_F(CheckedRecords, RelabellingCapsByTheFormatInForce) {
    // 4 bytes a pixel both: the name changes, and as many pixels fit as did.
    const ComPtr<IZFrame> frame = Make(Picture(eZFCC_RGB32, 7, -4));
    Set(frame, Picture(eZFCC_ARGB32, 9, -4));
    EXPECT_EQ(Props(frame).vidProps.fccType, eZFCC_ARGB32);
    EXPECT_EQ(Props(frame).vidProps.nWidth, 7);
    // 2 bytes are not 4: the format stays, and so does what a row holds.
    Set(frame, Picture(eZFCC_UYVY, 14, 4));
    EXPECT_EQ(Props(frame).vidProps.fccType, eZFCC_ARGB32);
    EXPECT_EQ(Props(frame).vidProps.nWidth, 7);
}

TEST_F(CheckedRecords, MirroringLeavesPaddingAndOtherPicturesAlone) {
    Z_VID_PROPS p = Picture(eZFCC_RGB24, 5, -3);
    p.nRowBytes = 20;
    const ComPtr<IZFrame> frame = Make(p);
    const Bytes before = Video(frame).bytes();
    p.nHeight = 3;
    Set(frame, p);
    const Bytes after = Video(frame).bytes();
    for (size_t y = 0; y < 3; ++y)
        for (size_t x = 0; x < 15; ++x) ASSERT_EQ(after[y * 20 + x], before[(2 - y) * 20 + x]) << y << " " << x;
    // The part of a picture that a cut shows turns, the rest stays.
    const ComPtr<IZFrame> whole = Make(Picture(eZFCC_RGB32, 10, -6));
    const Bytes all = Video(whole).bytes();
    ComPtr<IZFrame> cut;
    tagRECT rect = {2, 1, 7, 5};
    ASSERT_EQ(whole->FrameCut(0, &rect, cut.Put()), S_OK);
    Z_VID_PROPS turned = Props(cut).vidProps;
    turned.nHeight = 4;
    Set(cut, turned);
    EXPECT_EQ(Props(cut).vidProps.nHeight, 4);
    const Bytes now = Video(whole).bytes();
    for (size_t y = 0; y < 6; ++y)
        for (size_t x = 0; x < 40; ++x) {
            const bool shown = y >= 1 && y < 5 && x >= 8 && x < 28;
            ASSERT_EQ(now[y * 40 + x], all[(shown ? 5 - y : y) * 40 + x]) << y << " " << x;
        }
}

// The record that a checked description becomes, for a frame whose own record is valid and holds `size` bytes.
Z_VID_PROPS CheckedModel(const Z_VID_PROPS &own, const Z_VID_PROPS &asked, int64_t size) {
    Z_VID_PROPS n = asked;
    Update(&n, false);
    if (asked.fccType == eZFCC_Default) n.fccType = eZFCC_Default;
    if (!Valid(&n)) return own;
    const auto with = [&](eZFCC fcc) {
        Z_VID_PROPS r = n;
        r.fccType = fcc;
        r.nRowBytes = own.nRowBytes;
        const int64_t fit = Pixels(fcc, own.nRowBytes);
        r.nWidth = static_cast<int32_t>(std::min<int64_t>(r.nWidth, fit > 0 ? fit : own.nWidth));
        const int32_t most = std::abs(own.nHeight), tall = std::min(std::abs(r.nHeight), most);
        r.nHeight = r.nHeight < 0 ? -tall : tall;
        if (r.nWidth == 0 || r.nHeight == 0) r.nWidth = own.nWidth, r.nHeight = own.nHeight;
        if (r.eScaleType == eZST_Default) r.eScaleType = own.eScaleType;
        if (r.eInterlace == eZI_Default) r.eInterlace = own.eInterlace;
        if (r.nAspectX == 0 || r.nAspectY == 0) r.nAspectX = own.nAspectX, r.nAspectY = own.nAspectY;
        if (r.dblRate == 0) r.dblRate = own.dblRate;
        if (!Rgb(fcc)) r.nHeight = std::abs(r.nHeight);
        return r;
    };
    if (n.fccType == eZFCC_Default || Bits(n.fccType) != Bits(own.fccType)) return with(own.fccType);
    const Z_VID_PROPS named = with(n.fccType);
    // Whoever reads the record brings rows that are too short for their format up to its own.
    Z_VID_PROPS read = named;
    if (Packed(read.fccType)) read.nRowBytes = std::max(read.nRowBytes, static_cast<int32_t>(Row(read.fccType, read.nWidth)));
    return Need(read) > size ? with(own.fccType) : named;
}

TEST_F(CheckedRecords, AgreeWithTheModel) {
    const uint32_t seed = 95001;
    std::mt19937 random(seed);
    const auto any = [&](int32_t least, int32_t most) {
        return least + static_cast<int32_t>(random() % static_cast<uint32_t>(most - least + 1));
    };
    const eZFCC codes[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_YVYU, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24,
                           eZFCC_v210, eZFCC_I420, eZFCC_YV12, eZFCC_NV12, eZFCC_RGB8,  eZFCC_r210,   eZFCC_Default};
    const eZVideoFormat formats[] = {eZVF_Custom, eZVF_PAL, eZVF_NTSC, eZVF_HD720_50p};
    int32_t relabelled = 0, turned = 0, smaller = 0;
    for (int round = 0; round < 6000; ++round) {
        Z_VID_PROPS own = Picture(codes[any(0, 12)], any(2, 30), any(2, 9));
        if (Rgb(own.fccType) && any(0, 1) != 0) own.nHeight = -own.nHeight;
        own.eInterlace = static_cast<eZInterlace>(any(1, 3));
        own.eScaleType = static_cast<eZScaleType>(any(0, 3));
        if (any(0, 1) != 0) own.nAspectX = 5, own.nAspectY = 4;
        Z_VID_PROPS asked = {};
        asked.eVideoFormat = formats[std::max(any(-3, 3), 0)];
        asked.fccType = any(0, 2) == 0 ? own.fccType : codes[any(0, 13)];
        asked.nWidth = any(0, 2) == 0 ? own.nWidth : any(0, 40);
        asked.nHeight = any(0, 2) == 0 ? own.nHeight : any(-12, 12);
        asked.nRowBytes = any(0, 1) != 0 ? 0 : any(0, 200);
        asked.eInterlace = static_cast<eZInterlace>(any(0, 3));
        asked.eScaleType = static_cast<eZScaleType>(any(0, 4));
        if (any(0, 1) != 0) asked.nAspectX = 3, asked.nAspectY = static_cast<int16_t>(any(0, 2));
        if (any(0, 1) != 0) asked.dblRate = 50;
        const ComPtr<IZFrame> frame = Make(own, static_cast<uint32_t>(round));
        const Bytes before = Video(frame).bytes();
        const Z_VID_PROPS want = CheckedModel(own, asked, static_cast<int64_t>(before.size()));
        Set(frame, asked);
        const Z_VID_PROPS seen = Props(frame).vidProps;
        ASSERT_EQ(Words(seen), Words(want)) << "own " << Words(own) << "\nasked " << Words(asked) << "\nround " << round;
        ASSERT_LE(Need(seen), static_cast<int64_t>(before.size())) << Words(seen);
        const bool turns = Rgb(seen.fccType) && (seen.nHeight < 0) != (own.nHeight < 0);
        if (!turns) {
            ASSERT_EQ(Video(frame).bytes(), before) << "own " << Words(own) << "\nasked " << Words(asked);
        }
        relabelled += seen.fccType != own.fccType ? 1 : 0;
        turned += turns ? 1 : 0;
        smaller += seen.nWidth < own.nWidth ? 1 : 0;
    }
    EXPECT_GT(relabelled, 200);
    EXPECT_GT(turned, 200);
    EXPECT_GT(smaller, 500);
}

}    // namespace
}    // namespace conformance
