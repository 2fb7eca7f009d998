#include "hosts/zkey/libav/encoder_choice.h"

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

struct Usual {
    const char *container;    ///< FFmpeg's name, or the extension of a picture
    bool alpha;
    const char *codec;
    AVPixelFormat pixels;
    const char *options;
};

constexpr const char *kVpx = "crf=15:b=0:deadline=good:cpu-used=5:row-mt=1:auto-alt-ref=0";

// In the order of preference; the first encoder that the libraries have is taken.
constexpr Usual kUsual[] = {
    {"mov", true, "prores_ks", AV_PIX_FMT_YUVA444P10LE, "profile=4444:alpha_bits=16:vendor=apl0"},
    {"mov", true, "qtrle", AV_PIX_FMT_ARGB, ""},
    {"mov", true, "png", AV_PIX_FMT_RGBA, ""},
    {"webm", true, "libvpx-vp9", AV_PIX_FMT_YUVA420P, kVpx},
    {"webm", true, "libvpx", AV_PIX_FMT_YUVA420P, "crf=8:b=20M:deadline=good:cpu-used=4:auto-alt-ref=0"},
    {"matroska", true, "ffv1", AV_PIX_FMT_BGRA, "level=3:slices=4:slicecrc=1"},
    {"avi", true, "png", AV_PIX_FMT_RGBA, ""},
    {"nut", true, "ffv1", AV_PIX_FMT_BGRA, "level=3:slices=4:slicecrc=1"},
    {".png", true, "png", AV_PIX_FMT_RGBA, ""},
    {".tif", true, "tiff", AV_PIX_FMT_RGBA, ""},
    {".tiff", true, "tiff", AV_PIX_FMT_RGBA, ""},
    {".webp", true, "libwebp", AV_PIX_FMT_BGRA, "lossless=1"},
    {".tga", true, "targa", AV_PIX_FMT_BGRA, ""},
    {"mov", false, "libx264", AV_PIX_FMT_YUV420P, "crf=16:preset=fast"},
    {"mp4", false, "libx264", AV_PIX_FMT_YUV420P, "crf=16:preset=fast"},
    {"mp4", false, "mpeg4", AV_PIX_FMT_YUV420P, "q=2"},
    {"matroska", false, "libx264", AV_PIX_FMT_YUV420P, "crf=16:preset=fast"},
    {"webm", false, "libvpx-vp9", AV_PIX_FMT_YUV420P, "crf=15:b=0:deadline=good:cpu-used=5:row-mt=1"},
    {"nut", false, "ffv1", AV_PIX_FMT_BGR0, ""},
    {".png", false, "png", AV_PIX_FMT_RGB24, ""},
    {".jpg", false, "mjpeg", AV_PIX_FMT_YUVJ444P, "q=2"},
    {".jpeg", false, "mjpeg", AV_PIX_FMT_YUVJ444P, "q=2"},
    {".bmp", false, "bmp", AV_PIX_FMT_BGR24, ""},
    {".tif", false, "tiff", AV_PIX_FMT_RGB24, ""},
    {".tiff", false, "tiff", AV_PIX_FMT_RGB24, ""},
    {".webp", false, "libwebp", AV_PIX_FMT_BGRA, ""},
    {".ppm", false, "ppm", AV_PIX_FMT_RGB24, ""},
    {".pgm", false, "pgm", AV_PIX_FMT_GRAY8, ""},
};

bool HasAlpha(AVPixelFormat format) {
    const AVPixFmtDescriptor *d = av_pix_fmt_desc_get(format);
    return d != nullptr && (d->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
}

bool Takes(const AVCodec &codec, AVPixelFormat format) {
    for (const AVPixelFormat *p = codec.pix_fmts; p != nullptr && *p != AV_PIX_FMT_NONE; ++p) {
        if (*p == format) return true;
    }
    return codec.pix_fmts == nullptr;
}

/// The format of this encoder that loses least.
AVPixelFormat BestPixels(const AVCodec &codec, bool alpha) {
    // This one takes full range only, whatever it lists.
    if (codec.id == AV_CODEC_ID_MJPEG) return AV_PIX_FMT_YUVJ420P;
    if (codec.pix_fmts == nullptr) return alpha ? AV_PIX_FMT_BGRA : AV_PIX_FMT_BGR0;
    // Encoders that do both take 4:2:0 when there is a choice: not every player shows more.
    if (!alpha && Takes(codec, AV_PIX_FMT_YUV420P)) return AV_PIX_FMT_YUV420P;
    return avcodec_find_best_pix_fmt_of_list(codec.pix_fmts, alpha ? AV_PIX_FMT_BGRA : AV_PIX_FMT_BGR24, alpha ? 1 : 0,
                                             nullptr);
}

const Usual *FindUsual(const std::string &container, const std::string &codec, bool alpha) {
    for (const Usual &u : kUsual) {
        if (container != u.container || alpha != u.alpha || (!codec.empty() && codec != u.codec)) continue;
        if (avcodec_find_encoder_by_name(u.codec) != nullptr) return &u;
    }
    return nullptr;
}

EncoderChoice Generic(const AVOutputFormat &container, const std::string &path, const std::string &codec, bool alpha) {
    EncoderChoice c;
    if (!codec.empty()) {
        c.codec = avcodec_find_encoder_by_name(codec.c_str());
        if (c.codec == nullptr || c.codec->type != AVMEDIA_TYPE_VIDEO)
            FailUsage("--codec: there is no encoder \"" + codec + "\"");
        if (avformat_query_codec(&container, c.codec->id, FF_COMPLIANCE_NORMAL) == 0) {
            FailUsage("--codec: " + path + " cannot hold " + codec);
        }
    } else {
        const AVCodecID id = av_guess_codec(&container, nullptr, path.c_str(), nullptr, AVMEDIA_TYPE_VIDEO);
        c.codec = avcodec_find_encoder(id);
        if (c.codec == nullptr) FailUsage("cannot write " + path + ": no encoder for pictures of this kind");
    }
    c.pixels = BestPixels(*c.codec, alpha);
    return c;
}

}    // namespace

EncoderChoice ChooseEncoder(const AVOutputFormat &container, const std::string &path, const std::string &codec, Finish finish,
                            int width, int height) {
    const bool alpha = finish == Finish::Straight || finish == Finish::Premultiplied;
    const std::string name = std::string_view(container.name) == "image2" ? ExtensionOf(path) : container.name;
    EncoderChoice c;
    if (const Usual *u = FindUsual(name, codec, alpha)) {
        c = {avcodec_find_encoder_by_name(u->codec), u->pixels, u->options};
    } else {
        c = Generic(container, path, codec, alpha);
    }
    if (alpha && !HasAlpha(c.pixels)) {
        FailUsage(path + " cannot hold alpha" + (codec.empty() ? "" : " with the encoder " + codec) +
                  ": use --over or --matte, or write .mov, .webm, .mkv or .png");
    }
    if (finish == Finish::Matte && Takes(*c.codec, AV_PIX_FMT_GRAY8) && name.starts_with('.')) c.pixels = AV_PIX_FMT_GRAY8;
    // Odd sizes have no 4:2:0 in H.264.
    if (c.pixels == AV_PIX_FMT_YUV420P && (width % 2 != 0 || height % 2 != 0) && Takes(*c.codec, AV_PIX_FMT_YUV444P)) {
        c.pixels = AV_PIX_FMT_YUV444P;
    }
    return c;
}

}    // namespace zkey
