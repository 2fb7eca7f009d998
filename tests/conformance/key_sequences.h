// Random edits made on a key object and on its model, and looks at everything that can be seen of both.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <memory>
#include <sstream>

#include "keyobject/key_value.h"
#include "tests/conformance/dice.h"
#include "tests/conformance/foreign_frame.h"
#include "tests/conformance/frame_fixture.h"
#include "tests/conformance/key_object_model.h"

namespace conformance {
inline constexpr const char *kTypes[] = {"RGB", "HLS", "YUV"};

// A number as it is written, and as it is meant.
struct Said {
    const char *text;
    double value;
};
inline constexpr Said kKeyDiffs[] = {{"0.5", 0.5}, {"1", 1},   {"1.9", 1.9}, {"2", 2}, {"3.99", 3.99},
                                     {"-2", -2},   {"0.0", 0}, {"7", 7},     {"1", 1}, {"100000000000", 1e11}};
inline constexpr int32_t kMaxKeys[] = {-2147483647 - 1, -1, 0, 1, 1, 2, 2, 3, 4, 5, 8, 15, 16, 17, 40, 2147483647};
inline constexpr int32_t kBlocks[] = {1, 2, 3, 5, 8, 8, 16, 48, 48, 100, 300, -1, 0};
inline constexpr int32_t kThresholds[] = {0, 1, 4, 16, 16, 16, 40, -16, 255, 256, 70000, -2147483647 - 1};
inline constexpr double kOdd[] = {std::numeric_limits<double>::infinity(),
                                  -std::numeric_limits<double>::infinity(),
                                  std::numeric_limits<double>::quiet_NaN(),
                                  1e300,
                                  -1e300,
                                  -0.0,
                                  1e7};

template <class T, size_t n>
const T &One(const T (&of)[n], Dice &dice) {
    return of[dice(0, static_cast<int32_t>(n) - 1)];
}

inline std::string Hex(const Bytes &bytes) {
    std::string s;
    char two[3];
    for (const uint8_t b : bytes) {
        std::snprintf(two, sizeof two, "%02x", b);
        s += two;
    }
    return s;
}

template <class T>
Bytes BytesOf(const T &record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

inline std::string KeyText(const CHROMA_KEY_RAW &k) {
    std::ostringstream s;
    s << "type " << k.eType << " keys " << k.nKeysUsed << " min " << k.nMinTransparent << " max " << k.nMaxTransparent
      << " smooth " << k.nEdgesSmooth << " cancel " << k.bColorCancel << " interlaced " << k.nInterlacedVideo << " inverse "
      << k.nInverseKey;
    for (const SINGLE_KEY &e : k.arrKeys)
        s << "\n  " << std::hex << e.nValue << " +- " << e.nDelta << std::dec << " smooth " << e.nSmoothRange << " alpha "
          << e.nAlpha << " cancel " << e.nCancelRange << " " << e.nCancelPower << " " << e.nCancelChroma << " " << e.nCancelLuma
          << " " << e.nCancelAlpha << " reverse " << e.nReverseKey;
    return s.str();
}

class KeySequences : public Frames {
protected:
    void Start(uint32_t seed) {
        m_dice = std::make_unique<Dice>(seed);
        m_model = std::make_unique<KeyModel>();
        m_key.Reset();
        ASSERT_EQ(zck::CreateObject<zck::CCoZKeyValue>(nullptr, ZIidOf<IZKey>(), m_key.PutVoid()), S_OK);
        m_props = QueryFor<IZProps>(m_key.get());
        m_log.clear();
    }
    int32_t Roll(int32_t least, int32_t most) { return (*m_dice)(least, most); }

    // A picture with a screen of one or two colours that is not quite flat, something before it, and sometimes holes.
    ComPtr<IZFrame> Scene(int32_t width, int32_t height) {
        Z_VID_PROPS p = Picture(eZFCC_ARGB32, width, -height);
        Bytes pixels(static_cast<size_t>(p.nRowBytes) * static_cast<size_t>(height));
        uint8_t colours[5][4];
        for (auto &c : colours) {
            const int32_t high = Roll(100, 250), low = Roll(0, 90), other = Roll(0, 90);
            const int32_t kind = Roll(0, 4);
            const int32_t values[4] = {kind <= 1 ? low : high, kind == 2 ? other : high, kind == 3 ? high : other,
                                       Roll(0, 2) == 0 ? Roll(0, 255) : 255};
            for (int i = 0; i < 4; ++i) c[i] = static_cast<uint8_t>(values[i]);
        }
        const int32_t noise = Roll(0, 3) == 0 ? Roll(0, 30) : Roll(0, 4);
        const int32_t cell = Roll(1, 40);
        for (int32_t y = 0; y < height; ++y)
            for (int32_t x = 0; x < width; ++x) {
                const uint8_t *c = colours[(x / cell * 7 + y / cell * 3) % 11 % 5];
                uint8_t *q = pixels.data() + int64_t{y} * p.nRowBytes + x * 4;
                for (int i = 0; i < 4; ++i)
                    q[i] = static_cast<uint8_t>(std::clamp(c[i] + (i < 3 ? Roll(-noise, noise) : 0), 0, 255));
            }
        ComPtr<IZFrame> frame;
        EXPECT_EQ(m_factory->FrameCreateFromProps(&p, AddressOf(pixels.data()), frame.Put(), nullptr), S_OK);
        return frame;
    }

    ComPtr<IZFrame> Reference() {
        static constexpr int32_t kSizes[][2] = {{64, 48}, {97, 61}, {40, 1}, {3, 3},  {2, 2},   {1, 1},   {1, 9},  {120, 67},
                                                {16, 16}, {5, 3},   {50, 4}, {4, 50}, {33, 20}, {62, 35}, {96, 54}};
        static constexpr eZFCC kFormats[] = {eZFCC_ARGB32, eZFCC_ARGB32, eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_HDYC,
                                             eZFCC_YUY2,   eZFCC_v210,   eZFCC_I420,  eZFCC_YV12,  eZFCC_NV12};
        const auto &size = One(kSizes, *m_dice);
        const eZFCC fcc = One(kFormats, *m_dice);
        ComPtr<IZFrame> scene = Scene(size[0], size[1]), frame = scene;
        if (fcc != eZFCC_ARGB32 && FAILED(scene->FrameClone(frame.Put(), eZFC_Video, fcc))) {
            frame = scene;
        } else if (Rgb(fcc) && Roll(0, 3) == 0) {    // upside down
            Z_AV_PROPS av = Props(frame);
            av.vidProps.nHeight = -av.vidProps.nHeight;
            EXPECT_EQ(frame->FrameAVPropsSet(&av), S_OK);
        }
        if (Roll(0, 4) == 0) {
            tagRECT part = {Roll(0, size[0] / 2), Roll(0, size[1] / 2), 0, 0};
            part.right = Roll(part.left + 1, size[0]);
            part.bottom = Roll(part.top + 1, size[1]);
            ComPtr<IZFrame> cut;
            if (SUCCEEDED(frame->FrameCut(-1, &part, cut.Put())) && cut) frame = cut;
        }
        Z_AV_PROPS av = Props(frame);
        m_log << "reference " << std::hex << av.vidProps.fccType << std::dec << " " << av.vidProps.nWidth << " x "
              << av.vidProps.nHeight << " row " << av.vidProps.nRowBytes << "\n";
        return frame;
    }

    // A frame of somebody else, whose clones have their last row first.
    ComPtr<IZFrame> UpsideDown(const ComPtr<IZFrame> &real) {
        ForeignFrame &foreign = m_foreign.emplace_back(real, Answers::Frame);
        foreign.m_clone = [real](IZFrame **out, eZFrameClone type, eZFCC fcc) {
            const HRESULT hr = real->FrameClone(out, type, fcc);
            Z_AV_PROPS av = {};
            if (FAILED(hr) || FAILED((*out)->FrameAVPropsGet(&av))) return hr;
            av.vidProps.nHeight = std::abs(av.vidProps.nHeight);
            return (*out)->FrameAVPropsSet(&av);
        };
        m_log << "upside down\n";
        return ComPtr<IZFrame>(&foreign);
    }

    ComPtr<IZFrame> Background(const ComPtr<IZFrame> &reference) {
        if (!reference || Roll(0, 1) == 0) return {};
        const Z_VID_PROPS of = Props(reference).vidProps;
        const bool same = Roll(0, 1) == 0;
        const bool fits = same && of.nWidth > 0 && of.nHeight != 0;
        const int32_t width = fits ? of.nWidth : Roll(1, 80), height = fits ? std::abs(of.nHeight) : Roll(1, 60);
        m_log << "background " << width << " x " << height << "\n";
        return Make(Picture(Roll(0, 1) == 0 ? eZFCC_ARGB32 : eZFCC_RGB32, width, Roll(0, 1) == 0 ? height : -height),
                    static_cast<uint32_t>(Roll(1, 1000)));
    }

    void Settings() {
        const auto set = [this](const char *name, const std::string &value) {
            m_log << name << " = " << value << "\n";
            ASSERT_EQ(m_props->PropsSet(TextOf(name).get(), TextOf(value.c_str()).get()), S_OK);
        };
        KeyWishes &s = m_model->m_settings;
        if (Roll(0, 2) == 0) set("detect.max_keys", std::to_string(*(s.maxKeys = One(kMaxKeys, *m_dice))));
        if (Roll(0, 2) == 0) set("detect.blocks", std::to_string(*(s.blocks = One(kBlocks, *m_dice))));
        if (Roll(0, 2) == 0) set("detect.threshold", std::to_string(*(s.threshold = One(kThresholds, *m_dice))));
        if (Roll(0, 2) == 0) set("detect.type", kTypes[*(s.type = Roll(0, 2))]);
        if (Roll(0, 2) == 0) set("max_keys", std::to_string(*(m_model->m_settingMaxKeys = One(kMaxKeys, *m_dice))));
        if (Roll(0, 2) == 0) {
            const Said &said = One(kKeyDiffs, *m_dice);
            s.keyDiff = said.value;
            set("detect.key_diff", said.text);
        }
    }

    std::string Text(KeyWishes &w, bool detect) {
        std::ostringstream s;
        const auto put = [&](const char *name, const std::string &value) {
            const char *quote = Roll(0, 2) == 0 ? "'" : "";
            s << (s.str().empty() ? "" : " ") << name << "=" << quote << value << quote;
        };
        const auto flag = [&](bool on) { return on ? (Roll(0, 1) == 0 ? "true" : "1") : (Roll(0, 1) == 0 ? "false" : "0"); };
        if (Roll(0, 2) == 0) {
            w.type = Roll(0, 2);
            std::string word = kTypes[*w.type];
            if (Roll(0, 1) == 0) word[0] = static_cast<char>(word[0] + 32);
            put("type", word);
        } else if (Roll(0, 9) == 0) {
            put("type", "Lab");
        }
        if (Roll(0, 1) == 0) put("max_keys", std::to_string(*(w.maxKeys = One(kMaxKeys, *m_dice))));
        // What the other kind of call reads says nothing here.
        if ((detect || Roll(0, 9) == 0) && Roll(0, 1) == 0) put("blocks", std::to_string(*(w.blocks = One(kBlocks, *m_dice))));
        if ((detect || Roll(0, 9) == 0) && Roll(0, 1) == 0)
            put("threshold", std::to_string(*(w.threshold = One(kThresholds, *m_dice))));
        if (detect && Roll(0, 1) == 0) {
            const Said &said = One(kKeyDiffs, *m_dice);
            w.keyDiff = said.value;
            put("key_diff", said.text);
        }
        if (Roll(0, 1) == 0) put("show_blocks", flag(*(w.showBlocks = Roll(0, 1) == 0)));
        if ((!detect || Roll(0, 9) == 0) && Roll(0, 2) == 0) put("force_point", flag(*(w.forcePoint = Roll(0, 2) != 0)));
        if (Roll(0, 19) == 0) put("detect.max_keys", "7");
        m_log << s.str() << "\n";
        return s.str();
    }

    CHROMA_KEY_RAW AnyRaw() {
        CHROMA_KEY_RAW raw = {};
        const Bytes noise = m_dice->Noise(sizeof raw);
        std::memcpy(&raw, noise.data(), sizeof raw);
        raw.eType = static_cast<eCK_Type>(Roll(0, 9) == 0 ? Roll(0, 5) : Roll(2, 4));
        raw.nKeysUsed = Roll(0, 4) == 0 ? Roll(-3, 20) : Roll(0, 5);
        raw.bColorCancel = Roll(0, 2);
        raw.nInterlacedVideo = Roll(0, 4) == 0 ? Roll(-1, 2) : 0;
        raw.nInverseKey = Roll(0, 3);
        for (SINGLE_KEY &e : raw.arrKeys) {
            e.nAlpha = Roll(0, 5) == 0 ? Roll(0, 255) : 0;
            e.nReverseKey = Roll(0, 2) == 0 ? Roll(-1, 2) : 0;
            e.nDelta &= Roll(0, 1) == 0 ? 0x1F1F1F1F : Roll(0, 1) == 0 ? 0x001F0F0F : -1;
        }
        return raw;
    }

    double AnyValue() {
        const int32_t kind = Roll(0, 19);
        if (kind == 0) return One(kOdd, *m_dice);
        return kind < 15 ? Roll(-100, 100) / 100.0 : kind < 18 ? 0.0 : Roll(-2000, 2000) / 64.0;
    }

    // One operation on both. A picture is expected where the model has one.
    void Step() {
        ComPtr<IUnknown> out;
        KeyAnswer want = {S_OK, {}};
        HRESULT hr = S_OK;
        const int32_t op = Roll(0, 30);
        if (op == 0) {
            SetFrames();
            return;
        } else if (op == 30) {
            OwnerWrites();
            return;
        } else if (op <= 3) {
            m_log << "detect ";
            KeyWishes w;
            const Bstr text = TextOf(Text(w, true).c_str());
            hr = m_key->KeyDetect(text.get(), out.Put());
            want = m_model->Detect(w);
        } else if (op <= 11) {
            const bool exclude = Roll(0, 2) == 0;
            const int32_t x = Where(m_width), y = Where(m_height);
            m_log << (exclude ? "exclude " : "add ") << x << "," << y << " ";
            KeyWishes w;
            const Bstr text = TextOf(Text(w, false).c_str());
            hr =
                exclude ? m_key->KeyExcludePoint(x, y, text.get(), out.Put()) : m_key->KeyAddPoint(x, y, text.get(), out.Put());
            want = m_model->Point(exclude, x, y, w);
        } else if (op <= 12) {
            m_log << "rect\n";
            hr = m_key->KeyAddRect(Roll(-9, 99), Roll(-9, 99), Roll(-9, 99), Roll(-9, 99), nullptr, out.Put());
            want = m_model->Rect();
        } else if (op <= 19) {
            const int32_t which = Roll(-1, 17);
            double value = AnyValue();
            // Rounds without end are a matter of the smoothing's own tests.
            if (which == 3 && !(value < 2)) value = 0.3;
            m_log << "adjust " << which << " to " << value << "\n";
            hr = m_key->KeyAdjustSet(static_cast<eCK_Adjust>(which), value, out.Put());
            want = m_model->AdjustSet(which, value);
        } else if (op <= 23) {
            m_log << "back\n";
            hr = m_key->KeyStepBack(Roll(-2, 9), out.Put());
            want = m_model->Back();
        } else if (op <= 25) {
            m_log << "forward\n";
            hr = m_key->KeyStepFwd(Roll(-2, 9), out.Put());
            want = m_model->Forward();
        } else if (op <= 26) {
            m_log << "reset\n";
            hr = m_key->KeyReset(out.Put());
            want = m_model->Reset();
        } else if (op <= 27) {
            SetRaw();
            return;
        } else if (op <= 28) {
            m_log << "get\n";
            ComPtr<IUnknown> background;
            hr = m_key->KeyFrameGet(out.Put(), background.Put());
            want.shot = m_model->FrameGet();
            EXPECT_EQ(background.get(), QueryFor<IUnknown>(m_model->Background()).get());
        } else {
            NoOutput();
            return;
        }
        ASSERT_EQ(static_cast<uint32_t>(hr), static_cast<uint32_t>(want.hr));
        const ComPtr<IZFrame> frame = QueryFor<IZFrame>(out.get());
        ASSERT_EQ(static_cast<bool>(frame), want.shot.any);
        const Shot got = ShotOf(frame.get());
        ASSERT_EQ(got.fcc, want.shot.fcc);
        ASSERT_EQ(got.width, want.shot.width);
        ASSERT_EQ(got.rows, want.shot.rows);
        if (got.pixels == want.shot.pixels) return;
        const auto at = std::mismatch(got.pixels.begin(), got.pixels.end(), want.shot.pixels.begin());
        const int64_t index = at.first - got.pixels.begin();
        FAIL() << "pixel " << index / 4 % got.width << "," << index / 4 / got.width << " byte " << index % 4 << ": "
               << static_cast<int>(*at.first) << " for " << static_cast<int>(*at.second);
    }

    int32_t Where(int32_t size) {
        const int32_t kind = Roll(0, 9);
        return kind == 0 ? Roll(-3, 0) : kind == 1 ? size : kind == 2 ? size + Roll(0, 3) : Roll(0, std::max(0, size - 1));
    }

    void SetFrames() {
        ComPtr<IZFrame> reference = Roll(0, 3) == 0 ? ComPtr<IZFrame>() : Reference();
        if (reference && Roll(0, 9) == 0) reference = UpsideDown(reference);
        const ComPtr<IZFrame> background = Background(reference ? reference : m_reference);
        m_log << "frames\n";
        const HRESULT hr = m_key->KeyFrameSet(reference.get(), background.get());
        EXPECT_EQ(hr, m_model->FrameSet(reference.get(), background.get()));
        if (!reference) return;
        m_reference = reference;
        m_width = Props(reference).vidProps.nWidth;
        m_height = std::abs(Props(reference).vidProps.nHeight);
    }

    // A view of a 32-bit picture follows, a working image does not.
    void OwnerWrites() {
        if (!m_reference || Video(m_reference).size <= 0) return;
        const Seen seen = Video(m_reference);
        m_log << "owner writes\n";
        for (int i = 0; i < 20; ++i) seen.data()[Roll(0, seen.size - 1)] = static_cast<uint8_t>(Roll(0, 255));
    }

    void SetRaw() {
        m_log << "raw\n";
        CHROMA_KEY_RAW raw = AnyRaw();
        if (Roll(0, 2) == 0) raw = m_model->Raw();
        CK_ADJUST adjust = m_model->Adjust();
        for (int32_t i = 1; i <= 16; ++i)
            if (Roll(0, 3) == 0) *KeyModel::Field(adjust, i) = AnyValue();
        if (!(adjust.dblSmooth < 2)) adjust.dblSmooth = 0.3;
        CK_ADJUST *given = Roll(0, 1) == 0 ? nullptr : &adjust;
        EXPECT_EQ(m_key->KeyRawSet(&raw, given), S_OK);
        m_model->RawSet(raw, given);
    }

    // Refused, and nothing moves.
    void NoOutput() {
        m_log << "no output\n";
        EXPECT_EQ(m_key->KeyDetect(nullptr, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyAddPoint(0, 0, nullptr, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyExcludePoint(0, 0, nullptr, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyAddRect(0, 0, 1, 1, nullptr, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyAdjustSet(eCKA_Power, 1, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyStepBack(1, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyStepFwd(1, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyReset(nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyRawSet(nullptr, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyRawGet(nullptr, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyAdjustGet(eCKA_KeyType, nullptr), E_POINTER);
        EXPECT_EQ(m_key->KeyFrameGet(nullptr, nullptr), S_OK);
    }

    void Look() {
        CHROMA_KEY_RAW raw;
        CK_ADJUST adjust;
        std::memset(&raw, 0xEE, sizeof raw);
        std::memset(&adjust, 0xEE, sizeof adjust);
        ASSERT_EQ(m_key->KeyRawGet(&raw, &adjust), S_OK);
        ASSERT_EQ(Hex(BytesOf(raw)), Hex(BytesOf(m_model->Raw()))) << KeyText(raw) << "\nfor\n" << KeyText(m_model->Raw());
        ASSERT_EQ(Hex(BytesOf(adjust)), Hex(BytesOf(m_model->Adjust())));
        for (int32_t i = -1; i <= 17; ++i) {
            double value = 77;
            ASSERT_EQ(m_key->KeyAdjustGet(static_cast<eCK_Adjust>(i), &value), S_OK);
            const double *field = KeyModel::Field(m_model->Adjust(), i);
            ASSERT_EQ(std::bit_cast<uint64_t>(value), std::bit_cast<uint64_t>(field != nullptr ? *field : 77.0)) << i;
        }
    }

    // Back to the first entry: one state after the other, as many as the model has.
    void WalkBack() {
        for (size_t i = 0; i < m_model->HistorySize() + 2; ++i) {
            ComPtr<IUnknown> out;
            ASSERT_EQ(m_key->KeyStepBack(1, out.Put()), m_model->Back().hr);
            ASSERT_NO_FATAL_FAILURE(Look()) << "walking back, " << i;
        }
    }

    std::deque<ForeignFrame> m_foreign;    // outlive all who hold them
    std::unique_ptr<Dice> m_dice;
    std::unique_ptr<KeyModel> m_model;
    ComPtr<IZKey> m_key;
    ComPtr<IZProps> m_props;
    ComPtr<IZFrame> m_reference;
    int32_t m_width = 0, m_height = 0;
    class Log {
    public:
        template <class T>
        Log &operator<<(const T &v) {
            m_text << v;
            return *this;
        }
        Log &operator<<(std::ios_base &(*v)(std::ios_base &)) {
            m_text << v;
            return *this;
        }
        void clear() { m_text.str(""); }
        std::string text() const { return m_text.str(); }

    private:
        std::ostringstream m_text;
    } m_log;
};

}    // namespace conformance
