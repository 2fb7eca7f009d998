// Sound files: any bytes are read or refused, and appended to without losing what was read.
#include <filesystem>
#include <fstream>

#include "frames/audio/wav_file.h"
#include "frames/media/audio_props.h"
#include "fuzz/support/foreign_text.h"
#include "platform/status.h"

namespace zck {
namespace {

using Bytes = std::vector<uint8_t>;

const std::string &Path() {
    static const std::string s_path =
        (std::filesystem::temp_directory_path() / ("zck_fuzz_wav_" + std::to_string(reinterpret_cast<uintptr_t>(&s_path))))
            .string();
    return s_path;
}

struct Sound {
    HRESULT status = S_OK;
    Z_AUD_PROPS props = {};
    Bytes bytes;
};

Sound Load() {
    Sound sound;
    CBLOBHolder<CHeapAlloc> block;
    const Z_AUD_PROPS none = {};
    sound.status = WavLoad(TextFromUtf8(Path()), 0, INT32_MAX, {none, nullptr, 0}, sound.props, block);
    if (block.Size() != 0) sound.bytes.assign(block.Data(), block.Data() + block.Size());
    return sound;
}

HRESULT Append(const Z_AUD_PROPS &props, Bytes bytes) {
    return WavSave(TextFromUtf8(Path()), true, {props, bytes.data(), static_cast<uint32_t>(bytes.size())});
}

bool StartsWith(const Bytes &bytes, const Bytes &start) {
    return bytes.size() >= start.size() && std::equal(start.begin(), start.end(), bytes.begin());
}

void Walk(const uint8_t *data, size_t size) {
    std::ofstream(Path(), std::ios::binary).write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    const Sound was = Load();
    fuzz::Require(was.status == S_OK || was.status == kVfwEInvalidMediaType || was.status == kErrorHandleEof,
                  "a file is read, refused or has no sound");
    fuzz::Require(was.bytes.size() <= size, "no more sound than the file has");
    if (was.status == S_OK) {
        fuzz::Require(AudioPropsValid(&was.props, true) && !was.bytes.empty(), "a record is whole");
        const Bytes more(static_cast<size_t>(AudioBytes(&was.props, 1)), 7);
        fuzz::Require(Append(was.props, more) == S_OK, "a file goes on");
        const Sound now = Load();
        fuzz::Require(now.status == S_OK && StartsWith(now.bytes, was.bytes), "sound that was there stays");
    } else {
        fuzz::Require(Append({1, 48000, 16, 0}, {1, 2}) == S_OK, "a file starts");
        const Sound now = Load();
        fuzz::Require(now.status == S_OK && now.bytes.size() >= 2, "a file that was started is read");
    }
    const uint64_t length = std::filesystem::file_size(Path());
    fuzz::Require(length <= size + 68 + 65536 * 2, "a file grows by what is appended");
    std::filesystem::remove(Path());
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk(data, size);
    return 0;
}
