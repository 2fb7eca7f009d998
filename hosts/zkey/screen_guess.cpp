#include "hosts/zkey/screen_guess.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

namespace zkey {
namespace {

struct Pixel {
    int32_t red, green, blue;
};

// A colour counts as green or blue when that channel leads by this much: more than noise and walls do.
constexpr int32_t kLead = 20;
// The part of the border that has to show the screen.
constexpr double kLeastShare = 0.10;
// How much neighbours on the screen differ at most.
constexpr int32_t kStep = 14;
// A part spans about this much brightness.
constexpr int32_t kPartWidth = 32;
constexpr int kMostParts = 3;
constexpr int32_t kLeastTolerance = 12;
constexpr int32_t kMostTolerance = 40;
constexpr int32_t kLeastSoftness = 8;
constexpr int32_t kMostSoftness = 60;
constexpr int32_t kLeastFigureSoftness = 24;
// The part of the figure that may stay translucent.
constexpr double kFigureShare = 0.05;
// As many points of the grid lie between the screen and what is surely figure.
constexpr int kEdge = 3;
// How far a colour of the screen lies from the others at most: in hue (1/255 of the circle), and as a part of their purity.
constexpr double kTintHue = 18;
constexpr double kTintPurity = 0.52;
// What does not fill so much of the border is a screen only with such a lead.
constexpr double kFullShare = 0.75;
constexpr int32_t kStrongLead = 60;
constexpr double kLeastSmoothness = 0.75;
constexpr double kGreyShare = 0.85;

/// The picture seen through a coarse grid of single pixels: enough to find the screen, and quick.
struct Grid {
    int width = 0;
    int height = 0;
    std::vector<Pixel> pixels;

