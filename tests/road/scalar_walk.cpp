#include "tests/road/scalar_walk.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

namespace zck::walk {

namespace {

using Bytes = std::vector<uint8_t>;

/// A window into bytes: reads outside give 0, writes outside are dropped.
struct Window {
    Bytes *bytes;
    int64_t origin;
    int64_t stride;
    int64_t rowLimit;    // writes at or right of this column are dropped

    uint8_t Get(int64_t x, int64_t y) const {
        const int64_t at = origin + y * stride + x;
        return at < 0 || at >= static_cast<int64_t>(bytes->size()) ? uint8_t{0} : (*bytes)[static_cast<std::size_t>(at)];
    }
    void Put(int64_t x, int64_t y, int value) const {
        const int64_t at = origin + y * stride + x;
        if (x < rowLimit && at >= 0 && at < static_cast<int64_t>(bytes->size()))
            (*bytes)[static_cast<std::size_t>(at)] = static_cast<uint8_t>(value);
    }
};

constexpr int64_t kNoLimit = INT64_MAX;

int Byte(int32_t word, int index) { return static_cast<int>((static_cast<uint32_t>(word) >> (8 * index)) & 255u); }

int32_t SwapRedAndBlue(int32_t word) {
    const auto u = static_cast<uint32_t>(word);
    return static_cast<int32_t>((u & 0xFF00FF00u) | ((u & 0xFFu) << 16) | ((u >> 16) & 0xFFu));
}

bool TakesOut(const SINGLE_KEY &k) { return k.nDelta != 0 && k.nAlpha != 255 && k.nReverseKey <= 0; }
bool Protects(const SINGLE_KEY &k) { return k.nDelta != 0 && k.nAlpha != 255 && k.nReverseKey > 0; }

/// The distance of every pixel from the centre of a key, as alpha.
void Distance(const Window &out, const Window &image, int32_t value, int32_t delta, int32_t smooth, int64_t width,
              int64_t height) {
    int64_t columns = (width + 3) / 4 * 4;
    columns = std::min(columns, out.stride);
    uint64_t d[3];
    int k[3];
    for (int j = 0; j < 3; ++j) {
        d[j] = static_cast<uint64_t>(std::max(Byte(delta, j), 1));
        k[j] = std::clamp(Byte(value, j), 1, 254);
    }
    const uint64_t p = d[0] * d[0] * d[1] * d[1] * d[2] * d[2];
    double f = static_cast<double>(p >> 1) / 1073741822.0;
    uint64_t q[3];
    for (int j = 0; j < 3; ++j) {
        q[j] = p / (d[j] * d[j]);
        f = std::max(f, static_cast<double>(q[j]) / 16382.0);
    }
    if (f < 0.001) f = 0.001;
    const auto scaledP = static_cast<uint64_t>(static_cast<double>(p) / f + 0.5);
    int64_t w[3];
    uint64_t sum = 0;
    for (int j = 0; j < 3; ++j) {
        w[j] = static_cast<int64_t>(static_cast<double>(q[j]) / f + 0.5);
        const auto reach = static_cast<uint32_t>(d[j]) + static_cast<uint32_t>(smooth);
        const auto square = static_cast<int32_t>(reach * reach);
        sum += static_cast<uint64_t>(static_cast<int64_t>(square)) * static_cast<uint64_t>(w[j]);
    }
    const uint64_t outer = sum / 3;
    const float x = 2.0f * (static_cast<float>(outer) - static_cast<float>(scaledP));
    float divisor = std::sqrt(x) / 512.0f;
    if (!(divisor > 0.0f)) divisor = 0.001f;
    const auto off = static_cast<int64_t>(scaledP >> 1);

    for (int64_t y = 0; y < height; ++y)
        for (int64_t column = 0; column < columns / 8 * 8; ++column) {
            int64_t v = -off;
            for (int j = 0; j < 3; ++j) {
                const int e = image.Get(4 * column + j, y) - k[j];
                v += static_cast<int64_t>((e * e) >> 1) * w[j];
            }
            int alpha = 0;
            if (v >= 0) {
                const float a = std::sqrt(static_cast<float>(v)) / divisor;
                alpha = a > 255.0f ? 255 : static_cast<int>(std::nearbyint(a));
            }
            out.Put(column, y, alpha);
        }
}

void Join(const Window &out, const Window &other, int64_t width, int64_t height, int addend) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width / 16 * 16; ++x)
            out.Put(x, y, std::min<int>(out.Get(x, y), std::min(255, other.Get(x, y) + addend)));
}

