#include "platform/palette.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>

namespace zck {
namespace {

constexpr size_t kColours = 256;
constexpr int kChannels = 3;
constexpr int kKeptBits = 5;    // of a channel, where colours are gathered
constexpr uint32_t kCells = 1U << (kChannels * kKeptBits);

uint32_t Channel(uint32_t colour, int channel) { return colour >> (8 * channel) & 0xFF; }

/// False when there are too many.
bool ExactColours(const std::vector<uint32_t> &pixels, PalettePicture &picture) {
    std::unordered_map<uint32_t, uint8_t> index;
    for (const uint32_t pixel : pixels) {
        const uint32_t colour = pixel & 0xFFFFFF;
        const auto [place, isNew] = index.try_emplace(colour, static_cast<uint8_t>(picture.colours.size()));
        if (isNew && picture.colours.size() == kColours) return false;
        if (isNew) picture.colours.push_back(colour);
        picture.indices.push_back(place->second);
    }
    return true;
}

/// Pixels whose colours agree in the kept bits.
struct Cell {
    uint32_t number = 0;
    uint64_t count = 0;
    uint64_t sum[kChannels] = {};

    uint32_t Side(int channel) const { return number >> (channel * kKeptBits) & ((1U << kKeptBits) - 1); }
};

uint32_t CellOf(uint32_t colour) {
    uint32_t number = 0;
    for (int c = 0; c < kChannels; ++c) number |= Channel(colour, c) >> (8 - kKeptBits) << (c * kKeptBits);
    return number;
}

std::vector<Cell> CellsOf(const std::vector<uint32_t> &pixels) {
    std::vector<Cell> cells(kCells);
    for (const uint32_t pixel : pixels) {
        Cell &cell = cells[CellOf(pixel)];
        ++cell.count;
        for (int c = 0; c < kChannels; ++c) cell.sum[c] += Channel(pixel, c);
    }
    for (uint32_t i = 0; i < kCells; ++i) cells[i].number = i;
    std::erase_if(cells, [](const Cell &cell) { return cell.count == 0; });
    return cells;
}

struct Box {
    std::vector<Cell> cells;
    uint64_t count = 0;

    explicit Box(std::vector<Cell> own) : cells(std::move(own)) {
        for (const Cell &cell : cells) count += cell.count;
    }
    uint64_t Weight() const { return cells.size() > 1 ? count : 0; }
    int LongestSide() const {
        int longest = 0;
        uint32_t length = 0;
        for (int c = 0; c < kChannels; ++c) {
            const auto [low, high] = std::minmax_element(cells.begin(), cells.end(),
                                                         [c](const Cell &a, const Cell &b) { return a.Side(c) < b.Side(c); });
            if (high->Side(c) - low->Side(c) > length) {
                length = high->Side(c) - low->Side(c);
                longest = c;
            }
        }
        return longest;
    }
    /// Leaves one half of the pixels here, at least a cell in each.
    Box Halve() {
        const int side = LongestSide();
        std::sort(cells.begin(), cells.end(), [side](const Cell &a, const Cell &b) {
            return a.Side(side) != b.Side(side) ? a.Side(side) < b.Side(side) : a.number < b.number;
        });
        uint64_t seen = cells[0].count;
        size_t cut = 1;
        while (cut + 1 < cells.size() && seen + cells[cut].count / 2 < count / 2) seen += cells[cut++].count;
        Box other(std::vector<Cell>(cells.begin() + static_cast<std::ptrdiff_t>(cut), cells.end()));
        cells.resize(cut);
        count -= other.count;
        return other;
    }
    uint32_t Mean() const {
        uint32_t mean = 0;
        for (int c = 0; c < kChannels; ++c) {
            uint64_t sum = 0;
            for (const Cell &cell : cells) sum += cell.sum[c];
            mean |= static_cast<uint32_t>((sum + count / 2) / count) << (8 * c);
        }
        return mean;
    }
};

std::vector<Box> BoxesOf(const std::vector<uint32_t> &pixels) {
    std::vector<Box> boxes;
    boxes.emplace_back(CellsOf(pixels));
    while (boxes.size() < kColours) {
        const auto heaviest =
            std::max_element(boxes.begin(), boxes.end(), [](const Box &a, const Box &b) { return a.Weight() < b.Weight(); });
        if (heaviest->Weight() == 0) break;
        boxes.push_back(heaviest->Halve());
    }
    return boxes;
}

}    // namespace

PalettePicture PaletteMake(const std::vector<uint32_t> &pixels) {
    PalettePicture picture;
    picture.indices.reserve(pixels.size());
    if (ExactColours(pixels, picture)) return picture;
    picture = {};
    std::vector<uint8_t> index(kCells);
    for (const Box &box : BoxesOf(pixels)) {
        for (const Cell &cell : box.cells) index[cell.number] = static_cast<uint8_t>(picture.colours.size());
        picture.colours.push_back(box.Mean());
    }
    picture.indices.reserve(pixels.size());
    std::transform(pixels.begin(), pixels.end(), std::back_inserter(picture.indices),
                   [&index](uint32_t pixel) { return index[CellOf(pixel)]; });
    return picture;
}

}    // namespace zck
