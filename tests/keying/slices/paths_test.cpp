// Frames keyed row by row, in bands, against the same frames keyed plane by plane, in slices: every byte must agree.
#include <gtest/gtest.h>

#include "keying/pipeline/streaming_path.h"
#include "keying/slices/slices.h"
#include "platform/status.h"
#include "tests/keying/pipeline/image_fixture.h"

namespace zck {
namespace {

using test::GreenKey;
using test::Guarded;
using test::Props;

struct Result {
    HRESULT status;
    std::vector<uint8_t> pixels;
    std::vector<uint8_t> alpha;
    bool guardsHold;
    bool operator==(const Result &) const = default;
};

/// Fetches rows out of a whole picture.
struct Picture {
    std::vector<uint8_t> bytes;
    int32_t rowBytes;
    static HRESULT Fetch(void *context, int32_t row, uint8_t *dst) {
        const auto &picture = *static_cast<const Picture *>(context);
        std::copy_n(picture.bytes.data() + int64_t{row} * picture.rowBytes, picture.rowBytes, dst);
        return S_OK;
    }
    static const uint8_t *View(void *context, int32_t row) {
        const auto &picture = *static_cast<const Picture *>(context);
        return picture.bytes.data() + int64_t{row} * picture.rowBytes;
    }
};

enum class Way { Planes, PlanesViewed, Rows, RowsFetched, RowsViewed };

Result Run(CSliceThreads &pool, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key, Way way, uint32_t seed = 3) {
    const bool fetched = way == Way::RowsFetched;
    const bool viewed = way == Way::PlanesViewed || way == Way::RowsViewed;
    StreamingPath::Allow(way != Way::Planes && way != Way::PlanesViewed);
    Guarded pixels(test::PixelBytes(props));
    Guarded alpha(test::AlphaBytes(props));
    test::FillNoise(alpha.Data(), alpha.Size(), seed);
    test::FillScene(pixels.Data(), pixels.Size(), seed);
    Picture picture{pixels.Bytes(), props.nRowBytes};
    const RowSource source{&picture, viewed ? nullptr : Picture::Fetch, viewed ? Picture::View : nullptr};
    if (fetched || viewed) std::fill_n(pixels.Data(), pixels.Size(), uint8_t{0x11});
    const HRESULT hr = pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No,
                                     fetched || viewed ? &source : nullptr);
    StreamingPath::Allow(true);
    return {hr, pixels.Bytes(), alpha.Bytes(), pixels.GuardsHold() && alpha.GuardsHold()};
}

void ExpectSame(CSliceThreads &pool, const Z_VID_PROPS &props, const CHROMA_KEY_RAW &key) {
    const Result planes = Run(pool, props, key, Way::Planes);
    const Result rows = Run(pool, props, key, Way::Rows);
    const Result fetched = Run(pool, props, key, Way::RowsFetched);
    const auto what = [&] {
        return testing::Message() << props.nWidth << "x" << props.nHeight << " row " << props.nRowBytes << " slices "
                                  << pool.ThreadCount() << " interlace " << props.eInterlace << " edges " << key.nEdgesSmooth
                                  << " inverse " << key.nInverseKey << " keys " << key.nKeysUsed << " type " << key.eType;
    };
    EXPECT_TRUE(planes.guardsHold && rows.guardsHold && fetched.guardsHold) << what();
    EXPECT_EQ(planes.status, rows.status) << what();
    EXPECT_TRUE(planes.pixels == rows.pixels) << what();
    EXPECT_TRUE(planes.alpha == rows.alpha) << what();
    EXPECT_TRUE(rows == fetched) << what();
    EXPECT_TRUE(rows == Run(pool, props, key, Way::RowsViewed)) << what();
    EXPECT_TRUE(planes == Run(pool, props, key, Way::PlanesViewed)) << what();
}

CHROMA_KEY_RAW RichKey(eCK_Type type, bool reverse) {
    CHROMA_KEY_RAW key = GreenKey();
    key.eType = type;
    if (type == eCKT_HLS) key.arrKeys[0].nValue = 0x00B07058;
    if (type == eCKT_YUV) key.arrKeys[0].nValue = 0x00404078;
    key.arrKeys[1] = key.arrKeys[0];
    key.arrKeys[1].nValue += 0x00101008;
    key.arrKeys[1].nAlpha = 20;
    key.nKeysUsed = 2;
    if (reverse) {
        key.arrKeys[2] = key.arrKeys[0];
        key.arrKeys[2].nReverseKey = 1;
        key.arrKeys[2].nValue += 0x00202020;
        key.arrKeys[3] = key.arrKeys[2];
        key.arrKeys[3].nValue += 0x00181818;
        key.nKeysUsed = 4;
    }
    key.nMinTransparent = 20;
    key.nMaxTransparent = 230;
    return key;
}

TEST(Paths, AgreeOverCountsHeightsAndSmoothing) {
    for (int32_t n = 1; n <= 16; ++n) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const int32_t h : {1, 2, 3, 5, 7, 8, 15, 16, 17, 33, 64, 121}) {
            for (const int32_t edges : {0, 1, 2, 3, 4, 5}) {
                for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First}) {
                    CHROMA_KEY_RAW key = GreenKey();
                    key.nEdgesSmooth = edges;
                    key.nMinTransparent = 30;
                    Z_VID_PROPS props = Props(37, h % 2 != 0 ? h : -h);
                    props.eInterlace = scan;
                    ExpectSame(pool, props, key);
                }
            }
        }
    }
}