/// Inverts a row; the part behind the last whole 16 bytes starts one byte late and ends one byte late.
void Invert(const Window &plane, int64_t width, int64_t height) {
    for (int64_t y = 0; y < height; ++y) {
        const int64_t tail = width / 16 * 16;
        for (int64_t x = 0; x < tail; ++x) plane.Put(x, y, 255 - plane.Get(x, y));
        for (int64_t x = tail + 1; x <= tail + width % 16; ++x) plane.Put(x, y, 255 - plane.Get(x, y));
    }
}

void Merge(const Window &pixels, const Window &alpha, int64_t width, int64_t height) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const bool inBlocks = x < width / 16 * 16;
            const bool inTail = x >= width / 8 * 8;
            if (inBlocks || inTail) pixels.Put(4 * x + 3, y, alpha.Get(x, y));
        }
}

/// Applies `rule` to the 3 by 3 neighbourhood of every inner position of `in`, as the input was before.
template <class Rule>
void Filter(const Window &out, const Window &in, int64_t width, int64_t height, Rule rule) {
    std::vector<int> result;
    for (int64_t y = 1; y + 1 < height; ++y)
        for (int64_t x = 1; x + 1 < width; ++x) {
            int n[9];
            for (int i = 0; i < 9; ++i) n[i] = in.Get(x + i % 3 - 1, y + i / 3 - 1);
            result.push_back(rule(n));
        }
    std::size_t next = 0;
    for (int64_t y = 1; y + 1 < height; ++y)
        for (int64_t x = 1; x + 1 < width; ++x) out.Put(x, y, result[next++]);
}

int Least(const int *n) { return *std::min_element(n, n + 9); }

int Box(const int *n) {
    int sum = 0;
    for (int i = 0; i < 9; ++i) sum += n[i];
    return ((sum + 5) * 455) >> 12;
}

int Gauss(const int *n) {
    const int sum = n[0] + 2 * n[1] + n[2] + 2 * n[3] + 4 * n[4] + 2 * n[5] + n[6] + 2 * n[7] + n[8];
    return (sum + 7 + ((sum >> 4) & 1)) >> 4;
}

template <class Value>
void Frame(const Window &out, int64_t width, int64_t height, Value value) {
    for (int64_t x = 0; x < width; ++x) {
        out.Put(x, 0, value(x, int64_t{0}));
        out.Put(x, height - 1, value(x, height - 1));
    }
    for (int64_t y = 0; y < height; ++y) {
        out.Put(0, y, value(int64_t{0}, y));
        out.Put(width - 1, y, value(width - 1, y));
    }
}

void ToHls(const Window &out, const Window &in, int64_t width, int64_t height) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const float b = static_cast<float>(in.Get(4 * x, y)) / 255.0f;
            const float g = static_cast<float>(in.Get(4 * x + 1, y)) / 255.0f;
            const float r = static_cast<float>(in.Get(4 * x + 2, y)) / 255.0f;
            const float most = std::max({b, g, r});
            const float least = std::min({b, g, r});
            const float c = most - least;
            const float l = (most + least) / 2.0f;
            float h = 0.0f;
            float s = 0.0f;
            if (c != 0.0f) {
                s = l <= 0.5f ? c / (most + least) : c / (2.0f - (most + least));
                if (r == most)
                    h = (g - b) * 60.0f / c;
                else if (g == most)
                    h = 120.0f + (b - r) * 60.0f / c;
                else
                    h = (r - g) * 60.0f / c + 240.0f;
                if (h < 0.0f) h += 360.0f;
            }
            out.Put(4 * x, y, static_cast<int>(h * 255.0f / 360.0f + 0.499999f));
            out.Put(4 * x + 1, y, static_cast<int>(l * 255.0f + 0.499999f));
            out.Put(4 * x + 2, y, static_cast<int>(s * 255.0f + 0.499999f));
        }
}

void ToYuv(const Window &out, const Window &in, int64_t width, int64_t height) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const int x0 = in.Get(4 * x, y);
            const int x1 = in.Get(4 * x + 1, y);
            const int x2 = in.Get(4 * x + 2, y);
            const int t = 19595 * x0 + 38470 * x1 + 7471 * x2;
            const int u = 128 + (((((x2 << 16) - t + 32767) >> 16) * 32244) >> 16);
            const int v = 128 + (((((x0 << 16) - t + 32767) >> 16) * 57475) >> 16);
            out.Put(4 * x, y, t >> 16);
            out.Put(4 * x + 1, y, u & 255);
            out.Put(4 * x + 2, y, std::clamp(v, 0, 255));
        }
}

