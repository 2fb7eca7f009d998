// Pictures through FFmpeg's libraries: matrix, range and alpha have to survive.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/libav/frame_packer.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/plugin_door.h"
#include "tests/hosts/zkey/scratch.h"

namespace {

using namespace zkey;
using Bytes = std::vector<uint8_t>;

struct Rgb {
    double r, g, b;
};

constexpr Rgb kGreen{20, 177, 64};
constexpr int kWidth = 34;
constexpr int kHeight = 18;

struct Tagged {
    const char *name;
    AVPixelFormat format;
    AVColorSpace space;
    AVColorRange range;
    eZFCC handed;
    int width = kWidth;
    int height = kHeight;
};

YuvMeaning MeaningIn(const Tagged &t) {
    YuvMeaning m = MeaningBySize(t.width, t.height);
    if (t.space == AVCOL_SPC_BT709) m = kBt709;
    if (t.space == AVCOL_SPC_SMPTE170M || t.space == AVCOL_SPC_BT470BG) m = kBt601;
    if (t.space == AVCOL_SPC_BT2020_NCL) m = {0.2627, 0.0593, false};
    m.fullRange = t.range == AVCOL_RANGE_JPEG;
    return m;
}

/// Y, Cb, Cr of the colour, scaled for samples of `bits`.
std::array<int, 3> Encode(const YuvMeaning &m, int bits) {
    const double y = m.kr * kGreen.r + (1 - m.kr - m.kb) * kGreen.g + m.kb * kGreen.b;
    const double u = (kGreen.b - y) / (2 * (1 - m.kb));
    const double v = (kGreen.r - y) / (2 * (1 - m.kr));
    const double scale = std::pow(2, bits - 8);
    if (m.fullRange) {
        const double full = (std::pow(2, bits) - 1) / 255;
        return {static_cast<int>(std::lround(y * full)), static_cast<int>(std::lround(u * full + 128 * scale)),
                static_cast<int>(std::lround(v * full + 128 * scale))};
    }
    return {static_cast<int>(std::lround((y * 219 / 255 + 16) * scale)),
            static_cast<int>(std::lround((u * 224 / 255 + 128) * scale)),
            static_cast<int>(std::lround((v * 224 / 255 + 128) * scale))};
}

/// Fills every sample of the frame with the green.
void Fill(AVFrame &f, const Tagged &t) {
    const AVPixFmtDescriptor *d = av_pix_fmt_desc_get(t.format);
    const int bits = d->comp[0].depth;
    std::array<int, 3> value = Encode(MeaningIn(t), bits);
    if ((d->flags & AV_PIX_FMT_FLAG_RGB) != 0) value = {20, 177, 64};
    for (int c = 0; c < std::min<int>(3, d->nb_components); ++c) {
        const AVComponentDescriptor &comp = d->comp[c];
        const bool chroma = c > 0 && (d->flags & AV_PIX_FMT_FLAG_RGB) == 0;
        const int w = chroma ? -((-t.width) >> d->log2_chroma_w) : t.width;
        const int h = chroma ? -((-t.height) >> d->log2_chroma_h) : t.height;
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                uint8_t *p = f.data[comp.plane] + y * f.linesize[comp.plane] + x * comp.step + comp.offset;
                const auto v = static_cast<uint16_t>(value[static_cast<std::size_t>(c)] << comp.shift);
                std::memcpy(p, &v, bits > 8 ? 2 : 1);
            }
        }
    }
}

/// A green picture with its tags.
Libav<AVFrame> MakeFrame(const Tagged &t) {
    Libav<AVFrame> frame(av_frame_alloc());
    frame->format = t.format;
    frame->width = t.width;
    frame->height = t.height;
    frame->color_range = t.range;
    frame->colorspace = t.space;
    EXPECT_EQ(av_frame_get_buffer(frame.get(), 0), 0);
    Fill(*frame, t);
    return frame;
}

