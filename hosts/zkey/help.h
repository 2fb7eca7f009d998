// The help texts.
#pragma once

#include <string>

namespace zkey {

std::string GeneralHelp();
std::string KeyHelp();
std::string PropsHelp();
std::string VersionText();

}    // namespace zkey
