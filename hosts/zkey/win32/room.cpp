#include "hosts/zkey/room.h"

#include "zchromakey/com.h"

namespace zkey {

std::string WhyNoRoom(int64_t bytes) {
    constexpr int64_t kMega = 1 << 20;
    std::string left;
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    if (GlobalMemoryStatusEx(&status)) {
        left = "; the system can commit " + std::to_string(status.ullAvailPageFile / static_cast<uint64_t>(kMega)) + " MB more";
    }
    return "a frame needs " + std::to_string((bytes + kMega - 1) / kMega) + " MB" + left +
           ". End other programs, or make the page file larger";
}

}    // namespace zkey
