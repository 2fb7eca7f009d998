#include <memory>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/libav/clip.h"
#include "hosts/zkey/obstacles.h"

namespace zkey {
namespace {

/// Cuts the picture to the shape of width x height, around its middle.
void CropTo(AVFrame &frame, int width, int height) {
    const int64_t fitWidth = int64_t{frame.height} * width / height;
    const int64_t fitHeight = int64_t{frame.width} * height / width;
    if (fitWidth < frame.width) {
        const auto excess = static_cast<std::size_t>(frame.width - std::max<int64_t>(fitWidth, 1));
        frame.crop_left = excess / 2;
        frame.crop_right = excess - excess / 2;
    } else if (fitHeight < frame.height) {
        const auto excess = static_cast<std::size_t>(frame.height - std::max<int64_t>(fitHeight, 1));
        frame.crop_top = excess / 2;
        frame.crop_bottom = excess - excess / 2;
    }
    av_frame_apply_cropping(&frame, AV_FRAME_CROP_UNALIGNED);
}

/// A picture stands behind all frames; a clip runs along, one picture for each frame, and starts again at its end.
class FileBackground : public Background {
public:
    FileBackground(const std::string &path, int width, int height) : m_path(path), m_clip(std::make_unique<Clip>(path, false)) {
        m_image.Resize(width, height);
    }

    ImageView Next() override {
        if (m_shown && m_clip->Info().still) return m_image.View();
        AVFrame *frame = m_clip->Next();
        if (frame == nullptr && m_shown) {
            m_clip = std::make_unique<Clip>(m_path, false);
            frame = m_clip->Next();
        }
        if (frame == nullptr) Fail("--over " + m_path + ": it holds no picture");
        CropTo(*frame, m_image.width, m_image.height);
        ConvertPicture(*frame, AV_PIX_FMT_BGR0, m_image.width, m_image.height, m_image.Row(0), m_image.width * 4, m_scaler);
        m_shown = true;
        return m_image.View();
    }

private:
    std::string m_path;
    std::unique_ptr<Clip> m_clip;
    Libav<SwsContext> m_scaler;
    Image m_image;
    bool m_shown = false;
};

}    // namespace

std::unique_ptr<Background> OpenFileBackground(const std::string &path, int width, int height) {
    RequireFile(path);
    return std::make_unique<FileBackground>(path, width, height);
}

}    // namespace zkey
