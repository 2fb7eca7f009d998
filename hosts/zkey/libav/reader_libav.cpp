#include "hosts/zkey/libav/clip.h"
#include "hosts/zkey/libav/frame_packer.h"

namespace zkey {
namespace {

eZInterlace ScanOf(const AVFrame &f) {
    if (f.interlaced_frame == 0) return eZI_Progressive;
    return f.top_field_first != 0 ? eZI_Field1First : eZI_Field2First;
}

class LibavReader : public MediaReader {
public:
    LibavReader(const std::string &path, bool audio) : m_clip(path, audio, "; raw frames need --raw FORMAT:WxH") {}

    const SourceInfo &Info() const override { return m_clip.Info(); }

    bool Next(Arrival &arrival) override {
        const AVFrame *frame = m_clip.Next();
        if (frame == nullptr) return false;
        arrival = {m_packer.Choose(*frame), ScanOf(*frame), m_clip.Time()};
        return true;
    }

    bool JumpTo(int64_t picture) override { return m_clip.JumpTo(picture); }

    int64_t Lost() const override { return m_clip.Lost(); }

    void TakeSound(Sound &sound) override { m_clip.TakeSound(sound); }

    void Store(uint8_t *pixels, const Z_VID_PROPS &props) override { m_packer.Store(pixels, props); }

private:
    Clip m_clip;
    FramePacker m_packer;
};

}    // namespace

std::unique_ptr<MediaReader> OpenLibavReader(const std::string &path, bool audio) {
    return std::make_unique<LibavReader>(path, audio);
}

std::string LibavText() {
    const unsigned v = avformat_version();
    return "with FFmpeg's libraries (libavformat " + std::to_string(AV_VERSION_MAJOR(v)) + "." +
           std::to_string(AV_VERSION_MINOR(v)) + ")";
}

}    // namespace zkey
