#include "hosts/zkey/picture_shape.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/text.h"

namespace zkey {
namespace {

constexpr int32_t kMostPixels = 32768;    // of a side
// Automatic choice: the library averages where a picture shrinks.
constexpr int32_t kShrink = 8;
constexpr int32_t kGrow = 4;

std::string Text(int32_t n) { return std::to_string(n); }
std::string Text(PictureSize size) { return Text(size.width) + "x" + Text(size.height); }

/// Where a direction of the turned picture points in the one that was not turned.
Turn Inverse(const Turn &t) { return {t.a, t.c, t.b, t.d}; }

/// The same strips, at the sides at which they lie after the turn.
Borders Turned(const Borders &b, const Turn &t) {
    Borders out;
    const auto put = [&](int x, int y, int pixels) {
        const int tx = t.a * x + t.c * y;
        const int ty = t.b * x + t.d * y;
        (tx < 0 ? out.left : tx > 0 ? out.right : ty < 0 ? out.top : out.bottom) = pixels;
    };
    put(-1, 0, b.left);
    put(0, -1, b.top);
    put(1, 0, b.right);
    put(0, 1, b.bottom);
    return out;
}

PictureSize Turned(PictureSize size, const Turn &t) { return t.Swaps() ? PictureSize{size.height, size.width} : size; }

Aspect Reduced(int64_t x, int64_t y) {
    const int64_t common = std::max<int64_t>(1, std::gcd(x, y));
    x /= common;
    y /= common;
    while (x > INT16_MAX || y > INT16_MAX) {
        x /= 2;
        y /= 2;
    }
    return {static_cast<int16_t>(std::max<int64_t>(x, 1)), static_cast<int16_t>(std::max<int64_t>(y, 1))};
}

/// A side that follows from the other one. Even, as most encoders want it.
int32_t Following(double pixels) {
    return static_cast<int32_t>(std::clamp<double>(2 * std::round(pixels / 2), 2, kMostPixels));
}

PictureSize Wanted(const SizeWish &wish, PictureSize own, double aspect) {
    if (wish.percent > 0) {
        const auto part = [&](int32_t n) {
            return static_cast<int32_t>(std::clamp<double>(std::round(n * wish.percent / 100), 1, kMostPixels));
        };
        return {part(own.width), part(own.height)};
    }
    PictureSize size{wish.width, wish.height};
    if (size.width == 0) size.width = Following(size.height * aspect);
    if (size.height == 0) size.height = Following(size.width / aspect);
    return size;
}

std::string TurnText(const Turn &t) {
    const auto mirror = [](bool horz, bool vert) -> std::string {
        return horz && vert ? " mirror=both" : horz ? " mirror=horz" : vert ? " mirror=vert" : "";
    };
    if (!t.Swaps()) return mirror(t.a < 0, t.d < 0);
    if (t == kTurnLeft) return " rotate=left";
    return " rotate=right" + mirror(t.c > 0, t.b < 0);
}

std::string CropText(const Borders &b) {
    if (b.left == 0 && b.top == 0 && b.right == 0 && b.bottom == 0) return "";
    return " crop='" + Text(b.left) + "," + Text(b.top) + "," + Text(b.right) + "," + Text(b.bottom) + "'";
}

}    // namespace

Turn Then(const Turn &first, const Turn &second) {
    return {second.a * first.a + second.c * first.b, second.b * first.a + second.d * first.b,
            second.a * first.c + second.c * first.d, second.b * first.c + second.d * first.d};
}

std::optional<Turn> TurnOfDisplay(const std::vector<int32_t> &matrix) {
    if (matrix.size() != 9) return Turn{};
    const double length = std::max(std::hypot(matrix[0], matrix[1]), std::hypot(matrix[3], matrix[4]));
    const auto unit = [&](int32_t n) -> int { return length > 0 ? static_cast<int>(std::lround(n / length)) : 0; };
    const auto whole = [&](int32_t n) { return length > 0 && std::fabs(n / length - unit(n)) < 0.01; };
    const Turn t{unit(matrix[0]), unit(matrix[1]), unit(matrix[3]), unit(matrix[4])};
    const bool turn = std::abs(t.a * t.d - t.b * t.c) == 1 && (t.a == 0) == (t.d == 0) && (t.b == 0) == (t.c == 0);
    if (!turn || !whole(matrix[0]) || !whole(matrix[1]) || !whole(matrix[3]) || !whole(matrix[4])) return std::nullopt;
    return t;
}

SizeWish ParseSize(const std::string &text) {
    const auto refuse = [&]() { FailUsage("--size: \"" + text + "\": give WxH, as 1280x720 or 1280x-, 720p, or 50%"); };
    SizeWish wish;
    int32_t number = 0;
    if (text.ends_with('%')) {
        const bool read = ParseReal(std::string_view(text).substr(0, text.size() - 1), wish.percent);
        if (!read || !(wish.percent > 0) || wish.percent > 10000) refuse();
    } else if (text.ends_with('p') && ParseWhole(std::string_view(text).substr(0, text.size() - 1), number)) {
        if (number < 2 || number > kMostPixels / 2) refuse();
        wish.height = number;
        wish.width = Following(number * 16.0 / 9);
    } else {
        const std::size_t x = text.find('x');
        if (x == std::string::npos) refuse();
        const auto side = [&](std::string_view part) {
            int32_t n = 0;
            if (part == "-") return 0;
            if (!ParseWhole(part, n) || n < 1 || n > kMostPixels) refuse();
            return n;
        };
        wish.width = side(std::string_view(text).substr(0, x));
        wish.height = side(std::string_view(text).substr(x + 1));
        if (!wish.Given()) refuse();
    }
    return wish;
}

std::string ParseFit(const std::string &text) {
    constexpr std::pair<const char *, const char *> kKinds[] = {
        {"crop", "crop"}, {"letterbox", "letter-box"}, {"stretch", "none"}, {"none", "no-scale"}};
    for (const auto &[name, keyword] : kKinds) {
        if (SameWord(text, name)) return keyword;
    }
    FailUsage("--fit: \"" + text + "\" is none of crop, letterbox, stretch, none");
}

Turn ParseRotation(const std::string &text) {
    if (SameWord(text, "right")) return kTurnRight;
    if (SameWord(text, "left")) return kTurnLeft;
    if (text == "180") return kTurnAround;
    FailUsage("--rotate: \"" + text + "\" is none of left, right, 180");
}

Turn ParseMirror(const std::string &text) {
    if (SameWord(text, "h")) return kMirrorHorz;
    if (SameWord(text, "v")) return kMirrorVert;
    if (SameWord(text, "both")) return kTurnAround;
    FailUsage("--mirror: \"" + text + "\" is none of h, v, both");
}

int32_t ParseScaling(const std::string &text) {
    int32_t number = 0;
    if (SameWord(text, "auto")) return 0;
    if (!ParseWhole(text, number) || number < 0 || number > 16) FailUsage("--scaling: \"" + text + "\": give 0 to 16, or auto");
    return number;
}

Shape PlanShape(const ShapeOptions &wish, PictureSize picture, PictureSize padded, Rational pixelAspect, const Turn &display) {
    const Borders crop = wish.crop.value_or(Borders{});
    PictureSize upright = Turned(picture, display);
    if (crop.left + crop.right >= upright.width || crop.top + crop.bottom >= upright.height) {
        FailUsage("--crop " + Text(crop.left) + "," + Text(crop.top) + "," + Text(crop.right) + "," + Text(crop.bottom) +
                  " leaves nothing of the picture, which has " + Text(upright) + "; the order is left, top, right, bottom");
    }
    const Turn turn = Then(display, wish.turn);
    upright = {upright.width - crop.left - crop.right, upright.height - crop.top - crop.bottom};
    const PictureSize own = Turned(upright, wish.turn);
    const Rational aspect = turn.Swaps() ? Rational{pixelAspect.den, pixelAspect.num} : pixelAspect;

    Shape shape;
    const PictureSize size = wish.size.Given() ? Wanted(wish.size, own, own.width * aspect.Value() / own.height) : own;
    shape.width = size.width;
    shape.height = size.height;
    // Only sides that were given fix the shape of the result.
    const bool kept = !wish.size.Given() || wish.size.percent > 0;
    shape.pixelAspect = kept ? aspect : Rational{1, 1};
    shape.source = Reduced(int64_t{padded.width} * pixelAspect.num, int64_t{padded.height} * pixelAspect.den);
    shape.result = Reduced(size.width, size.height);

    const bool cut = wish.crop && (crop.left | crop.top | crop.right | crop.bottom) != 0;
    const bool resized = size.width != own.width || size.height != own.height;
    shape.changes = cut || turn != Turn{} || resized;
    Borders stored = Turned(crop, Inverse(display));
    stored.right += padded.width - picture.width;
    stored.bottom += padded.height - picture.height;
    const bool shrinks = size.width < own.width || size.height < own.height;
    const int32_t scaling = wish.scaling.value_or(shrinks ? kShrink : kGrow);
    const std::string fit = !wish.fit.empty() ? wish.fit : kept ? "none" : "letter-box";
    shape.options = "scale_type=" + fit + " scaling_quality=" + Text(scaling) + CropText(stored) + TurnText(turn);
    return shape;
}

}    // namespace zkey
