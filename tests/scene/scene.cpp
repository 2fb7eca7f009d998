#include "tests/scene/scene.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "tests/scene/exact_math.h"

namespace zck {
namespace {

constexpr float kPi = 3.14159265F;

float Sin(float x) { return static_cast<float>(ExactSine(x)); }
float Cos(float x) { return static_cast<float>(ExactCosine(x)); }
float Length(float x, float y) { return std::sqrt(x * x + y * y); }

struct Rgb {
    float r, g, b;
};

/// Premultiplied colour and coverage of what stands before the screen, 0 to 1.
struct Layer {
    int width, height;
    float unit;    ///< pixels of a picture one unit high
    std::vector<Rgb> colour;
    std::vector<float> cover;

    Layer(int w, int h)
        : width(w),
          height(h),
          unit(static_cast<float>(h)),
          colour(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), Rgb{0, 0, 0}),
          cover(colour.size(), 0.0F) {}

    void Over(int x, int y, Rgb c, float a) {
        if (x < 0 || y < 0 || x >= width || y >= height || a <= 0) return;
        const std::size_t i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
        colour[i] = {colour[i].r * (1 - a) + c.r * a, colour[i].g * (1 - a) + c.g * a, colour[i].b * (1 - a) + c.b * a};
        cover[i] = cover[i] * (1 - a) + a;
    }
};

uint32_t Mix(uint32_t x) {
    x = (x ^ (x >> 16)) * 0x7FEB352DU;
    x = (x ^ (x >> 15)) * 0x846CA68BU;
    return x ^ (x >> 16);
}

float Unit(uint32_t key) { return static_cast<float>(Mix(key) >> 8) / 16777216.0F; }

float Ramp(float x) {
    const float t = std::clamp(x, 0.0F, 1.0F);
    return t * t * (3 - 2 * t);
}

/// Draws a shape given by its distance (in units, negative inside) within a box; `feather` is the width of its edge.
template <class Distance, class Colour>
void Shape(Layer &layer, float x0, float y0, float x1, float y1, float feather, Distance distance, Colour colour) {
    const float u = layer.unit;
    const float edge = std::max(feather, 1.2F / u);
    const int left = std::max(0, static_cast<int>((x0 - edge) * u) - 1);
    const int right = std::min(layer.width, static_cast<int>((x1 + edge) * u) + 2);
    const int top = std::max(0, static_cast<int>((y0 - edge) * u) - 1);
    const int bottom = std::min(layer.height, static_cast<int>((y1 + edge) * u) + 2);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const float px = (static_cast<float>(x) + 0.5F) / u;
            const float py = (static_cast<float>(y) + 0.5F) / u;
            const float a = Ramp(0.5F - distance(px, py) / edge);
            if (a > 0) layer.Over(x, y, colour(px, py), a);
        }
    }
}

float EllipseDistance(float x, float y, float cx, float cy, float rx, float ry) {
    const float dx = (x - cx) / rx;
    const float dy = (y - cy) / ry;
    return (Length(dx, dy) - 1) * std::min(rx, ry);
}

float CapsuleDistance(float x, float y, float ax, float ay, float bx, float by, float radius) {
    const float vx = bx - ax;
    const float vy = by - ay;
    const float t = std::clamp(((x - ax) * vx + (y - ay) * vy) / (vx * vx + vy * vy), 0.0F, 1.0F);
    return Length(x - ax - t * vx, y - ay - t * vy) - radius;
}

/// One hair: dabs along a bent line that grows thinner and more transparent towards its tip.
void Strand(Layer &layer, float x, float y, float angle, float length, float bend, float shade) {
    const float u = layer.unit;
    const int steps = std::max(4, static_cast<int>(length * u * 1.5F));
    for (int i = 0; i < steps; ++i) {
        const float t = static_cast<float>(i) / static_cast<float>(steps);
        const float px = x * u - 0.5F;
        const float py = y * u - 0.5F;
        const int ix = static_cast<int>(std::floor(px));
        const int iy = static_cast<int>(std::floor(py));
        const float fx = px - static_cast<float>(ix);
        const float fy = py - static_cast<float>(iy);
        const float a = 0.55F * (1 - 0.75F * t);
        const Rgb c{0.30F * shade, 0.19F * shade, 0.12F * shade};
        layer.Over(ix, iy, c, a * (1 - fx) * (1 - fy));
        layer.Over(ix + 1, iy, c, a * fx * (1 - fy));
        layer.Over(ix, iy + 1, c, a * (1 - fx) * fy);
        layer.Over(ix + 1, iy + 1, c, a * fx * fy);
        angle += bend / static_cast<float>(steps);
        x += Cos(angle) * length / static_cast<float>(steps);
        y += Sin(angle) * length / static_cast<float>(steps);
    }
}

