#include "hosts/zkey/media.h"

namespace zkey {
namespace {

/// One picture behind every frame.
class FixedBackground : public Background {
public:
    template <class ColourAt>
    FixedBackground(int width, int height, ColourAt colourAt) {
        m_image.Resize(width, height);
        for (int y = 0; y < height; ++y) {
            uint8_t *row = m_image.Row(y);
            for (int x = 0; x < width; ++x) {
                const uint32_t c = colourAt(x, y);
                row[4 * x] = static_cast<uint8_t>(c);
                row[4 * x + 1] = static_cast<uint8_t>(c >> 8);
                row[4 * x + 2] = static_cast<uint8_t>(c >> 16);
                row[4 * x + 3] = 255;
            }
        }
    }
    ImageView At(double /*seconds*/) override { return m_image.View(); }

private:
    Image m_image;
};

}    // namespace

std::unique_ptr<Background> OpenPlainBackground(uint32_t colour, int width, int height) {
    return std::make_unique<FixedBackground>(width, height, [=](int, int) { return colour; });
}

std::unique_ptr<Background> OpenCheckerBackground(int width, int height) {
    constexpr int kCell = 20;
    return std::make_unique<FixedBackground>(
        width, height, [](int x, int y) { return (x / kCell + y / kCell) % 2 == 0 ? 0xC8C8C8U : 0x505050U; });
}

}    // namespace zkey
