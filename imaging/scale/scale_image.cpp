#include "imaging/scale/scale_image.h"

namespace zck {

PlaneArea ScaleImage::Whole(int32_t i) const {
    if (i == 0) return {0, 0, width, rows};
    return {0, 0, width / 2, Is420(kind) ? rows / 2 : rows};
}

void ScaleImage::SetPart(const tagRECT &rect) {
    const auto cut = [](int64_t a, int64_t b) { return static_cast<int32_t>(a / b); };
    for (int32_t i = 0; i < 3; ++i) {
        const int32_t x = i == 0 ? 1 : 2;
        const int32_t y = i > 0 && Is420(kind) ? 2 : 1;
        const int32_t left = cut(rect.left, x);
        const int32_t top = cut(rect.top, y);
        part[i] = {left, top, cut(rect.right, x) - left, cut(rect.bottom, y) - top};
    }
}

ScaleImage ScaleImageMake(const uint8_t *memory, const ImageLayout &layout) {
    ScaleImage image;
    image.kind = layout.kind;
    image.width = layout.width;
    image.rows = layout.rows;
    for (int32_t i = 0; i < 3; ++i) {
        // Whether it is written to is the business of the one who owns it.
        image.plane[i] = const_cast<uint8_t *>(memory) + layout.offset[i];
        image.step[i] = layout.step[i];
        image.part[i] = image.Whole(i);
    }
    return image;
}

ScaleImage SplitField(const ScaleImage &image, int32_t parity) {
    ScaleImage field = image;
    field.rows = image.rows / 2;
    for (int32_t i = 0; i < 3; ++i) {
        field.plane[i] += parity * image.step[i];
        field.step[i] = 2 * image.step[i];
        field.part[i].top = image.part[i].top / 2;
        field.part[i].rows = image.part[i].rows / 2;
    }
    return field;
}

}    // namespace zck