void Hair(Layer &layer, float cx, float cy, float sway, uint32_t seed) {
    constexpr uint32_t kStrands = 260;
    for (uint32_t i = 0; i < kStrands; ++i) {
        const uint32_t key = seed * 7919U + i * 16U;
        const float around = kPi * (1.0F + Unit(key));    // the upper half of the head
        const float x = cx + 0.105F * Cos(around);
        const float y = cy + 0.135F * Sin(around);
        const float length = 0.05F + 0.10F * Unit(key + 1);
        const float bend = 2.4F * (Unit(key + 2) - 0.5F) + 0.6F * sway;
        Strand(layer, x, y, around + 0.5F * (Unit(key + 3) - 0.5F), length, bend, 0.5F + Unit(key + 4));
    }
}

/// The arm moves through `swing` while the shutter is open: the mean of positions over that time.
void BlurredArm(Layer &layer, float sx, float sy, float angle, float swing) {
    constexpr int kPositions = 12;
    const float reach = 0.33F;
    const auto cover = [&](float x, float y) {
        float sum = 0;
        for (int i = 0; i < kPositions; ++i) {
            const float a = angle + swing * (static_cast<float>(i) / (kPositions - 1) - 0.5F);
            const float d = CapsuleDistance(x, y, sx, sy, sx + reach * Cos(a), sy + reach * Sin(a), 0.028F) * layer.unit;
            sum += Ramp(0.5F - d / 1.2F);
        }
        return sum / kPositions;
    };
    const float pad = reach + 0.04F;
    const int left = std::max(0, static_cast<int>((sx - pad) * layer.unit));
    const int right = std::min(layer.width, static_cast<int>((sx + pad) * layer.unit) + 1);
    const int top = std::max(0, static_cast<int>((sy - pad) * layer.unit));
    const int bottom = std::min(layer.height, static_cast<int>((sy + pad) * layer.unit) + 1);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const float a = cover((static_cast<float>(x) + 0.5F) / layer.unit, (static_cast<float>(y) + 0.5F) / layer.unit);
            layer.Over(x, y, {0.86F, 0.66F, 0.55F}, a);
        }
    }
}

void Figure(Layer &layer, const SceneParams &params, float turn) {
    const float middle = 0.5F * static_cast<float>(params.width) / static_cast<float>(params.height);
    const float sway = Sin(2 * kPi * turn);
    const float cx = middle + 0.12F * sway;
    const float cy = 0.36F + 0.015F * Sin(4 * kPi * turn);
    const auto shirt = [&](float x, float y) {
        const float stripe = 0.85F + 0.15F * Sin(90 * (y + 0.15F * x));
        return Rgb{0.72F * stripe, 0.16F * stripe, 0.20F * stripe};
    };
    // The right side of the shirt has a soft edge, as cloth out of focus.
    Shape(
        layer, cx - 0.02F, 0.58F, cx + 0.26F, 1.1F, 0.06F,
        [&](float x, float y) { return EllipseDistance(x, y, cx + 0.06F, 0.92F, 0.18F, 0.36F); }, shirt);
    Shape(
        layer, cx - 0.25F, 0.52F, cx + 0.2F, 1.1F, 0,
        [&](float x, float y) { return EllipseDistance(x, y, cx - 0.02F, 0.92F, 0.20F, 0.38F); }, shirt);
    const Rgb skin{0.90F, 0.70F, 0.58F};
    Shape(
        layer, cx - 0.1F, 0.4F, cx + 0.1F, 0.62F, 0,
        [&](float x, float y) { return CapsuleDistance(x, y, cx, cy + 0.1F, cx, 0.58F, 0.045F); },
        [&](float, float) {
            return Rgb{0.78F, 0.58F, 0.47F};
        });
    Hair(layer, cx, cy, sway, params.seed);
    Shape(
        layer, cx - 0.12F, cy - 0.16F, cx + 0.12F, cy + 0.16F, 0,
        [&](float x, float y) { return EllipseDistance(x, y, cx, cy, 0.11F, 0.145F); },
        [&](float x, float y) {
            const float light = 0.85F + 0.9F * (cx - x) - 0.4F * (y - cy);
            return y < cy - 0.07F ? Rgb{0.26F * light, 0.17F * light, 0.11F * light}
                                  : Rgb{skin.r * light, skin.g * light, skin.b * light};
        });
    BlurredArm(layer, cx + 0.17F, 0.68F, -0.5F + 0.9F * Sin(6 * kPi * turn), 0.35F * Cos(6 * kPi * turn));
}

