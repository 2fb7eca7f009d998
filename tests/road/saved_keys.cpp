#include "tests/road/saved_keys.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "tests/road/keyer.h"
#include "tests/road/scalar_walk.h"
#include "tests/scene/scene.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

// No multiple of a block, so that the tails of all kernels are in the picture.
constexpr int kWidth = 310;
constexpr int kHeight = 174;

uint64_t Hash(const Bytes &bytes) {
    uint64_t hash = 0xCBF29CE484222325;
    for (const uint8_t byte : bytes) hash = (hash ^ byte) * 0x100000001B3;
    return hash;
}

std::string Said(uint64_t hash) {
    char text[32];
    std::snprintf(text, sizeof(text), "0x%016" PRIX64, hash);
    return text;
}

const Bytes &Picture() {
    static const Bytes picture = [] {
        SceneParams params;
        params.width = kWidth;
        params.height = kHeight;
        return RenderScene(params, 7).pixels;
    }();
    return picture;
}

Z_VID_PROPS PictureProps() {
    Z_VID_PROPS props = {};
    props.fccType = eZFCC_ARGB32;
    props.nWidth = kWidth;
    props.nHeight = -kHeight;
    props.nRowBytes = 4 * kWidth;
    props.eInterlace = eZI_Progressive;
    return props;
}

CHROMA_KEY_RAW Load(Keyer &keyer, const SavedKey &saved, int threads) {
    keyer.Set("process.threads", std::to_string(threads));
    CHROMA_KEY_RAW raw = keyer.KeyLoad(std::string(ZCK_SOURCE_DIR "/tests/road/keys/") + saved.file);
    if (saved.spillByPixel) {
        raw.bColorCancel = 2;
        keyer.KeySet(raw);
    }
    return raw;
}

bool IsAsWalked(const Bytes &frame, const CHROMA_KEY_RAW &raw, int threads) {
    Bytes expected = Picture();
    Bytes plane(expected.size() / 4);
    EXPECT_EQ(walk::KeyFrame(expected, plane, PictureProps(), raw, threads), S_OK);
    EXPECT_EQ(frame.size(), expected.size());
    const auto differs = std::mismatch(frame.begin(), frame.end(), expected.begin(), expected.end());
    if (differs.first == frame.end()) return true;
    const auto at = differs.first - frame.begin();
    ADD_FAILURE() << "not as walked: byte " << at % 4 << " of pixel " << at / 4 % kWidth << ", row " << at / (4 * kWidth);
    return false;
}

/// A key that does next to nothing would pin next to nothing.
void ExpectCutOut(const Bytes &frame) {
    std::size_t clear = 0;
    std::size_t solid = 0;
    std::size_t between = 0;
    for (std::size_t i = 3; i < frame.size(); i += 4) (frame[i] < 32 ? clear : frame[i] > 223 ? solid : between)++;
    const std::size_t pixels = frame.size() / 4;
    EXPECT_GT(clear, pixels / 20);
    EXPECT_GT(solid, pixels / 20);
    EXPECT_GT(between, pixels / 500);
}

const char *Advice(Witness witness, bool asWalked) {
    if (witness == Witness::None)
        return "No plain walk covers anti-spill: compare its kernels and passes first (tests/keying/spill, tests/conformance).";
    return asWalked ? "The plain walk makes the same bytes: either the file is read otherwise, or the walk was changed as well."
                    : "The plain walk still makes other bytes: this is a fault of the engine.";
}

}    // namespace

const std::vector<SavedKey> &SavedKeys() {
    static const std::vector<SavedKey> keys = {
        {"rgb.xml", Witness::Walk, false, {0x8ED54B77ECB94E96, 0x8ED54B77ECB94E96, 0x3F270258C2BF757D}},
        {"rgb_thresholds.xml", Witness::Walk, false, {0x89947B98907F46A2, 0x89947B98907F46A2, 0x885ADF635887B1BE}},
        {"rgb_smooth.xml", Witness::Walk, false, {0x5CA0FEACAFF10870, 0x0B52D494ACCF2040, 0xBBF83EF4ECCB110F}},
        {"rgb_inverse.xml", Witness::Walk, false, {0x4A45B0CB9E585B86, 0x04B805B34E20C3BC, 0xD77D5FC9AA3B4432}},
        {"rgb_many.xml", Witness::Walk, false, {0x62F57FCBB4FC44B0, 0xC134E433623B905E, 0x8C72493A561DEA43}},
        {"hls.xml", Witness::Walk, false, {0x0D91542BBB0B57DD, 0x0D91542BBB0B57DD, 0xEA37FAB471EC21E1}},
        {"hls_reverse.xml", Witness::Walk, false, {0x2857FD0765A99B1E, 0x53782A70AAA64019, 0x7C8BDBCC86DC57D6}},
        {"yuv.xml", Witness::Walk, false, {0xC82302BBF9BA7E20, 0xC82302BBF9BA7E20, 0x4B8ACA36DCCAF24D}},
        {"yuv_many.xml", Witness::Walk, false, {0xDFEF85C62E75669D, 0x920298472511753A, 0x783B213318D9EA2A}},
        {"hand_edited.xml", Witness::Walk, false, {0x7DBA039532884B63, 0x85F17A812995BF3D, 0xAE40C0AED6177268}},
        {"hand_units.xml", Witness::Walk, false, {0xE62733EF66F2A8A8, 0xE62733EF66F2A8A8, 0xF4B2723043DEFA49}},
        {"rgb_spill.xml", Witness::None, false, {0x8B30A2354E89271F, 0xA555F3707FF3118F, 0xB86602794E084CFD}},
        {"rgb_spill.xml", Witness::None, true, {0xEECB0CACA86F20BA, 0x7ACF97486E7FA75A, 0xD1C346108CB9582B}},
        {"hls_spill.xml", Witness::None, false, {0x9EF9BC90925CE44F, 0xFA66B8BEE517D20D, 0xB9E46893CF19DD6B}},
        {"hls_spill.xml", Witness::None, true, {0x88041AB01BEEBBD1, 0xB32310767B010888, 0x236445A27B637564}},
        {"yuv_spill_inverse.xml", Witness::None, false, {0x6917A3ADBC380AA9, 0x46DFF4CA44D3481B, 0xFE22BE1B8A028A31}},
        {"yuv_spill_inverse.xml", Witness::None, true, {0x685F40B8A4DAB84B, 0x1B309F8070195A6D, 0x24C973B62DDEF043}},
    };
    return keys;
}

void ExpectSavedFrame(const SavedKey &saved, int thread) {
    const int threads = kThreads[thread];
    SCOPED_TRACE(std::string(saved.file) + (saved.spillByPixel ? ", spill by pixel" : "") + ", threads " +
                 std::to_string(threads));
    Keyer keyer;
    const CHROMA_KEY_RAW raw = Load(keyer, saved, threads);
    Bytes frame;
    EXPECT_EQ(keyer.Run(PictureProps(), Picture(), &frame), S_OK);
    ExpectCutOut(frame);
    const bool asWalked = saved.witness == Witness::Walk && IsAsWalked(frame, raw, threads);
    const uint64_t hash = Hash(frame);
    EXPECT_EQ(Said(hash), Said(saved.hashes[thread]))
        << "The keyer makes other bytes of a saved key than it did, and users have finished work with that key.\n"
        << Advice(saved.witness, asWalked)
        << "\nOnly when the change is meant and all else passes: write the new number into tests/road/saved_keys.cpp.";
}

uint64_t PictureHash() { return Hash(Picture()); }

}    // namespace zck
