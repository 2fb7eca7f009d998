#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "platform/processor_description.h"

namespace zck {

bool ProcessorDescriptionMHz(uint32_t &mhz) noexcept {
    const std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen("/proc/cpuinfo", "re"), std::fclose);
    if (file == nullptr) return false;
    char line[512];
    while (std::fgets(line, sizeof(line), file.get()) != nullptr) {
        const char *value = std::strchr(line, ':');
        if (std::strncmp(line, "cpu MHz", 7) != 0 || value == nullptr) continue;
        // Whole numbers only: the part behind the point is cut off, and the point does not depend on the locale.
        const auto whole = std::strtoull(value + 1, nullptr, 10);
        if (whole == 0 || whole > 0xFFFFFFFF) return false;
        mhz = static_cast<uint32_t>(whole);
        return true;
    }
    return false;
}

}    // namespace zck
