// Frames over frames: all pairs of formats, sizes, places, fields, row orders, masks and opacities.
#include "platform/processor.h"
#include "tests/conformance/mix_fixture.h"
#include "tests/conformance/picture_model.h"

namespace conformance {
namespace {

void Limit(int32_t round) { zck::KernelLevelLimit(round % 2 != 0 ? zck::KernelLevel::Avx2 : zck::KernelLevel::Reference); }

bool IsSubsampled(eZFCC fcc) { return IsGroups(fcc) || Is420(fcc) || fcc == eZFCC_v210; }

TEST_F(Mix, EveryPairOfFormats) {
    Dice dice(550001);
    int32_t round = 0, mixed = 0;
    for (const eZFCC to : MixFormats())
        for (const eZFCC from : MixFormats())
            for (int32_t i = 0; i < 12; ++i) {
                Z_VID_PROPS target = SmallRecord(dice, to);
                const Z_VID_PROPS over = SmallRecord(dice, from);
                if (Planar(to)) target.nWidth = std::max(target.nWidth, 2);
                const ComPtr<IZFrame> under = Filled(dice, target, !Planar(to) && dice(0, 5) == 0);
                const ComPtr<IZFrame> laid = Filled(dice, over);
                const Z_VID_PROPS t = Props(under).vidProps;
                Limit(++round);
                // Planes are never cut: what lies outside of them fails by its format.
                const int32_t x = Planar(to) ? 0 : AnyPlace(dice, t.nWidth, over.nWidth);
                const int32_t y = Planar(to) ? 0 : AnyPlace(dice, std::abs(t.nHeight), std::abs(over.nHeight));
                Laid seen;
                Lay(under, laid, x, y, AnyOpacity(dice), &seen);
                ASSERT_FALSE(HasFailure()) << "round " << round;
                mixed += seen.hr == S_OK ? 1 : 0;
            }
    EXPECT_GT(mixed, round / 4);
}

TEST_F(Mix, EveryPairThatCanBeMixed) {
    Dice dice(550002);
    constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32};
    int32_t mixed = 0;
    constexpr int32_t kRounds = 4000;
    for (int32_t round = 0; round < kRounds; ++round) {
        const Z_VID_PROPS target = SmallRecord(dice, kFormats[dice(0, 5)]), over = SmallRecord(dice, kFormats[dice(0, 5)]);
        const ComPtr<IZFrame> under = Filled(dice, target, dice(0, 7) == 0), laid = Filled(dice, over, dice(0, 11) == 0);
        const Z_VID_PROPS t = Props(under).vidProps, o = Props(laid).vidProps;
        Limit(round);
        Laid seen;
        Lay(under, laid, AnyPlace(dice, t.nWidth, o.nWidth), AnyPlace(dice, std::abs(t.nHeight), std::abs(o.nHeight)),
            AnyOpacity(dice), &seen);
        ASSERT_FALSE(HasFailure()) << "round " << round;
        mixed += seen.hr == S_OK ? 1 : 0;
    }
    EXPECT_GT(mixed, kRounds / 2);
}

// A mask of one byte a pixel, as it is kept on frames.
Z_VID_PROPS MaskRecord(int32_t width, int32_t rows) {
    Z_VID_PROPS p = Picture(eZFCC_RGB8, width, rows);
    p.nRowBytes = (width + 7) / 8 * 8;
    return p;
}

class MixWide : public Mix {
protected:
    // A stored mask that fits the overlay.
    void StoreMask(Dice &dice, const ComPtr<IZFrame> &on, const Z_VID_PROPS &over) {
        const int32_t width = Rgb(over.fccType) ? over.nWidth : over.nWidth / 2 * 2;
        if (width > 0) Store(on, kMask, Filled(dice, MaskRecord(width, std::abs(over.nHeight))));
    }
    ComPtr<IZFrame> AnyMask(Dice &dice, const Z_VID_PROPS &over) {
        Z_VID_PROPS p = SmallRecord(dice, MixFormats()[static_cast<size_t>(dice(0, 12))]);
        if (dice(0, 2) != 0)
            p.nWidth = over.nWidth, p.nHeight = p.nHeight < 0 ? -std::abs(over.nHeight) : std::abs(over.nHeight);
        if (IsSubsampled(p.fccType)) p.nWidth = std::max(p.nWidth, 2);
        p.nRowBytes = std::max(p.nRowBytes, static_cast<int32_t>(Row(p.fccType, p.nWidth)));
        return Filled(dice, p);
    }
    // Twice: what was kept the first time is used the second time.
    void Walk(Dice &dice, eZFCC to, eZFCC from, Laid *seen) {
        Z_VID_PROPS target = SmallRecord(dice, to), over = SmallRecord(dice, from);
        if (IsSubsampled(from) && over.nWidth == 1) over = Picture(from, 2, over.nHeight);
        const ComPtr<IZFrame> under = Filled(dice, target, !Planar(to) && dice(0, 5) == 0), laid = Filled(dice, over);
        const Z_VID_PROPS t = Props(under).vidProps;
        ComPtr<IZFrame> mask;
        if (dice(0, 2) == 0) mask = AnyMask(dice, over);
        if (mask && dice(0, 3) == 0) StoreMask(dice, mask, over);
        if (dice(0, 4) == 0) StoreMask(dice, laid, over);
        for (int32_t time = 0; time < 2; ++time) {
            constexpr int32_t kFlags[] = {0, 0, 0, 0x1000, 0x2000, 0x3000};
            const WideCall call = {AnyPlace(dice, t.nWidth, over.nWidth),
                                   AnyPlace(dice, std::abs(t.nHeight), std::abs(over.nHeight)), AnyOpacity(dice),
                                   kFlags[dice(0, 5)], nullptr};
            LayWide(under, laid, mask, call, seen);
            if (HasFailure()) return;
        }
    }
};

TEST_F(MixWide, EveryPairOfFormats) {
    Dice dice(550003);
    int32_t round = 0, mixed = 0;
    for (const eZFCC to : MixFormats())
        for (const eZFCC from : MixFormats())
            for (int32_t i = 0; i < 8; ++i) {
                Limit(++round);
                Laid seen;
                Walk(dice, to, from, &seen);
                ASSERT_FALSE(HasFailure()) << "round " << round;
                mixed += seen.hr == S_OK && seen.target.size() > 0 ? 1 : 0;
            }
    EXPECT_GT(mixed, round / 4);
}

TEST_F(MixWide, EveryPairThatCanBeMixed) {
    Dice dice(550004);
    constexpr eZFCC kFormats[] = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_RGB32, eZFCC_ARGB32};
    int32_t mixed = 0;
    constexpr int32_t kRounds = 2500;
    for (int32_t round = 0; round < kRounds; ++round) {
        Limit(round);
        Laid seen;
        Walk(dice, kFormats[dice(0, 4)], kFormats[dice(0, 4)], &seen);
        ASSERT_FALSE(HasFailure()) << "round " << round;
        mixed += seen.hr == S_OK ? 1 : 0;
    }
    EXPECT_GT(mixed, kRounds / 2);
}

}    // namespace
}    // namespace conformance
