// Memory in the steady state: no fresh pages from the system frame by frame, and none over a long run.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cstdint>
#include <string>
#include <vector>

#include "zchromakey/zchromakey.h"

namespace zck {
namespace {

struct Setup {
    int32_t width;
    int32_t height;
    eZFCC fcc;
    int threads;
};

CHROMA_KEY_RAW Key() {
    CHROMA_KEY_RAW key = {};
    key.eType = eCKT_HLS;
    key.nKeysUsed = 1;
    key.arrKeys[0] = {0x00A06055, 0x00602818, 0, 0, 26, 76, 23, -19, -4, -4};
    key.bColorCancel = 1;
    key.nMinTransparent = 102;
    key.nMaxTransparent = 230;
    key.nEdgesSmooth = 3;
    return key;
}

int64_t MinorFaults() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_minflt;
}

/// A host that delivers frames of its own and lets go of each result before the next call.
class Host {
public:
    explicit Host(const Setup &setup) {
        IClassFactory *factory = nullptr;
        DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, reinterpret_cast<void **>(&factory));
        factory->CreateInstance(nullptr, IID_IZPlugin, reinterpret_cast<void **>(&m_plugin));
        factory->Release();
        ZFramesCreate(IID_IZFrames, reinterpret_cast<void **>(&m_frames));
        IZProps *props = nullptr;
        m_plugin->QueryInterface(IID_IZProps, reinterpret_cast<void **>(&props));
        Set(props, "output.thread", "false");
        Set(props, "process.threads", std::to_string(setup.threads));
        props->Release();
        IZChromaKey *keyer = nullptr;
        m_plugin->QueryInterface(IID_IZChromaKey, reinterpret_cast<void **>(&keyer));
        CHROMA_KEY_RAW key = Key();
        keyer->KeyRawSet(&key);
        keyer->Release();
        m_props.fccType = setup.fcc;
        m_props.nWidth = setup.width;
        m_props.nHeight = setup.fcc == eZFCC_ARGB32 ? -setup.height : setup.height;
        if (setup.fcc == eZFCC_I420) m_props.nRowBytes = setup.width;
        m_props.eInterlace = eZI_Progressive;
        m_pixels.resize(size_t{4} * static_cast<size_t>(setup.width) * static_cast<size_t>(setup.height), 90);
    }
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    ~Host() {
        m_plugin->Release();
        m_frames->Release();
    }

    /// The results that came.
    int Deliver(int frames) {
        int results = 0;
        for (int i = 0; i < frames; ++i) {
            IZFrame *in = nullptr;
            IZFrame *out = nullptr;
            m_frames->FrameCreateFromProps(&m_props, reinterpret_cast<int64_t>(m_pixels.data()), &in, nullptr);
            if (m_plugin->OnMediaReceive(0, nullptr, in, &out) == S_OK) ++results;
            if (out != nullptr) out->Release();
            if (in != nullptr) in->Release();
        }
        return results;
    }

private:
    static BSTR Text(const std::string &ascii) {
        BSTR text = SysAllocStringLen(nullptr, static_cast<uint32_t>(ascii.size()));
        for (size_t i = 0; i < ascii.size(); ++i) text[i] = static_cast<OLECHAR>(ascii[i]);
        return text;
    }

    static void Set(IZProps *props, const char *name, const std::string &value) {
        BSTR bsName = Text(name);
        BSTR bsValue = Text(value);
        props->PropsSet(bsName, bsValue);
        SysFreeString(bsName);
        SysFreeString(bsValue);
    }

    IZPlugin *m_plugin = nullptr;
    IZFrames *m_frames = nullptr;
    Z_VID_PROPS m_props = {};
    std::vector<uint8_t> m_pixels;
};

// Fresh pages for one frame cost more than all arithmetic on it.
TEST(Memory, AFrameTakesNoFreshPages) {
    for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_UYVY, eZFCC_I420, eZFCC_v210}) {
        for (const int threads : {1, 2}) {
            Host host({640, 360, fcc, threads});
            host.Deliver(30);
            const int64_t before = MinorFaults();
            EXPECT_EQ(host.Deliver(100), 100);
            EXPECT_LE(MinorFaults() - before, 16 * 100) << "format " << fcc << ", threads " << threads;
        }
    }
}

TEST(Memory, IsFlatOverManyFrames) {
    Host host({64, 36, eZFCC_UYVY, 1});
    host.Deliver(1000);
    const int64_t before = MinorFaults();
    EXPECT_EQ(host.Deliver(100000), 100000);
    // Whatever is left behind per frame, be it 16 bytes, needs some hundred pages by now.
    EXPECT_LE(MinorFaults() - before, 200);
}

}    // namespace
}    // namespace zck
