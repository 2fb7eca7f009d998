// Conversions of any frame into any other: all pairs of formats, scans and row orders, and all options in any mixture.
#include "tests/conformance/both_levels.h"
#include "tests/conformance/driver_fixture.h"

namespace conformance {
namespace {

void Limit(int32_t round) { zck::KernelLevelLimit(round % 2 != 0 ? zck::KernelLevel::Avx2 : zck::KernelLevel::Reference); }

// Often the size of the source, or one side of it.
void LikeSource(Dice &dice, const Z_VID_PROPS &source, Z_VID_PROPS &t) {
    const int32_t like = dice(0, 3), row = t.nRowBytes - static_cast<int32_t>(Row(t.fccType, t.nWidth));
    if (like == 1 || like == 3) t.nWidth = source.nWidth;
    if (like >= 2) t.nHeight = t.nHeight < 0 ? -std::abs(source.nHeight) : std::abs(source.nHeight);
    t.nRowBytes = static_cast<int32_t>(Row(t.fccType, t.nWidth)) + row;
    if (dice(0, 3) == 0) t.eScaleType = source.eScaleType, t.dblRate = source.dblRate;
    if (dice(0, 3) == 0) t.nAspectX = source.nAspectX, t.nAspectY = source.nAspectY;
}

TEST_F(Driver, EveryPairOfFormatsAndScans) {
    Dice dice(100601);
    int32_t round = 0, converted = 0;
    for (const eZFCC from : FrameFormats())
        for (const eZFCC to : FrameFormats())
            for (const eZInterlace fromScan : {eZI_Progressive, eZI_Field1First, eZI_Field2First})
                for (const eZInterlace toScan : {eZI_Progressive, eZI_Field1First, eZI_Field2First}) {
                    Z_VID_PROPS source = AnyRecord(dice, from), target = AnyRecord(dice, to);
                    source.eInterlace = fromScan;
                    target.eInterlace = toScan;
                    const ComPtr<IZFrame> frame = Filled(dice, source);
                    LikeSource(dice, Props(frame).vidProps, target);
                    Limit(++round);
                    ConvertWishes wishes;
                    if (dice(0, 1) != 0) wishes.quality = std::to_string(dice(-1, 20));
                    Conversion seen;
                    Check(frame, {}, target, wishes, &seen);
                    ASSERT_FALSE(HasFailure()) << "round " << round;
                    converted += seen.hr == S_OK ? 1 : 0;
                }
    EXPECT_GT(converted, round / 2);
}

TEST_F(Driver, AnyMixtureOfOptions) {
    Dice dice(100602);
    const auto pick = [&dice](std::initializer_list<const char *> words) {
        const auto i = dice(0, 2 * static_cast<int32_t>(words.size()));
        return i < static_cast<int32_t>(words.size()) ? std::string(*(words.begin() + i)) : std::string();
    };
    int32_t converted = 0;
    constexpr int32_t kRounds = 3000;
    for (int32_t round = 0; round < kRounds; ++round) {
        Limit(round);
        // Mostly what can be converted.
        const auto format = [&] { return FrameFormats()[static_cast<size_t>(dice(0, dice(0, 9) == 0 ? 12 : 9))]; };
        const eZFCC from = format(), to = dice(0, 4) == 0 ? from : format();
        const Z_VID_PROPS source = AnyRecord(dice, from);
        Z_VID_PROPS target = AnyRecord(dice, to);
        ComPtr<IZFrame> first = Filled(dice, source), second;
        LikeSource(dice, Props(first).vidProps, target);
        if (dice(0, 3) == 0) {
            Z_VID_PROPS other = dice(0, 3) == 0 ? AnyRecord(dice, from) : Props(first).vidProps;
            if (other.nWidth > 0 && other.nHeight != 0) second = Make(other, static_cast<uint32_t>(round));
        }
        if (second && dice(0, 5) == 0) first = nullptr;
        ConvertWishes wishes;
        wishes.scale = pick({"default", "none", "Letter-Box", "crop", "no-scale", "what"});
        wishes.mirror = pick({"horz", "VERT", "both", "none"});
        wishes.rotate = pick({"left", "Right", "180"});
        wishes.field = pick({"-1", "0", "1", "2", "x"});
        if (dice(0, 1) != 0) wishes.quality = std::to_string(dice(-2, 30));
        if (dice(0, 2) == 0)
            for (int32_t i = dice(1, 5); i > 0; --i) wishes.crop += std::to_string(dice(-2, 6)) + (i > 1 ? "," : "");
        Conversion seen;
        Check(first, second, target, wishes, &seen);
        ASSERT_FALSE(HasFailure()) << "round " << round;
        converted += seen.hr == S_OK ? 1 : 0;
    }
    EXPECT_GT(converted, kRounds / 2);
}

}    // namespace
}    // namespace conformance
