#include <memory>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/libav/clip.h"
#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/plugin_door.h"

namespace zkey {
namespace {

/// A picture stands behind all frames; a clip runs along in its own time, and starts again at its end. What is too wide or too
/// high is cut off.
class FileBackground : public Background {
public:
    FileBackground(const std::string &path, int width, int height, Keyer &keyer)
        : m_path(path), m_keyer(keyer), m_width(width), m_height(height), m_clip(std::make_unique<Clip>(path, false)) {
        ShapeOptions wish;
        wish.size = {width, height};
        wish.fit = ParseFit("crop");
        const SourceInfo &info = m_clip->Info();
        const PictureSize size{info.width, info.height};
        m_shape = PlanShape(wish, size, size, info.pixelAspect, TurnOfDisplay(info.displayMatrix).value_or(Turn{}));
    }

    ImageView At(double seconds) override {
        AVFrame *due = nullptr;
        // A microsecond early is in time: both clocks are rounded.
        while (!m_picture || (!m_clip->Info().still && m_end <= seconds + 1e-6)) {
            due = Fetch();
            m_end = m_begin + static_cast<double>(m_clip->PictureEnd()) * m_clip->Info().timeBase.Value();
            if (!m_picture || m_end > seconds + 1e-6) Take(*due);
        }
        return Keyer::View(m_picture.get(), m_width, m_height);
    }

private:
    AVFrame *Fetch() {
        AVFrame *frame = m_clip->Next();
        if (frame == nullptr && m_picture) {
            m_begin = m_end;
            m_clip = std::make_unique<Clip>(m_path, false);
            frame = m_clip->Next();
        }
        if (frame == nullptr) Fail("--over " + m_path + ": it holds no picture");
        return frame;
    }

    void Take(const AVFrame &frame) {
        const SourceInfo &info = m_clip->Info();
        const Z_VID_PROPS props = DescribeFrame(eZFCC_RGB32, info.width, info.height, eZI_Progressive, info.rate.Value());
        uint8_t *pixels = nullptr;
        Ref<IZFrame> picture = m_keyer.NewFrame(props, pixels);
        ConvertPicture(frame, AV_PIX_FMT_BGR0, info.width, info.height, pixels, props.nRowBytes, m_scaler);
        m_picture = Keyer::Reshape(std::move(picture), m_shape);
    }

    std::string m_path;
    Keyer &m_keyer;
    int m_width;
    int m_height;
    std::unique_ptr<Clip> m_clip;
    Shape m_shape;
    Libav<SwsContext> m_scaler;
    Ref<IZFrame> m_picture;
    double m_begin = 0;    ///< of this round of the clip, in seconds
    double m_end = 0;      ///< of the picture
};

}    // namespace

std::unique_ptr<Background> OpenFileBackground(const std::string &path, int width, int height, Keyer &keyer) {
    RequireFile(path);
    return std::make_unique<FileBackground>(path, width, height, keyer);
}

}    // namespace zkey
