#include "frames/audio/sample_form.h"

#include "frames/media/audio_props.h"

namespace zck {

StoredForm StoredFormOf(int32_t bits) noexcept {
    if (bits >= -32 && bits <= -25) return StoredForm::Float32;
    if (bits < 9 || bits > 32) return StoredForm::None;
    if (bits <= 16) return StoredForm::Int16;
    return bits <= 24 ? StoredForm::Int24 : StoredForm::Int32;
}

WorkForm WorkFormOf(int32_t bits) noexcept {
    switch (StoredFormOf(bits)) {
        case StoredForm::None:
            return WorkForm::None;
        case StoredForm::Int16:
            return WorkForm::Int16;
        default:
            return WorkForm::Float32;
    }
}

int32_t StoredBytes(StoredForm form) noexcept {
    switch (form) {
        case StoredForm::None:
            return 0;
        case StoredForm::Int16:
            return 2;
        case StoredForm::Int24:
            return 3;
        default:
            return 4;
    }
}

int32_t WorkBytes(WorkForm form) noexcept {
    if (form == WorkForm::None) return 0;
    return form == WorkForm::Int16 ? 2 : 4;
}

int64_t AudioBytesChecked(const Z_AUD_PROPS &props, int64_t samples) noexcept {
    if (!AudioPropsValid(&props, true)) return 0;
    const int64_t width = AudioSampleBytes(props.nBitsPerSample);
    if (samples < 0 || samples > kAudioBytesMax / width / props.nChannels) return -1;
    return samples * width * props.nChannels;
}

}    // namespace zck