    explicit Grid(const ImageView &picture) {
        const int stride = std::max(1, std::max(picture.width, picture.height) / 320);
        width = (picture.width + stride - 1) / stride;
        height = (picture.height + stride - 1) / stride;
        for (int y = 0; y < height; ++y) {
            const uint8_t *row = picture.Row(y * stride);
            for (int x = 0; x < width; ++x) {
                const uint8_t *p = row + std::ptrdiff_t{4} * x * stride;
                pixels.push_back({p[2], p[1], p[0]});
            }
        }
    }
    /// Left, right and upper border; the figure often stands on the lower one.
    bool OnBorder(int x, int y) const {
        const int side = std::max(1, width / 14);
        return x < side || x >= width - side || y < std::max(1, height / 14);
    }
    std::size_t At(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
    }
};

/// How much the channel stands above the mean of the two others; nothing where one of them is above it.
int32_t LeadOf(int32_t channel, int32_t a, int32_t b) { return channel + 2 < std::max(a, b) ? 0 : channel - (a + b) / 2; }
int32_t GreenLead(const Pixel &p) { return LeadOf(p.green, p.red, p.blue); }
int32_t BlueLead(const Pixel &p) { return LeadOf(p.blue, p.red, p.green); }
using Lead = int32_t (*)(const Pixel &);

bool IsNext(const Pixel &a, const Pixel &b) {
    return std::abs(a.red - b.red) <= kStep && std::abs(a.green - b.green) <= kStep && std::abs(a.blue - b.blue) <= kStep;
}

/// What stands at the border of all pictures: how many pixels, and by how much those lead that are green or blue.
struct Border {
    std::size_t pixels = 0;
    std::vector<int32_t> green;
    std::vector<int32_t> blue;
};

Border BorderOf(const std::vector<Grid> &grids) {
    Border border;
    for (const Grid &grid : grids) {
        for (int y = 0; y < grid.height; ++y) {
            for (int x = 0; x < grid.width; ++x) {
                if (!grid.OnBorder(x, y)) continue;
                ++border.pixels;
                const Pixel &p = grid.pixels[grid.At(x, y)];
                if (GreenLead(p) >= kLead) border.green.push_back(GreenLead(p));
                if (BlueLead(p) >= kLead) border.blue.push_back(BlueLead(p));
            }
        }
    }
    return border;
}

/// The colours of the screen, and those of what stands before it, without its edge.
struct Finding {
    std::vector<Pixel> screen;
    std::vector<Pixel> figure;
};

/// From the border inwards, as long as the colour changes gently and stays clearly coloured: so the light in the middle
/// of a screen is found, and the figure is not.
void GrowFromBorder(const Grid &grid, Lead lead, int32_t least, Finding &found) {
    std::vector<bool> taken(grid.pixels.size());
    std::vector<std::pair<int, int>> open;
    const auto take = [&](int x, int y) {
        if (taken[grid.At(x, y)] || lead(grid.pixels[grid.At(x, y)]) < least) return;
        taken[grid.At(x, y)] = true;
        open.emplace_back(x, y);
    };
    for (int y = 0; y < grid.height; ++y) {
        for (int x = 0; x < grid.width; ++x) {
            if (grid.OnBorder(x, y)) take(x, y);
        }
    }
    while (!open.empty()) {
        const auto [x, y] = open.back();
        open.pop_back();
        const Pixel &here = grid.pixels[grid.At(x, y)];
        found.screen.push_back(here);
        for (const auto &[dx, dy] : {std::pair{1, 0}, {-1, 0}, {0, 1}, {0, -1}}) {
            const int nx = x + dx;
            const int ny = y + dy;
            if (nx < 0 || ny < 0 || nx >= grid.width || ny >= grid.height) continue;
            if (IsNext(here, grid.pixels[grid.At(nx, ny)])) take(nx, ny);
        }
    }
    for (int y = kEdge; y + kEdge < grid.height; ++y) {
        for (int x = kEdge; x + kEdge < grid.width; ++x) {
            const Pixel &p = grid.pixels[grid.At(x, y)];
            if (lead(p) < least && !taken[grid.At(x, y)] && !taken[grid.At(x - kEdge, y)] && !taken[grid.At(x + kEdge, y)] &&
                !taken[grid.At(x, y - kEdge)] && !taken[grid.At(x, y + kEdge)]) {
                found.figure.push_back(p);
            }
        }
    }
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

/// In each channel of the key's space: how far most of the pixels lie from the middle, with room for the rest.
std::array<int32_t, 3> SpreadOf(const std::vector<Pixel> &pixels, eCK_Type type, uint32_t middle) {
    const int32_t centre = KeyValue(type, middle);
    const std::array<int32_t, 3> least = SpreadTolerance(type, kLeastTolerance);
    const std::array<int32_t, 3> most = SpreadTolerance(type, kMostTolerance);
    std::array<std::vector<int32_t>, 3> spread;
    for (const Pixel &p : pixels) {
        const int32_t value = KeyValue(type, ColourOf(p));
        for (int c = 0; c < 3; ++c)
            spread[static_cast<std::size_t>(c)].push_back(std::abs(ByteOf(value, c) - ByteOf(centre, c)));
    }
    std::array<int32_t, 3> out{};
    for (std::size_t c = 0; c < 3; ++c) out[c] = std::clamp(Quantile(spread[c], 0.95) * 8 / 5 + 4, least[c], most[c]);
    return out;
}

int32_t Brightness(const Pixel &p) { return (2 * p.red + 5 * p.green + p.blue) / 8; }

/// In steps of 1/255 of the circle.
int32_t Hue(const Pixel &p) { return ByteOf(KeyValue(eCKT_HLS, ColourOf(p)), 0); }
/// How much of the screen's channel is lead, in percent.
int32_t Purity(const Pixel &p, Lead lead) { return 100 * lead(p) / std::max({p.red, p.green, p.blue, 1}); }

using Distance = std::array<double, 3>;

/// Where grey lies, seen from a colour, with some distance to spare: a figure has colours closest grey.
Distance GreyFrom(eCK_Type type, uint32_t colour) {
    const auto channel = [&](int shift) { return static_cast<int32_t>((colour >> shift) & 255); };
    const auto grey = static_cast<uint32_t>(Brightness({channel(16), channel(8), channel(0)}));
    const int32_t centre = KeyValue(type, colour);
    const int32_t neutral = KeyValue(type, grey * 0x010101U);
    Distance distance{};
    for (int c = 0; c < 3; ++c) {
        distance[static_cast<std::size_t>(c)] = kGreyShare * std::abs(ByteOf(neutral, c) - ByteOf(centre, c));
    }
    if (type == eCKT_HLS) distance[0] = 0;    // grey has no hue
    return distance;
}

/// The squared distance in an ellipsoid whose half-axes are the tolerances; 1 is its surface.
double Reach(const Distance &distance, const std::array<int32_t, 3> &tolerance) {
    double sum = 0;
    for (std::size_t c = 0; c < 3; ++c) sum += std::pow(distance[c] / tolerance[c], 2);
    return sum;
}

/// The engine's ramp ends where the squares, each by its tolerance, reach the mean of the widened ones.
double NeededReach(const std::array<int32_t, 3> &tolerance, int32_t softness) {
    double needed = 0;
    for (std::size_t c = 0; c < 3; ++c) needed += std::pow(static_cast<double>(tolerance[c] + softness) / tolerance[c], 2) / 3;
    return needed;
}

/// The widest passage at whose end nearly all of the figure is solid. A figure may have colours of the screen, so it does
/// not make the edge a hard one.
int32_t SoftnessForFigure(eCK_Type type, const ScreenKey &key, const std::vector<Pixel> &figure, int32_t most) {
    if (figure.empty()) return most;
    const int32_t centre = KeyValue(type, key.colour);
    std::vector<int32_t> reach;
    reach.reserve(figure.size());
    for (const Pixel &p : figure) {
        const int32_t value = KeyValue(type, ColourOf(p));
        Distance distance{};
        for (int c = 0; c < 3; ++c) distance[static_cast<std::size_t>(c)] = std::abs(ByteOf(value, c) - ByteOf(centre, c));
        reach.push_back(static_cast<int32_t>(std::min(Reach(distance, key.tolerance) * 64, 1e6)));
    }
    const double closest = Quantile(reach, kFigureShare) / 64.0;
    int32_t softness = most;
    while (softness > kLeastFigureSoftness && NeededReach(key.tolerance, softness) > closest) --softness;
    return softness;
}

/// A key for one part of the screen: a passage at whose end grey and the figure are solid.
ScreenKey KeyFor(eCK_Type type, const std::vector<Pixel> &part, const std::vector<Pixel> &figure) {
    ScreenKey key;
    key.colour = Median(part);
    key.tolerance = SpreadOf(part, type, key.colour);
    const Distance grey = GreyFrom(type, key.colour);
    key.softness = kMostSoftness;
    while (key.softness > kLeastSoftness && NeededReach(key.tolerance, key.softness) > Reach(grey, key.tolerance))
        --key.softness;
    key.softness = std::min(key.softness, SoftnessForFigure(type, key, figure, kMostSoftness));
    return key;
}

/// Parts of equal width in brightness, without the few pixels that are far off.
std::vector<std::vector<Pixel>> PartsOf(const std::vector<Pixel> &screen) {
    std::vector<int32_t> brightness;
    brightness.reserve(screen.size());
    for (const Pixel &p : screen) brightness.push_back(Brightness(p));
    const int32_t dark = Quantile(brightness, 0.02);
    const int32_t bright = Quantile(brightness, 0.98);
    const int count = std::clamp((bright - dark) / kPartWidth + 1, 1, kMostParts);
    std::vector<std::vector<Pixel>> parts(static_cast<std::size_t>(count));
    for (const Pixel &p : screen) {
        const int32_t b = Brightness(p);
        if (b < dark || b > bright) continue;
        parts[static_cast<std::size_t>(std::min((b - dark) * count / (bright - dark + 1), count - 1))].push_back(p);
    }
    std::erase_if(parts, [](const auto &part) { return part.empty(); });
    return parts;
}

/// Lit hair and clothes closest the screen's hue are followed with it: what differs too much from the purest half goes.
std::vector<Pixel> OfOneTint(const std::vector<Pixel> &screen, Lead lead) {
    std::vector<int32_t> leads;
    leads.reserve(screen.size());
    for (const Pixel &p : screen) leads.push_back(lead(p));
    const int32_t pure = Quantile(leads, 0.5);
    std::vector<int32_t> hues;
    std::vector<int32_t> purities;
    for (const Pixel &p : screen) {
        if (lead(p) < pure) continue;
        hues.push_back(Hue(p));
        purities.push_back(Purity(p, lead));
    }
    const double hue = Quantile(hues, 0.5);
    const double purity = Quantile(purities, 0.5);
    std::vector<Pixel> out;
    for (const Pixel &p : screen) {
        const double turned = (Hue(p) - hue) / kTintHue;
        const double paler = std::max(0.0, 1 - Purity(p, lead) / purity) / kTintPurity;
        if (turned * turned + paler * paler <= 1) out.push_back(p);
    }
    return out;
}

/// Of the pairs of neighbours that look like the screen: how many differ as little as neighbours on a screen do.
double Smoothness(const std::vector<Grid> &grids, Lead lead, int32_t least) {
    int64_t pairs = 0;
    int64_t smooth = 0;
    for (const Grid &grid : grids) {
        for (int y = 0; y < grid.height; ++y) {
            for (int x = 0; x + 1 < grid.width; ++x) {
                const Pixel &a = grid.pixels[grid.At(x, y)];
                const Pixel &b = grid.pixels[grid.At(x + 1, y)];
                if (lead(a) < least || lead(b) < least) continue;
                ++pairs;
                smooth += IsNext(a, b) ? 1 : 0;
            }
        }
    }
    return pairs == 0 ? 1 : static_cast<double>(smooth) / static_cast<double>(pairs);
}

/// Lawns and skies: a screen fills the border, or has a strong colour, and is smooth.
std::string DoubtOf(double share, int32_t lead, double smoothness) {
    if (smoothness < kLeastSmoothness) return "it is not smooth";
    if (share >= kFullShare || lead >= kStrongLead) return "";
    return "only " + std::to_string(static_cast<int>(share * 100 + 0.5)) + " % of it has a colour, and a dull one";
}

}    // namespace

std::optional<ScreenGuess> GuessScreen(const std::vector<ImageView> &pictures, eCK_Type type) {
    const std::vector<Grid> grids(pictures.begin(), pictures.end());
    const Border border = BorderOf(grids);
    const bool isGreen = border.green.size() >= border.blue.size();
    std::vector<int32_t> leads = isGreen ? border.green : border.blue;
    const double share = static_cast<double>(leads.size()) / static_cast<double>(border.pixels);
    if (share < kLeastShare) return {};
    const Lead lead = isGreen ? GreenLead : BlueLead;
    const int32_t least = std::max(kLead, Quantile(leads, 0.5) / 2);
    Finding found;
    for (const Grid &grid : grids) GrowFromBorder(grid, lead, least, found);
    if (found.screen.empty()) return {};
    found.screen = OfOneTint(found.screen, lead);
    ScreenGuess guess;
    guess.name = isGreen ? "green" : "blue";
    guess.doubt = DoubtOf(share, Quantile(leads, 0.5), Smoothness(grids, lead, least));
    for (const std::vector<Pixel> &part : PartsOf(found.screen)) guess.parts.push_back(KeyFor(type, part, found.figure));
    return guess;
}

}    // namespace zkey
