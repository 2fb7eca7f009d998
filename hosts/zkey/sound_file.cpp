#include "hosts/zkey/sound_file.h"

#include <cstdio>
#include <cstring>

#include "hosts/zkey/obstacles.h"
#include "hosts/zkey/system.h"
#include "hosts/zkey/text.h"
#include "zchromakey/statuses.h"

namespace zkey {
namespace {

bool StartsAsWav(const std::string &path) {
    char start[12] = {};
    std::FILE *file = OpenFile(path, "rb");
    if (file == nullptr) return false;
    const std::size_t got = std::fread(start, 1, sizeof start, file);
    std::fclose(file);
    return got == sizeof start && std::memcmp(start, "RIFF", 4) == 0 && std::memcmp(start + 8, "WAVE", 4) == 0;
}

}    // namespace

Ref<IZFrame> ReadSoundFile(const std::string &path) {
    if (path == "-" || IsFolder(path)) Fail("cannot read the sound of " + path + ": name a file");
    RequireFile(path);
    Ref<IZFrame> frame = EmptyFrame();
    if (StartsAsWav(path)) {
        const HRESULT status = WideView<IZFFrame>(frame.get())->ZFAudioFromFile(Counted(path).get(), 0, INT32_MAX);
        if (SUCCEEDED(status)) return frame;
        if (status == Z_E_HANDLE_EOF) Fail(path + " holds no sound");
        if (status == E_OUTOFMEMORY) Fail("the sound of " + path + " is too large: a frame has 2 GB at most");
        // A WAV file with compressed samples, or damaged.
        if (status != Z_E_INVALID_VIDEO_PROPS) Fail("cannot read " + path + ": " + StatusText(status));
    }
    GiveSound(frame.get(), DecodeSound(path));
    return frame;
}

}    // namespace zkey
