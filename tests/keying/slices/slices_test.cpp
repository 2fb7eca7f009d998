#include "keying/slices/slices.h"

#include <gtest/gtest.h>

#include "platform/status.h"
#include "tests/keying/slices/slices_frame.h"

namespace zck {
namespace {

using test::Frame;
using test::GreenKey;
using test::Pool;
using test::Props;

TEST(Slices, ThreadCountHasLimits) {
    CSliceThreads pool;
    EXPECT_EQ(6, pool.ThreadCount());
    EXPECT_EQ(S_FALSE, pool.SetThreadCount(6));
    EXPECT_EQ(E_INVALIDARG, pool.SetThreadCount(0));
    EXPECT_EQ(E_INVALIDARG, pool.SetThreadCount(-3));
    EXPECT_EQ(E_INVALIDARG, pool.SetThreadCount(INT32_MIN));
    EXPECT_EQ(6, pool.ThreadCount());
    EXPECT_EQ(S_OK, pool.SetThreadCount(20));
    EXPECT_EQ(16, pool.ThreadCount());
    EXPECT_EQ(S_OK, pool.SetThreadCount(20));
    EXPECT_EQ(S_FALSE, pool.SetThreadCount(16));
    EXPECT_EQ(S_OK, pool.SetThreadCount(1));
}

TEST(Slices, NothingToWaitForBeforeTheFirstFrame) {
    Pool pool(2);
    EXPECT_EQ(S_FALSE, pool.WaitDone());
    Frame frame(Props(16, 4));
    EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
    EXPECT_EQ(S_OK, pool.WaitDone());
}

TEST(Slices, RefusesNullArguments) {
    Pool pool(2);
    Frame f(Props(16, 4));
    const CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(E_POINTER, pool.Dispatch(nullptr, f.alpha.Data(), &f.props, &key, WriteAlpha::Yes, ReturnEarly::No));
    EXPECT_EQ(E_POINTER, pool.Dispatch(f.pixels.Data(), nullptr, &f.props, &key, WriteAlpha::Yes, ReturnEarly::No));
    EXPECT_EQ(E_POINTER, pool.Dispatch(f.pixels.Data(), f.alpha.Data(), nullptr, &key, WriteAlpha::Yes, ReturnEarly::No));
    EXPECT_EQ(E_POINTER, pool.Dispatch(f.pixels.Data(), f.alpha.Data(), &f.props, nullptr, WriteAlpha::Yes, ReturnEarly::No));
    EXPECT_EQ(E_POINTER, FinishAlpha(nullptr, f.alpha.Data(), &f.props, &key));
    EXPECT_EQ(E_POINTER, FinishAlpha(f.pixels.Data(), nullptr, &f.props, &key));
    EXPECT_EQ(E_POINTER, FinishAlpha(f.pixels.Data(), f.alpha.Data(), nullptr, &key));
    EXPECT_EQ(E_POINTER, FinishAlpha(f.pixels.Data(), f.alpha.Data(), &f.props, nullptr));
}

TEST(Slices, AbsurdPropsAreRefusedAndTouchNothing) {
    const auto refused = [](void (*change)(Z_VID_PROPS &)) {
        for (const int32_t n : {1, 3}) {
            Pool pool(n);
            Frame frame(Props(16, 6));
            const Z_VID_PROPS sound = frame.props;
            change(frame.props);
            EXPECT_EQ(E_INVALIDARG, frame.Dispatch(pool, GreenKey()));
            const CHROMA_KEY_RAW key = GreenKey();
            EXPECT_EQ(E_INVALIDARG, FinishAlpha(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key));
            EXPECT_EQ(frame.before, frame.pixels.Bytes());
            frame.props = sound;
            EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey())) << "the pool is none the worse";
        }
    };
    refused([](Z_VID_PROPS &p) { p.nRowBytes = 63; });
    refused([](Z_VID_PROPS &p) { p.nRowBytes = -64; });
    refused([](Z_VID_PROPS &p) { p.nWidth = -1; });
    refused([](Z_VID_PROPS &p) { p.nHeight = INT32_MIN; });
    refused([](Z_VID_PROPS &p) { p.fccType = eZFCC_Default; });
    Pool pool(2);
    Frame frame(Props(16, 6));
    frame.props.nRowBytes = 0x7FFFFFF0;
    frame.props.nHeight = 0;
    EXPECT_EQ(E_INVALIDARG, frame.Dispatch(pool, GreenKey())) << "the rows of a slice are too far apart";
}

