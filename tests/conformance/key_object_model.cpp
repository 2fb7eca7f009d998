#include "tests/conformance/key_object_model.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "keying/pipeline/pipeline.h"
#include "tests/conformance/media_model.h"
#include "zchromakey/statuses.h"

namespace conformance {
namespace {

constexpr HRESULT kBadVideo = static_cast<HRESULT>(0x80040248);
constexpr int32_t kMost32 = 2147483647;
// The byte of a pixel that a channel of a range is taken from.
constexpr int32_t kByteOfChannel[4] = {2, 1, 0, 3};

constexpr CK_ADJUST kDefaults = {0.0, 0.1, 0.0, 0.25, 0.4, 0.9, 0.0, 0.05, {1.0, 0.3, -0.25, -0.05, -0.05}, {0.66, 0.66, 0.66}};

uint8_t Clip(int32_t v) { return static_cast<uint8_t>(std::clamp(v, 0, 255)); }

void ToHls(uint8_t *p) {
    const float b = static_cast<float>(p[0]) / 255.0F, g = static_cast<float>(p[1]) / 255.0F;
    const float r = static_cast<float>(p[2]) / 255.0F;
    const float most = std::max({b, g, r}), least = std::min({b, g, r}), c = most - least;
    const float l = (most + least) / 2.0F;
    float h = 0, s = 0;
    if (c != 0.0F) {
        s = l <= 0.5F ? c / (most + least) : c / (2.0F - (most + least));
        if (r == most)
            h = (g - b) * 60.0F / c;
        else if (g == most)
            h = 120.0F + (b - r) * 60.0F / c;
        else
            h = (r - g) * 60.0F / c + 240.0F;
        if (h < 0) h += 360.0F;
    }
    p[0] = static_cast<uint8_t>(static_cast<int32_t>(h * 255.0F / 360.0F + 0.499999F));
    p[1] = static_cast<uint8_t>(static_cast<int32_t>(l * 255.0F + 0.499999F));
    p[2] = static_cast<uint8_t>(static_cast<int32_t>(s * 255.0F + 0.499999F));
}

float OfAngle(float x, float m1, float m2) {
    if (x < 60.0F) return m1 + (m2 - m1) * x / 60.0F;
    if (x < 180.0F) return m2;
    if (x < 240.0F) return m1 + (m2 - m1) * (240.0F - x) / 60.0F;
    return m1;
}

// Back to blue, green, red.
void FromHls(uint8_t *p) {
    const float h = static_cast<float>(p[0]) * 360.0F / 255.0F;
    const float l = static_cast<float>(p[1]) / 255.0F, s = static_cast<float>(p[2]) / 255.0F;
    float out[3] = {l, l, l};
    if (s != 0.0F) {
        const float m2 = l <= 0.5F ? (1.0F + s) * l : l + s - s * l, m1 = 2.0F * l - m2;
        out[2] = OfAngle(h + 120.0F > 360.0F ? h + 120.0F - 360.0F : h + 120.0F, m1, m2);
        out[1] = OfAngle(h, m1, m2);
        out[0] = OfAngle(h - 120.0F < 0.0F ? h - 120.0F + 360.0F : h - 120.0F, m1, m2);
    }
    for (int i = 0; i < 3; ++i) p[i] = static_cast<uint8_t>(static_cast<int32_t>(out[i] * 255.0F + 0.5F));
}

void ToYuv(uint8_t *p) {
    const int32_t x0 = p[0], x1 = p[1], x2 = p[2];
    const int32_t t = 19595 * x0 + 38470 * x1 + 7471 * x2;
    p[0] = static_cast<uint8_t>(t >> 16);
    p[1] = static_cast<uint8_t>(128 + (((((x2 << 16) - t + 32767) >> 16) * 32244) >> 16));
    p[2] = Clip(128 + (((((x0 << 16) - t + 32767) >> 16) * 57475) >> 16));
}

void FromYuv(uint8_t *p) {
    const int32_t y = p[0] << 16, u = p[1] - 128, v = p[2] - 128;
    p[0] = Clip((y + 74711 * v) >> 16);
    p[1] = Clip((y - 25821 * u - 38076 * v) >> 16);
    p[2] = Clip((y + 133169 * u) >> 16);
}

int32_t Distance(const uint8_t *a, const uint8_t *b) {
    int32_t sum = 0;
    for (int i = 0; i < 3; ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
    return sum;
}

int32_t TypeOfKey(eCK_Type type) { return type == eCKT_HLS ? 1 : type == eCKT_YUV ? 2 : 0; }

// One over the other, both of one size.
Shot Over(const Shot &front, Shot back) {
    for (size_t i = 0; i < back.pixels.size(); ++i) {
        const int32_t rest = 255 - front.pixels[i / 4 * 4 + 3];
        back.pixels[i] = Clip(front.pixels[i] + (back.pixels[i] * rest + 127) / 255);
    }
    return back;
}

}    // namespace

Shot ShotOf(IZFrame *frame) {
    Shot shot;
    if (frame == nullptr) return shot;
    Z_AV_PROPS props = {};
    int32_t size = 0;
    int64_t address = 0;
    frame->FrameAVPropsGet(&props);
    frame->FrameVideoGetBytes(&size, &address);
    const Z_VID_PROPS &v = props.vidProps;
    shot.any = true;
    shot.fcc = v.fccType;
    shot.width = v.nWidth;
    shot.rows = std::abs(v.nHeight);
    const uint8_t *bytes = reinterpret_cast<const uint8_t *>(static_cast<uintptr_t>(address));
    for (int32_t y = 0; y < shot.rows; ++y) {
        const uint8_t *row = bytes + int64_t{v.nHeight < 0 ? y : shot.rows - 1 - y} * v.nRowBytes;
        shot.pixels.insert(shot.pixels.end(), row, row + int64_t{v.nWidth} * 4);
    }
    return shot;
}

KeyModel::Step::Step() : adjust(kDefaults) {}

double *KeyModel::Field(CK_ADJUST &a, int32_t which) {
    double *const fields[] = {nullptr,
                              &a.dblPower,
                              &a.dblTransparent,
                              &a.dblSmooth,
                              &a.dblColors,
                              &a.dblMinTransparent,
                              &a.dblMaxTransparent,
                              &a.dblExclPower,
                              &a.dblExclTransparent,
                              &a.rangeAdjust.dblRangeR_H_Y,
                              &a.rangeAdjust.dblRangeG_L_U,
                              &a.rangeAdjust.dblRangeB_S_V,
                              &a.colAdjust.dblCancelRange,
                              &a.colAdjust.dblCancelPower,
                              &a.colAdjust.dblCancelChroma,
                              &a.colAdjust.dblCancelLuma,
                              &a.colAdjust.dblCancelAlpha};
    return which < 1 || which > 16 ? nullptr : fields[which];
}

HRESULT KeyModel::FrameSet(IZFrame *keying, IZFrame *background) {
    if (keying != nullptr) {
        m_keying = keying;
        m_view.Reset();
        m_hasWork = false;
        const HRESULT hr = keying->FrameClone(m_view.Put(), eZFC_VideoRef, eZFCC_ARGB32);
        if (FAILED(hr)) return hr;
    }
    m_background = background;
    return S_OK;
}

Shot KeyModel::FrameGet() { return Render().shot; }

// A picture's pixels as they are now; padding is 0.
HRESULT KeyModel::Read(IZFrame *frame, Image &image) {
    Z_AV_PROPS props = {};
    int32_t size = 0;
    int64_t address = 0;
    frame->FrameAVPropsGet(&props);
    frame->FrameVideoGetBytes(&size, &address);
    const Z_VID_PROPS &v = props.vidProps;
    const int64_t rows = std::abs(int64_t{v.nHeight}), row = v.nRowBytes, line = int64_t{v.nWidth} * 4;
    const bool suits = (v.fccType == eZFCC_ARGB32 || v.fccType == eZFCC_RGB32) && v.nWidth >= 1 && rows >= 1 && row >= line &&
                       rows * row <= kMost32 && (rows - 1) * row + line <= size;
    if (!suits) return kBadVideo;
    image.props = v;
    image.bytes.assign(static_cast<size_t>(rows * row), 0);
    const uint8_t *bytes = reinterpret_cast<const uint8_t *>(static_cast<uintptr_t>(address));
    for (int64_t y = 0; y < rows; ++y) std::memcpy(image.bytes.data() + y * row, bytes + y * row, static_cast<size_t>(line));
    return S_OK;
}

HRESULT KeyModel::Work(int32_t type) {
    if (!m_view) return Z_E_WRONG_STATE;
    if (m_hasWork && type == m_workType) return S_OK;
    const HRESULT hr = Read(m_view.get(), m_work);
    if (FAILED(hr)) return hr;
    for (int32_t y = 0; y < m_work.Rows() && type != 0; ++y)
        for (int32_t x = 0; x < m_work.props.nWidth; ++x) type == 1 ? ToHls(m_work.At(y, x)) : ToYuv(m_work.At(y, x));
    m_hasWork = true;
    m_workType = type;
    return S_OK;
}

KeyAnswer KeyModel::Render() const {
    if (!m_keying || !m_view) return {Z_E_WRONG_STATE, {}};
    Image image;
    HRESULT hr = Read(m_view.get(), image);
    if (FAILED(hr)) return {hr, {}};
    ZComPtr<IZFrame> copy;
    hr = m_view->FrameClone(copy.Put(), eZFC_Video, eZFCC_ARGB32);
    if (SUCCEEDED(hr)) hr = Read(copy.get(), image);
    if (FAILED(hr)) return {hr, {}};
    Bytes alpha(image.bytes.size(), 0);
    image.props.fccType = eZFCC_ARGB32;
    hr = zck::CK_GetAlphaKeyEx3(image.bytes.data(), alpha.data(), &image.props, &m_step.key, true);
    if (FAILED(hr)) return {hr, {}};
    Shot shot{true, eZFCC_ARGB32, image.props.nWidth, image.Rows(), {}};
    for (int32_t y = 0; y < shot.rows; ++y)
        for (int32_t x = 0; x < shot.width; ++x) {
            const uint8_t *p = image.At(image.props.nHeight < 0 ? y : shot.rows - 1 - y, x);
            for (int c = 0; c < 3; ++c) {
                const int32_t t = p[c] * p[3];
                shot.pixels.push_back(static_cast<uint8_t>((t + (t >> 8) + 1) >> 8));
            }
            shot.pixels.push_back(p[3]);
        }
    return m_background ? OverBackground(shot, image.props.nHeight) : KeyAnswer{S_OK, shot};
}

// Over the background in this size. What is not 32-bit stays as it is fitted: the sequences have no other that is mixed.
KeyAnswer KeyModel::OverBackground(const Shot &shot, int32_t height) const {
    Z_VID_PROPS wish = {};
    wish.nWidth = shot.width;
    Z_AV_PROPS of = {};
    m_background->FrameAVPropsGet(&of);
    wish.nHeight = Rgb(of.vidProps.fccType) ? height : shot.rows;
    ZComPtr<IZFrame> fit;
    const HRESULT hr = m_background->FrameConvert(&wish, fit.Put(), nullptr);
    if (FAILED(hr)) return {hr, {}};
    const Shot back = ShotOf(fit.get());
    const bool mixed = back.fcc == eZFCC_RGB32 || back.fcc == eZFCC_ARGB32;
    return {S_OK, mixed ? Over(shot, back) : back};
}

void KeyModel::Save() {
    if (m_position >= 0) {
        m_history.resize(static_cast<size_t>(m_position));
        m_position = -1;
    }
    m_history.push_back(m_step);
    while (m_history.size() > 512) m_history.erase(m_history.begin());
}

KeyAnswer KeyModel::Back() {
    if (m_history.empty()) return Render();
    const int32_t last = static_cast<int32_t>(m_history.size()) - 1;
    if (m_position < 0) m_position = last;
    m_position = std::clamp(m_position - 1, 0, last);
    m_step = m_history[static_cast<size_t>(m_position)];
    return Render();
}

KeyAnswer KeyModel::Forward() {
    if (m_position < 0) return {E_UNEXPECTED, {}};
    m_position = std::clamp(m_position + 1, 0, static_cast<int32_t>(m_history.size()) - 1);
    m_step = m_history[static_cast<size_t>(m_position)];
    return Render();
}

KeyAnswer KeyModel::Reset() {
    Save();
    m_step.add.count = 0;
    m_step.exclude.count = 0;
    m_step.adjust = kDefaults;
    m_step.key = {};
    return Render();
}

void KeyModel::RawSet(const CHROMA_KEY_RAW &raw, const CK_ADJUST *adjust) {
    Save();
    m_step.key = raw;
    if (adjust != nullptr) m_step.adjust = *adjust;
    Load(m_step.add, raw, false);
    Load(m_step.exclude, raw, true);
    Rebuild(-1);
}

KeyAnswer KeyModel::AdjustSet(int32_t which, double value) {
    if (!m_keying) return {Z_E_WRONG_STATE, {}};
    Save();
    CHROMA_KEY_RAW plain = m_step.key;
    Remove(plain, m_step.adjust);
    if (double *field = Field(m_step.adjust, which)) *field = value;
    Apply(plain, m_step.adjust);
    m_step.key = plain;
    return Render();
}

KeyAnswer KeyModel::Point(bool exclude, int32_t x, int32_t y, const KeyWishes &wishes) {
    const int32_t type = wishes.type.value_or(TypeOfKey(m_step.key.eType));
    const HRESULT hr = Work(type);
    if (FAILED(hr)) return {hr, {}};
    Save();
    const int32_t rows = m_work.Rows(), width = m_work.props.nWidth;
    x = std::clamp(x, 0, width);
    y = std::min(std::clamp(y, 0, rows), rows - 1);
    const bool force = wishes.forcePoint.value_or(false);
    const int64_t keys = wishes.maxKeys.value_or(m_settingMaxKeys.value_or(0));
    if (force) {
        Limit(m_step.add, keys - 1);
        Limit(m_step.add, std::max<int64_t>(keys, 2));
    } else {
        Limit(m_step.add, keys);
    }
    Limit(m_step.exclude, keys);
    int32_t stored = m_work.props.nHeight > 0 ? rows - 1 - y : y;
    if (x == width) {
        x = stored == rows - 1 ? width - 1 : 0;
        stored = std::min(stored + 1, rows - 1);
    }
    const uint8_t *pixel = m_work.At(stored, x);
    Range range;
    for (int c = 0; c < 4; ++c) {
        range.centre[c] = pixel[kByteOfChannel[c]] / 255.0;
        range.delta[c] = 0.0392156862745098;
    }
    range.weight = 50.0;
    Set &target = exclude ? m_step.exclude : m_step.add;
    int32_t result = Add(target, range, 0.0, false);
    if (result < 1 && force) {
        Limit(target, int64_t{m_step.add.count} + 1);
        result = Add(target, range, 0.0, false);
    }
    Rebuild(type);
    KeyAnswer answer = Render();
    if (FAILED(answer.hr)) return answer;
    answer.hr = result < 0 ? (force ? E_OUTOFMEMORY : E_INVALIDARG) : result == 0 ? S_FALSE : S_OK;
    return answer;
}

KeyAnswer KeyModel::Detect(const KeyWishes &wishes) {
    if (!m_view) return {E_INVALIDARG, {}};
    const int32_t type = wishes.type.value_or(m_settings.type.value_or(1));
    const int32_t blocks = wishes.blocks.value_or(m_settings.blocks.value_or(48));
    if (blocks == 0) return {E_INVALIDARG, {}};
    const HRESULT hr = Work(type);
    if (FAILED(hr)) return {hr, {}};
    Save();
    m_step.add.count = 0;
    m_step.exclude.count = 0;
    Limit(m_step.add, wishes.maxKeys.value_or(m_settings.maxKeys.value_or(0)));
    const double whole = std::trunc(wishes.keyDiff.value_or(m_settings.keyDiff.value_or(1.0)));
    const bool paint = wishes.showBlocks.value_or(true);
    const int32_t threshold = wishes.threshold.value_or(m_settings.threshold.value_or(16));
    if (Scan(blocks, threshold, std::clamp(whole, -2147483648.0, 2147483647.0) * 0.015, paint)) Rebuild(type);
    if (!paint) return Render();
    for (int32_t y = 0; y < m_work.Rows() && type != 0; ++y)
        for (int32_t x = 0; x < m_work.props.nWidth; ++x) type == 1 ? FromHls(m_work.At(y, x)) : FromYuv(m_work.At(y, x));
    m_hasWork = false;
    Shot shot{true, eZFCC_RGB32, m_work.props.nWidth, m_work.Rows(), {}};
    for (int32_t y = 0; y < shot.rows; ++y) {
        const uint8_t *row = m_work.At(m_work.props.nHeight < 0 ? y : shot.rows - 1 - y, 0);
        shot.pixels.insert(shot.pixels.end(), row, row + int64_t{shot.width} * 4);
    }
    return {S_OK, shot};
}

bool KeyModel::Scan(int32_t blocks, int32_t threshold, double diff, bool paint) {
    const int32_t bw = m_work.props.nWidth / blocks, bh = m_work.Rows() / blocks;
    for (int32_t by = 0; by < blocks; ++by)
        for (int32_t bx = 0; bx < blocks; ++bx) {
            Range range;
            if (!BlockRange(bx, by, bw, bh, threshold, range)) continue;
            if (Add(m_step.add, range, diff, m_workType == 1) < 0 || !paint) continue;
            for (int32_t y = 0; y < bh && bw > 0; ++y)
                std::memset(m_work.At(by * bh + y, bx * bw), 0x40, static_cast<size_t>(bw) * 4);
        }
    return m_step.add.count > 0;
}

// Green or blue enough for a screen.
bool KeyModel::InBand(const uint8_t *pixel) const {
    uint8_t p[4];
    std::memcpy(p, pixel, 4);
    if (m_workType == 2) FromYuv(p);
    if (m_workType != 1) ToHls(p);
    Range colour;
    for (int c = 0; c < 4; ++c) colour.centre[c] = p[c] / 255.0;
    const Range green = {{125.0 / 360, 0.5, 0.6, 0.5}, {30.0 / 360, 0.4, 0.8, 3.0}, 0};
    const Range blue = {{230.0 / 360, 0.5, 0.6, 0.5}, {25.0 / 360, 0.4, 0.8, 3.0}, 0};
    return Contains(green, colour) || Contains(blue, colour);
}

bool KeyModel::BlockRange(int32_t bx, int32_t by, int32_t bw, int32_t bh, int32_t threshold, Range &range) {
    const auto at = [&](int32_t x, int32_t y) { return m_work.At(by * bh + y, bx * bw + x); };
    const int64_t t = int64_t{threshold} * threshold;
    const double limit = static_cast<double>(t) * 3;
    const uint8_t *first = at(0, 0);
    uint8_t least[4], most[4];
    std::memcpy(least, first, 4);
    std::memcpy(most, first, 4);
    for (int32_t y = 0; y < bh; ++y)
        for (int32_t x = 1; x < bw; ++x) {
            const uint8_t *p = at(x, y);
            if (!InBand(p) || Distance(p, first) > 4 * limit || Distance(p, at(x - 1, y)) > limit) return false;
            if (y > 0 && (Distance(p, at(x, y - 1)) > limit || Distance(p, at(x - 1, y - 1)) > limit)) return false;
            for (int b = 0; b < 4; ++b) {
                least[b] = std::min(least[b], p[b]);
                most[b] = std::max(most[b], p[b]);
            }
        }
    for (int c = 0; c < 4; ++c) {
        const int32_t b = kByteOfChannel[c];
        range.centre[c] = (most[b] + least[b]) / 510.0;
        range.delta[c] = (most[b] - least[b]) / 510.0;
        if (!(range.delta[c] > 0.00392156862745098)) range.delta[c] = 0.00392156862745098;
    }
    return true;
}

}    // namespace conformance
