#include "platform/processor_description.h"
#include "zchromakey/com.h"

namespace zck {

bool ProcessorDescriptionMHz(uint32_t &mhz) noexcept {
    DWORD value = 0;
    DWORD size = sizeof(value);
    const LSTATUS result = RegGetValueW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DESCRIPTION\\System\\CentralProcessor\\0", L"~MHz",
                                        RRF_RT_REG_DWORD, nullptr, &value, &size);
    if (result != ERROR_SUCCESS || value == 0) return false;
    mhz = value;
    return true;
}

}    // namespace zck