/// The colour that the library sees at one pixel: its own matrices for the formats.
Rgb Seen(const Bytes &bytes, const Z_VID_PROPS &p, int x, int y) {
    const uint8_t *row = bytes.data() + std::ptrdiff_t{y} * p.nRowBytes;
    double samples[3];
    switch (p.fccType) {
        case eZFCC_I420:
        case eZFCC_NV12: {
            Bytes copy = bytes;
            const PlanarFrame f = PlanesOfFrame(copy.data(), p);
            samples[0] = f.y[y * f.lumaRow + x];
            samples[1] = f.cb[y / 2 * f.chromaRow + x / 2 * f.chromaStep];
            samples[2] = f.cr[y / 2 * f.chromaRow + x / 2 * f.chromaStep];
            break;
        }
        case eZFCC_RGB24:
            return {double(row[3 * x + 2]), double(row[3 * x + 1]), double(row[3 * x])};
        case eZFCC_RGB32:
            return {double(row[4 * x + 2]), double(row[4 * x + 1]), double(row[4 * x])};
        case eZFCC_YUY2:
            samples[0] = row[2 * x];
            samples[1] = row[x / 2 * 4 + 1];
            samples[2] = row[x / 2 * 4 + 3];
            break;
        case eZFCC_v210: {
            const auto at = [&](int i) {
                uint32_t word = 0;
                std::memcpy(&word, row + i / 3 * 4, 4);
                return static_cast<double>((word >> (10 * (i % 3))) & 1023) / 4;
            };
            samples[0] = at(x * 2 + 1);
            samples[1] = at(x / 2 * 4);
            samples[2] = at(x / 2 * 4 + 2);
            break;
        }
        default:
            samples[0] = row[2 * x + 1];
            samples[1] = row[x / 2 * 4];
            samples[2] = row[x / 2 * 4 + 2];
    }
    const YuvMeaning m = p.fccType == eZFCC_HDYC ? kBt709 : kBt601;
    const double l = (samples[0] - 16) * 255 / 219;
    const double u = (samples[1] - 128) * 255 / 224;
    const double v = (samples[2] - 128) * 255 / 224;
    return {l + 2 * (1 - m.kr) * v, l - (2 * (1 - m.kb) * m.kb * u + 2 * (1 - m.kr) * m.kr * v) / (1 - m.kr - m.kb),
            l + 2 * (1 - m.kb) * u};
}

