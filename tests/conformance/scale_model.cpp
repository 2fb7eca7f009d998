#include "tests/conformance/scale_model.h"

#include <algorithm>
#include <cmath>

#include "tests/conformance/media_model.h"

namespace conformance {
namespace {

// One table: for each row the list of source rows and their byte weights.
struct Tap {
    int64_t row;
    int32_t weight;
};
using Table = std::vector<std::vector<Tap>>;

void Tables(int64_t S, int64_t D, int32_t m, int32_t T, double f, Table *even, Table *odd) {
    const int64_t a = m == 0 ? 2 : 1, b = m == 3 ? 1 : 2, n = D / a;
    const double ratio = static_cast<double>(S) / static_cast<double>(D);
    const int64_t lastEven = (S - 1) - (S - 1) % 2, lastRow = S - 1;
    const double scale = a == 1 && b == 2 ? 2.0 : 1.0;
    double sigma = 0, peak = static_cast<double>(b), k2 = 0;
    if (f > 0) {
        sigma = ratio * f / 1.2;
        if (ratio <= 1) sigma = ratio * f * 1.5;
        if (a == 1 || b == 1) sigma /= 2;
        peak = 1 / (std::sqrt(6.283185307179586) * sigma);
        k2 = 1 / (2 * sigma * sigma);
    }
    const auto weigh = [&](double d) { return f > 0 ? peak * std::exp(-d * d * k2) : std::max(0.0, peak - std::fabs(d)); };
    for (int64_t i = 0; i <= n; ++i) {
        struct Raw {
            int64_t row;
            double w;
        };
        std::vector<Raw> lists[2];
        const double s = static_cast<double>(i * a) * ratio, e = static_cast<double>(a * (i + 1) - 1) * ratio;
        const auto c0 = static_cast<int64_t>(std::round(s)), c1 = static_cast<int64_t>(std::round(e));
        const int64_t d0 = static_cast<double>(c0) > s ? 1 : -1, d1 = static_cast<double>(c1) > e ? 1 : -1;
        for (int64_t k = 0; k <= T * b * 2; ++k) {
            const int64_t o = k % 2 == 0 ? k / 2 : k / 2 - k;
            int64_t r = c0 + d0 * o;
            if (0 <= r && r <= lastEven && r % b == 0 && lists[0].size() < static_cast<size_t>(T))
                lists[0].push_back({r, weigh((static_cast<double>(r) - s) * scale)});
            r = c1 + d1 * o;
            if (b > 1 && 1 <= r && r <= lastRow && r % b == 1 && lists[1].size() < static_cast<size_t>(T))
                lists[1].push_back({r, weigh((static_cast<double>(r) - e) * scale)});
            if (lists[0].size() == static_cast<size_t>(T) && (b == 1 || lists[1].size() == static_cast<size_t>(T))) break;
        }
        for (int32_t t = 0; t < 2; ++t) {
            std::vector<Tap> taps;
            double total = 0;
            for (const Raw &raw : lists[t]) total += raw.w;
            int32_t sum = 0;
            for (const Raw &raw : lists[t]) {
                if (!(total > 0) || sum >= 255) break;
                auto w = static_cast<int32_t>(std::round(255 * raw.w / total));
                if (sum + w > 255) w = 255 - sum;
                sum += w;
                taps.push_back({raw.row, w});
            }
            if (sum > 0 && sum < 255) taps[0].weight += 255 - sum;
            (t == 0 ? even : odd)->push_back(taps);
        }
    }
}

void Blend(const RowsAt &src, int64_t end, const std::vector<Tap> &taps, const RowsAt &dst, int64_t y, int32_t width) {
    const auto n = taps.size();
    for (int32_t x = 0; x < width; ++x) {
        const int32_t block = width / 16 * 16;
        int32_t sum = 0;
        if (n <= 1) {
            dst.At(y, x) = src.At(n == 0 ? 0 : taps[0].row, x);
            continue;
        }
        if (n == 3 && x >= block) {
            // The second row stands for the third, too, at double speed.
            const int64_t place = src.start + taps[1].row * src.step + block + 2 * (x - block);
            const int32_t second = place < end ? src.memory->at(static_cast<size_t>(place)) : 0;
            sum = src.At(taps[0].row, x) * taps[0].weight + second * (taps[1].weight + taps[2].weight);
        } else {
            for (const Tap &tap : taps) sum += src.At(tap.row, x) * tap.weight;
            if (n >= 4 && x < block) sum = std::min(sum + 255, 65535);
        }
        dst.At(y, x) = static_cast<uint8_t>(std::min(sum >> 8, 255));
    }
}

double Kernel(int32_t code, double x) {
    const double B = code == 5 ? 1 : code == 7 ? 0.5 : 0, C = code == 5 ? 0 : code == 7 ? 0.3 : 0.5;
    if (code == 2) return x < 1 ? 1 - x : 0;
    if (code == 16) {
        const double pi = 3.14159265358979323846;
        if (x < 1e-12) return 1;
        return x < 3 ? std::sin(pi * x) / (pi * x) * (std::sin(pi * x / 3) / (pi * x / 3)) : 0;
    }
    if (x < 1) return ((12 - 9 * B - 6 * C) * x * x * x + (-18 + 12 * B + 6 * C) * x * x + 6 - 2 * B) / 6;
    if (x < 2) return ((-B - 6 * C) * x * x * x + (6 * B + 30 * C) * x * x + (-12 * B - 48 * C) * x + 8 * B + 24 * C) / 6;
    return 0;
}

// Share of each sample of a line of w in sample x of a line of tw.
std::vector<std::pair<int64_t, double>> Shares(int32_t code, int64_t w, int64_t tw, int64_t x) {
    std::vector<std::pair<int64_t, double>> shares;
    if (code == 1) return {{(2 * x + 1) * w / (2 * tw), 1.0}};
    if (code == 8) {
        for (int64_t i = x * w / tw; i * tw < (x + 1) * w; ++i)
            shares.push_back({i, static_cast<double>(std::min((i + 1) * tw, (x + 1) * w) - std::max(i * tw, x * w)) /
                                     static_cast<double>(w)});
        return shares;
    }
    const double u = (static_cast<double>(x) + 0.5) * static_cast<double>(w) / static_cast<double>(tw) - 0.5;
    const auto base = static_cast<int64_t>(std::floor(u));
    double sum = 0;
    for (int64_t i = base - 3; i <= base + 4; ++i) {
        const double v = Kernel(code, std::fabs(static_cast<double>(i) - u));
        if (v == 0) continue;
        shares.push_back({std::clamp<int64_t>(i, 0, w - 1), v});
        sum += v;
    }
    for (auto &share : shares) share.second /= sum;
    return shares;
}

struct Area {
    int32_t left, top, width, rows;
};

Area AreaOf(const tagRECT &r) {
    return {static_cast<int32_t>(r.left), static_cast<int32_t>(r.top), static_cast<int32_t>(r.right - r.left),
            static_cast<int32_t>(r.bottom - r.top)};
}

// A plane with the part that counts.
struct Plane {
    Bytes bytes;
    int32_t width = 0, rows = 0;
    int64_t step = 0;
    Area part = {};
    Plane() = default;
    Plane(int32_t w, int32_t h, int64_t row, int32_t fill)
        : bytes(static_cast<size_t>(row * h), static_cast<uint8_t>(fill)), width(w), rows(h), step(row), part{0, 0, w, h} {}
    RowsAt Rows() { return {&bytes, 0, step}; }
    uint8_t &At(int32_t x, int32_t y) { return bytes.at(static_cast<size_t>(y * step + x)); }
};
struct Planes {
    Plane p[3];
};

Area Halved(const Area &a, int32_t y) {
    return {a.left / 2, a.top / y, (a.left + a.width) / 2 - a.left / 2, (a.top + a.rows) / y - a.top / y};
}

int32_t HalfRows(const Shape &s) { return Is420(s.fcc) ? s.Rows() / 2 : s.Rows(); }

Planes EmptyPlanes(const Shape &s, const tagRECT &rc) {
    Planes out;
    out.p[0] = Plane(s.width, s.Rows(), s.width, 0);
    for (int32_t i = 1; i < 3; ++i) out.p[i] = Plane(s.width / 2, HalfRows(s), s.width / 2, 0);
    out.p[0].part = AreaOf(rc);
    out.p[1].part = out.p[2].part = Halved(AreaOf(rc), Is420(s.fcc) ? 2 : 1);
    return out;
}

Planes Load(const Bytes &memory, const Shape &s, const tagRECT &rc) {
    Bytes copy = memory;
    Samples in(copy, s);
    Planes out = EmptyPlanes(s, rc);
    for (int32_t y = 0; y < s.Rows(); ++y)
        for (int32_t x = 0; x < s.width; ++x)
            out.p[0].At(x, y) =
                IsPixels(s.fcc) ? Luma601(in.Pixel(x, y, 0), in.Pixel(x, y, 1), in.Pixel(x, y, 2)) : in.Luma(x, y);
    for (int32_t y = 0; y < HalfRows(s); ++y)
        for (int32_t x = 0; x < s.width / 2; ++x)
            for (int32_t c = 0; c < 2; ++c) {
                int32_t sum[3] = {};
                for (int32_t j = 0; IsPixels(s.fcc) && j < 3; ++j) sum[j] = in.Pixel(2 * x, y, j) + in.Pixel(2 * x + 1, y, j);
                out.p[1 + c].At(x, y) = !IsPixels(s.fcc) ? in.Chroma(c, x, y)
                                        : c == 0         ? Cb601(sum[0], sum[1], sum[2], 2)
                                                         : Cr601(sum[0], sum[1], sum[2], 2);
            }
    return out;
}

void Pack(Planes &planes, Bytes &memory, const Shape &s) {
    Samples out(memory, s);
    const int32_t width = Is420(s.fcc) ? s.width : s.width / 2 * 2;
    for (int32_t y = 0; y < s.Rows(); ++y)
        for (int32_t x = 0; x < width; ++x) {
            if (!IsPixels(s.fcc)) {
                out.Luma(x, y) = planes.p[0].At(x, y);
                continue;
            }
            uint8_t bgr[3];
            Rgb601(planes.p[0].At(x, y), planes.p[1].At(x / 2, y), planes.p[2].At(x / 2, y), bgr);
            for (int32_t c = 0; c < 3; ++c) out.Pixel(x, y, c) = bgr[c];
            if (s.fcc != eZFCC_RGB24) out.Pixel(x, y, 3) = 255;
        }
    for (int32_t c = 0; !IsPixels(s.fcc) && c < 2; ++c)
        for (int32_t y = 0; y < HalfRows(s); ++y)
            for (int32_t x = 0; x < s.width / 2; ++x) out.Chroma(c, x, y) = planes.p[1 + c].At(x, y);
}

Plane FieldOf(const Plane &plane, int32_t parity) {
    Plane f(plane.width, plane.rows / 2, plane.step, 0);
    for (int64_t y = 0; y < f.rows; ++y)
        std::copy_n(plane.bytes.begin() + (2 * y + parity) * plane.step, plane.step, f.bytes.begin() + y * plane.step);
    f.part = {plane.part.left, plane.part.top / 2, plane.part.width, plane.part.rows / 2};
    return f;
}

void PutField(Plane &plane, const Plane &field, int32_t parity) {
    for (int64_t y = 0; y < field.rows; ++y)
        std::copy_n(field.bytes.begin() + y * plane.step, plane.step, plane.bytes.begin() + (2 * y + parity) * plane.step);
}

bool ResizePlane(Plane &a, Plane &b, int32_t pixel, int32_t q, int32_t fill) {
    const bool equal = a.part.width == b.part.width && a.part.rows == b.part.rows;
    if (!equal && (a.part.width < 1 || a.part.rows < 1 || b.part.width < 1 || b.part.rows < 1)) return false;
    if (b.part.width != b.width || b.part.rows != b.rows) std::fill(b.bytes.begin(), b.bytes.end(), static_cast<uint8_t>(fill));
    if (equal && (a.part.width < 1 || a.part.rows < 1)) return true;
    const RowsAt from = {&a.bytes, a.part.top * a.step + a.part.left * pixel, a.step};
    const RowsAt to = {&b.bytes, b.part.top * b.step + b.part.left * pixel, b.step};
    if (q == 8 && (b.part.width > a.part.width || b.part.rows > a.part.rows)) q = 4;
    ResizeModel(from, a.part.width, a.part.rows, to, b.part.width, b.part.rows, pixel, equal ? 1 : q);
    return true;
}

bool ResizePlanesModel(Planes &a, Planes &b, int32_t q) {
    for (int32_t i = 0; i < 3; ++i)
        if (!ResizePlane(a.p[i], b.p[i], 1, i == 0 ? q : std::min(q, 2), i == 0 ? 16 : 128)) return false;
    return true;
}

// An RGB image as rows of four-byte pixels from the top of the picture.
Plane Wrap(const Bytes &memory, const Shape &s, const tagRECT &rc) {
    Bytes copy = memory;
    Samples in(copy, s);
    Plane p(s.width, s.Rows(), int64_t{4} * s.width, 0);
    for (int32_t y = 0; y < s.Rows(); ++y)
        for (int32_t x = 0; x < s.width; ++x)
            for (int32_t c = 0; c < 4; ++c)
                p.At(4 * x + c, y) = c == 3 && s.fcc == eZFCC_RGB24 ? uint8_t{255} : in.Pixel(x, y, c);
    p.part = AreaOf(rc);
    return p;
}

void Unwrap(Plane &p, Bytes &memory, const Shape &s) {
    Samples out(memory, s);
    for (int32_t y = 0; y < s.Rows(); ++y)
        for (int32_t x = 0; x < s.width; ++x)
            for (int32_t c = 0; c < (s.fcc == eZFCC_RGB24 ? 3 : 4); ++c) out.Pixel(x, y, c) = p.At(4 * x + c, y);
}

int32_t Order(const Z_VID_PROPS &p) { return OrderSign(&p); }

int64_t Edge(int64_t e, int64_t whole) {
    e += e % 2;
    while (e > 0 && whole - 2 * e < 2) e -= 2;
    return std::max<int64_t>(e, 0);
}

// Memory rows by one, the uncovered one repeated.
void Shift(Bytes &memory, const Z_VID_PROPS &tp, int32_t d) {
    const Shape s = ShapeOf(tp);
    const int64_t rows = s.Rows(), bytes = std::min(s.row, Row(s.fcc, s.width));
    const auto copy = [&](int64_t to, int64_t from) {
        std::copy_n(memory.begin() + from * s.row, bytes, memory.begin() + to * s.row);
    };
    if (d < 0)
        for (int64_t n = 0; n + 1 < rows; ++n) copy(n, n + 1);
    if (d > 0)
        for (int64_t n = rows - 1; n > 0; --n) copy(n, n - 1);
}

int32_t MoveOf(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp) {
    const int32_t si = Order(sp), ti = Order(tp);
    return si == 0 || ti == 0 ? 0 : (si - ti) * (IsPixels(tp.fccType) && tp.nHeight > 0 ? -1 : 1);
}

}    // namespace

void ScaleRowsModel(const RowsAt &src, const RowsAt &dst, int32_t srcHeight, int32_t dstHeight, int32_t width, double factor,
                    int32_t flags) {
    const int64_t S = std::abs(srcHeight), D = std::abs(dstHeight);
    const int32_t m = flags % 4;
    int64_t T = 4;
    if (S > D) T = std::max<int64_t>(5, static_cast<int64_t>(static_cast<double>(S) * 1.5 / static_cast<double>(D) + 1));
    const int64_t a = m != 0 ? 1 : 2, b = m == 3 ? 1 : 2;
    double f = factor;
    if ((m == 1 || m == 2) && S != D) f *= 1.5;
    if (S == D) f *= 0.75;
    if (f == 0)
        T = 2;
    else if (f < 0 || S / b == D / a)
        T = 1;
    else
        T = std::clamp<int64_t>(static_cast<int64_t>(std::round(static_cast<double>(T) * f)), 3, 12);
    Table even, odd;
    Tables(S, D, m, static_cast<int32_t>(T), f, &even, &odd);
    RowsAt from = src, to = dst;
    const int64_t end = src.start + std::max<int64_t>(0, (S - 1) * src.step) + width;
    if (srcHeight < 0) from = {src.memory, src.start + (S - 1) * src.step, -src.step};
    if (dstHeight < 0) to = {dst.memory, dst.start + (D - 1) * dst.step, -dst.step};
    int32_t down = (flags & 32) != 0 ? 1 : 0, up = (flags & 64) != 0 ? 1 : 0;
    if (D < 2 || (down + up == 2 && D < 3)) down = up = 0;
    RowsAt out = to;
    out.start += (down - up) * to.step;
    for (int64_t r = up; r <= D - 1 - down; ++r) {
        const bool second = m == 0 ? ((r + ((flags & 16) != 0 ? 1 : 0)) & 1) != 0 : m == 2;
        Blend(from, end, (second ? odd : even).at(static_cast<size_t>(m == 0 ? r / 2 : r)), out, r, width);
    }
    for (int32_t x = 0; x < width; ++x) {
        if (down != 0) to.At(0, x) = to.At(1, x);
        if (up != 0) to.At(D - 1, x) = to.At(D - 2, x);
    }
}

void ResizeModel(const RowsAt &src, int32_t w, int32_t h, const RowsAt &dst, int32_t tw, int32_t th, int32_t pixel,
                 int32_t code) {
    for (int32_t y = 0; y < th; ++y) {
        const auto down = Shares(code, h, th, y);
        for (int32_t x = 0; x < tw; ++x) {
            const auto along = Shares(code, w, tw, x);
            for (int32_t c = 0; c < pixel; ++c) {
                double sum = 0;
                for (const auto &[j, wy] : down)
                    for (const auto &[i, wx] : along) sum += wy * wx * src.At(j, i * pixel + c);
                dst.At(y, int64_t{x} * pixel + c) = static_cast<uint8_t>(std::clamp(std::floor(sum + 0.5 + 1e-9), 0.0, 255.0));
            }
        }
    }
}

FitModel FitRectsModel(const Z_VID_PROPS &sp, const Z_VID_PROPS &tp) {
    const int64_t sw = sp.nWidth, sh = std::abs(sp.nHeight), dw = tp.nWidth, dh = std::abs(tp.nHeight);
    const double sa = Aspect(&sp), da = Aspect(&tp);
    int32_t t = sp.eScaleType != 0 ? sp.eScaleType : tp.eScaleType, half = 1;
    if (t == 0) {
        const double ps = sa * static_cast<double>(sh) / static_cast<double>(sw),
                     pd = da * static_cast<double>(dh) / static_cast<double>(dw);
        if (sw >= 1100 && dw >= 1280 && static_cast<double>(std::abs(sw - dw)) / static_cast<double>(dw) <= 0.1 &&
            std::fabs(ps - pd) < 0.01) {
            t = eZST_NoScale;
            half = sh == dh / 2 ? 2 : 1;
        } else {
            t = sa < da && sh <= dh + 60 ? eZST_Crop : eZST_LetterBox;
        }
    }
    int64_t sx = 0, sy = 0, dx = 0, dy = 0;    // what goes on each side
    if (t == eZST_Crop || t == eZST_LetterBox) {
        const double x = da * static_cast<double>(dh) / (sa * static_cast<double>(sh)),
                     y = static_cast<double>(dh) / static_cast<double>(sh);
        const double r = t == eZST_Crop ? x / y : y / x;
        int64_t &ex = t == eZST_Crop ? sx : dx, &ey = t == eZST_Crop ? sy : dy;
        const int64_t W = t == eZST_Crop ? sw : dw, H = t == eZST_Crop ? sh : dh;
        if (r < 1.0)
            ex = Edge(static_cast<int64_t>(std::round(static_cast<double>(W) * (1 - r) / 2)), W);
        else
            ey = Edge(static_cast<int64_t>(std::round(static_cast<double>(H) * (1 - 1 / r) / 2)), H);
    }
    if (t == eZST_NoScale) {
        const int64_t w = std::min(sw, dw), h = std::min(sh * half, dh);
        const auto loss = [](int64_t whole, int64_t part) {
            int64_t e = (whole - part) / 2 + 1;
            e -= e % 2;
            return Edge(e, whole);
        };
        sx = loss(sw, w), sy = loss(sh, h / half), dx = loss(dw, w), dy = loss(dh, h);
    }
    const auto rect = [](int64_t x, int64_t y, int64_t w, int64_t h) {
        return tagRECT{static_cast<int32_t>(x), static_cast<int32_t>(y), static_cast<int32_t>(w - x),
                       static_cast<int32_t>(h - y)};
    };
    return {rect(sx, sy, sw, sh), rect(dx, dy, dw, dh)};
}

bool IsStraightModel(const EngineOutputs &out, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp) {
    const FitModel fit = FitRectsModel(sp, tp);
    const Area a = AreaOf(fit.src), b = AreaOf(fit.dst);
    return out.first == nullptr && out.second == nullptr && a.width == b.width && a.rows == b.rows &&
           (Order(sp) == 0 || Order(tp) != 0);
}

bool Frame2Model(const Bytes &src, const EngineOutputs &out, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, int32_t q) {
    const FitModel fit = FitRectsModel(sp, tp);
    const Shape from = ShapeOf(sp), to = ShapeOf(tp);
    const int32_t si = Order(sp), ti = Order(tp), i1 = si > 0 ? 0 : 1;
    const bool wraps = IsPixels(from.fcc) && IsPixels(to.fcc);
    Planes a;
    Plane wrap;
    if (wraps)
        wrap = Wrap(src, from, fit.src);
    else
        a = Load(src, from, fit.src);
    // A picture, or a field (parity 0, 1), into a whole output.
    const auto whole = [&](int32_t parity, Bytes &memory) {
        if (wraps) {
            Plane source = parity < 0 ? wrap : FieldOf(wrap, parity), target = Wrap(memory, to, fit.dst);
            if (!ResizePlane(source, target, 4, q, 0)) return false;
            Unwrap(target, memory, to);
            return true;
        }
        Planes source = a, target = EmptyPlanes(IsPixels(to.fcc) ? Shape{eZFCC_UYVY, to.width, to.Rows(), 0} : to, fit.dst);
        for (int32_t i = 0; parity >= 0 && i < 3; ++i) source.p[i] = FieldOf(a.p[i], parity);
        if (!ResizePlanesModel(source, target, q)) return false;
        Pack(target, memory, to);
        return true;
    };
    if (si == 0 && out.dst != nullptr) return whole(-1, *out.dst);
    if (ti == 0 || out.dst == nullptr) {
        Bytes *const first = out.first == nullptr && out.second == nullptr ? out.dst : out.first;
        if (first != nullptr && !whole(i1, *first)) return false;
        return out.second == nullptr || whole(1 - i1, *out.second);
    }
    // Fields to fields.
    if (wraps) {
        Plane target = Wrap(*out.dst, to, fit.dst);
        for (int32_t parity = 0; parity < 2; ++parity) {
            Plane source = FieldOf(wrap, parity), field = FieldOf(target, parity);
            if (!ResizePlane(source, field, 4, q, 0)) return false;
            PutField(target, field, parity);
        }
        Unwrap(target, *out.dst, to);
        Shift(*out.dst, tp, MoveOf(sp, tp));
        return true;
    }
    Planes target = EmptyPlanes(IsPixels(to.fcc) ? Shape{eZFCC_UYVY, to.width, to.Rows(), 0} : to, fit.dst), fields[2];
    for (int32_t parity = 0; parity < 2; ++parity) {
        Planes source;
        for (int32_t i = 0; i < 3; ++i) {
            source.p[i] = FieldOf(a.p[i], parity);
            fields[parity].p[i] = FieldOf(target.p[i], parity);
        }
        if (!ResizePlanesModel(source, fields[parity], q)) return false;
        for (int32_t i = 0; i < 3; ++i) PutField(target.p[i], fields[parity].p[i], parity);
    }
    const Bytes before = *out.dst;
    Pack(target, *out.dst, to);
    // A wrap is written field by field: its odd last row stays.
    if (IsPixels(to.fcc) && to.Rows() % 2 != 0) {
        const int64_t row = to.height > 0 ? 0 : to.Rows() - 1;
        std::copy_n(before.begin() + row * to.row, std::min(to.row, Row(to.fcc, to.width)), out.dst->begin() + row * to.row);
    }
    Shift(*out.dst, tp, MoveOf(sp, tp));
    if (IsPixels(to.fcc)) return true;
    Shape halfShape = to;
    halfShape.height = to.height / 2;
    if (out.first != nullptr) Pack(fields[i1], *out.first, halfShape);
    if (out.second != nullptr) Pack(fields[1 - i1], *out.second, halfShape);
    return true;
}

namespace {

double Factor(int32_t q) {
    return q == 1 ? -1.0 : q == 2 ? 0.5 : q == 4 ? 0.75 : q == 5 ? 0.8 : q == 6 ? 0.85 : q == 7 ? 0.9 : 1.0;
}

// Rows, then columns. Heights are signed: negative for images whose last row is the top of the picture.
bool SharpModel(const RowsAt &src, int32_t w, int32_t h, const RowsAt &dst, int32_t tw, int32_t th, int32_t pixel,
                bool interlaced, int32_t q, double factor, int32_t flags) {
    if (!interlaced) flags |= 3;
    RowsAt stage = src;
    Bytes scratch;
    if (h != th || flags != 0) {
        const int64_t row = (int64_t{w} * pixel + 3) / 4 * 4;
        scratch.assign(static_cast<size_t>(row * std::abs(th)), 0);
        const RowsAt to = w == tw ? dst : RowsAt{&scratch, 0, row};
        ScaleRowsModel(src, to, h, th, w * pixel, factor, flags);
        stage = to;
        if (w == tw) return true;
    }
    const int32_t rows = std::abs(th);
    if (w == tw) {
        for (int32_t y = 0; y < rows; ++y)
            for (int32_t x = 0; x < w * pixel; ++x) dst.At(y, x) = stage.At(y, x);
        return true;
    }
    if (!interlaced || q < 5 || q == 6) {
        ResizeModel(stage, w, rows, dst, tw, rows, pixel, q);
        return true;
    }
    if (rows < 2) return false;
    for (int32_t f = 0; f < 2; ++f)
        ResizeModel({stage.memory, stage.start + f * stage.step, 2 * stage.step}, w, rows / 2,
                    {dst.memory, dst.start + f * dst.step, 2 * dst.step}, tw, rows / 2, pixel, q);
    return true;
}

RowsAt PartOf(Bytes &memory, const Shape &s, const tagRECT &rc) {
    const int64_t pixel = s.fcc == eZFCC_RGB24 ? 3 : IsPixels(s.fcc) ? 4 : 2;
    const int64_t first = IsPixels(s.fcc) && s.height > 0 ? s.Rows() - rc.bottom : rc.top;
    return {&memory, first * s.row + rc.left * pixel, s.row};
}

Shape Like(const Shape &s, eZFCC fcc, bool bottomUp) {
    const int64_t row = fcc == eZFCC_RGB24 ? (int64_t{s.width} * 3 + 3) / 4 * 4
                        : IsPixels(fcc)    ? int64_t{4} * s.width
                                           : (int64_t{s.width} + 1) / 2 * 4;
    return {fcc, s.width, bottomUp ? s.Rows() : -s.Rows(), row};
}

struct Wish {
    bool interlaced;
    int32_t q;
    int32_t flags;
};

// 4:2:2 rows share chroma two by two, in fields of one parity.
struct Share {
    bool byField;
    int32_t First(int32_t c) const { return byField ? c / 2 * 4 + c % 2 : 2 * c; }
    int32_t Second(int32_t c) const { return First(c) + (byField ? 2 : 1); }
    int32_t Of(int32_t y) const { return byField ? y / 4 * 2 + y % 2 : y / 2; }
};

Plane Padded(int32_t w, int32_t rows) { return Plane(w, rows, (w + 3) / 4 * 4, 0); }

// A plane that is scaled where it stands: what lies between its rows can be read by the tail of three taps.
Plane InPlace(const Bytes &memory, const uint8_t *first, const Area &area, int64_t step) {
    Plane p(area.width, area.rows, step, 0);
    if (area.width < 1 || area.rows < 1) return p;
    const int64_t bytes = (area.rows - 1) * step + area.width, at = first - memory.data();
    std::copy_n(memory.begin() + at, bytes, p.bytes.begin());
    return p;
}

// The planes of a rectangle; what is planar gives those it has.
Planes PartPlanes(Bytes &memory, const Shape &s, const tagRECT &rc, bool half, Share share) {
    Samples in(memory, s);
    const Area r = AreaOf(rc),
               c = Is420(s.fcc) ? Halved(r, 2) : Area{r.left / 2, r.top, r.width / 2, half ? (r.rows + 1) / 2 : r.rows};
    Planes out;
    if (Is420(s.fcc)) {
        out.p[0] = InPlace(memory, &in.Luma(r.left, r.top), r, s.row);
    } else {
        out.p[0] = Padded(r.width, r.rows);
        for (int32_t y = 0; y < r.rows; ++y)
            for (int32_t x = 0; x < r.width; ++x) out.p[0].At(x, y) = in.Luma(r.left + x, r.top + y);
    }
    for (int32_t i = 1; i < 3; ++i) {
        if (Is420(s.fcc) && s.fcc != eZFCC_NV12 && c.width > 0 && c.rows > 0) {
            out.p[i] = InPlace(memory, &in.Chroma(i - 1, c.left, c.top), c, s.row / 2);
            continue;
        }
        out.p[i] = Padded(c.width, c.rows);
        for (int32_t y = 0; y < c.rows; ++y)
            for (int32_t x = 0; x < c.width; ++x) {
                if (Is420(s.fcc) || !half) {
                    out.p[i].At(x, y) = in.Chroma(i - 1, c.left + x, c.top + y);
                    continue;
                }
                const int32_t one = in.Chroma(i - 1, c.left + x, r.top + share.First(y));
                const int32_t two = share.Second(y) < r.rows ? in.Chroma(i - 1, c.left + x, r.top + share.Second(y)) : one;
                out.p[i].At(x, y) = static_cast<uint8_t>((one + two + 1) / 2);
            }
    }
    return out;
}

void PutPlanes(Planes &p, Bytes &memory, const Shape &s, const tagRECT &rc, bool half, Share share) {
    Samples out(memory, s);
    const Area r = AreaOf(rc);
    for (int32_t y = 0; y < r.rows; ++y)
        for (int32_t x = 0; x < r.width; ++x) out.Luma(r.left + x, r.top + y) = p.p[0].At(x, y);
    const Area c = Is420(s.fcc) ? Halved(r, 2) : Area{r.left / 2, r.top, r.width / 2, r.rows};
    for (int32_t i = 1; i < 3; ++i)
        for (int32_t y = 0; y < c.rows; ++y)
            for (int32_t x = 0; x < c.width; ++x) {
                const int32_t row = Is420(s.fcc) || !half ? y : std::min(share.Of(y), p.p[i].rows - 1);
                out.Chroma(i - 1, c.left + x, c.top + y) = p.p[i].At(x, row);
            }
}

bool ImgModel(const Bytes &image, Shape from, Bytes &dst, const Shape &to, const tagRECT &rcSrc, const tagRECT &rcDst,
              const Wish &wish) {
    Bytes src = image;
    Rects r = RectsModel(from, to, true, &rcSrc, &rcDst);
    if (r.hr != S_OK) return true;
    Area a = AreaOf(r.src), b = AreaOf(r.dst);
    if (a.width == b.width && a.rows == b.rows && wish.flags == 0)
        return PictureModel(src, from, dst, to, &r.src, &r.dst) == S_OK;
    const int32_t q = wish.q == 8 && b.width > a.width ? 5 : wish.q;
    const double factor = Factor(wish.q);
    const int32_t flags = wish.flags | (wish.interlaced ? 0 : 3);
    if (from.fcc != to.fcc && IsPixels(to.fcc)) {
        const Shape next = Like(from, to.fcc, IsPixels(from.fcc) && to.height > 0);
        Bytes scratch(BytesOf(next), 0);
        PictureModel(src, from, scratch, next, &r.src, &r.src);
        src = scratch;
        from = next;
        const tagRECT s = r.src, d = r.dst;
        r = RectsModel(from, to, true, &s, &d);
        if (r.hr != S_OK) return true;
        a = AreaOf(r.src), b = AreaOf(r.dst);
    }
    if (IsPixels(from.fcc)) {
        const bool same = from.fcc == to.fcc;
        const Shape next = same ? to : Like(to, from.fcc, false);
        Bytes scratch = same ? dst : Bytes(BytesOf(next), 0);
        const auto sign = [](const Shape &s, const Area &area) { return s.height > 0 ? -area.rows : area.rows; };
        if (!SharpModel(PartOf(src, from, r.src), a.width, sign(from, a), PartOf(scratch, next, r.dst), b.width, sign(next, b),
                        from.fcc == eZFCC_RGB24 ? 3 : 4, wish.interlaced, q, factor, flags))
            return false;
        if (same)
            dst = scratch;
        else
            PictureModel(scratch, next, dst, to, &r.dst, &r.dst);
        return true;
    }
    const bool packed = IsGroups(from.fcc) && IsGroups(to.fcc);
    const auto alike = [](eZFCC f) { return f == eZFCC_HDYC ? eZFCC_UYVY : f; };
    if (packed && a.width == b.width) {
        const bool same = alike(from.fcc) == alike(to.fcc);
        const Shape next = same ? to : Like(to, from.fcc, false);
        Bytes scratch = same ? dst : Bytes(BytesOf(next), 0);
        ScaleRowsModel(PartOf(src, from, r.src), PartOf(scratch, next, r.dst), a.rows, b.rows, 2 * a.width, factor, flags);
        if (same)
            dst = scratch;
        else
            PictureModel(scratch, next, dst, to, &r.dst, &r.dst);
        return true;
    }
    const bool half = !packed;
    Planes p = PartPlanes(src, from, r.src, half, {wish.interlaced}), t;
    if (Is420(to.fcc)) {
        t = PartPlanes(dst, to, r.dst, half, {false});
    } else {
        t.p[0] = Padded(b.width, b.rows);
        t.p[1] = t.p[2] = Padded(b.width / 2, half ? (b.rows + 1) / 2 : b.rows);
    }
    for (int32_t i = 0; i < 3; ++i) {
        Plane &x = p.p[i], &y = t.p[i];
        const bool none = x.width < 1 || x.rows < 1 || y.width < 1 || y.rows < 1;
        if (none && x.width == y.width && x.rows == y.rows) continue;
        if (none || !SharpModel(x.Rows(), x.width, x.rows, y.Rows(), y.width, y.rows, 1, wish.interlaced, q,
                                i == 0 ? factor : factor / 2, flags))
            return false;
    }
    PutPlanes(t, dst, to, r.dst, half, {flags % 4 == 0});
    return true;
}

}    // namespace

bool Frame3Model(const Bytes &src, const EngineOutputs &out, const Z_VID_PROPS &sp, const Z_VID_PROPS &tp, int32_t q) {
    const FitModel fit = FitRectsModel(sp, tp);
    const Shape from = ShapeOf(sp), to = ShapeOf(tp);
    const int32_t si = Order(sp), ti = Order(tp), d = MoveOf(sp, tp), s = d > 0 ? 32 : d < 0 ? 64 : 0;
    const int32_t modes[3] = {si == 0   ? 0
                              : ti != 0 ? 1
                              : si > 0  ? 2
                                        : 3,
                              si == 0  ? 0
                              : si > 0 ? 2
                                       : 3,
                              si == 0  ? 0
                              : si > 0 ? 3
                                       : 2};
    Bytes *const outputs[3] = {out.dst, out.first, out.second};
    const Area b = AreaOf(fit.dst);
    if (b.width != to.width || b.rows != to.Rows())
        for (Bytes *o : outputs) {
            if (o == nullptr) continue;
            const bool uyvy = to.fcc == eZFCC_UYVY || to.fcc == eZFCC_HDYC, groups = uyvy || to.fcc == eZFCC_YUY2;
            const size_t unit = to.fcc == eZFCC_RGB24        ? 3
                                : IsPixels(to.fcc) || groups ? 4
                                                             : 1;    // a fill ends with a whole one
            const size_t bytes = std::min(o->size(), static_cast<size_t>(BufferSize(&tp)));
            for (size_t i = 0; i < bytes / unit * unit; ++i) (*o)[i] = groups ? ((i % 2 == 0) == uyvy ? 128 : 16) : 0;
        }
    for (int32_t i = 0; i < 3; ++i) {
        if (outputs[i] == nullptr) continue;
        int32_t like = -1;
        for (int32_t j = i - 1; j >= 0; --j)
            if (outputs[j] != nullptr && modes[j] == modes[i]) like = j;
        if (like >= 0)
            *outputs[i] = *outputs[like];
        else if (!ImgModel(src, from, *outputs[i], to, fit.src, fit.dst,
                           {modes[i] != 0, q,
                            s + (modes[i] == 2   ? 1
                                 : modes[i] == 3 ? 2
                                                 : 0)}))
            return false;
    }
    return true;
}

}    // namespace conformance