TEST(Slices, ABufferThatIsTooSmallIsRefused) {
    for (const int32_t n : {1, 2}) {
        Pool pool(n);
        Frame f(Props(16, 4, eZFCC_ARGB32, 4));
        const CHROMA_KEY_RAW key = GreenKey();
        const int64_t need = 3 * 80 + 64;
        EXPECT_EQ(E_INVALIDARG, pool.Dispatch(f.pixels.Data(), f.alpha.Data(), &f.props, &key, WriteAlpha::Yes, ReturnEarly::No,
                                              nullptr, need - 1));
        EXPECT_EQ(f.before, f.pixels.Bytes());
        EXPECT_EQ(S_OK, pool.Dispatch(f.pixels.Data(), f.alpha.Data(), &f.props, &key, WriteAlpha::Yes, ReturnEarly::No,
                                      nullptr, need));
    }
}

TEST(Slices, TypesThatKeyNothingPass) {
    for (const eCK_Type type : {eCKT_Alpha, eCKT_None, eCKT_Auto}) {
        Pool pool(2);
        Frame frame(Props(16, 4));
        CHROMA_KEY_RAW key = GreenKey();
        key.eType = type;
        EXPECT_EQ(S_FALSE, frame.Dispatch(pool, key));
        EXPECT_EQ(frame.before, frame.pixels.Bytes());
        EXPECT_EQ(S_FALSE, pool.WaitDone()) << "no thread was started";
    }
}

TEST(Slices, ColourIsMultipliedByAlphaInTheEnd) {
    for (const int32_t n : {1, 2, 4}) {
        Pool pool(n);
        Frame frame(Props(32, 8));
        EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
        for (int32_t y = 0; y < 8; ++y) {
            for (int32_t x = 0; x < 32; ++x) EXPECT_TRUE(frame.Left(x, y, frame.Alpha(x, y))) << x << "," << y;
        }
    }
}

TEST(Slices, GapPixelsAreMultipliedByTheAlphaTheyHad) {
    for (const int32_t n : {1, 2}) {
        Pool pool(n);
        Frame frame(Props(24, 4));
        EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
        for (int32_t y = 0; y < 4; ++y) {
            for (int32_t x = 16; x < 24; ++x) EXPECT_TRUE(frame.Left(x, y, frame.Old(x, y, 3)));
        }
    }
}

TEST(Slices, RowsBelowTheLastWholeCombKeepTheAlphaOfThePlane) {
    Pool pool(7);
    Frame frame(Props(16, 1080));
    EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
    Pool single(1);
    Frame whole(Props(16, 1080));
    EXPECT_EQ(S_OK, whole.Dispatch(single, GreenKey()));
    for (int32_t y = 0; y < 1080; ++y) {
        for (int32_t x = 0; x < 16; ++x) EXPECT_TRUE(frame.Left(x, y, y < 1078 ? whole.Alpha(x, y) : 0x55)) << x << "," << y;
    }
}

TEST(Slices, AFrameLowerThanTheCountIsOnlyMultiplied) {
    for (const int32_t h : {1, 3, -3}) {
        Pool pool(4);
        Frame frame(Props(16, h));
        CHROMA_KEY_RAW key = GreenKey();
        key.nEdgesSmooth = 3;
        key.nInverseKey = 1;
        EXPECT_EQ(S_OK, frame.Dispatch(pool, key));
        for (int32_t y = 0; y < std::abs(h); ++y) {
            for (int32_t x = 0; x < 16; ++x) {
                EXPECT_TRUE(frame.Left(x, y, frame.Old(x, y, 3)));
                EXPECT_EQ(0x55, frame.Alpha(x, y));
            }
        }
    }
}

