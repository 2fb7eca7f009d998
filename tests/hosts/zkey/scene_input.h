// The green-screen scene at any size.
#pragma once

#include <string>

#include "tests/scene/scene.h"

inline std::string Size(int width, int height) { return std::to_string(width) + "x" + std::to_string(height); }

inline zck::ScenePicture Scene(int width, int height, int index = 0) {
    zck::SceneParams p;
    p.width = width;
    p.height = height;
    return zck::RenderScene(p, index);
}
