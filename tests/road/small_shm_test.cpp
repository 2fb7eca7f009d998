// Whole frames where the folder of shared memory is small, as in containers, and where it is full.
#include "tests/support/posix/small_shm.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "tests/road/keyer.h"

namespace zck {
namespace {

using test::FillSharedMemory;
using test::RunInSmallSharedMemory;
using test::SharedMemoryLeft;
using test::WriteTo;

CHROMA_KEY_RAW Green() {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = 0x0020B030;
    key.arrKeys[0].nDelta = 0x00303030;
    key.arrKeys[0].nSmoothRange = 32;
    key.nMaxTransparent = 255;
    return key;
}

struct Picture {
    Picture(int32_t width, int32_t height) {
        props.fccType = eZFCC_RGB32;
        props.nWidth = width;
        props.nHeight = height;
        pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
        // Greens of all kinds, so that every alpha occurs.
        for (size_t i = 0; i < pixels.size(); i += 4) {
            pixels[i] = static_cast<uint8_t>(0x20 + i / 4 % 97);
            pixels[i + 1] = static_cast<uint8_t>(0xB0 - i / 64 % 61);
            pixels[i + 2] = 0x30;
        }
    }
    Z_VID_PROPS props = {};
    std::vector<uint8_t> pixels;
};

/// What comes out for the last of some frames; nothing where one of them fails.
std::vector<uint8_t> KeyedFrames(const Picture &picture) {
    Keyer keyer;
    keyer.KeySet(Green());
    std::vector<uint8_t> result;
    for (int i = 0; i < 4; ++i) {
        if (keyer.Run(picture.props, picture.pixels, &result) != S_OK) return {};
    }
    return result;
}

TEST(SmallSharedMemory, LargeFramesAreKeyedWithSixteenMegabytes) {
    for (const auto &[width, height] : {std::pair(1920, 1080), std::pair(3840, 2160)}) {
        const Picture picture(width, height);
        const std::vector<uint8_t> expected = KeyedFrames(picture);
        ASSERT_EQ(expected.size(), picture.pixels.size());
        ASSERT_NE(expected, picture.pixels);
        RunInSmallSharedMemory("16m", [&] {
            NEED(SharedMemoryLeft() == 16 << 20);
            NEED(KeyedFrames(picture) == expected);
            NEED(!testing::Test::HasFailure());
            return true;
        });
    }
}

TEST(SmallSharedMemory, AFullFolderIsAStatusAtEachDoor) {
    RunInSmallSharedMemory("16m", [] {
        const Picture picture(640, 360);
        IZFrames *frames = nullptr;
        NEED(ZFramesCreate(IID_IZFrames, reinterpret_cast<void **>(&frames)) == S_OK);
        NEED(FillSharedMemory());
        IZFrame *frame = nullptr;
        NEED(frames->FrameCreate(static_cast<int32_t>(picture.pixels.size()), nullptr, &frame) == E_OUTOFMEMORY);
        NEED(frame == nullptr);
        Z_VID_PROPS props = picture.props;
        NEED(FAILED(frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(picture.pixels.data()), &frame, nullptr)));
        NEED(frame == nullptr);
        frames->Release();
        return true;
    });
}

}    // namespace
}    // namespace zck