Rgb Screen(const SceneParams &params, float x, float y) {
    const uint32_t c = SceneScreenColour(params.screen);
    const float aspect = static_cast<float>(params.width) / static_cast<float>(params.height);
    const float dx = x / aspect - 0.4F;
    const float dy = y - 0.35F;
    const float spot = static_cast<float>(ExactExp(-3 * (dx * dx + dy * dy))) - 0.6F;
    const float fold = 0.12F * Sin(9 * x + 2 * y);
    const float light = 1 + static_cast<float>(params.unevenness) * (spot + fold);
    return {static_cast<float>((c >> 16) & 255) / 255 * light, static_cast<float>((c >> 8) & 255) / 255 * light,
            static_cast<float>(c & 255) / 255 * light};
}

uint8_t Byte(float x) { return static_cast<uint8_t>(std::clamp(x + 0.5F, 0.0F, 255.0F)); }

/// Noise of standard deviation 1: the sum of four even distributions, scaled.
float Noise(uint32_t key) {
    const uint32_t a = Mix(key);
    const uint32_t sum = (a & 255U) + ((a >> 8) & 255U) + ((a >> 16) & 255U) + (a >> 24);
    return (static_cast<float>(sum) - 510.0F) / 147.8F;
}

}    // namespace

uint32_t SceneScreenColour(SceneScreen screen) { return screen == SceneScreen::Green ? 0x34B24AU : 0x2A4CC4U; }

ScenePicture RenderScene(const SceneParams &params, int index) {
    Layer layer(params.width, params.height);
    const int frames = std::max(1, params.frames);
    Figure(layer, params, static_cast<float>(((index % frames) + frames) % frames) / static_cast<float>(frames));

    ScenePicture out;
    out.pixels.resize(layer.cover.size() * 4);
    out.alpha.resize(layer.cover.size());
    const auto sigma = static_cast<float>(params.noise);
    for (std::size_t i = 0; i < layer.cover.size(); ++i) {
        const auto x = static_cast<float>(i % static_cast<std::size_t>(params.width)) / layer.unit;
        const auto y = static_cast<float>(i / static_cast<std::size_t>(params.width)) / layer.unit;
        const Rgb screen = Screen(params, x, y);
        const float rest = 1 - layer.cover[i];
        const Rgb c = layer.colour[i];
        const uint32_t key =
            (params.seed * 0x9E3779B9U) ^ (static_cast<uint32_t>(index) * 0x85EBCA6BU) ^ (static_cast<uint32_t>(i) * 4U);
        uint8_t *p = &out.pixels[i * 4];
        p[0] = Byte(255 * (c.b + screen.b * rest) + sigma * Noise(key));
        p[1] = Byte(255 * (c.g + screen.g * rest) + sigma * Noise(key + 1));
        p[2] = Byte(255 * (c.r + screen.r * rest) + sigma * Noise(key + 2));
        p[3] = 255;
        out.alpha[i] = Byte(255 * layer.cover[i]);
    }
    return out;
}

}    // namespace zck
