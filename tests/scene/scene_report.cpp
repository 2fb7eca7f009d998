// Compares a keyed matte with the known one, and lays pictures of one frame side by side:
//   scene_report KNOWN.y4m MATTE.y4m [SHEET.png CLIP.y4m OVER.y4m]
// It reads the clips as the host program reads them.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "hosts/zkey/failure.h"
#include "hosts/zkey/media.h"
#include "hosts/zkey/yuv_planes.h"

namespace {

using zkey::Image;

/// A clip read picture by picture, 4 bytes a pixel.
class Pictures {
public:
    explicit Pictures(const std::string &path) : m_reader(zkey::OpenY4mReader(path)) {}

    bool Next(Image &image) {
        zkey::Arrival arrival;
        if (!m_reader->Next(arrival)) return false;
        image.Resize(m_reader->Info().width, m_reader->Info().height);
        const Z_VID_PROPS props = zkey::DescribeFrame(arrival.fcc, image.width, image.height, eZI_Progressive, 25);
        if (arrival.fcc == eZFCC_RGB32) {
            m_reader->Store(image.bytes.data(), props);
        } else if (arrival.fcc == eZFCC_I420) {
            StorePlanes(image, props);
        } else {
            zkey::Fail("4:2:2 clips are not compared");
        }
        return true;
    }
    int64_t Count() const { return m_reader->Info().frames; }

private:
    /// Small clips of 4:2:0 arrive as they are, with the matrix of their size; their sizes are even.
    void StorePlanes(Image &image, const Z_VID_PROPS &props) {
        const std::ptrdiff_t row = props.nRowBytes;
        m_planes.resize(static_cast<std::size_t>(row * image.height * 3 / 2));
        m_reader->Store(m_planes.data(), props);
        const uint8_t *cb = m_planes.data() + row * image.height;
        const uint8_t *cr = cb + row / 2 * (image.height / 2);
        zkey::PlanesToRgb32({m_planes.data(), cb, cr, row, row / 2}, zkey::kBt601, image.width, image.height,
                            image.bytes.data(), std::ptrdiff_t{image.width} * 4);
    }

    std::unique_ptr<zkey::MediaReader> m_reader;
    std::vector<uint8_t> m_planes;
};

int Compare(const std::string &known, const std::string &matte) {
    Pictures a(known);
    Pictures b(matte);
    Image x;
    Image y;
    double sum = 0;
    double wrong = 0;
    double pixels = 0;
    while (a.Next(x)) {
        if (!b.Next(y) || x.bytes.size() != y.bytes.size()) zkey::Fail("the mattes differ in size or length");
        for (std::size_t i = 0; i < x.bytes.size(); i += 4) {
            const int off = std::abs(x.bytes[i] - y.bytes[i]);
            sum += off;
            wrong += off > 32 ? 1 : 0;
        }
        pixels += static_cast<double>(x.bytes.size() / 4);
    }
    if (pixels == 0) zkey::Fail("the clips hold no picture");
    std::printf("alpha error: %.2f of 255 on average; %.2f %% of the pixels are off by more than 32\n", sum / pixels,
                100 * wrong / pixels);
    return 0;
}

void Sheet(const std::string &path, const std::vector<std::string> &clips) {
    std::vector<Image> pictures;
    for (const std::string &clip : clips) {
        Pictures reader(clip);
        pictures.emplace_back();
        for (int64_t i = 0; i <= reader.Count() / 6; ++i) {
            if (!reader.Next(pictures.back())) break;
        }
    }
    const int width = pictures[0].width;
    Image sheet;
    sheet.Resize(width * static_cast<int>(pictures.size()), pictures[0].height);
    for (int y = 0; y < sheet.height; ++y) {
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            std::memcpy(sheet.Row(y) + static_cast<std::size_t>(width) * 4 * i, pictures[i].Row(y),
                        static_cast<std::size_t>(width) * 4);
        }
    }
    zkey::Delivery delivery;
    delivery.path = path;
    delivery.finish = zkey::Finish::Over;
    delivery.source.width = sheet.width;
    delivery.source.height = sheet.height;
    const auto writer = zkey::OpenWriter(delivery);
    writer->Write(sheet.View(), 0);
    writer->Close();
}

}    // namespace

int main(int argc, char **argv) {
    if (argc != 3 && argc != 6) {
        std::fputs("usage: scene_report KNOWN.y4m MATTE.y4m [SHEET.png CLIP.y4m OVER.y4m]\n", stderr);
        return 2;
    }
    try {
        if (argc == 6) Sheet(argv[3], {argv[4], argv[2], argv[5]});
        return Compare(argv[1], argv[2]);
    } catch (const zkey::Failure &failure) {
        std::fprintf(stderr, "scene_report: %s\n", failure.what());
        return 1;
    }
}
