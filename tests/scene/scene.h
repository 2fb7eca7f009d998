// A green-screen scene with a known matte: a moving figure with hair, a soft edge and a motion-blurred arm before a screen
// that is unevenly lit and noisy. Tests, benches and the demo share it.
//
// The same parameters give the same picture, byte for byte, from every compiler and on every system.
#pragma once

#include <cstdint>
#include <vector>

namespace zck {

enum class SceneScreen { Green, Blue };

struct SceneParams {
    int width = 1280;    ///< pixels, 1 or more
    int height = 720;    ///< lines, 1 or more
    int frames = 50;     ///< length of one turn of the movement
    SceneScreen screen = SceneScreen::Green;
    double unevenness = 0.25;    ///< part of the screen's light that changes over the picture
    double noise = 2.0;          ///< standard deviation of the camera noise, in 8-bit steps
    uint32_t seed = 1;
};

/// One picture, top row first, without row padding.
struct ScenePicture {
    std::vector<uint8_t> pixels;    ///< 4 bytes each: blue, green, red, 255
    std::vector<uint8_t> alpha;     ///< the known matte: 0 screen, 255 figure
};

/// The picture number `index` (any number; the movement repeats after `frames`). Thread-safe.
ScenePicture RenderScene(const SceneParams &params, int index);

/// The screen's colour without light falloff and noise: 0x00RRGGBB.
uint32_t SceneScreenColour(SceneScreen screen);

}    // namespace zck
