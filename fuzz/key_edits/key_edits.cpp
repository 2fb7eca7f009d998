// A sequence of edits of any bytes, on frames whose descriptions may be odd. Eight bytes make a frame (width, height, row
// padding, format, how many bytes are missing, colours); then each operation takes a byte for its kind and what it reads.
#include <cstring>
#include <vector>

#include "fuzz/support/foreign_text.h"
#include "keyobject/key_adjust.h"
#include "keyobject/key_value.h"
#include "platform/com_ptr.h"
#include "tests/keyobject/own_frame.h"

namespace zck {
namespace {

constexpr size_t kFrameBytes = 8;
constexpr int kMostEdits = 64;

class Source {
public:
    Source(const uint8_t *data, size_t size) : m_data(data), m_size(size) {}
    bool Empty() const { return m_size == 0; }
    uint8_t Byte() {
        if (m_size == 0) return 0;
        --m_size;
        return *m_data++;
    }
    template <class T>
    T Value() {
        uint8_t bytes[sizeof(T)];
        for (uint8_t &byte : bytes) byte = Byte();
        T value;
        std::memcpy(&value, bytes, sizeof(T));
        return value;
    }

private:
    const uint8_t *m_data;
    size_t m_size;
};

ComPtr<IZFrame> FrameOf(Source &source) {
    uint8_t header[kFrameBytes];
    for (uint8_t &byte : header) byte = source.Byte();
    constexpr eZFCC kFormats[] = {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_ARGB32, eZFCC_YUY2};
    test::OwnFrameState state;
    state.props.nWidth = header[0] % 41;
    const int32_t rows = header[1] % 25;
    state.props.nHeight = (header[3] & 4) != 0 ? rows : -rows;
    state.props.nRowBytes = 4 * state.props.nWidth + header[2] % 9 - 1 + ((header[3] & 8) != 0 ? 1 : 0);
    state.props.fccType = kFormats[header[3] & 3];
    state.props.eVideoFormat = static_cast<eZVideoFormat>(header[3] >> 4);
    const int64_t bytes = int64_t{rows} * state.props.nRowBytes - header[4] % 64;
    if (bytes > 0) state.bytes.resize(static_cast<size_t>(bytes));
    for (size_t i = 0; i < state.bytes.size(); ++i) {
        const bool noisy = (header[5] & 1) != 0;
        state.bytes[i] = static_cast<uint8_t>(noisy ? header[6] + i * i * header[7] : (i % 4 == 1 ? header[6] : header[7]));
    }
    return test::OwnFrame::Create(std::move(state));
}

std::string OptionsOf(Source &source) {
    constexpr const char *kWords[] = {"type=RGB",    "type=HLS",      "type=YUV",
                                      "max_keys=0",  "max_keys=3",    "max_keys=16",
                                      "max_keys=40", "force_point=1", "blocks=1",
                                      "blocks=4",    "blocks=39",     "blocks=2147483647",
                                      "blocks=-1",   "threshold=300", "threshold=-2",
                                      "key_diff=0",  "key_diff=7",    "show_blocks=0",
                                      "blocks=0",    "type=word",     "max_keys=-2147483648"};
    std::string options;
    for (int i = 0; i < 3; ++i) options += std::string(kWords[source.Byte() % std::size(kWords)]) + " ";
    return options;
}

/// The states as the object is told to keep them.
struct Model {
    struct State {
        CHROMA_KEY_RAW key;
        CK_ADJUST adjust;
        bool Same(const State &other) const {
            return std::memcmp(&key, &other.key, sizeof(key)) == 0 && std::memcmp(&adjust, &other.adjust, sizeof(adjust)) == 0;
        }
    };
    std::vector<State> states;
    int position = -1;

    void Save(const State &present) {
        if (position >= 0) states.resize(static_cast<size_t>(position));
        position = -1;
        states.push_back(present);
    }
    const State *Move(int by) {
        if (position < 0) position = static_cast<int>(states.size()) - 1;
        position = std::clamp(position + by, 0, static_cast<int>(states.size()) - 1);
        return &states[static_cast<size_t>(position)];
    }
};

class Session {
public:
    Session() { CreateObject<CCoZKeyValue>(nullptr, IID_IZKey, m_key.PutVoid()); }