/// One image of the pipeline: the frame, a field of it, or a comb of its rows.
struct Image {
    Window pixels;
    Window alpha;
    int64_t width;
    int64_t height;
};

Image FieldOf(const Image &image, int field) {
    Image part = image;
    part.height = image.height / 2;
    part.pixels.origin += field * image.pixels.stride;
    part.alpha.origin += field * image.alpha.stride;
    part.pixels.stride *= 2;
    part.alpha.stride *= 2;
    return part;
}

HRESULT Pipeline(const Image &image, CHROMA_KEY_RAW key) {
    if (key.nInterlacedVideo > 0) {
        key.nInterlacedVideo = 0;
        const HRESULT first = Pipeline(FieldOf(image, 0), key);
        const HRESULT second = Pipeline(FieldOf(image, 1), key);
        return first < 0 ? first : second;
    }
    const int64_t width = image.width;
    const int64_t height = image.height;
    const int64_t stride = image.alpha.stride;
    int alphaKeys = 0;
    for (int i = 0; i < key.nKeysUsed; ++i) alphaKeys += TakesOut(key.arrKeys[i]);
    if (alphaKeys == 0) {
        for (int64_t y = 0; y < height; ++y)
            for (int64_t x = 0; x < width; ++x) image.alpha.Put(x, y, 255);
        return S_FALSE;
    }

    const auto planeBytes = static_cast<std::size_t>(stride * height);
    Bytes space(4 * planeBytes);
    Bytes first(planeBytes);
    Bytes second(planeBytes);
    Bytes reverse(planeBytes);
    Bytes reverse2(planeBytes);
    const Window plane1{&first, 0, stride, kNoLimit};
    const Window plane2{&second, 0, stride, kNoLimit};
    const Window reverse0{&reverse, 0, stride, kNoLimit};
    const Window reverse1{&reverse2, 0, stride, kNoLimit};

    Window image4 = image.pixels;
    if (key.eType != eCKT_RGB) {
        image4 = Window{&space, 0, 4 * stride, kNoLimit};
        if (key.eType == eCKT_HLS)
            ToHls(image4, image.pixels, width, height);
        else
            ToYuv(image4, image.pixels, width, height);
    } else {
        for (SINGLE_KEY &k : key.arrKeys) {
            k.nValue = SwapRedAndBlue(k.nValue);
            k.nDelta = SwapRedAndBlue(k.nDelta);
        }
    }

    const Window a = key.nEdgesSmooth != 0 ? plane1 : image.alpha;
    bool any = false;
    bool anyReverse = false;
    for (int i = 0; i < key.nKeysUsed; ++i) {
        const SINGLE_KEY &k = key.arrKeys[i];
        const int addend = k.nAlpha & 255;
        if (TakesOut(k)) {
            Distance(any ? plane2 : a, image4, k.nValue, k.nDelta, k.nSmoothRange, width, height);
            if (any) {
                Join(a, plane2, width, height, addend);
            } else if (k.nAlpha != 0) {
                for (int64_t y = 0; y < height; ++y)
                    for (int64_t x = 0; x < width; ++x) a.Put(x, y, std::min(255, a.Get(x, y) + addend));
            }
            any = true;
        } else if (Protects(k)) {
            Distance(anyReverse ? reverse1 : reverse0, image4, k.nValue, k.nDelta, k.nSmoothRange, width, height);
            if (anyReverse) Join(reverse0, reverse1, width, height, 0);
            anyReverse = true;
        }
    }
    if (anyReverse) {
        Invert(reverse0, width, height);
        for (int64_t y = 0; y < height; ++y)
            for (int64_t x = 0; x < width; ++x) a.Put(x, y, std::min(255, a.Get(x, y) + reverse0.Get(x, y)));
    }

    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x) {
            const int value = a.Get(x, y);
            int result = value;
            if (key.nMinTransparent > 0 && value < key.nMinTransparent) result = 0;
            if (key.nMaxTransparent < 255 && value > key.nMaxTransparent) result = 255;
            a.Put(x, y, result);
        }

    if (key.nEdgesSmooth > 0) {
        if (width < 3 || height < 3) return static_cast<HRESULT>(0xFFFFFFFA);
        Window from = a;
        Window to = plane2;
        Frame(to, width, height, [](int64_t, int64_t) { return 255; });
        for (int round = 1; round < key.nEdgesSmooth; ++round) {
            Filter(from, from, width, height, Least);
            Filter(to, from, width, height, Box);
            Join(to, a, width, height, 0);
            std::swap(from, to);
            Frame(to, width, height, [&](int64_t x, int64_t y) { return a.Get(x, y); });
        }
        Filter(image.alpha, from, width, height, Gauss);
        Frame(image.alpha, width, height, [&](int64_t x, int64_t y) { return a.Get(x, y); });
    }
    if ((key.nInverseKey & 1) != 0) Invert(image.alpha, width, height);
    Merge(image.pixels, image.alpha, width, height);
    return S_OK;
}

