// The help texts.
#pragma once

#include <string>

namespace zkey {

std::string GeneralHelp();
std::string KeyHelp();
std::string DetectHelp();
std::string EditHelp();
std::string PropsHelp();
std::string FrameHelp();
std::string AudioHelp();
std::string VersionText();

}    // namespace zkey