TEST(Slices, AFrameWithoutRowsClearsTheStatuses) {
    CHROMA_KEY_RAW none = GreenKey();
    none.nKeysUsed = 0;
    Pool pool(2);
    Frame frame(Props(16, 8));
    EXPECT_EQ(S_FALSE, frame.Dispatch(pool, none));
    Frame empty(Props(16, 0));
    EXPECT_EQ(S_OK, empty.Dispatch(pool, none));
    EXPECT_EQ(S_OK, pool.SetThreadCount(1));
    EXPECT_EQ(S_OK, frame.Dispatch(pool, none));
}

TEST(Slices, InversionTakesEffectOnceWithOneSliceAndNotAtAllWithMore) {
    CHROMA_KEY_RAW key = GreenKey();
    Pool one(1);
    Frame plain(Props(32, 8));
    EXPECT_EQ(S_OK, plain.Dispatch(one, key));
    key.nInverseKey = 1;
    Frame inverted(Props(32, 8));
    EXPECT_EQ(S_OK, inverted.Dispatch(one, key));
    Pool two(2);
    Frame twice(Props(32, 8));
    EXPECT_EQ(S_OK, twice.Dispatch(two, key));
    for (int32_t y = 0; y < 8; ++y) {
        for (int32_t x = 0; x < 32; ++x) {
            EXPECT_EQ(255 - plain.Alpha(x, y), inverted.Alpha(x, y));
            EXPECT_EQ(plain.Alpha(x, y), twice.Alpha(x, y));
        }
    }
}

TEST(Slices, MoreSlicesSmoothTheInvertedPlane) {
    // Erosion of the inverted plane is not the inversion of the eroded one: the two results must differ.
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 3;
    Pool two(2);
    Frame plain(Props(32, 16));
    EXPECT_EQ(S_OK, plain.Dispatch(two, key));
    key.nInverseKey = 1;
    Frame inverted(Props(32, 16));
    EXPECT_EQ(S_OK, inverted.Dispatch(two, key));
    EXPECT_NE(plain.alpha.Bytes(), inverted.alpha.Bytes());
}

TEST(Slices, TheLateByteOfAnInversionStaysInItsRow) {
    // Without keys only the pass after the slices inverts: 18 columns without padding.
    CHROMA_KEY_RAW key = GreenKey();
    key.nKeysUsed = 0;
    key.nInverseKey = 1;
    Pool pool(2);
    Frame frame(Props(18, 4));
    EXPECT_EQ(S_FALSE, frame.Dispatch(pool, key));
    for (int32_t y = 0; y < 4; ++y) {
        for (int32_t x = 0; x < 18; ++x) EXPECT_EQ(x == 16 ? 255 : 0, frame.Alpha(x, y)) << x << "," << y;
    }
    Frame padded(Props(18, 4, eZFCC_ARGB32, 2), 0xF0);
    EXPECT_EQ(S_FALSE, padded.Dispatch(pool, key));
    for (int32_t y = 0; y < 4; ++y) {
        EXPECT_EQ(0x0F, padded.Alpha(18, y)) << "with padding it is there";
        EXPECT_EQ(0xF0, padded.Alpha(19, y));
    }
}

TEST(Slices, ARoundedWidthStaysInItsRow) {
    // 5 columns without padding: the slices' rows are further apart, so that 8 are measured and 5 are kept.
    Pool pool(2);
    Frame frame(Props(5, 4));
    EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
    Pool single(1);
    Frame line(Props(24, 1));
    std::copy_n(frame.before.data(), 80, line.pixels.Data());
    EXPECT_EQ(S_OK, line.Dispatch(single, GreenKey()));
    for (int32_t i = 0; i < 20; ++i) EXPECT_EQ(line.Alpha(i, 0), frame.Alpha(i % 5, i / 5)) << i;
    EXPECT_TRUE(frame.alpha.GuardsHold());
}

