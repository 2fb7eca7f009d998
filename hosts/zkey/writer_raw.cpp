#include "hosts/zkey/media.h"
#include "hosts/zkey/pipe.h"

namespace zkey {
namespace {

/// Frames of 4 bytes a pixel, one after the other, without headers and padding.
class RawWriter : public MediaWriter {
public:
    explicit RawWriter(const std::string &path) : m_path(path), m_pipe(path) {}

    void Write(const ImageView &picture, int64_t) override {
        for (int y = 0; y < picture.height; ++y) m_pipe.Write(picture.Row(y), static_cast<std::size_t>(picture.width) * 4);
    }

    void Close() override { m_pipe.Close(); }

    std::string Unfinished() const override { return m_path; }

private:
    std::string m_path;
    PipeWriter m_pipe;
};

}    // namespace

std::unique_ptr<MediaWriter> OpenRawWriter(const Delivery &delivery) { return std::make_unique<RawWriter>(delivery.path); }

}    // namespace zkey