TEST(LibavReader, MatrixAndRangeOfEverySourceComeOutRight) {
    const auto limited = AVCOL_RANGE_MPEG;
    const auto full = AVCOL_RANGE_JPEG;
    const auto none = AVCOL_SPC_UNSPECIFIED;
    const Tagged cases[] = {
        {"420 601", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, limited, eZFCC_I420},
        {"420 709", AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, limited, eZFCC_RGB32},
        {"420 2020", AV_PIX_FMT_YUV420P, AVCOL_SPC_BT2020_NCL, limited, eZFCC_RGB32},
        {"420 601 full", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, full, eZFCC_RGB32},
        {"420 709 full", AV_PIX_FMT_YUV420P, AVCOL_SPC_BT709, full, eZFCC_RGB32},
        {"420 silent small", AV_PIX_FMT_YUV420P, none, AVCOL_RANGE_UNSPECIFIED, eZFCC_I420},
        {"420 silent large", AV_PIX_FMT_YUV420P, none, AVCOL_RANGE_UNSPECIFIED, eZFCC_RGB32, 1280, 16},
        {"jpeg 420", AV_PIX_FMT_YUVJ420P, AVCOL_SPC_BT470BG, full, eZFCC_RGB32},
        {"jpeg 422 large", AV_PIX_FMT_YUVJ422P, AVCOL_SPC_BT470BG, full, eZFCC_RGB32, 1280, 16},
        {"nv12 601", AV_PIX_FMT_NV12, AVCOL_SPC_SMPTE170M, limited, eZFCC_NV12},
        {"nv21 601", AV_PIX_FMT_NV21, AVCOL_SPC_BT470BG, limited, eZFCC_NV12},
        {"420 601 odd", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, limited, eZFCC_RGB32, 33, 18},
        {"420 601 odd rows", AV_PIX_FMT_YUV420P, AVCOL_SPC_SMPTE170M, limited, eZFCC_RGB32, 34, 17},
        {"nv12 709", AV_PIX_FMT_NV12, AVCOL_SPC_BT709, limited, eZFCC_RGB32},
        {"444 601", AV_PIX_FMT_YUV444P, AVCOL_SPC_SMPTE170M, limited, eZFCC_RGB32},
        {"422 601", AV_PIX_FMT_YUV422P, AVCOL_SPC_SMPTE170M, limited, eZFCC_UYVY},
        {"422 709", AV_PIX_FMT_YUV422P, AVCOL_SPC_BT709, limited, eZFCC_HDYC},
        {"422 709 full", AV_PIX_FMT_YUV422P, AVCOL_SPC_BT709, full, eZFCC_RGB32},
        {"yuyv 601", AV_PIX_FMT_YUYV422, AVCOL_SPC_SMPTE170M, limited, eZFCC_YUY2},
        {"yuyv 709", AV_PIX_FMT_YUYV422, AVCOL_SPC_BT709, limited, eZFCC_HDYC},
        {"uyvy 601", AV_PIX_FMT_UYVY422, AVCOL_SPC_SMPTE170M, limited, eZFCC_UYVY},
        {"uyvy 709", AV_PIX_FMT_UYVY422, AVCOL_SPC_BT709, limited, eZFCC_HDYC},
        {"uyvy 601 full", AV_PIX_FMT_UYVY422, AVCOL_SPC_SMPTE170M, full, eZFCC_RGB32},
        {"422 10 bits 601", AV_PIX_FMT_YUV422P10LE, AVCOL_SPC_SMPTE170M, limited, eZFCC_v210},
        {"422 10 bits 709", AV_PIX_FMT_YUV422P10LE, AVCOL_SPC_BT709, limited, eZFCC_HDYC},
        {"422 10 bits full", AV_PIX_FMT_YUV422P10LE, AVCOL_SPC_BT709, full, eZFCC_RGB32},
        {"420 10 bits 709", AV_PIX_FMT_YUV420P10LE, AVCOL_SPC_BT709, limited, eZFCC_RGB32},
        {"420 10 bits 2020 large", AV_PIX_FMT_YUV420P10LE, AVCOL_SPC_BT2020_NCL, limited, eZFCC_RGB32, 1280, 16},
        {"444 12 bits 601 full", AV_PIX_FMT_YUV444P12LE, AVCOL_SPC_SMPTE170M, full, eZFCC_RGB32},
        {"411 601", AV_PIX_FMT_YUV411P, AVCOL_SPC_SMPTE170M, limited, eZFCC_RGB32},
        {"rgb24", AV_PIX_FMT_RGB24, AVCOL_SPC_RGB, full, eZFCC_RGB24},
        {"bgr24", AV_PIX_FMT_BGR24, AVCOL_SPC_RGB, full, eZFCC_RGB24},
        {"bgra", AV_PIX_FMT_BGRA, AVCOL_SPC_RGB, full, eZFCC_RGB32},
        {"argb", AV_PIX_FMT_ARGB, AVCOL_SPC_RGB, full, eZFCC_RGB32},
        {"gbrp", AV_PIX_FMT_GBRP, AVCOL_SPC_RGB, full, eZFCC_RGB32},
    };
    for (const Tagged &t : cases) {
        SCOPED_TRACE(t.name);
        const Libav<AVFrame> frame = MakeFrame(t);
        FramePacker packer;
        EXPECT_EQ(packer.Choose(*frame), t.handed);
        const Z_VID_PROPS p = DescribeFrame(packer.Choose(*frame), t.width, t.height, eZI_Progressive, 25);
        Bytes bytes(static_cast<std::size_t>(FrameBytes(p)));
        packer.Store(bytes.data(), p);
        for (const int x : {0, 1, 7, t.width - 1}) {
            const Rgb seen = Seen(bytes, p, x, t.height - 1);
            EXPECT_NEAR(seen.r, kGreen.r, 3) << x;
            EXPECT_NEAR(seen.g, kGreen.g, 3) << x;
            EXPECT_NEAR(seen.b, kGreen.b, 3) << x;
        }
    }
}

Delivery To(const std::string &path, Finish finish, const std::string &codec = "") {
    Delivery d;
    d.path = path;
    d.finish = finish;
    d.codec = codec;
    d.quiet = true;
    d.source.width = 64;
    d.source.height = 48;
    return d;
}

/// A green that fades out from left to right, with straight alpha.
Image Fade() {
    Image image;
    image.Resize(64, 48);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x) {
            uint8_t *p = image.Row(y) + 4 * x;
            p[0] = 64;
            p[1] = 177;
            p[2] = 20;
            p[3] = static_cast<uint8_t>(255 - 4 * x);
        }
    }
    return image;
}