TEST(Slices, Rgb32GetsItsAlphaFromSeveralSlicesOnly) {
    Pool one(1);
    Frame single(Props(32, 4, eZFCC_RGB32));
    EXPECT_EQ(S_OK, single.Dispatch(one, GreenKey()));
    Pool two(2);
    Frame several(Props(32, 4, eZFCC_RGB32));
    EXPECT_EQ(S_OK, several.Dispatch(two, GreenKey()));
    for (int32_t y = 0; y < 4; ++y) {
        for (int32_t x = 0; x < 32; ++x) {
            EXPECT_TRUE(single.Left(x, y, single.Old(x, y, 3)));
            EXPECT_TRUE(several.Left(x, y, several.Alpha(x, y)));
        }
    }
    EXPECT_EQ(single.alpha.Bytes(), several.alpha.Bytes());
}

TEST(Slices, TheFrameDecidesAboutFields) {
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 2;
    for (const int32_t n : {1, 2}) {
        Pool pool(n);
        const auto alphaOf = [&](eZInterlace scan, eZVideoFormat format, int32_t stored) {
            Frame frame(Props(32, 16));
            frame.props.eInterlace = scan;
            frame.props.eVideoFormat = format;
            key.nInterlacedVideo = stored;
            EXPECT_EQ(S_OK, frame.Dispatch(pool, key));
            return frame.alpha.Bytes();
        };
        const auto progressive = alphaOf(eZI_Progressive, eZVF_Custom, 0);
        const auto fields = alphaOf(eZI_Field1First, eZVF_Custom, 0);
        EXPECT_NE(progressive, fields);
        EXPECT_EQ(fields, alphaOf(eZI_Field2First, eZVF_Custom, 0));
        EXPECT_EQ(progressive, alphaOf(eZI_Progressive, eZVF_HD1080_50i, 1)) << "the stored value is overruled";
        EXPECT_EQ(fields, alphaOf(eZI_Default, eZVF_HD1080_50i, 0));
        EXPECT_EQ(fields, alphaOf(eZI_Default, eZVF_NTSC, 0));
        EXPECT_EQ(progressive, alphaOf(eZI_Default, eZVF_HD1080_25p, 1));
        EXPECT_EQ(progressive, alphaOf(eZI_Default, eZVF_Custom, 1));
        EXPECT_EQ(progressive, alphaOf(eZI_Inverse, eZVF_HD1080_50i, 1));
    }
}

TEST(Slices, AnOddLastLineOfFields) {
    CHROMA_KEY_RAW key = GreenKey();
    key.nEdgesSmooth = 1;
    Z_VID_PROPS props = Props(32, 9);
    props.eInterlace = eZI_Field1First;
    // One slice keys the two fields: the last line is not keyed at all.
    Pool one(1);
    Frame single(props);
    EXPECT_EQ(S_OK, single.Dispatch(one, key));
    // Three slices key all lines, and the pass after them leaves the last one unsmoothed.
    Pool three(3);
    Frame several(props);
    EXPECT_EQ(S_OK, several.Dispatch(three, key));
    Frame bare(Props(32, 9));
    key.nEdgesSmooth = 0;
    EXPECT_EQ(S_OK, bare.Dispatch(three, key));
    for (int32_t x = 0; x < 32; ++x) {
        EXPECT_EQ(0x55, single.Alpha(x, 8));
        EXPECT_TRUE(single.Left(x, 8, single.Old(x, 8, 3)));
        EXPECT_TRUE(several.Left(x, 8, bare.Alpha(x, 8)));
    }
}

TEST(Slices, StatusIsThatOfTheFirstTwo) {
    CHROMA_KEY_RAW none = GreenKey();
    none.nKeysUsed = 0;
    Pool pool(1);
    Frame frame(Props(16, 8));
    EXPECT_EQ(S_OK, frame.Dispatch(pool, none)) << "one slice answers what slot 1 held: at first 0";
    EXPECT_EQ(S_OK, pool.SetThreadCount(2));
    EXPECT_EQ(S_FALSE, frame.Dispatch(pool, none));
    EXPECT_EQ(S_OK, pool.SetThreadCount(1));
    EXPECT_EQ(S_FALSE, frame.Dispatch(pool, GreenKey())) << "and then what the last frame of two left";
    EXPECT_EQ(S_OK, pool.SetThreadCount(3));
    EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
    // A failing slice 0 comes first: smoothing without interior.
    EXPECT_EQ(S_OK, pool.SetThreadCount(1));
    CHROMA_KEY_RAW smooth = GreenKey();
    smooth.nEdgesSmooth = 1;
    Frame thin(Props(2, 8));
    EXPECT_EQ(StatusOf(0xFFFFFFFA), thin.Dispatch(pool, smooth));
    EXPECT_EQ(S_OK, pool.SetThreadCount(2));
    EXPECT_EQ(S_OK, thin.Dispatch(pool, smooth)) << "the failure of the pass after the slices is not looked at";
}