TEST(Paths, AgreeOverWidthsPaddingAndInversion) {
    for (const int32_t n : {1, 2, 3, 6}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (int32_t w = 1; w <= 50; ++w) {
            for (const int32_t pad : {0, 1, 3, 8}) {
                for (int32_t bits = 0; bits < 8; ++bits) {
                    CHROMA_KEY_RAW key = GreenKey();
                    key.nEdgesSmooth = (bits & 1) != 0 ? 3 : 0;
                    key.nInverseKey = (bits & 2) != 0 ? 1 : 0;
                    key.arrKeys[0].nAlpha = 5;
                    Z_VID_PROPS props = Props(w, 22, (bits & 4) != 0 ? eZFCC_RGB32 : eZFCC_ARGB32, pad);
                    if (w % 3 == 0) props.eInterlace = eZI_Field2First;
                    ExpectSame(pool, props, key);
                }
            }
        }
    }
}

CHROMA_KEY_RAW SpillKey(eCK_Type type, int32_t keys, int32_t cancel) {
    CHROMA_KEY_RAW key = RichKey(type, true);
    key.nKeysUsed = keys;
    key.bColorCancel = cancel;
    for (SINGLE_KEY &e : key.arrKeys) {
        e.nCancelRange = 30;
        e.nCancelPower = 90;
        e.nCancelChroma = -40;
        e.nCancelLuma = -13;
    }
    return key;
}

TEST(Paths, AgreeOverHeightsWhereSpillIsMoved) {
    for (int32_t n = 1; n <= 16; ++n) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const int32_t h : {1, 2, 3, 5, 8, 16, 17, 33, 64, 121, 300}) {
            for (const int32_t edges : {0, 1, 3}) {
                for (const eZInterlace scan : {eZI_Progressive, eZI_Field1First}) {
                    CHROMA_KEY_RAW key = SpillKey(eCKT_RGB, 1, 1);
                    key.nEdgesSmooth = edges;
                    Z_VID_PROPS props = Props(48, h % 2 != 0 ? h : -h);
                    props.eInterlace = scan;
                    ExpectSame(pool, props, key);
                }
            }
        }
    }
}

TEST(Paths, AgreeOverWidthsAndPaddingWhereSpillIsMoved) {
    for (const int32_t n : {1, 2, 3, 6}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (int32_t w = 1; w <= 67; ++w) {
            for (const int32_t pad : {0, 1, 3, 8}) {
                CHROMA_KEY_RAW key = SpillKey(eCKT_RGB, 1 + w % 2, 1 + pad % 2);
                key.nEdgesSmooth = w % 3;
                key.nInverseKey = w % 4;
                Z_VID_PROPS props = Props(w, 41, w % 5 == 0 ? eZFCC_RGB32 : eZFCC_ARGB32, pad);
                if (w % 3 == 0) props.eInterlace = eZI_Field2First;
                ExpectSame(pool, props, key);
            }
        }
    }
}

