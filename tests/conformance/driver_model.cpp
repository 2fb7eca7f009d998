#include "tests/conformance/driver_model.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "tests/conformance/media_model.h"
#include "tests/conformance/picture_model.h"
#include "tests/conformance/scale_model.h"

namespace conformance {
namespace {

// A conversion that is under way.
struct Run {
    Conversion *out;
    int64_t frameRow = 0;    // row bytes of the target when fields are written side by side, else 0
};

int32_t WordIndex(const std::string &word, std::initializer_list<const char *> words) {
    std::string lower = word;
    for (char &c : lower) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
    int32_t i = 0;
    for (const char *w : words) {
        if (lower == w) return i;
        ++i;
    }
    return -1;
}

bool IsNumber(const std::string &text) {
    const size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    return text.size() > sign && text.find_first_not_of("0123456789", sign) == std::string::npos;
}

int32_t NumberOr(const std::string &text, int32_t otherwise) { return IsNumber(text) ? std::atoi(text.c_str()) : otherwise; }

bool AspectsDiffer(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    if (a.nAspectX == 0 || a.nAspectY == 0 || b.nAspectX == 0 || b.nAspectY == 0) return false;
    return a.nAspectX != b.nAspectX || a.nAspectY != b.nAspectY;
}

bool SameRecords(const Z_VID_PROPS &a, const Z_VID_PROPS &b) {
    if (AspectsDiffer(a, b)) return false;
    if (a.fccType != b.fccType || a.nWidth != b.nWidth || a.nHeight != b.nHeight || a.eInterlace != b.eInterlace ||
        a.nRowBytes != b.nRowBytes)
        return false;
    if (a.eVideoFormat != 0 && a.eVideoFormat == b.eVideoFormat) return true;
    return std::fabs(a.dblRate - b.dblRate) < 0.01 && a.e3DFormat == b.e3DFormat && a.eScaleType == b.eScaleType;
}

eZFCC Family(eZFCC fcc) { return fcc == eZFCC_HDYC ? eZFCC_UYVY : fcc == eZFCC_RGB32 ? eZFCC_ARGB32 : fcc; }

void FillBlack(Spot spot, int64_t bytes) {
    const eZFCC fcc = spot.props.fccType;
    const bool uyvy = fcc == eZFCC_UYVY || fcc == eZFCC_HDYC, groups = uyvy || fcc == eZFCC_YUY2;
    const int64_t unit = fcc == eZFCC_RGB24 ? 3 : 4;
    if (!groups && !IsPixels(fcc)) return;
    for (int64_t i = 0; i < bytes / unit * unit; ++i)
        spot.memory->at(static_cast<size_t>(spot.at + i)) = groups ? ((i % 2 == 0) == uyvy ? 128 : 16) : 0;
}

// Pictures of 480 and 486 lines, of 576 and more: both get the lines of the shorter one, at the bottom of the picture.
void LineUp(Spot &s, Spot &t, bool pal) {
    const auto within = [](const Spot &one, const Spot &other, eZVideoFormat format, int64_t least, int64_t most) {
        return one.props.eVideoFormat == format && other.Height() >= least && other.Height() <= most;
    };
    const bool ntsc = within(s, t, eZVF_NTSC, 480, 525) || within(t, s, eZVF_NTSC, 480, 525);
    const bool tall = pal && (within(s, t, eZVF_PAL, 576, 625) || within(t, s, eZVF_PAL, 576, 625));
    const int64_t sh = s.Height(), th = t.Height(), d = th - sh;
    if ((!ntsc && !tall) || d == 0 || Planar(d > 0 ? t.props.fccType : s.props.fccType)) return;
    Spot &longer = d > 0 ? t : s;
    const bool up = longer.BottomUp();
    if (d > 0) {
        Spot black = t;
        if (up) black.at += sh * t.props.nRowBytes;
        FillBlack(black, d * t.props.nRowBytes);
    }
    if (!up) longer.at += std::abs(d) * longer.props.nRowBytes;
    const auto h = static_cast<int32_t>(std::min(sh, th));
    longer.props.nHeight = longer.props.nHeight < 0 ? -h : h;
}

struct Code {
    int32_t code;
    bool high;
};

Code Decoded(int32_t value) {
    Code c = {value, value >= 10};
    if (c.high) c.code -= 10;
    if (c.code < 1) c.code = 1;
    if (c.code == 3) c.code = 2;
    if (c.code >= 9) c.code = 16;
    return c;
}

int32_t AutoQuality(int32_t value, const Z_VID_PROPS &s, const Z_VID_PROPS &t) {
    if (value >= 1) return value;
    const int32_t sh = std::abs(s.nHeight), th = std::abs(t.nHeight);
    if (OrderSign(&s) != 0 && OrderSign(&t) != 0) {
        if (sh > 1.8 * th) return 18;
        if (th < sh) return 16;
    }
    if (OrderSign(&s) == 0 || OrderSign(&t) != 0) return 8;
    return t.dblRate >= 1.7 * s.dblRate ? 16 : 8;
}

// Units by which the library's rounding may differ once samples were made anew.
int32_t Rounding(const Z_VID_PROPS &s, const Z_VID_PROPS &t) {
    if (Rgb(s.fccType) == Rgb(t.fccType)) return 1;
    return Rgb(t.fccType) ? 6 : 2;
}

void PutBack(const Bytes &part, const Spot &spot) { std::copy(part.begin(), part.end(), spot.memory->begin() + spot.at); }

// Rows that lie between those of the other field: what a row writes past its end is dropped.
HRESULT StraightRows(const Spot &s, const Spot &t, int64_t frameRow) {
    HRESULT hr = S_OK;
    for (int64_t y = 0; y < std::min(s.Height(), t.Height()); ++y) {
        Spot a = s, b = t;
        a.at += (s.BottomUp() ? s.Height() - 1 - y : y) * s.props.nRowBytes;
        b.at += (t.BottomUp() ? t.Height() - 1 - y : y) * t.props.nRowBytes;
        a.props.nHeight = s.props.nHeight < 0 ? -1 : 1;
        b.props.nHeight = t.props.nHeight < 0 ? -1 : 1;
        Bytes row = b.Rest();
        row.resize(std::min(row.size(), static_cast<size_t>((b.at / frameRow + 1) * frameRow - b.at)));
        hr = ConvertModel(a.Rest(), row, a.props, b.props).hr;
        PutBack(row, b);
    }
    return hr;
}

HRESULT Straight(const Spot &s, const Spot &t, int64_t frameRow) {
    const FitModel fit = FitRectsModel(s.props, t.props);
    const Spot a = PartOfModel(s, fit.src), b = PartOfModel(t, fit.dst);
    if (b.props.nWidth < t.props.nWidth || b.Height() < t.Height()) {
        Bytes whole = t.Rest();
        FillModel(t.props, whole, 0, 1.0);
        PutBack(whole, t);
    }
    if (frameRow != 0 && a.props.nWidth > 0 && b.props.nWidth > 0 && !Planar(a.props.fccType) && !Planar(b.props.fccType))
        return StraightRows(a, b, frameRow);
    Bytes part = b.Rest();
    const HRESULT hr = ConvertModel(a.Rest(), part, a.props, b.props).hr;
    PutBack(part, b);
    return hr;
}

HRESULT Engine(const Spot &s, const Spot &t, bool asFirst, int32_t q, bool high, const Run &run) {
    Bytes dst = t.Rest();
    HRESULT hr = kNoRouteModel;
    if (IsStraightModel({asFirst ? nullptr : &dst, asFirst ? &dst : nullptr, nullptr}, s.props, t.props)) {
        hr = Straight(s, t, run.frameRow);
        if (hr == S_OK) return S_OK;
        dst = t.Rest();
    }
    if (!IsServed(s.props.fccType) || !IsServed(t.props.fccType)) {
        if (high && s.props.fccType == eZFCC_RGB8 && t.props.fccType == eZFCC_RGB8) run.out->known = false;
        return run.out->known ? hr : S_OK;
    }
    const EngineOutputs outputs = {asFirst ? nullptr : &dst, asFirst ? &dst : nullptr, nullptr};
    const bool ok = (high ? Frame3Model : Frame2Model)(s.Rest(), outputs, s.props, t.props, q);
    PutBack(dst, t);
    run.out->tolerance = std::max(run.out->tolerance, Rounding(s.props, t.props));
    return ok ? S_OK : E_FAIL;
}

bool Empty(const Z_VID_PROPS &p) { return p.nWidth < 1 || p.nHeight == 0 || p.nRowBytes == 0; }

// One eye of a stereo picture.
void TakeEye(Spot &spot, int32_t eye) {
    Z_VID_PROPS &p = spot.props;
    const int32_t layout = p.e3DFormat & 0x600;
    if (layout == 0) return;
    if ((layout & 0x200) != 0) p.nWidth /= 2;
    if ((layout & 0x400) != 0) p.nHeight /= 2;
    if (eye >= 1) {
        if ((layout & 0x200) != 0) spot.at += p.nRowBytes / 2;
        if ((layout & 0x400) != 0) spot.at += BufferSize(&p);
    }
    p.eVideoFormat = eZVF_Custom;
    p.e3DFormat = eZ3D_None;
}

HRESULT ConvertPicture(Spot s, Spot t, bool asFirst, int32_t q, int32_t eye, const Run &run) {
    const Spot wholeSource = s, wholeTarget = t;
    s.props = UpdatedModel(s.props);
    t.props = UpdatedModel(t.props);
    if (Empty(s.props) || Empty(t.props)) return E_UNEXPECTED;
    if (Planar(s.props.fccType) || Planar(t.props.fccType)) s.props.e3DFormat = t.props.e3DFormat = eZ3D_None;
    if (eye == -1 && (t.props.e3DFormat & 0x600) != 0) {
        for (int32_t one = 0; one < 2; ++one)
            if (const HRESULT hr = ConvertPicture(wholeSource, wholeTarget, asFirst, q, one, run); hr < 0) return hr;
        return S_OK;
    }
    TakeEye(s, eye);
    TakeEye(t, eye);
    if (Empty(s.props) || Empty(t.props)) return E_UNEXPECTED;
    s.props = UpdatedModel(s.props);
    t.props = UpdatedModel(t.props);
    LineUp(s, t, false);
    const Code code = Decoded(q);
    if (s.Height() > t.Height() && code.code >= 5 && OrderSign(&s.props) != 0 && OrderSign(&t.props) != 0)
        return Engine(s, t, asFirst, code.code, true, run);
    if (!code.high) return Engine(s, t, asFirst, code.code, false, run);
    return Engine(s, t, asFirst, code.code >= 5 ? code.code : 4, true, run);
}

// The scale type that is meant when nobody says one.
eZScaleType Decide(const Spot &s, const Spot &t, bool wholeOrBoth) {
    const double sw = s.props.nWidth, tw = t.props.nWidth;
    const auto sh = static_cast<double>(s.Height()), th = static_cast<double>(t.Height());
    const double sa = Aspect(&s.props), ta = Aspect(&t.props);
    const bool equal = sw == tw && sh == th;
    const bool alike = (OrderSign(&s.props) != 0) == (OrderSign(&t.props) != 0);
    if (wholeOrBoth && sw >= 1100 && tw >= 1280 && !equal && std::fabs(sw - tw) / tw <= 0.1 &&
        std::fabs(sa * sh / sw - ta * th / tw) < 0.01 && alike)
        return eZST_NoScale;
    return sa < ta && sh <= th + 60 ? eZST_Crop : eZST_LetterBox;
}

// Planes have no rows of one field, and half a row of a field is a whole row of its picture.
bool FieldStands(const Z_VID_PROPS &p, const Z_VID_PROPS &target) {
    return !Planar(p.fccType) && ((p.e3DFormat & 0x200) == 0 || (target.e3DFormat & 0x600) == 0 || Planar(target.fccType));
}

// f: 0, 1 a field, 2 the whole picture.
HRESULT ConvertField(Spot s, Spot t, int32_t f, bool both, int32_t q, const Run &run) {
    s.props = UpdatedModel(s.props);
    t.props = UpdatedModel(t.props);
    if (Empty(s.props) || Empty(t.props)) return E_UNEXPECTED;
    LineUp(s, t, true);
    if (s.props.eScaleType == eZST_Default)
        s.props.eScaleType = t.props.eScaleType != eZST_Default ? t.props.eScaleType : Decide(s, t, both || f == 2);
    if (!both && q >= 10 && f != 2) return ConvertPicture(s, t, true, q, -1, run);
    const int32_t si = OrderSign(&s.props), ti = OrderSign(&t.props);
    if (f != 2 && FieldStands(s.props, t.props)) s = FieldOfModel(s, f);
    if (both) t = FieldOfModel(t, si * ti < 0 ? 1 - f : f);
    return ConvertPicture(s, t, false, q, -1, run);
}

// Fills what a target leaves open.
void Complete(Z_VID_PROPS &t, const Z_VID_PROPS &source) {
    if (t.fccType == 0) t.fccType = source.fccType;
    if (t.fccType == 0) t.fccType = eZFCC_UYVY;
    if (t.eScaleType == 0) t.eScaleType = source.eScaleType;
    if (t.eInterlace == 0) t.eInterlace = source.eInterlace;
    if (t.nWidth == 0 || t.nHeight == 0) {
        t.nWidth = source.nWidth;
        t.nHeight = Rgb(t.fccType) ? source.nHeight : std::abs(source.nHeight);
        t.nRowBytes = static_cast<int32_t>(Row(t.fccType, t.nWidth));
    }
    if (t.nAspectX == 0 || t.nAspectY == 0) t.nAspectX = source.nAspectX, t.nAspectY = source.nAspectY;
    if (!(t.dblRate > 0)) t.dblRate = source.dblRate;
    if (t.nRowBytes == 0) t.nRowBytes = static_cast<int32_t>(Row(t.fccType, t.nWidth));
    Update(&t, false);
}

tagRECT InsetRect(const std::string &text, const Z_VID_PROPS &p, bool *wanted) {
    int32_t v[4] = {}, n = 0;
    for (size_t i = 0; i < text.size() && n < 4;) {
        const size_t end = std::min(text.find_first_of(", ", i), text.size());
        if (end > i) v[n++] = std::atoi(text.substr(i, end - i).c_str());
        i = end + 1;
    }
    const int32_t l = v[0], t = n < 2 ? v[0] : v[1], r = n < 4 ? v[0] : v[2], b = n == 0 ? 0 : v[n - 1];
    *wanted = l != 0 || t != 0 || r != 0 || b != 0;
    return {l, t, p.nWidth - r, std::abs(p.nHeight) - b};
}

void Cut(Still &still, const tagRECT &rect) {
    if (rect.left >= rect.right || rect.top >= rect.bottom) return;
    const Spot part = PartOfModel({&still.memory, 0, still.props}, rect);
    still = {part.props, part.Rest()};
}

// Everything that happens to the sources before they are converted.
HRESULT Prepare(Still *first, Still *second, const Z_VID_PROPS &target, const ConvertWishes &wishes, Conversion &out) {
    bool crop = false;
    const tagRECT rect = InsetRect(wishes.crop, first->props, &crop);
    const int32_t turn = WordIndex(wishes.rotate, {"right", "left"});
    for (Still *still : {first, second}) {
        if (still == nullptr) continue;
        if (crop) Cut(*still, rect);
    }
    for (Still *still : {first, second}) {
        if (still == nullptr || turn < 0) continue;
        Still turned;
        bool rounded = false;
        if (const HRESULT hr = TurnModel(*still, turn == 1, &turned, &rounded); hr != S_OK) return hr;
        *still = turned;
        if (rounded) out.tolerance = 1;
    }
    if (second == nullptr || !SameRecords(first->props, second->props)) return S_OK;
    Still woven;
    if (const HRESULT hr = WeaveModel(*first, *second, target.eInterlace, &woven); hr != S_OK) return hr;
    *first = woven;
    return S_OK;
}

bool Holds(const Still &still) {
    return !still.memory.empty() && Need(still.props) <= static_cast<int64_t>(still.memory.size());
}

// The whole picture moves by a line where the order of the fields changes.
void MoveLine(Still &still, int32_t si, int32_t ti) {
    const int64_t row = still.props.nRowBytes;
    Bytes &m = still.memory;
    if (si * ti >= 0 || static_cast<int64_t>(m.size()) <= row) return;
    if (ti > 0)
        std::copy(m.begin() + row, m.end(), m.begin());
    else
        std::copy_backward(m.begin(), m.end() - row, m.end());
}

HRESULT ConvertWorking(Still &source, Still &result, int32_t mode, int32_t q, Conversion &out) {
    const Spot s = {&source.memory, 0, source.props}, t = {&result.memory, 0, result.props};
    const int32_t si = OrderSign(&source.props), ti = OrderSign(&result.props);
    if (mode == 2 && result.props.eInterlace == eZI_Progressive && si != 0) mode = 0;
    const Z_VID_PROPS sp = UpdatedModel(source.props), tp = UpdatedModel(result.props);
    const bool fields = FieldStands(sp, tp) && FieldStands(tp, tp);
    if (mode != 2 || si == 0 || q >= 10 || !fields) return ConvertField(s, t, mode, false, q, {&out});
    HRESULT codes[2];
    for (int32_t f = 0; f < 2; ++f) codes[f] = ConvertField(s, t, f, true, q, {&out, result.props.nRowBytes});
    for (const HRESULT hr : codes)
        if (hr < 0) return hr;
    MoveLine(result, si, ti);
    return S_OK;
}

}    // namespace

std::string ConvertWishes::Text() const {
    std::string text;
    const auto add = [&text](const char *name, const std::string &value) {
        if (!value.empty()) text += (text.empty() ? "" : " ") + std::string(name) + "='" + value + "'";
    };
    add("scale_type", scale);
    add("scaling_quality", quality);
    add("field", field);
    add("mirror", mirror);
    add("crop", crop);
    add("rotate", rotate);
    return text;
}

Conversion FramesConvertModel(const Still *first, const Still *second, const Z_VID_PROPS &target, const ConvertWishes &wishes) {
    Conversion out;
    const auto fail = [&out](HRESULT hr) {
        out.hr = hr;
        return out;
    };
    if (first == nullptr && second == nullptr) return fail(E_INVALIDARG);
    const Z_VID_PROPS source = (first != nullptr ? first : second)->props;
    Z_VID_PROPS t = target;
    if (t.eVideoFormat != 0) Update(&t, false);
    if (!Valid(&t)) Complete(t, source);
    if (!Valid(&t)) return fail(kBadMediaModel);
    const int32_t word = WordIndex(wishes.scale, {"default", "none", "letter-box", "crop", "no-scale"});
    if (word >= 0) t.eScaleType = static_cast<eZScaleType>(word);
    if (Packed(t.fccType)) t.nRowBytes = std::max(t.nRowBytes, static_cast<int32_t>(Row(t.fccType, t.nWidth)));
    if (Planar(t.fccType) && t.nRowBytes < t.nWidth) return fail(kBadMediaModel);
    if (BufferSize(&t) == 0) return fail(kBadMediaModel);
    const bool keep = NumberOr(wishes.field, -1) >= 0;
    const int32_t mode = keep || OrderSign(&source) == 0 || OrderSign(&t) != 0 ? 2 : 0;

    Still a = *(first != nullptr ? first : second), b = second != nullptr ? *second : Still{};
    const bool two = first != nullptr && second != nullptr, held = Holds(a) && (!two || Holds(b));
    if (const HRESULT hr = Prepare(&a, two ? &b : nullptr, t, wishes, out); hr != S_OK) return fail(hr);
    const int32_t mirror = WordIndex(wishes.mirror, {"", "horz", "vert", "both"});
    const int32_t q = AutoQuality(NumberOr(wishes.quality, 4), a.props, t);
    Z_VID_PROPS like = a.props;
    if (Family(like.fccType) == Family(t.fccType)) like.fccType = t.fccType;
    out.clone = mode == 2 && SameRecords(like, t);
    if (!held && (!out.clone || mirror > 0)) return fail(kBadMediaModel);
    out.result = {t, out.clone ? a.memory : Bytes(static_cast<size_t>(BufferSize(&t)))};
    if (!out.clone) {
        const int32_t before = out.tolerance;
        out.tolerance = 0;
        if (const HRESULT hr = ConvertWorking(a, out.result, mode, q, out); hr < 0) return fail(hr);
        // Rounded samples are rounded again.
        if (before != 0) out.tolerance += 8;
    }
    if (mirror > 0)
        if (const HRESULT hr = MirrorModel(out.result, mirror); hr != S_OK) return fail(hr);
    out.hr = S_OK;
    return out;
}

}    // namespace conformance
