// Frames whose rows are fetched while they are keyed.
#include <gtest/gtest.h>

#include <atomic>

#include "keying/slices/slices.h"
#include "platform/status.h"
#include "tests/keying/slices/slices_frame.h"

namespace zck {
namespace {

using test::Frame;
using test::GreenKey;
using test::Pool;
using test::Props;

struct Source {
    std::atomic<int32_t> count[64] = {};
    int32_t failing = -1;
    static HRESULT Fetch(void *context, int32_t row, uint8_t *dst) {
        auto &source = *static_cast<Source *>(context);
        ++source.count[row];
        if (row == source.failing) return E_FAIL;
        dst[0] = static_cast<uint8_t>(row);
        return S_OK;
    }
};

TEST(Slices, ASourceIsAskedForEachRowOnce) {
    for (const int32_t n : {1, 2, 3, 7, 16}) {
        for (const int32_t edges : {0, 3}) {
            for (const int32_t h : {3, 41, 64}) {
                for (const eCK_Type type : {eCKT_RGB, eCKT_Auto}) {
                    Pool pool(n);
                    Source source;
                    const RowSource rows{&source, Source::Fetch};
                    Z_VID_PROPS props = Props(16, h);
                    props.eInterlace = n == 3 ? eZI_Field1First : eZI_Progressive;
                    Frame frame(props);
                    CHROMA_KEY_RAW key = GreenKey();
                    key.eType = type;
                    key.nEdgesSmooth = edges;
                    EXPECT_EQ(type == eCKT_Auto ? S_FALSE : S_OK, frame.Dispatch(pool, key, &rows));
                    for (int32_t y = 0; y < 64; ++y) EXPECT_EQ(y < h ? 1 : 0, source.count[y]) << n << " " << y;
                }
            }
        }
    }
}

TEST(Slices, AFailingSourceFailsTheFrame) {
    for (const int32_t n : {1, 2, 4}) {
        for (const int32_t edges : {0, 3}) {
            for (const int32_t row : {0, 20, 31, 63}) {
                Pool pool(n);
                Source source;
                source.failing = row;
                const RowSource rows{&source, Source::Fetch};
                Frame frame(Props(16, 64));
                CHROMA_KEY_RAW key = GreenKey();
                key.nEdgesSmooth = edges;
                EXPECT_EQ(E_FAIL, frame.Dispatch(pool, key, &rows));
                source.failing = -1;
                EXPECT_EQ(S_OK, frame.Dispatch(pool, key, &rows));
            }
        }
    }
}

}    // namespace
}    // namespace zck
