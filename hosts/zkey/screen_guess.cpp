#include "hosts/zkey/screen_guess.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace zkey {
namespace {

struct Pixel {
    int32_t red, green, blue;
};

// A colour counts as green or blue when that channel leads both others by this much: more than noise and grey walls do.
constexpr int32_t kLead = 12;
// The part of the border that has to show the screen.
constexpr double kLeastShare = 0.10;

std::vector<Pixel> BorderPixels(const ImageView &picture) {
    const int side = std::max(1, picture.width / 14);
    const int top = std::max(1, picture.height / 14);
    const int stride = std::max(1, picture.width * picture.height / 2000000);
    std::vector<Pixel> out;
    for (int y = 0; y < picture.height; y += stride) {
        const uint8_t *row = picture.Row(y);
        for (int x = 0; x < picture.width; ++x) {
            if (y >= top && x >= side && x < picture.width - side) x = picture.width - side;
            const uint8_t *p = row + std::ptrdiff_t{4} * x;
            out.push_back({p[2], p[1], p[0]});
        }
    }
    return out;
}

int32_t Quantile(std::vector<int32_t> &values, double at) {
    const auto n = static_cast<std::ptrdiff_t>(at * static_cast<double>(values.size() - 1));
    std::nth_element(values.begin(), values.begin() + n, values.end());
    return values[static_cast<std::size_t>(n)];
}

uint32_t Median(const std::vector<Pixel> &pixels) {
    std::array<std::vector<int32_t>, 3> channel;
    for (const Pixel &p : pixels) {
        channel[0].push_back(p.red);
        channel[1].push_back(p.green);
        channel[2].push_back(p.blue);
    }
    uint32_t colour = 0;
    for (auto &c : channel) colour = (colour << 8) | static_cast<uint32_t>(Quantile(c, 0.5));
    return colour;
}

int32_t ByteOf(int32_t value, int channel) { return (value >> (8 * channel)) & 255; }

uint32_t ColourOf(const Pixel &p) { return static_cast<uint32_t>((p.red << 16) | (p.green << 8) | p.blue); }

/// In each channel of the key's space: how far nine of ten screen pixels lie from the middle, with room for the rest.
std::array<int32_t, 3> SpreadOf(const std::vector<Pixel> &pixels, eCK_Type type, uint32_t middle) {
    const int32_t centre = KeyValue(type, middle);
    const std::array<int32_t, 3> least = SpreadTolerance(type, 14);
    const std::array<int32_t, 3> most = SpreadTolerance(type, 45);
    std::array<std::vector<int32_t>, 3> far;
    for (const Pixel &p : pixels) {
        const int32_t value = KeyValue(type, ColourOf(p));
        for (int c = 0; c < 3; ++c) far[static_cast<std::size_t>(c)].push_back(std::abs(ByteOf(value, c) - ByteOf(centre, c)));
    }
    std::array<int32_t, 3> out{};
    for (std::size_t c = 0; c < 3; ++c) out[c] = std::clamp(Quantile(far[c], 0.9) * 8 / 5 + 4, least[c], most[c]);
    return out;
}

}    // namespace

std::optional<ScreenGuess> GuessScreen(const ImageView &picture, eCK_Type type) {
    const std::vector<Pixel> border = BorderPixels(picture);
    std::vector<Pixel> green;
    std::vector<Pixel> blue;
    for (const Pixel &p : border) {
        if (p.green - std::max(p.red, p.blue) >= kLead) green.push_back(p);
        if (p.blue - std::max(p.red, p.green) >= kLead) blue.push_back(p);
    }
    const bool isGreen = green.size() >= blue.size();
    const std::vector<Pixel> &screen = isGreen ? green : blue;
    if (static_cast<double>(screen.size()) < kLeastShare * static_cast<double>(border.size()) || screen.empty()) return {};
    ScreenGuess guess;
    guess.name = isGreen ? "green" : "blue";
    guess.key.colour = Median(screen);
    guess.key.tolerance = SpreadOf(screen, type, guess.key.colour);
    guess.key.softness = kDefaultSoftness;
    return guess;
}

}    // namespace zkey
