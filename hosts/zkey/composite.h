// From the keyed frame, whose colour is premultiplied, to the picture that the user asked for. Rows of 4 bytes a pixel:
// blue, green, red, alpha.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zkey {

/// A picture in someone else's memory, top row first.
struct ImageView {
    const uint8_t *pixels = nullptr;
    std::ptrdiff_t step = 0;
    int width = 0;
    int height = 0;

    const uint8_t *Row(int y) const { return pixels + y * step; }
};

/// Strips of a picture, in pixels.
struct Borders {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

/// What lies inside of the borders; one pixel at least.
ImageView Inside(const ImageView &picture, const Borders &borders);

/// A picture of its own, rows without padding.
struct Image {
    std::vector<uint8_t> bytes;
    int width = 0;
    int height = 0;

    void Resize(int w, int h);
    uint8_t *Row(int y) { return bytes.data() + std::ptrdiff_t{y} * width * 4; }
    ImageView View() const { return {bytes.data(), std::ptrdiff_t{width} * 4, width, height}; }
};

/// What becomes of the keyed picture.
enum class Finish {
    Premultiplied,    ///< as it leaves the keyer
    Straight,         ///< colour not weighted by alpha, as most files keep it
    Matte,            ///< alpha as grey, opaque
    Over,             ///< composed over a background, opaque
};

void StraightRow(uint8_t *dst, const uint8_t *src, int width);
void MatteRow(uint8_t *dst, const uint8_t *src, int width);
void OverRow(uint8_t *dst, const uint8_t *src, const uint8_t *background, int width);

/// Writes the finished picture to `out`. `background` is read for `Finish::Over` only and has the size of `keyed`.
void FinishPicture(Finish finish, const ImageView &keyed, const ImageView &background, Image &out);

}    // namespace zkey