TEST(Paths, AgreeOverKeySpacesAndKeyCountsWhereSpillIsMoved) {
    for (const int32_t n : {1, 2, 5}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
            for (const int32_t keys : {1, 2, 4}) {
                for (const int32_t cancel : {1, 2}) {
                    for (const int32_t w : {64, 53, 44}) {
                        for (const int32_t edges : {0, 3}) {
                            CHROMA_KEY_RAW key = SpillKey(type, keys, cancel);
                            key.nEdgesSmooth = edges;
                            ExpectSame(pool, Props(w, 90), key);
                            key.arrKeys[0].nAlpha = key.arrKeys[1].nAlpha = 255;
                            ExpectSame(pool, Props(w, 90), key);
                        }
                    }
                }
            }
        }
    }
}

TEST(Paths, AgreeOverKeySpacesAndKeyCounts) {
    for (const int32_t n : {1, 2, 5}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV}) {
            for (const bool reverse : {false, true}) {
                for (const int32_t w : {6, 16, 20, 21, 24, 29, 31, 32, 47, 64}) {
                    for (const int32_t edges : {-2, 0, 2, 3}) {
                        for (const int32_t pad : {0, 2}) {
                            CHROMA_KEY_RAW key = RichKey(type, reverse);
                            key.nEdgesSmooth = edges;
                            key.nInverseKey = w % 2;
                            Z_VID_PROPS props = Props(w, 27, eZFCC_ARGB32, pad);
                            ExpectSame(pool, props, key);
                            props.eInterlace = eZI_Field1First;
                            ExpectSame(pool, props, key);
                        }
                    }
                }
            }
        }
    }
}

TEST(Paths, AgreeWithoutAnAlphaKey) {
    for (const int32_t n : {1, 2, 7}) {
        CSliceThreads pool;
        pool.SetThreadCount(n);
        for (const int32_t edges : {0, 1, 3}) {
            for (const int32_t inverse : {0, 1}) {
                for (const int32_t h : {9, 30}) {
                    CHROMA_KEY_RAW key = GreenKey();
                    key.nKeysUsed = 0;
                    key.nEdgesSmooth = edges;
                    key.nInverseKey = inverse;
                    ExpectSame(pool, Props(43, h, eZFCC_ARGB32, 2), key);
                    Z_VID_PROPS fields = Props(43, h, eZFCC_RGB32);
                    fields.eInterlace = eZI_Field1First;
                    ExpectSame(pool, fields, key);
                }
            }
        }
    }
}

TEST(Paths, AgreeOnALargeFrameAndStayAgreedWhenMemoryIsUsedAgain) {
    CSliceThreads pool;
    pool.SetThreadCount(2);
    CHROMA_KEY_RAW key = RichKey(eCKT_RGB, true);
    for (const int32_t edges : {3, 0, 16, 17, 1}) {
        key.nEdgesSmooth = edges;
        ExpectSame(pool, Props(723, 402), key);
        ExpectSame(pool, Props(320, 100), key);
    }
}

TEST(Paths, RowsReallyDifferFromPlanes) {
    // The comparison above means something only if the two ways are two: a frame that the streaming path does not serve fetches
    // all first.
    struct Count {
        int32_t rows = 0;
        bool mixed = false;
        const uint8_t *alpha = nullptr;
        static HRESULT Fetch(void *context, int32_t row, uint8_t *) {
            auto &count = *static_cast<Count *>(context);
            if (row > 0 && count.alpha[0] != 0x55) count.mixed = true;
            ++count.rows;
            return S_OK;
        }
    };
    CSliceThreads pool;
    pool.SetThreadCount(1);
    const Z_VID_PROPS props = Props(32, 20);
    for (const bool allowed : {false, true}) {
        StreamingPath::Allow(allowed);
        Guarded pixels(test::PixelBytes(props));
        Guarded alpha(test::AlphaBytes(props), 0x55);
        Count count;
        count.alpha = alpha.Data();
        const RowSource source{&count, Count::Fetch};
        const CHROMA_KEY_RAW key = GreenKey();
        EXPECT_EQ(S_OK, pool.Dispatch(pixels.Data(), alpha.Data(), &props, &key, WriteAlpha::Yes, ReturnEarly::No, &source));
        EXPECT_EQ(20, count.rows);
        EXPECT_EQ(allowed, count.mixed);
    }
    StreamingPath::Allow(true);
}

}    // namespace
}    // namespace zck
