#include "tests/conformance/driver_fixture.h"

#include <cstdlib>
#include <cstring>

#include "tests/conformance/picture_model.h"

namespace conformance {

const std::vector<eZFCC> &FrameFormats() {
    static const std::vector<eZFCC> formats = {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2,  eZFCC_YVYU,  eZFCC_I420,
                                               eZFCC_YV12, eZFCC_NV12, eZFCC_RGB24, eZFCC_RGB32, eZFCC_ARGB32,
                                               eZFCC_v210, eZFCC_r210, eZFCC_RGB8};
    return formats;
}

eZInterlace AnyScan(Dice &dice) {
    constexpr eZInterlace kScans[] = {eZI_Progressive, eZI_Progressive, eZI_Field1First, eZI_Field2First, eZI_Default};
    return kScans[dice(0, 4)];
}

Z_VID_PROPS AnyRecord(Dice &dice, eZFCC fcc) {
    Z_VID_PROPS p = Picture(fcc, dice(0, 5) == 0 ? dice(1, 5) : dice(6, 40), dice(0, 5) == 0 ? dice(1, 5) : dice(6, 40));
    if (Rgb(fcc) && dice(0, 1) != 0) p.nHeight = -p.nHeight;
    if (dice(0, 3) == 0) p.nRowBytes += fcc == eZFCC_v210 ? 128 : fcc == eZFCC_r210 ? 256 : 4 * dice(1, 9);
    p.eInterlace = AnyScan(dice);
    p.eScaleType = static_cast<eZScaleType>(dice(0, 1) != 0 ? 0 : dice(0, 4));
    constexpr double kRates[] = {0, 24, 25, 29.97, 50, 59.94};
    p.dblRate = kRates[dice(0, 5)];
    if (dice(0, 2) != 0) {
        p.nAspectX = static_cast<int16_t>(dice(1, 16));
        p.nAspectY = static_cast<int16_t>(dice(1, 9));
    }
    return p;
}

ComPtr<IZFrame> Driver::Filled(Dice &dice, const Z_VID_PROPS &p) {
    const bool cut = dice(0, 7) == 0 && p.nWidth > 4 && std::abs(p.nHeight) > 4;
    const ComPtr<IZFrame> frame = Make(p);
    if (!frame) return frame;
    const Seen seen = Video(frame);
    const Bytes noise = dice.NoiseOrLimits(static_cast<size_t>(seen.size));
    std::memcpy(seen.data(), noise.data(), noise.size());
    if (!cut) return frame;
    tagRECT rect = {dice(0, 2), dice(0, 2), p.nWidth - dice(0, 2), std::abs(p.nHeight) - dice(0, 2)};
    ComPtr<IZFrame> part;
    EXPECT_EQ(frame->FrameCut(0, &rect, part.Put()), S_OK);
    return part;
}

void Driver::Compare(const Conversion &expected, HRESULT hr, const ComPtr<IZFrame> &found) {
    if (expected.hr != S_OK) {
        // Of a scaler's failures only that they are failures is known.
        if (expected.hr == E_FAIL)
            ASSERT_LT(hr, 0);
        else
            ASSERT_EQ(hr, expected.hr) << std::hex << "0x" << static_cast<uint32_t>(hr);
        ASSERT_FALSE(found);
        return;
    }
    ASSERT_EQ(hr, S_OK) << std::hex << "0x" << static_cast<uint32_t>(hr);
    ASSERT_TRUE(found);
    ASSERT_EQ(Words(Props(found).vidProps), Words(expected.result.props));
    if (!expected.known) return;
    const Bytes bytes = Video(found).bytes();
    const Bytes &want = expected.result.memory;
    ASSERT_EQ(bytes.size(), want.size());
    size_t wrong = 0, first = 0;
    for (size_t i = bytes.size(); i-- > 0;)
        if (std::abs(bytes[i] - want[i]) > expected.tolerance) ++wrong, first = i;
    ASSERT_EQ(wrong, 0U) << "of " << want.size() << ", at " << first << " (row "
                         << first / static_cast<size_t>(expected.result.props.nRowBytes) << ") " << int{bytes[first]}
                         << " instead of " << int{want[first]} << ", allowed " << expected.tolerance;
}

void Driver::Check(const ComPtr<IZFrame> &first, const ComPtr<IZFrame> &second, const Z_VID_PROPS &target,
                   const ConvertWishes &wishes, Conversion *seen) {
    Still a, b;
    if (first) a = StillOf(first);
    if (second) b = StillOf(second);
    SCOPED_TRACE(testing::Message() << "from " << Words(a.props) << "\nand  "
                                    << (second ? Words(b.props) : std::string("nothing")) << "\nto   " << Words(target)
                                    << "\nwith " << wishes.Text());
    Conversion expected;
    ASSERT_NO_THROW(expected = FramesConvertModel(first ? &a : nullptr, second ? &b : nullptr, target, wishes));
    if (seen != nullptr) *seen = expected;
    Z_VID_PROPS given = target;
    const std::string text = wishes.Text();
    ComPtr<IZFrame> found;
    const HRESULT hr = m_factory->FramesConvert(first.get(), second.get(), &given, found.Put(),
                                                text.empty() ? nullptr : TextOf(text.c_str()).get());
    ASSERT_EQ(Words(given), Words(target)) << "the caller's record";
    ASSERT_NO_FATAL_FAILURE(Compare(expected, hr, found));
    for (const auto &[frame, before] : {std::pair{&first, &a}, std::pair{&second, &b}})
        if (*frame) {
            ASSERT_EQ(Video(*frame).bytes(), before->memory) << "a source was written";
        }
}

}    // namespace conformance
