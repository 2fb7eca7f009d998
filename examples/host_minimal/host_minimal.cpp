// The smallest host of the keyer: makes a picture, keys it, and looks at what comes back.
#include <zchromakey/zchromakey.h>

#include <cstdint>
#include <cstdio>
#include <vector>

namespace {

// The keyer, ready to take a green screen away.
HRESULT MakeKeyer(ZComPtr<IZPlugin> &plugin) {
    ZComPtr<IClassFactory> factory;
    HRESULT hr = DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, factory.PutVoid());
    if (FAILED(hr)) return hr;
    hr = factory->CreateInstance(nullptr, IID_IZPlugin, plugin.PutVoid());
    if (FAILED(hr)) return hr;

    // Each call shall return its own frame; by default a frame comes back one call later, keyed by another thread.
    ZComPtr<IZProps> props;
    hr = plugin->QueryInterface(IID_IZProps, props.PutVoid());
    if (FAILED(hr)) return hr;
    hr = props->PropsSet(ZBstr("output.thread").get(), ZBstr("false").get());
    if (FAILED(hr)) return hr;

    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_RGB;
    key.nKeysUsed = 1;
    key.arrKeys[0].nValue = 0x0020B030;    // blue 0x20, green 0xB0, red 0x30
    key.arrKeys[0].nDelta = 0x00303030;    // transparent within 48 steps of it in each channel,
    key.arrKeys[0].nSmoothRange = 32;      // opaque from 32 steps further on
    key.nMaxTransparent = 255;
    ZComPtr<IZChromaKey> chromaKey;
    hr = plugin->QueryInterface(IID_IZChromaKey, chromaKey.PutVoid());
    if (FAILED(hr)) return hr;
    return chromaKey->KeyRawSet(&key);
}

// A picture whose left half is green and whose right half is skin; bytes in memory are blue, green, red, unused.
HRESULT MakeFrame(int32_t width, int32_t height, ZComPtr<IZFrame> &frame) {
    std::vector<uint32_t> pixels;
    for (int32_t i = 0; i < width * height; ++i) pixels.push_back(i % width < width / 2 ? 0xFF30B020 : 0xFFE0A080);

    Z_VID_PROPS props = {};
    props.fccType = eZFCC_RGB32;
    props.nWidth = width;
    props.nHeight = -height;    // negative: the first row in memory is the top one
    props.nRowBytes = 4 * width;
    props.eInterlace = eZI_Progressive;
    props.dblRate = 25.0;

    ZComPtr<IZFrames> frames;
    const HRESULT hr = ZFramesCreate(IID_IZFrames, frames.PutVoid());
    if (FAILED(hr)) return hr;
    return frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(pixels.data()), frame.Put(), nullptr);
}

}    // namespace

int main() {
    ZComPtr<IZPlugin> plugin;
    ZComPtr<IZFrame> frame;
    ZComPtr<IZFrame> keyed;
    HRESULT hr = MakeKeyer(plugin);
    if (SUCCEEDED(hr)) hr = MakeFrame(64, 32, frame);
    if (SUCCEEDED(hr)) hr = plugin->OnMediaReceive(0, nullptr, frame.get(), keyed.Put());
    if (hr != S_OK || keyed.get() == nullptr) {
        std::printf("no frame: status %08X\n", static_cast<unsigned>(hr));
        return 1;
    }

    // The result is premultiplied: blue, green, red, alpha.
    int32_t size = 0;
    int64_t address = 0;
    keyed->FrameVideoGetBytes(&size, &address);
    const auto *pixels = reinterpret_cast<const uint8_t *>(address);
    const int left = pixels[4 * 8 + 3];
    const int right = pixels[4 * 56 + 3];
    std::printf("alpha on the screen %d, alpha on the subject %d\n", left, right);
    return left == 0 && right == 255 ? 0 : 1;
}
