// Clones along both roads, relabelled and converted.
#include <algorithm>
#include <cstring>

#include "frames/object/frame.h"
#include "tests/conformance/frame_fixture.h"

namespace conformance {
namespace {

constexpr HRESULT kBadMedia = static_cast<HRESULT>(0x80040248);

class Clones : public Frames {
protected:
    ComPtr<IZFrame> Clone(const ComPtr<IZFrame> &frame, int32_t type, eZFCC fcc = eZFCC_Default, HRESULT want = S_OK) {
        ComPtr<IZFrame> clone;
        EXPECT_EQ(frame->FrameClone(clone.Put(), static_cast<eZFrameClone>(type), fcc), want) << type << " " << std::hex << fcc;
        return clone;
    }
    ComPtr<IZFFrame> WideClone(const ComPtr<IZFrame> &frame, int32_t type, eZFCC fcc = eZFCC_Default, HRESULT want = S_OK) {
        ComPtr<IZFFrame> clone;
        EXPECT_EQ(QueryFor<IZFFrame>(frame.get())->ZFClone(clone.Put(), static_cast<eZFrameClone>(type), fcc), want) << type;
        return clone;
    }
    template <class Frame>
    static bool HasData(const ComPtr<Frame> &frame, const char *name, int32_t *size = nullptr, int64_t *at = nullptr) {
        int32_t s;
        int64_t p;
        return QueryFor<IZFFrame>(frame.get())->ZFDataGet(TextOf(name).get(), size ? size : &s, at ? at : &p) == S_OK;
    }
    template <class Frame>
    static bool HasText(const ComPtr<Frame> &frame) {
        Bstr text;
        return QueryFor<IZFFrame>(frame.get())->ZFTextGet(TextOf("note").get(), text.Put()) == S_OK;
    }
    template <class Frame>
    static bool HasObject(const ComPtr<Frame> &frame) {
        ComPtr<IUnknown> object;
        return QueryFor<IZFFrame>(frame.get())->ZFObjectGet(TextOf("thing").get(), object.Put(), 0) == S_OK;
    }
};

template <class Record>
bool SameBytes(const Record &a, const Record &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST_F(Clones, QuorvexRoadByEveryType) {
    const ComPtr<IZFrame> source = MakeRich(Picture(eZFCC_UYVY, 16, 8));
    for (const int32_t video : {0, 1, 2, 3})
        for (const int32_t audio : {0, 16})
            for (const int32_t named : {0, 256, 512, 768}) {
                const int32_t type = video | audio | named;
                const ComPtr<IZFrame> clone = Clone(source, type);
                ASSERT_TRUE(clone);
                EXPECT_TRUE(SameBytes(Props(clone), Props(source))) << type;    // all of it, in every clone
                EXPECT_TRUE(SameBytes(Time(clone), Time(source))) << type;
                const Seen seen = Video(clone), own = Video(source);
                if (video == 0) {
                    EXPECT_EQ(seen.size, 0);
                    EXPECT_EQ(seen.address, 0);
                } else {
                    EXPECT_EQ(seen.bytes(), own.bytes()) << type;
                    EXPECT_EQ(seen.address == own.address, video == 2) << type;    // the copy wins over the reference
                }
                EXPECT_EQ(Audio(clone).bytes(), audio != 0 ? Audio(source).bytes() : Bytes()) << type;
                EXPECT_NE(Audio(clone).address, Audio(source).address) << type;
                // Data come whatever the type says, in the packed form: codes of four characters, values of eight bytes.
                int32_t size = 0;
                EXPECT_TRUE(HasData(clone, "C608", &size)) << type;
                EXPECT_EQ(size, 6);
                EXPECT_FALSE(HasData(clone, "LongName")) << type;
                EXPECT_TRUE(HasData(clone, "Long", &size)) << type;
                EXPECT_EQ(size, 3);
                EXPECT_TRUE(HasData(clone, "INLN", &size)) << type;
                EXPECT_EQ(size, 8);
                EXPECT_EQ(HasObject(clone), (named & 512) != 0) << type;
                EXPECT_FALSE(HasText(clone)) << type;
            }
}

TEST_F(Clones, TessiluRoadByEveryType) {
    const ComPtr<IZFrame> source = MakeRich(Picture(eZFCC_UYVY, 16, 8));
    for (const int32_t video : {0, 1, 2, 3})
        for (const int32_t audio : {0, 16})
            for (const int32_t named : {0, 256, 512, 768}) {
                const int32_t type = video | audio | named;
                const ComPtr<IZFFrame> clone = WideClone(source, type);
                ASSERT_TRUE(clone);
                const Z_AV_PROPS props = Props(clone), own = Props(source);
                EXPECT_EQ(Words(props.vidProps), Words(own.vidProps)) << type;
                // The sound's description comes with the sound only, and the host's mark never.
                EXPECT_EQ(props.audProps.nChannels, audio != 0 ? 2 : 0) << type;
                EXPECT_EQ(props.ancData.eFlags, audio != 0 ? eZAF_AL_Valid : eZAF_None) << type;
                EXPECT_EQ(props.ancData.audOutput.nTracksSplitBit, audio != 0 ? 9 : 0) << type;
                EXPECT_EQ(props.bLocked, 0) << type;
                EXPECT_TRUE(SameBytes(Time(clone), Time(source))) << type;
                const Seen seen = Video(clone);
                if (video == 0) {
                    EXPECT_EQ(seen.size, 0);
                } else {
                    EXPECT_EQ(seen.bytes(), Video(source).bytes()) << type;
                    EXPECT_EQ(seen.address == Video(source).address, video == 2) << type;
                }
                EXPECT_EQ(Audio(clone).bytes(), audio != 0 ? Audio(source).bytes() : Bytes()) << type;
                // Whole names, texts too, whatever the type says.
                int32_t size = 0;
                int64_t value = 0;
                EXPECT_TRUE(HasData(clone, "LongName", &size)) << type;
                EXPECT_FALSE(HasData(clone, "Long")) << type;
                EXPECT_TRUE(HasData(clone, "INLN", &size, &value)) << type;
                EXPECT_EQ(size, 0);
                EXPECT_EQ(value, 5);
                EXPECT_TRUE(HasText(clone)) << type;
                EXPECT_EQ(HasObject(clone), (named & 512) != 0) << type;
            }
}

TEST_F(Clones, NullOutputs) {
    const ComPtr<IZFrame> source = Make(Picture(eZFCC_UYVY, 16, 8));
    EXPECT_EQ(source->FrameClone(nullptr, eZFC_Full, eZFCC_Default), E_POINTER);
    EXPECT_EQ(source->FrameClone(nullptr, eZFC_Full, eZFCC_RGB32), E_POINTER);
    EXPECT_EQ(QueryFor<IZFFrame>(source.get())->ZFClone(nullptr, eZFC_Full, eZFCC_Default), E_POINTER);
    EXPECT_EQ(source->FrameCut(0, nullptr, nullptr), E_POINTER);
    EXPECT_EQ(QueryFor<IZFFrame>(source.get())->ZFCut(0, nullptr, nullptr), E_POINTER);
}

TEST_F(Clones, WithoutVideo) {
    ComPtr<IZFrame_I> empty;
    ASSERT_EQ(m_factory->FrameAlloc(0, 40, nullptr, empty.Put()), S_OK);
    Z_AV_PROPS props = {};
    props.vidProps = Picture(eZFCC_UYVY, 8, 4);
    ASSERT_EQ(empty->FrameAVPropsSet(&props), S_OK);
    const ComPtr<IZFrame> source = QueryFor<IZFrame>(empty.get());
    for (const int32_t type : {1, 2, 785, 786})
        for (const eZFCC fcc : {eZFCC_Default, eZFCC_UYVY, eZFCC_RGB32}) {
            const ComPtr<IZFrame> clone = Clone(source, type, fcc);
            ASSERT_TRUE(clone);
            EXPECT_EQ(Video(clone).size, 0);
            EXPECT_EQ(Props(clone).vidProps.fccType, eZFCC_UYVY);    // nothing to convert, so nothing is relabelled
            EXPECT_EQ(Audio(clone).size, (type & 16) != 0 ? 40 : 0);
        }
    // This family takes the picture's record with pixels only; the other one always.
    EXPECT_EQ(Props(WideClone(source, 2)).vidProps.nWidth, 0);
    EXPECT_EQ(Props(Clone(source, 2)).vidProps.nWidth, 8);
}

TEST_F(Clones, ReferencesKeepTheirSource) {
    ComPtr<IZFrame> source = Make(Picture(eZFCC_UYVY, 16, 8));
    const Bytes pixels = Video(source).bytes();
    const uint32_t before = RefsOf(source.get());
    ComPtr<IZFrame> copy = Clone(source, eZFC_Video);
    EXPECT_EQ(RefsOf(source.get()), before);
    ComPtr<IZFrame> reference = Clone(source, eZFC_VideoRef);
    EXPECT_EQ(RefsOf(source.get()), before + 1);
    ComPtr<IZFrame> second = Clone(reference, eZFC_VideoRef);
    int64_t id = 0, own = 0;
    ASSERT_EQ(QueryFor<IZFrame_I>(source.get())->FrameBufferIdGet(&own), S_OK);
    EXPECT_EQ(QueryFor<IZFrame_I>(second.get())->FrameBufferIdGet(&id), S_OK);    // asked through both sources
    EXPECT_EQ(id, own);
    source.Reset();
    reference.Reset();
    // Other frames of the size do not get the memory.
    for (uint32_t i = 0; i < 8; ++i) Make(Picture(eZFCC_UYVY, 16, 8), 100 + i);
    EXPECT_EQ(Video(second).bytes(), pixels);
}

TEST_F(Clones, RelabelledWithoutTouchingPixels) {
    const std::pair<eZFCC, eZFCC> pairs[] = {{eZFCC_HDYC, eZFCC_UYVY},    {eZFCC_UYVY, eZFCC_HDYC}, {eZFCC_RGB32, eZFCC_ARGB32},
                                             {eZFCC_ARGB32, eZFCC_RGB32}, {eZFCC_UYVY, eZFCC_UYVY}, {eZFCC_RGB32, eZFCC_RGB32},
                                             {eZFCC_v210, eZFCC_v210},    {eZFCC_I420, eZFCC_I420}};
    for (const auto &[from, to] : pairs)
        for (const int32_t type : {0, 1, 2, 16, 785, 786}) {
            const ComPtr<IZFrame> source = MakeRich(Picture(from, 16, Rgb(from) ? -8 : 8));
            Z_VID_PROPS want = Props(source).vidProps;
            want.fccType = to;
            for (int road = 0; road < 2; ++road) {
                const ComPtr<IZFrame> clone =
                    road == 0 ? Clone(source, type, to) : QueryFor<IZFrame>(WideClone(source, type, to).get());
                EXPECT_EQ(Words(Props(clone).vidProps), Words(want)) << type;
                EXPECT_EQ(Video(clone).bytes(), (type & 3) != 0 ? Video(source).bytes() : Bytes()) << type;
                EXPECT_EQ(Video(clone).address == Video(source).address, (type & 3) == 2) << type;
                EXPECT_EQ(Audio(clone).size, (type & 16) != 0 ? 400 : 0) << type;
                EXPECT_EQ(HasObject(clone), (type & 512) != 0) << type;
            }
        }
}

TEST_F(Clones, BottomUpRgbIsTurnedEvenIntoItsOwnFormat) {
    for (const eZFCC from : {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24})
        for (const eZFCC to : {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24}) {
            const ComPtr<IZFrame> source = Make(Picture(from, 9, 5));
            Z_VID_PROPS want = Props(source).vidProps;
            want.fccType = to;
            want.nHeight = -5;
            want.nRowBytes = static_cast<int32_t>(Row(to, 9));
            Bytes pixels(static_cast<size_t>(BufferSize(&want)), 0);
            ConvertModel(Video(source).bytes(), pixels, Props(source).vidProps, want);
            for (const int32_t type : {0, 1, 2}) {
                const ComPtr<IZFrame> clone = Clone(source, type, to);
                EXPECT_EQ(Words(Props(clone).vidProps), Words(want));
                EXPECT_EQ(Video(clone).bytes(), pixels) << type;
            }
            // The other family makes its own kind of clone when the codes are the same and nothing is copied.
            const ComPtr<IZFFrame> wide = WideClone(source, eZFC_VideoRef, to);
            if (from == to) {
                EXPECT_EQ(Video(wide).address, Video(source).address);
                EXPECT_EQ(Props(wide).vidProps.nHeight, 5);
            } else {
                EXPECT_EQ(Video(wide).bytes(), pixels);
            }
            const ComPtr<IZFFrame> copied = WideClone(source, eZFC_Video, to);
            EXPECT_EQ(Video(copied).bytes(), pixels);
            // Without a format nothing is turned.
            EXPECT_EQ(Video(Clone(source, eZFC_Video)).bytes(), Video(source).bytes());
            EXPECT_EQ(Props(Clone(source, eZFC_Video)).vidProps.nHeight, 5);
        }
}

TEST_F(Clones, ConvertedInEveryCell) {
    const eZFCC all[] = {eZFCC_RGB32, eZFCC_ARGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210};
    const auto alike = [](eZFCC f) { return f == eZFCC_HDYC ? eZFCC_UYVY : f == eZFCC_RGB32 ? eZFCC_ARGB32 : f; };
    for (const eZFCC from : all)
        for (const eZFCC to : all)
            for (const int32_t height : {-6, 6})
                for (const int32_t width : {16, 19}) {
                    if (height < 0 && !Rgb(from)) continue;
                    if (alike(from) == alike(to) && !(Rgb(to) && height > 0)) continue;
                    if (Rgb(from) && to == eZFCC_v210) continue;    // takes the general road
                    Z_VID_PROPS p = Picture(from, width, height);
                    p.eInterlace = eZI_Field2First;
                    p.nAspectX = 4;
                    p.nAspectY = 3;
                    p.eScaleType = eZST_Crop;
                    p.nRowBytes += 128;
                    const ComPtr<IZFrame> source = MakeRich(p);
                    Z_VID_PROPS want = p;
                    want.fccType = to;
                    want.nRowBytes = static_cast<int32_t>(Row(to, width));
                    want.nHeight = Rgb(to) ? -6 : 6;
                    Bytes pixels(static_cast<size_t>(BufferSize(&want)), 0);
                    ASSERT_EQ(ConvertModel(Video(source).bytes(), pixels, p, want).hr, S_OK);
                    for (const int32_t type : {0, 2, 785})
                        for (int road = 0; road < 2; ++road) {
                            if (road == 1 && from == to && (type & 1) == 0) continue;    // never looks at the row order
                            const ComPtr<IZFrame> clone =
                                road == 0 ? Clone(source, type, to) : QueryFor<IZFrame>(WideClone(source, type, to).get());
                            ASSERT_TRUE(clone);
                            EXPECT_EQ(Words(Props(clone).vidProps), Words(want));
                            EXPECT_EQ(Video(clone).bytes(), pixels) << Words(p) << " -> " << Words(want);
                            // Time, sound and data come whatever the type says; texts and objects do not.
                            EXPECT_TRUE(SameBytes(Time(clone), Time(source)));
                            EXPECT_EQ(Audio(clone).bytes(), Audio(source).bytes());
                            EXPECT_TRUE(SameBytes(Props(clone).audProps, Props(source).audProps));
                            EXPECT_TRUE(SameBytes(Props(clone).ancData, Props(source).ancData));
                            EXPECT_EQ(Props(clone).bLocked, 3);
                            EXPECT_TRUE(HasData(clone, "C608"));
                            EXPECT_FALSE(HasText(clone));
                            EXPECT_FALSE(HasObject(clone));
                        }
                }
}

TEST_F(Clones, ARecordThatStatesTooMuchIsRefused) {
    const ComPtr<IZFrame> source = Make(Picture(eZFCC_UYVY, 16, 8));
    Z_AV_PROPS props = {};
    props.vidProps = Picture(eZFCC_UYVY, 16, 9);
    ASSERT_EQ(source->FrameAVPropsSet(&props), S_OK);
    EXPECT_EQ(Props(source).vidProps.nHeight, 9);
    Clone(source, eZFC_Full, eZFCC_RGB32, kBadMedia);
    WideClone(source, eZFC_Full, eZFCC_RGB32, kBadMedia);
    // A plain copy takes the bytes that are there.
    EXPECT_EQ(Video(Clone(source, eZFC_Video)).size, 256);
    // A target without a size.
    props.vidProps = {};
    props.vidProps.fccType = eZFCC_UYVY;
    ASSERT_EQ(source->FrameAVPropsSet(&props), S_OK);
    Clone(source, eZFC_Full, eZFCC_RGB32, kBadMedia);
}

TEST_F(Clones, WithoutAFactory) {
    ComPtr<zck::CCoZFrame2> orphan;
    ASSERT_EQ(zck::CCoZFrame2::Create(nullptr, orphan), S_OK);
    ComPtr<IZFrame> out;
    for (const int32_t type : {0, 2, 16, 786})
        EXPECT_EQ(orphan->FrameClone(out.Put(), Bits({type}), eZFCC_Default), E_NOINTERFACE);
    EXPECT_EQ(orphan->FrameClone(out.Put(), eZFC_Video, eZFCC_Default), E_UNEXPECTED);
    EXPECT_EQ(orphan->FrameClone(out.Put(), eZFC_VideoRef, eZFCC_RGB32), E_UNEXPECTED);
    EXPECT_EQ(orphan->FrameCut(0, nullptr, out.Put()), E_NOINTERFACE);
    ComPtr<IZFFrame> wide;
    EXPECT_EQ(orphan->ZFClone(wide.Put(), eZFC_VideoRef, eZFCC_Default), E_UNEXPECTED);
    EXPECT_EQ(orphan->ZFClone(wide.Put(), eZFC_Video, eZFCC_RGB32), E_UNEXPECTED);
    Z_VID_PROPS p = Picture(eZFCC_UYVY, 8, 8);
    EXPECT_EQ(orphan->FrameConvert(&p, out.Put(), nullptr), E_UNEXPECTED);
    EXPECT_EQ(orphan->FrameRelease(), S_FALSE);
}

TEST_F(Clones, ACloneIsAFrameOfTheSameFactory) {
    const ComPtr<IZFrame> source = Make(Picture(eZFCC_UYVY, 16, 8));
    const uint32_t before = RefsOf(m_factory.get());
    ComPtr<IZFrame> clone = Clone(source, eZFC_Video);
    EXPECT_EQ(RefsOf(m_factory.get()), before + 1);
    clone = Clone(source, eZFC_VideoRef, eZFCC_RGB32);
    EXPECT_EQ(RefsOf(m_factory.get()), before + 1);
    EXPECT_TRUE(QueryFor<IZFrame_I>(clone.get()));
    EXPECT_TRUE(QueryFor<IZFFrame>(clone.get()));
    EXPECT_TRUE(QueryFor<INSSBuffer3>(clone.get()));
    EXPECT_EQ(QueryFor<IUnknown>(QueryFor<IZFFrame>(clone.get()).get()), QueryFor<IUnknown>(clone.get()).get());
}

}    // namespace
}    // namespace conformance