TEST(Slices, WithoutKeysTheFrameIsOpaque) {
    CHROMA_KEY_RAW none = GreenKey();
    none.nKeysUsed = 0;
    Pool two(2);
    Frame several(Props(32, 4));
    EXPECT_EQ(S_FALSE, several.Dispatch(two, none));
    Pool one(1);
    Frame single(Props(32, 4));
    one.Dispatch(single.pixels.Data(), single.alpha.Data(), &single.props, &none, WriteAlpha::Yes, ReturnEarly::No);
    for (int32_t y = 0; y < 4; ++y) {
        for (int32_t x = 0; x < 32; ++x) {
            EXPECT_TRUE(several.Left(x, y, 255));
            EXPECT_TRUE(single.Left(x, y, single.Old(x, y, 3))) << "one slice writes no alpha without keys";
        }
    }
}

TEST(Slices, ReturningEarlyLeavesTheSlicesToTheCaller) {
    Pool pool(3);
    Frame frame(Props(32, 9));
    const CHROMA_KEY_RAW key = GreenKey();
    EXPECT_EQ(S_FALSE,
              pool.Dispatch(frame.pixels.Data(), frame.alpha.Data(), &frame.props, &key, WriteAlpha::Yes, ReturnEarly::Yes));
    EXPECT_EQ(S_OK, pool.WaitDone());
    for (int32_t y = 0; y < 9; ++y) {
        for (int32_t x = 0; x < 32; ++x) {
            EXPECT_EQ(frame.Alpha(x, y), frame.Byte(x, y, 3));
            EXPECT_EQ(frame.Old(x, y, 1), frame.Byte(x, y, 1)) << "not multiplied";
        }
    }
}

TEST(Slices, TheCountMayChangeWithEachFrame) {
    CSliceThreads pool;
    Pool single(1);
    Frame expected(Props(48, 24));
    EXPECT_EQ(S_OK, expected.Dispatch(single, GreenKey()));
    for (const int32_t n : {6, 1, 16, 2, 3, 12, 4, 1, 8}) {
        pool.SetThreadCount(n);
        for (int32_t again = 0; again < 3; ++again) {
            Frame frame(Props(48, 24));
            EXPECT_EQ(S_OK, frame.Dispatch(pool, GreenKey()));
            if (24 % n == 0) {
                EXPECT_EQ(expected.pixels.Bytes(), frame.pixels.Bytes()) << n;
            }
        }
    }
}

// What a slice measures and writes drifts into the rows of the others there.
TEST(Slices, RowsOfNoWholePixelsGiveTheSameBytesEachTime) {
    CHROMA_KEY_RAW key = GreenKey();
    key.bColorCancel = 1;
    key.arrKeys[0].nCancelPower = 60;
    for (const int32_t odd : {1, 2, 3}) {
        Z_VID_PROPS props = Props(48, 40);
        props.nRowBytes += odd;
        for (const int32_t n : {2, 3, 4, 7}) {
            Pool pool(n);
            std::vector<uint8_t> first;
            for (int32_t again = 0; again < 20; ++again) {
                Frame frame(props, 0);
                ASSERT_EQ(S_OK, frame.Dispatch(pool, key));
                if (first.empty()) first = frame.pixels.Bytes();
                ASSERT_EQ(first, frame.pixels.Bytes()) << odd << " " << n;
            }
        }
    }
}

}    // namespace
}    // namespace zck
