// A decoded picture becomes a frame in the nearest format that the library takes without losing colour resolution.
#pragma once

#include "hosts/zkey/libav/clip.h"

namespace zkey {

class FramePacker {
public:
    /// Looks at a picture and says which format it will be handed over in. The picture has to stay until `Store`.
    eZFCC Choose(const AVFrame &frame);
    /// Writes the picture into a frame of that format.
    void Store(uint8_t *pixels, const Z_VID_PROPS &props);

private:
    enum class Route { Copy, SwapRedBlue, Samples, V210, HdycFrom10, Convert };
    struct Way {
        Route route;
        eZFCC fcc;
    };
    static Way WayOf(const AVFrame &frame);
    void Convert(uint8_t *to, int step);
    void CopyRows(uint8_t *to, std::ptrdiff_t step) const;
    void SwapRows(uint8_t *to, std::ptrdiff_t step) const;

    const AVFrame *m_frame = nullptr;
    Way m_way{Route::Convert, eZFCC_RGB32};
    Libav<SwsContext> m_scaler;
};

}    // namespace zkey
