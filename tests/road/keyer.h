// The plug-in behind the library's door, as the tests of this folder use it.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "zchromakey/zchromakey.h"

namespace zck {

/// A counted string of plain characters.
class Word {
public:
    explicit Word(const std::string &ascii) : m_text(SysAllocStringLen(nullptr, static_cast<uint32_t>(ascii.size()))) {
        for (std::size_t i = 0; i < ascii.size(); ++i) m_text[i] = static_cast<OLECHAR>(ascii[i]);
    }
    Word(const Word &) = delete;
    Word &operator=(const Word &) = delete;
    ~Word() { SysFreeString(m_text); }
    BSTR get() const { return m_text; }

private:
    BSTR m_text;
};

/// One keyer in synchronous mode.
class Keyer {
public:
    Keyer() {
        IClassFactory *factory = nullptr;
        EXPECT_EQ(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, reinterpret_cast<void **>(&factory)), S_OK);
        EXPECT_EQ(factory->CreateInstance(nullptr, IID_IZPlugin, reinterpret_cast<void **>(&m_plugin)), S_OK);
        factory->Release();
        Query(IID_IZChromaKey, &m_key);
        Query(IID_IZProps, &m_props);
        Query(IID_IZPersist, &m_persist);
        EXPECT_EQ(ZFramesCreate(IID_IZFrames, reinterpret_cast<void **>(&m_frames)), S_OK);
        Set("output.thread", "false");
    }
    Keyer(const Keyer &) = delete;
    Keyer &operator=(const Keyer &) = delete;
    ~Keyer() {
        m_frames->Release();
        m_persist->Release();
        m_props->Release();
        m_key->Release();
        m_plugin->Release();
    }

    void Set(const char *name, const std::string &value) {
        EXPECT_EQ(m_props->PropsSet(Word(name).get(), Word(value).get()), S_OK);
    }

    void KeySet(CHROMA_KEY_RAW key) { EXPECT_EQ(m_key->KeyRawSet(&key), S_OK); }

    /// The key of a file, which has become the keyer's.
    CHROMA_KEY_RAW KeyLoad(const std::string &path) {
        EXPECT_EQ(m_persist->PersistLoad(nullptr, Word(path).get(), nullptr), S_OK) << path;
        CHROMA_KEY_RAW key = {};
        EXPECT_EQ(m_key->KeyRawGet(&key), S_OK);
        return key;
    }

    /// Hands one frame over. The bytes of the frame that comes out; none when none came.
    HRESULT Run(Z_VID_PROPS props, const std::vector<uint8_t> &pixels, std::vector<uint8_t> *result) {
        result->clear();
        IZFrame *in = nullptr;
        EXPECT_EQ(m_frames->FrameCreateFromProps(&props, reinterpret_cast<int64_t>(pixels.data()), &in, nullptr), S_OK);
        if (in == nullptr) return E_FAIL;
        IZFrame *out = nullptr;
        const HRESULT hr = m_plugin->OnMediaReceive(0, nullptr, in, &out);
        in->Release();
        if (out == nullptr) return hr;
        Z_AV_PROPS made = {};
        EXPECT_EQ(out->FrameAVPropsGet(&made), S_OK);
        EXPECT_EQ(made.vidProps.fccType, eZFCC_ARGB32);
        int32_t bytes = 0;
        int64_t address = 0;
        EXPECT_EQ(out->FrameVideoGetBytes(&bytes, &address), S_OK);
        const auto *data = reinterpret_cast<const uint8_t *>(address);
        result->assign(data, data + bytes);
        out->Release();
        return hr;
    }

private:
    template <class T>
    void Query(REFIID riid, T **out) {
        EXPECT_EQ(m_plugin->QueryInterface(riid, reinterpret_cast<void **>(out)), S_OK);
    }

    IZPlugin *m_plugin = nullptr;
    IZChromaKey *m_key = nullptr;
    IZProps *m_props = nullptr;
    IZPersist *m_persist = nullptr;
    IZFrames *m_frames = nullptr;
};

}    // namespace zck