HRESULT Seam(const Image &image, CHROMA_KEY_RAW key) {
    if (key.nInterlacedVideo >= 1) {
        key.nInterlacedVideo = 0;
        const HRESULT first = Seam(FieldOf(image, 0), key);
        const HRESULT second = Seam(FieldOf(image, 1), key);
        return first < 0 ? first : second;
    }
    const int64_t width = image.width;
    const int64_t height = image.height;
    if (key.nEdgesSmooth > 0) {
        if (width < 3 || height < 3) return static_cast<HRESULT>(0xFFFFFFFA);
        const auto planeBytes = static_cast<std::size_t>(image.alpha.stride * height);
        Bytes first(planeBytes);
        Bytes second(planeBytes);
        Window from{&first, 0, image.alpha.stride, kNoLimit};
        Window to{&second, 0, image.alpha.stride, kNoLimit};
        for (int64_t y = 0; y < height; ++y)
            for (int64_t x = 0; x < width; ++x) from.Put(x, y, image.alpha.Get(x, y));
        for (int round = 1; round < key.nEdgesSmooth; ++round) {
            Filter(from, from, width, height, Least);
            Filter(to, from, width, height, Box);
            Join(to, image.alpha, width, height, 0);
            Frame(to, width, height, [&](int64_t x, int64_t y) { return image.alpha.Get(x, y); });
            std::swap(from, to);
        }
        Filter(image.alpha, from, width, height, Gauss);
    }
    if ((key.nInverseKey & 1) != 0) Invert(image.alpha, width, height);
    Merge(image.pixels, image.alpha, width, height);
    return S_OK;
}

void Premultiply(const Window &pixels, int64_t width, int64_t height) {
    for (int64_t y = 0; y < height; ++y)
        for (int64_t x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c) {
                const int t = pixels.Get(4 * x + c, y) * pixels.Get(4 * x + 3, y);
                pixels.Put(4 * x + c, y, (t + (t >> 8) + 1) >> 8);
            }
}

}    // namespace

HRESULT KeyFrame(Bytes &pixels, Bytes &alpha, const Z_VID_PROPS &props, CHROMA_KEY_RAW key, int threads) {
    key.nKeysUsed = std::min(key.nKeysUsed, 16);
    key.nInterlacedVideo = props.eInterlace == eZI_Field1First || props.eInterlace == eZI_Field2First;
    if (key.eType != eCKT_RGB && key.eType != eCKT_HLS && key.eType != eCKT_YUV) return S_FALSE;
    const int64_t stride = props.nRowBytes / 4;
    const int64_t height = std::abs(props.nHeight);
    const bool several = threads > 1;
    const Image frame{Window{&pixels, 0, props.nRowBytes, kNoLimit}, Window{&alpha, 0, stride, several ? stride : kNoLimit},
                      props.nWidth, height};
    HRESULT statuses[16] = {};
    if (height >= threads) {
        for (int i = 0; i < threads; ++i) {
            Image comb = frame;
            comb.height = height / threads;
            comb.pixels.origin += i * frame.pixels.stride;
            comb.alpha.origin += i * frame.alpha.stride;
            comb.pixels.stride *= threads;
            comb.alpha.stride *= threads;
            CHROMA_KEY_RAW sliceKey = key;
            if (several) sliceKey.nEdgesSmooth = sliceKey.nInterlacedVideo = 0;
            statuses[i] = Pipeline(comb, sliceKey);
        }
        if (several) Seam(frame, key);
    }
    Premultiply(frame.pixels, props.nWidth, height);
    return statuses[0] < 0 ? statuses[0] : several ? statuses[1] : 0;
}

}    // namespace zck::walk
