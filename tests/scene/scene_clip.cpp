// Writes the scene as a YUV4MPEG2 clip of 4:2:0 pictures, as cameras record them, and its known matte as a second one:
//   scene_clip CLIP.y4m MATTE.y4m [WIDTHxHEIGHT [FRAMES [green|blue]]]
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "tests/scene/scene.h"

namespace {

struct Matrix {
    double kr, kb;
};

uint8_t Sample(double v) { return static_cast<uint8_t>(std::clamp(v + 0.5, 0.0, 255.0)); }

/// The planes Y, Cb, Cr; a chroma sample is the mean of its four pixels' colours.
std::vector<uint8_t> Planes(const zck::ScenePicture &picture, int width, int height, const Matrix &m) {
    const int half = (width + 1) / 2;
    const int rows = (height + 1) / 2;
    const auto luma = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    const auto chroma = static_cast<std::size_t>(half) * static_cast<std::size_t>(rows);
    std::vector<uint8_t> out(luma + 2 * chroma);
    const auto at = [&](int x, int y) {
        return &picture.pixels[(static_cast<std::size_t>(std::min(y, height - 1)) * static_cast<std::size_t>(width) +
                                static_cast<std::size_t>(std::min(x, width - 1))) *
                               4];
    };
    const auto bright = [&](double b, double g, double r) { return m.kr * r + (1 - m.kr - m.kb) * g + m.kb * b; };
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const uint8_t *p = at(x, y);
            out[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)] =
                Sample(16 + bright(p[0], p[1], p[2]) * 219 / 255);
        }
    }
    for (int y = 0; y < rows; ++y) {
        for (int x = 0; x < half; ++x) {
            double sum[3] = {0, 0, 0};
            for (int i = 0; i < 4; ++i) {
                for (int c = 0; c < 3; ++c) sum[c] += at(2 * x + i % 2, 2 * y + i / 2)[c] / 4.0;
            }
            const double l = bright(sum[0], sum[1], sum[2]);
            const std::size_t i =
                luma + static_cast<std::size_t>(y) * static_cast<std::size_t>(half) + static_cast<std::size_t>(x);
            out[i] = Sample(128 + (sum[0] - l) / (2 * (1 - m.kb)) * 224 / 255);
            out[i + chroma] = Sample(128 + (sum[2] - l) / (2 * (1 - m.kr)) * 224 / 255);
        }
    }
    return out;
}

std::FILE *Start(const char *path, const zck::SceneParams &p, const char *kind) {
    std::FILE *file = std::fopen(path, "wb");
    if (file == nullptr) {
        std::fprintf(stderr, "scene_clip: cannot write %s\n", path);
        std::exit(1);
    }
    std::fprintf(file, "YUV4MPEG2 W%d H%d F25:1 Ip A1:1 %s\n", p.width, p.height, kind);
    return file;
}

bool Frame(std::FILE *file, const std::vector<uint8_t> &bytes) {
    return std::fputs("FRAME\n", file) >= 0 && std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
}

}    // namespace

int main(int argc, char **argv) {
    zck::SceneParams params;
    if (argc > 3 && std::sscanf(argv[3], "%dx%d", &params.width, &params.height) != 2) params.width = 0;
    if (argc > 4) params.frames = std::atoi(argv[4]);
    if (argc > 5 && std::string(argv[5]) == "blue") params.screen = zck::SceneScreen::Blue;
    if (argc < 3 || argc > 6 || params.width < 1 || params.height < 1 || params.frames < 1) {
        std::fputs("usage: scene_clip CLIP.y4m MATTE.y4m [WIDTHxHEIGHT [FRAMES [green|blue]]]\n", stderr);
        return 2;
    }
    const bool high = params.width >= 1280 || params.height > 576;
    const Matrix matrix = high ? Matrix{0.2126, 0.0722} : Matrix{0.299, 0.114};
    std::FILE *clip = Start(argv[1], params, "C420jpeg XCOLORRANGE=LIMITED");
    std::FILE *matte = Start(argv[2], params, "Cmono XCOLORRANGE=FULL");
    const int workers = std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    bool good = true;
    for (int first = 0; first < params.frames && good; first += workers) {
        std::vector<zck::ScenePicture> pictures(static_cast<std::size_t>(std::min(workers, params.frames - first)));
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < pictures.size(); ++i) {
            threads.emplace_back([&, i] { pictures[i] = zck::RenderScene(params, first + static_cast<int>(i)); });
        }
        for (std::thread &t : threads) t.join();
        for (const zck::ScenePicture &p : pictures) {
            good = good && Frame(clip, Planes(p, params.width, params.height, matrix)) && Frame(matte, p.alpha);
        }
    }
    good = std::fclose(clip) == 0 && good;
    good = std::fclose(matte) == 0 && good;
    if (!good) std::fputs("scene_clip: cannot write the clip\n", stderr);
    return good ? 0 : 1;
}