void WriteFrames(const Delivery &d, const Image &image, int count) {
    const auto writer = OpenWriter(d);
    for (int i = 0; i < count; ++i) writer->Write(image.View(), i);
    writer->Close();
}

TEST(LibavWriter, ColourAndAlphaComeBackFromEachContainer) {
    const Scratch scratch;
    const struct {
        const char *name;
        const char *codec;
        int colour;    ///< how far a byte may be off
        int alpha;
    } cases[] = {{"a.mov", "", 4, 1},      {"b.mov", "qtrle", 0, 0}, {"c.mov", "png", 0, 0}, {"d.mkv", "", 0, 0},
                 {"e_%03d.png", "", 0, 0}, {"f.webm", "", 6, 4},     {"g.nut", "", 0, 0}};
    const Image image = Fade();
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        WriteFrames(To(scratch.Path(c.name), Finish::Straight, c.codec), image, 3);
        Clip clip(scratch.Path(c.name), false);
        int count = 0;
        while (const AVFrame *frame = clip.Next()) {
            EXPECT_EQ(clip.Time(), count);
            ++count;
            if (std::string_view(c.name).ends_with(".webm")) continue;    // this decoder drops its alpha
            Bytes back(64 * 48 * 4);
            Libav<SwsContext> scaler;
            ConvertPicture(*frame, AV_PIX_FMT_BGRA, 64, 48, back.data(), 64 * 4, scaler);
            for (std::size_t i = 0; i < back.size(); ++i) {
                ASSERT_NEAR(back[i], image.bytes[i], i % 4 == 3 ? c.alpha : c.colour) << "byte " << i;
            }
        }
        EXPECT_EQ(count, 3);
    }
}

TEST(LibavWriter, OpaqueClipsKeepTheirColours) {
    const Scratch scratch;
    Image image = Fade();
    for (std::size_t i = 3; i < image.bytes.size(); i += 4) image.bytes[i] = 255;
    for (const char *name :
         {"a.mp4", "b.mkv", "c.mov", "d.webm", "e.jpg", "f.bmp", "g.png", "h.tif", "mjpeg.avi", "mjpeg.mov"}) {
        SCOPED_TRACE(name);
        const bool mjpeg = std::string_view(name).starts_with("mjpeg");
        WriteFrames(To(scratch.Path(name), Finish::Over, mjpeg ? "mjpeg" : ""), image, 1);
        Clip clip(scratch.Path(name), false);
        const AVFrame *frame = clip.Next();
        ASSERT_NE(frame, nullptr);
        Bytes back(64 * 48 * 4);
        Libav<SwsContext> scaler;
        ConvertPicture(*frame, AV_PIX_FMT_BGR0, 64, 48, back.data(), 64 * 4, scaler);
        for (std::size_t i = 0; i < back.size(); ++i) {
            if (i % 4 != 3) {
                ASSERT_NEAR(back[i], image.bytes[i], 5) << "byte " << i;
            }
        }
    }
}

TEST(LibavWriter, KnowsThePictureThatIsNotDone) {
    const Scratch scratch;
    const Image image = Fade();
    const std::string sequence = scratch.Path("s_%02d.png");
    const auto writer = OpenWriter(To(sequence, Finish::Straight));
    EXPECT_EQ(writer->Unfinished(), scratch.Path("s_01.png"));
    for (int i = 0; i < 3; ++i) writer->Write(image.View(), i);
    writer->Close();
    EXPECT_TRUE(std::filesystem::exists(scratch.Path("s_03.png")));
    EXPECT_EQ(writer->Unfinished(), scratch.Path("s_04.png"));
    for (const char *name : {"one.png", "clip%02d.mov"}) {
        const auto whole = OpenWriter(To(scratch.Path(name), Finish::Straight));
        whole->Write(image.View(), 0);
        whole->Close();
        EXPECT_EQ(whole->Unfinished(), scratch.Path(name));
    }
}

TEST(LibavWriter, AMatteIsGreyInAPng) {
    const Scratch scratch;
    Image image = Fade();
    for (std::size_t i = 0; i < image.bytes.size(); i += 4) {
        std::memset(&image.bytes[i], image.bytes[i + 3], 3);
        image.bytes[i + 3] = 255;
    }
    WriteFrames(To(scratch.Path("m.png"), Finish::Matte), image, 1);
    Clip clip(scratch.Path("m.png"), false);
    const AVFrame *frame = clip.Next();
    ASSERT_NE(frame, nullptr);
    ASSERT_EQ(frame->format, AV_PIX_FMT_GRAY8);
    for (int x = 0; x < 64; ++x) EXPECT_EQ(frame->data[0][x], 255 - 4 * x);
}