    void Edit(Source &source) {
        const Model::State before = Now();
        m_out.Reset();
        HRESULT hr = S_OK;
        bool saved = true;
        switch (source.Byte() % 11) {
            case 0:
                hr = m_key->KeyFrameSet(FrameOf(source).get(), nullptr);
                saved = false;
                break;
            case 1:
                hr = m_key->KeyDetect(Bstr(TextFromUtf8(OptionsOf(source))).get(), m_out.Put());
                break;
            case 2: {
                const auto x = source.Value<int16_t>();
                const auto y = source.Value<int16_t>();
                hr = m_key->KeyAddPoint(x, y, Bstr(TextFromUtf8(OptionsOf(source))).get(), m_out.Put());
                break;
            }
            case 3: {
                const auto x = source.Byte();
                const auto y = source.Byte();
                hr = m_key->KeyExcludePoint(x, y, Bstr(TextFromUtf8(OptionsOf(source))).get(), m_out.Put());
                break;
            }
            case 4: {
                const auto what = static_cast<eCK_Adjust>(source.Byte() % 20);
                const double value = (source.Byte() & 1) != 0 ? source.Value<double>() : source.Value<int8_t>() / 32.0;
                hr = m_key->KeyAdjustSet(what, value, m_out.Put());
                saved = hr != kVfwEWrongState || Saved(before);
                break;
            }
            case 5:
                return Walk(m_key->KeyStepBack(1, m_out.Put()), before, -1);
            case 6:
                return Walk(m_key->KeyStepFwd(1, m_out.Put()), before, 1);
            case 7:
                hr = m_key->KeyReset(m_out.Put());
                break;
            case 8: {
                auto key = source.Value<CHROMA_KEY_RAW>();
                auto adjust = source.Value<CK_ADJUST>();
                hr = m_key->KeyRawSet(&key, &adjust);
                m_out = m_key.get();
                break;
            }
            case 9:
                hr = m_key->KeyAddRect(source.Byte(), source.Byte(), 5, 5, nullptr, m_out.Put());
                saved = false;
                break;
            default:
                fuzz::Require(m_key->KeyFrameGet(m_out.Put(), nullptr) == S_OK, "a look always succeeds");
                saved = false;
                break;
        }
        Check(hr, before, saved);
    }

private:
    Model::State Now() const {
        Model::State state;
        std::memset(&state, 0, sizeof(state));
        fuzz::Require(m_key->KeyRawGet(&state.key, &state.adjust) == S_OK, "the key can be read");
        fuzz::Require(state.key.nKeysUsed >= 0 && state.key.nKeysUsed <= 16, "entries are counted within the record");
        return state;
    }
    bool Saved(const Model::State &before) const { return !Now().Same(before); }

    // Statuses that an edit may answer before it has saved a step.
    static bool MayBeEarly(HRESULT hr) { return hr == E_INVALIDARG || hr == kVfwEWrongState || hr == kVfwEInvalidMediaType; }

    void Check(HRESULT hr, const Model::State &before, bool saved) {
        fuzz::Require(hr >= 0 || MayBeEarly(hr) || hr == StatusOf(0xFFFFFFFA), "a status out of the list");
        const bool early = MayBeEarly(hr);
        if (hr < 0) fuzz::Require(!m_out, "a failure gives no frame");
        if (!saved) fuzz::Require(Now().Same(before), "nothing but edits changes the key");
        // A refusal may have come before or after the step; only a walk could tell, so the session starts anew.
        if (early && saved) return Restart();
        if (saved) m_model.Save(before);
    }

    void Walk(HRESULT hr, const Model::State &before, int by) {
        if (by > 0 && m_model.position < 0) {
            fuzz::Require(hr == E_UNEXPECTED && Now().Same(before), "there is no step forward at the head");
            return;
        }
        if (m_model.states.empty()) {
            fuzz::Require(Now().Same(before), "there is no step back without a history");
            return;
        }
        fuzz::Require(Now().Same(*m_model.Move(by)), "a walk leads to the state that was saved");
    }

    void Restart() { *this = Session(); }

    ComPtr<IZKey> m_key;
    ComPtr<IUnknown> m_out;
    Model m_model;
};

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Source source(data, size);
    zck::Session session;
    for (int i = 0; i < zck::kMostEdits && !source.Empty(); ++i) session.Edit(source);
    return 0;
}
