#include "imaging/scale/scale_image.h"

namespace zck {

PlaneArea PlaneSize(const ScaleImage &image, int32_t plane) {
    if (plane == 0) return {0, 0, image.width, image.rows};
    return {0, 0, image.width / 2, Is420(image.kind) ? image.rows / 2 : image.rows};
}

PlaneArea PlaneRect(const ScaleImage &image, int32_t plane) {
    const auto [left, top, right, bottom] = image.rect;
    const int32_t x = plane == 0 ? 1 : 2;
    const int32_t y = plane == 0 || !Is420(image.kind) ? 1 : 2;
    const auto cut = [](int64_t a, int64_t b) { return static_cast<int32_t>(a / b); };
    return {cut(left, x), cut(top, y), cut(right, x) - cut(left, x), cut(bottom, y) - cut(top, y)};
}

ScaleImage ScaleImageMake(const uint8_t *memory, const ImageLayout &layout) {
    ScaleImage image;
    image.kind = layout.kind;
    image.width = layout.width;
    image.rows = layout.rows;
    image.rect = {0, 0, layout.width, layout.rows};
    for (int32_t i = 0; i < 3; ++i) {
        // Whether it is written to is the business of the one who owns it.
        image.plane[i] = const_cast<uint8_t *>(memory) + layout.offset[i];
        image.step[i] = layout.step[i];
    }
    return image;
}

ScaleImage SplitField(const ScaleImage &image, int32_t parity) {
    ScaleImage field = image;
    const auto height = (image.rect.bottom - image.rect.top) / 2;
    field.rows = image.rows / 2;
    field.rect.top = image.rect.top / 2;
    field.rect.bottom = field.rect.top + height;
    for (int32_t i = 0; i < 3; ++i) {
        field.plane[i] += parity * image.step[i];
        field.step[i] = 2 * image.step[i];
    }
    return field;
}

}    // namespace zck