TEST(LibavWriter, PicturesAreTurnedAsTheSourceWas) {
    const Scratch scratch;
    Delivery d = To(scratch.Path("a.mov"), Finish::Straight, "qtrle");
    d.source.displayMatrix.resize(9);
    av_display_rotation_set(d.source.displayMatrix.data(), -90);
    WriteFrames(d, Fade(), 1);
    EXPECT_EQ(Clip(d.path, false).Info().displayMatrix, d.source.displayMatrix);
    d.source.displayMatrix.clear();
    WriteFrames(d, Fade(), 1);
    const std::vector<int32_t> plain = Clip(d.path, false).Info().displayMatrix;
    EXPECT_TRUE(plain.empty() || av_display_rotation_get(plain.data()) == 0);
}

TEST(LibavWriter, OddSizesAreWritten) {
    const Scratch scratch;
    Image image;
    image.Resize(33, 17);
    for (const char *name : {"a.mp4", "b.mov", "c.webm"}) {
        Delivery d = To(scratch.Path(name), std::string_view(name) == "a.mp4" ? Finish::Over : Finish::Straight);
        d.source.width = 33;
        d.source.height = 17;
        WriteFrames(d, image, 2);
        Clip clip(scratch.Path(name), false);
        EXPECT_EQ(clip.Info().width, 33) << name;
        EXPECT_EQ(clip.Info().height, 17) << name;
    }
}

ExitStatus StatusOf(const Delivery &d) {
    try {
        WriteFrames(d, Fade(), 1);
    } catch (const Failure &f) {
        EXPECT_EQ(std::string(f.what()).find('\n'), std::string::npos);
        return f.Status();
    }
    return kExitDone;
}

TEST(LibavWriter, RefusesWhatCannotBe) {
    const Scratch scratch;
    EXPECT_EQ(StatusOf(To(scratch.Path("a.mp4"), Finish::Straight)), kExitUsage);
    EXPECT_EQ(StatusOf(To(scratch.Path("a.jpg"), Finish::Straight)), kExitUsage);
    EXPECT_EQ(StatusOf(To(scratch.Path("a.xyz"), Finish::Straight)), kExitUsage);
    EXPECT_EQ(StatusOf(To(scratch.Path("a.mov"), Finish::Straight, "nocodec")), kExitUsage);
    EXPECT_EQ(StatusOf(To(scratch.Path("a.mov"), Finish::Straight, "aac")), kExitUsage);
    EXPECT_EQ(StatusOf(To(scratch.Path("no/such/folder/a.mov"), Finish::Straight)), kExitFailed);
}

TEST(LibavReader, RefusesWhatIsNoPicture) {
    const Scratch scratch;
    EXPECT_THROW(Clip(scratch.Path("missing.mp4"), true), Failure);
    EXPECT_THROW(Clip(scratch.Write("text.mp4", Bytes(5000, 'x')), true), Failure);
    EXPECT_THROW(Clip(scratch.Write("empty.png", {}), true), Failure);
}

TEST(LibavBackground, IsCutToShapeAndStartsAgain) {
    const Scratch scratch;
    // Left half red, right half blue, four times as wide as asked for: the middle stays.
    Image image;
    image.Resize(64, 16);
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 64; ++x) image.Row(y)[4 * x + (x < 32 ? 2 : 0)] = 255;
    }
    Delivery d = To(scratch.Path("b.mkv"), Finish::Straight);
    d.source.height = 16;
    WriteFrames(d, image, 2);
    Keyer keyer;
    const auto background = OpenBackground(scratch.Path("b.mkv"), 16, 16, keyer);
    for (int i = 0; i < 5; ++i) {
        const ImageView v = background->At(i / 25.0);
        EXPECT_EQ(v.Row(8)[2], 255);
        EXPECT_EQ(v.Row(8)[0], 0);
        EXPECT_EQ(v.Row(8)[4 * 15], 255);
        EXPECT_EQ(v.Row(8)[4 * 15 + 2], 0);
    }
}

}    // namespace
