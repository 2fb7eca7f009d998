// Whole frames keyed with the kernels of every processor level: the same bytes.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "frames/factory/factory.h"
#include "frames/media/pixel_format.h"
#include "keying/plugin/chroma_key.h"
#include "platform/processor.h"
#include "zchromakey/frames.h"

namespace zck {
namespace {

constexpr int kWidth = 198;
constexpr int kHeight = 45;

std::vector<uint8_t> Noise(std::size_t bytes) {
    std::mt19937 random(20);
    std::vector<uint8_t> noise(bytes);
    for (auto &byte : noise) byte = static_cast<uint8_t>(random());
    return noise;
}

struct Level {
    explicit Level(KernelLevel level) { KernelLevelLimit(level); }
    Level(const Level &) = delete;
    Level &operator=(const Level &) = delete;
    ~Level() { KernelLevelLimit(kKernelLevelHighest); }
};

std::vector<uint8_t> Keyed(KernelLevel level, eZFCC fcc, const CHROMA_KEY_RAW &key, int threads, eZInterlace interlace) {
    const Level limit(level);
    EXPECT_EQ(KernelLevelGet(), level);
    ComPtr<IZPlugin> plugin;
    ComPtr<IZFrames> frames;
    EXPECT_EQ(CreateObject<CCoZChromaKey>(nullptr, IID_IZPlugin, plugin.PutVoid()), S_OK);
    EXPECT_EQ(FrameFactoryCreate(IID_IZFrames, frames.PutVoid()), S_OK);
    const auto props = QueryFor<IZProps>(plugin.get());
    props->PropsSet(Bstr(ZCK_TEXT("output.thread")).get(), Bstr(ZCK_TEXT("false")).get());
    props->PropsSet(Bstr(ZCK_TEXT("process.threads")).get(), Bstr(TextFromInt(threads)).get());
    CHROMA_KEY_RAW raw = key;
    QueryFor<IZChromaKey>(plugin.get())->KeyRawSet(&raw);

    Z_VID_PROPS record{};
    record.fccType = fcc;
    record.nWidth = kWidth;
    record.nHeight = IsRgbFormat(fcc) ? -kHeight : kHeight;
    record.nRowBytes = RowBytes(fcc, kWidth);
    record.eInterlace = interlace;
    const auto noise = Noise(static_cast<std::size_t>(record.nRowBytes) * kHeight);
    ComPtr<IZFrame> in;
    EXPECT_EQ(frames->FrameCreateFromProps(&record, reinterpret_cast<int64_t>(noise.data()), in.Put(), nullptr), S_OK);
    ComPtr<IZFrame> out;
    EXPECT_EQ(plugin->OnMediaReceive(0, nullptr, in.get(), out.Put()), S_OK);
    if (!out) return {};
    int32_t bytes = 0;
    int64_t address = 0;
    out->FrameVideoGetBytes(&bytes, &address);
    const auto *pixels = reinterpret_cast<const uint8_t *>(address);
    return {pixels, pixels + bytes};
}

TEST(ProcessorLevels, GiveTheSameFrames) {
    if (!CpuHasAvx2()) GTEST_SKIP() << "this processor has one level only";
    for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210})
        for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV})
            for (const int threads : {1, 2, 5})
                for (const eZInterlace interlace : {eZI_Progressive, eZI_Field1First}) {
                    CHROMA_KEY_RAW key{};
                    key.eType = type;
                    key.nKeysUsed = 3;
                    for (int i = 0; i < 3; ++i) {
                        key.arrKeys[i].nValue = 0x00604080 + i * 0x00203040;
                        key.arrKeys[i].nDelta = 0x00403020;
                        key.arrKeys[i].nSmoothRange = 60;
                        key.arrKeys[i].nReverseKey = i == 2;
                    }
                    key.nMinTransparent = 20;
                    key.nMaxTransparent = 240;
                    key.nEdgesSmooth = 2;
                    SCOPED_TRACE(std::to_string(fcc) + ", type " + std::to_string(type) + ", threads " +
                                 std::to_string(threads) + ", interlace " + std::to_string(interlace));
                    const auto vector = Keyed(KernelLevel::Avx2, fcc, key, threads, interlace);
                    ASSERT_FALSE(vector.empty());
                    EXPECT_EQ(vector, Keyed(KernelLevel::Reference, fcc, key, threads, interlace));
                }
}

}    // namespace
}    // namespace zck
