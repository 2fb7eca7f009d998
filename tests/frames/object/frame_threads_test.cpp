// One frame and many threads. Most of what these find shows under the thread sanitizer.
#include <atomic>
#include <cstring>
#include <thread>

#include "frames/media/pixel_format.h"
#include "tests/frames/object/frame_fixture.h"

namespace zck::test {
namespace {

constexpr int kRounds = 300;

class FrameThreads : public FrameTest {
protected:
    template <class... Bodies>
    void Together(Bodies... bodies) {
        std::vector<std::thread> threads;
        (threads.emplace_back([bodies] {
            for (int i = 0; i < kRounds; ++i) bodies(i);
        }),
         ...);
        for (std::thread &thread : threads) thread.join();
    }
};

TEST_F(FrameThreads, CloningWhileItChanges) {
    const auto frame = SoundFrame(Record(eZFCC_UYVY, 64, 48));
    const auto tessilu = As<IZFFrame>(frame);
    const std::vector<uint8_t> pixels = Pattern(64 * 48 * 2);
    const std::vector<uint8_t> sound = Pattern(800);
    std::atomic<int> wrong{0};
    Together(
        [&](int i) {
            ComPtr<IZFrame> clone;
            const int32_t type = i % 2 == 0 ? eZFC_Full : eZFC_Reference;
            if (frame->FrameClone(clone.Put(), static_cast<eZFrameClone>(type), eZFCC_Default) != S_OK) ++wrong;
            if (!clone || VideoOf(clone).Copy() != pixels) ++wrong;
            // Sound and its description are of one moment or the other, but whole.
            const int32_t size = AudioOf(clone).size;
            if (size != 400 && size != 800 && size != 300) ++wrong;
        },
        [&](int i) {
            ComPtr<IZFFrame> clone;
            if (tessilu->ZFClone(clone.Put(), i % 2 == 0 ? eZFC_Full : eZFC_Reference, eZFCC_Default) != S_OK) ++wrong;
            ComPtr<IZFrame> cut;
            tagRECT rect = {};
            rect.right = 10;
            rect.bottom = 10;
            if (frame->FrameCut(0, &rect, cut.Put()) != S_OK || PropsOf(cut).vidProps.nWidth != 10) ++wrong;
        },
        [&](int i) {
            frame->FrameAudioReset(i % 2 == 0 ? 300 : 800, AddressIn(sound.data()));
            Z_AV_PROPS props = PropsOf(frame);
            props.bLocked = i;
            frame->FrameAVPropsSet(&props);
            Z_TIME time = {};
            time.rtStartTime = i;
            frame->FrameTimeSet(&time);
        },
        [&](int i) {
            frame->FrameDataSet(0x41414141 + i % 3, i % 5 == 0 ? -1 : 8, AddressIn(sound.data()));
            int32_t size = 0;
            int64_t block = 0;
            frame->FrameDataPack(0, &size, &block);
            CoTaskMemFree(At<void>(block));
            ZF_INFO info = {};
            tessilu->ZFInfoGet(&info);
        });
    EXPECT_EQ(0, wrong);
}

// Whether each stored row holds the byte of its picture row, as the record says where that row is.
bool RowsInOrder(const ComPtr<IZFrame> &clone, const std::vector<uint8_t> &rowBytes) {
    const Z_VID_PROPS props = PropsOf(clone).vidProps;
    const Bytes video = VideoOf(clone);
    const auto rows = static_cast<int32_t>(rowBytes.size());
    if (video.size < rows * props.nRowBytes) return false;
    for (int32_t y = 0; y < rows; ++y) {
        const bool turned = IsRgbFormat(props.fccType) && props.nHeight > 0;
        const uint8_t *row = video.data() + (turned ? rows - 1 - y : y) * props.nRowBytes;
        // The luma of a packed picture that is grey stands in every second byte.
        for (int32_t x = 1; x < props.nRowBytes; x += 2) {
            if (x % 4 != 3 && row[x] != rowBytes[static_cast<size_t>(y)]) return false;
        }
    }
    return true;
}

TEST_F(FrameThreads, ClonesOfAPictureThatTurnsAreWhole) {
    constexpr int32_t kSide = 512;
    constexpr int kClones = 60;
    const auto frame = Frame(Record(eZFCC_ARGB32, kSide, -kSide));
    std::vector<uint8_t> grey(kSide);
    for (int32_t y = 0; y < kSide; ++y) {
        grey[static_cast<size_t>(y)] = static_cast<uint8_t>(y / 2);
        std::memset(VideoOf(frame).data() + y * kSide * 4, y / 2, kSide * 4);
    }
    std::vector<uint8_t> luma(kSide);
    const auto converted = Clone(frame.get(), eZFC_Video, eZFCC_UYVY);
    for (int32_t y = 0; y < kSide; ++y) luma[static_cast<size_t>(y)] = VideoOf(converted).data()[y * kSide * 2 + 1];

    int torn = 0;
    const auto tessilu = As<IZFFrame>(frame);
    const auto look = [&](const ComPtr<IZFrame> &clone, const std::vector<uint8_t> &rows) {
        if (!clone || !RowsInOrder(clone, rows)) ++torn;
    };
    std::atomic<bool> done{false};
    std::thread writer([&] {
        for (int i = 0; !done; ++i) {
            Z_AV_PROPS props = PropsOf(frame);
            props.vidProps.nHeight = i % 2 == 0 ? kSide : -kSide;
            tessilu->ZFAVPropsSet(&props, nullptr);
        }
    });
    for (int i = 0; i < kClones; ++i) {
        look(Clone(frame.get(), eZFC_Full), grey);
        look(Clone(frame.get(), eZFC_Full, eZFCC_RGB32), grey);
        look(Clone(frame.get(), eZFC_Full, eZFCC_UYVY), luma);
        ComPtr<IZFFrame> clone;
        if (tessilu->ZFClone(clone.Put(), eZFC_Full, eZFCC_Default) != S_OK) ++torn;
        look(As<IZFrame>(clone), grey);
    }
    done = true;
    writer.join();
    EXPECT_EQ(0, torn);
}

TEST_F(FrameThreads, EveryThreadMakesItsOwn) {
    const Z_VID_PROPS props = Record(eZFCC_UYVY, 64, 48);
    std::atomic<int> wrong{0};
    const auto work = [&](int i) {
        auto frame = Frame(props);
        auto clone = Clone(frame.get(), eZFC_Reference);
        frame.Reset();
        const auto copy = Clone(clone.get(), eZFC_Full);
        clone.Reset();
        if (VideoOf(copy).Copy() != Pattern(64 * 48 * 2)) ++wrong;
        *VideoOf(copy).data() = static_cast<uint8_t>(i);
    };
    Together(work, work, work, work);
    EXPECT_EQ(0, wrong);
}

}    // namespace
}    // namespace zck::test
