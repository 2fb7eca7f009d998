// The keyer as a host sees it: frames in and out in both modes, borders, statuses, properties, the private entry.
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "keying/plugin/chroma_key.h"
#include "tests/conformance/foreign_frame.h"
#include "tests/conformance/frame_fixture.h"
#include "tests/support/awaited_keyer.h"

namespace conformance {
namespace {

using zck::test::AwaitedKeyer;

constexpr HRESULT kWrongState = static_cast<HRESULT>(0x80040227);

// A key object that has a key and nothing else.
class FakeKey : public IZKey {
public:
    HRESULT Z_STDCALL QueryInterface(REFIID, void **ppv) override {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG Z_STDCALL AddRef() override { return ++m_refs; }
    ULONG Z_STDCALL Release() override { return --m_refs; }
    HRESULT Z_STDCALL KeyFrameSet(IUnknown *, IUnknown *) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyFrameGet(IUnknown **, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyDetect(BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAddPoint(int32_t, int32_t, BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyExcludePoint(int32_t, int32_t, BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAddRect(int32_t, int32_t, int32_t, int32_t, BSTR, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAdjustSet(eCK_Adjust, double, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyAdjustGet(eCK_Adjust, double *) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyStepBack(int32_t, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyStepFwd(int32_t, IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyReset(IUnknown **) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyRawSet(CHROMA_KEY_RAW *, CK_ADJUST *) override { return E_FAIL; }
    HRESULT Z_STDCALL KeyRawGet(CHROMA_KEY_RAW *raw, CK_ADJUST *adjust) override {
        ++m_calls;
        *raw = m_raw;
        m_adjustAsked = adjust != nullptr;
        return m_status;
    }

    CHROMA_KEY_RAW m_raw = {};
    HRESULT m_status = S_OK;
    int m_calls = 0;
    bool m_adjustAsked = false;
    ULONG m_refs = 1;
};

class Keyer : public Frames {
protected:
    void SetUp() override {
        Frames::SetUp();
        Create();
    }
    void Create() {
        ASSERT_EQ(zck::CreateObject<AwaitedKeyer>(nullptr, ZIidOf<IZPlugin>(), m_plugin.PutVoid()), S_OK);
        m_key = QueryFor<IZChromaKey>(m_plugin.get());
        m_props = QueryFor<IZProps>(m_plugin.get());
        m_process = QueryFor<IZFProcess>(m_plugin.get());
        ASSERT_TRUE(m_key && m_props && m_process && QueryFor<IZPersist>(m_plugin.get()));
    }
    // The keyer is released with its threads before the factory.
    void TearDown() override {
        m_key.Reset();
        m_props.Reset();
        m_process.Reset();
        m_plugin.Reset();
    }

    void Set(const char *name, const char *value) {
        ASSERT_EQ(m_props->PropsSet(TextOf(name).get(), TextOf(value).get()), S_OK);
    }
    std::string Get(const char *name) {
        Bstr value;
        EXPECT_TRUE(SUCCEEDED(m_props->PropsGet(TextOf(name).get(), value.Put()))) << name;
        return zck::Utf8FromText(value.view());
    }
    void Synchronous() { Set("output.thread", "false"); }

    void SetKey(eCK_Type type, int32_t used = 0) {
        CHROMA_KEY_RAW raw = {};
        raw.eType = type;
        raw.nKeysUsed = used;
        ASSERT_EQ(m_key->KeyRawSet(&raw), S_OK);
    }

    void AwaitOutput() { AwaitedKeyer::AwaitOutput(m_plugin.get()); }

    ComPtr<IZFrame> Receive(const ComPtr<IZFrame> &frame, HRESULT want = S_OK) {
        AwaitOutput();
        ComPtr<IZFrame> result;
        EXPECT_EQ(m_plugin->OnMediaReceive(99, nullptr, frame.get(), result.Put()), want);
        return result;
    }

    // A top-down frame of 4-byte pixels with one value in all alpha bytes.
    ComPtr<IZFrame> Flat(int32_t w, int32_t h, uint8_t alpha, eZFCC fcc = eZFCC_ARGB32) {
        ComPtr<IZFrame> frame = Make(Picture(fcc, w, -h), static_cast<uint32_t>(w * h));
        uint8_t *p = Video(frame).data();
        for (int32_t i = 0; i < w * h; ++i) p[i * 4 + 3] = alpha;
        return frame;
    }

    ComPtr<IZPlugin> m_plugin;
    ComPtr<IZChromaKey> m_key;
    ComPtr<IZProps> m_props;
    ComPtr<IZFProcess> m_process;
};

TEST_F(Keyer, PropertiesAtConstruction) {
    EXPECT_EQ(Get("background"), "checker");
    EXPECT_EQ(Get("detect.blocks"), "48");
    EXPECT_EQ(Get("detect.threshold"), "16");
    EXPECT_EQ(std::stod(Get("detect.key_diff")), 1.0);
    EXPECT_EQ(Get("detect.max_keys"), "1");
    const std::string thread = Get("output.thread");
    EXPECT_TRUE(thread == "true" || thread == "1") << thread;
    EXPECT_EQ(Get("process.threads"), "2");
    EXPECT_EQ(Get("keying.borders"), "");
}

TEST_F(Keyer, AFreshKeyIsZero) {
    CHROMA_KEY_RAW raw, zero = {};
    std::memset(&raw, 0x55, sizeof raw);
    EXPECT_EQ(m_key->KeyRawGet(&raw), S_OK);
    EXPECT_EQ(std::memcmp(&raw, &zero, sizeof raw), 0);
    EXPECT_EQ(m_key->KeyRawGet(nullptr), E_POINTER);
    EXPECT_EQ(m_key->KeyRawSet(nullptr), E_POINTER);
}

TEST_F(Keyer, TheRawKeyComesBackAsItWasSet) {
    CHROMA_KEY_RAW raw, back = {};
    std::memset(&raw, 0x33, sizeof raw);
    raw.eType = eCKT_HLS;
    raw.nKeysUsed = 20;
    EXPECT_EQ(m_key->KeyRawSet(&raw), S_OK);
    EXPECT_EQ(m_key->KeyRawGet(&back), S_OK);
    EXPECT_EQ(std::memcmp(&raw, &back, sizeof raw), 0);
    EXPECT_EQ(m_key->KeySet(nullptr), S_OK);
    EXPECT_EQ(m_key->KeyRawGet(&back), S_OK);
    const CHROMA_KEY_RAW zero = {};
    EXPECT_EQ(std::memcmp(&zero, &back, sizeof zero), 0);
}

TEST_F(Keyer, NullArguments) {
    const ComPtr<IZFrame> frame = Flat(8, 4, 10);
    ComPtr<IZFrame> out;
    for (const char *thread : {"true", "false"}) {
        Set("output.thread", thread);
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, nullptr, out.Put()), E_INVALIDARG);
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, frame.get(), nullptr), E_INVALIDARG);
    }
    EXPECT_EQ(m_plugin->OnMediaEnd(0, nullptr, 0), S_OK);
    EXPECT_EQ(m_plugin->OnMediaFlush(0, nullptr, 7), S_OK);
}

TEST_F(Keyer, EachFrameComesOneCallLate) {
    ComPtr<IZFrame> frames[4];
    for (int32_t i = 0; i < 4; ++i) {
        frames[i] = Flat(16, 8, 10);
        Z_TIME t = {};
        t.rtStartTime = i;
        frames[i]->FrameTimeSet(&t);
    }
    IZFrame *untouched = reinterpret_cast<IZFrame *>(this);
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, frames[0].get(), &untouched), S_FALSE);
    EXPECT_EQ(untouched, reinterpret_cast<IZFrame *>(this));
    for (int i = 1; i < 4; ++i) {
        const ComPtr<IZFrame> out = Receive(frames[i]);
        ASSERT_TRUE(out);
        EXPECT_EQ(Time(out).rtStartTime, i - 1);
        EXPECT_EQ(m_plugin->OnMediaFlush(0, nullptr, 0), S_OK);    // changes nothing
        EXPECT_EQ(m_plugin->OnMediaEnd(0, nullptr, 0), S_OK);
    }
    // Changing the mode does not lose the frame that waits; the synchronous road does not look at it.
    Synchronous();
    EXPECT_EQ(Time(Receive(frames[0])).rtStartTime, 0);
    Set("output.thread", "true");
    EXPECT_EQ(Time(Receive(frames[1])).rtStartTime, 3);
}

TEST_F(Keyer, WithoutKeyTheFrameIsAPlainClone) {
    Synchronous();
    for (const eCK_Type type : {eCKT_Alpha, eCKT_Auto}) {
        SetKey(type, 3);
        for (const eZFCC fcc : {eZFCC_ARGB32, eZFCC_RGB32, eZFCC_UYVY, eZFCC_HDYC, eZFCC_RGB24, eZFCC_v210}) {
            for (const int32_t height : {8, -8}) {
                if (height < 0 && !Rgb(fcc)) continue;
                const ComPtr<IZFrame> frame = MakeRich(Picture(fcc, 18, height));
                const Bytes before = Video(frame).bytes();
                const ComPtr<IZFrame> out = Receive(frame);
                ComPtr<IZFrame> clone;
                ASSERT_EQ(frame->FrameClone(clone.Put(), eZFC_Full, eZFCC_ARGB32), S_OK);
                ASSERT_TRUE(out);
                EXPECT_EQ(Video(out).bytes(), Video(clone).bytes()) << std::hex << fcc;
                EXPECT_EQ(Words(Props(out).vidProps), Words(Props(clone).vidProps));
                EXPECT_EQ(Props(out).vidProps.fccType, eZFCC_ARGB32);
                EXPECT_EQ(Audio(out).bytes(), Audio(frame).bytes());
                EXPECT_EQ(Time(out).rtEndTime, 800000);
                int32_t size = 0;
                int64_t at = 0;
                EXPECT_EQ(QueryFor<IZFFrame>(out.get())->ZFDataGet(TextOf("C608").get(), &size, &at), S_OK);
                EXPECT_EQ(Video(frame).bytes(), before);
                EXPECT_NE(Video(out).address, Video(frame).address);
            }
        }
    }
}

TEST_F(Keyer, SwitchedOffKeyGivesNoFrame) {
    SetKey(eCKT_None);
    const ComPtr<IZFrame> frame = Flat(8, 4, 10);
    IZFrame *untouched = reinterpret_cast<IZFrame *>(this);
    for (int i = 0; i < 3; ++i) {
        AwaitOutput();
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, frame.get(), &untouched), S_FALSE);
        EXPECT_EQ(untouched, reinterpret_cast<IZFrame *>(this));
    }
    Synchronous();
    const ComPtr<IZFrame> other = Flat(8, 4, 11);
    const uint32_t before = RefsOf(other.get());
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, other.get(), &untouched), E_INVALIDARG);
    EXPECT_EQ(untouched, reinterpret_cast<IZFrame *>(this));
    EXPECT_EQ(RefsOf(other.get()), before + 1);    // it is the last input frame all the same
}

TEST_F(Keyer, KeyGetWithoutAnyFrame) {
    ComPtr<IZKey> key;
    EXPECT_EQ(m_key->KeyGet(nullptr, key.Put(), nullptr), kWrongState);
    EXPECT_EQ(m_key->KeyGet(PlainObject().get(), key.Put(), nullptr), kWrongState);
    EXPECT_FALSE(key);
}

// A key without entries leaves all pixels opaque. One slice does not even write that, but multiplies by what alpha is there.
// Nor does the merge of alpha into rows of more slices write columns between the last 16 and the last 8 whole ones.
TEST_F(Keyer, BordersBoundWhatIsKeyed) {
    struct Case {
        const char *text;
        int32_t left, top, right, bottom;    // of the keyed rectangle in 64 x 40
    };
    const Case cases[] = {{"", 0, 0, 64, 40},        {"16", 16, 16, 48, 24},
                          {"10", 16, 10, 48, 30},    {"3 5", 8, 5, 56, 35},
                          {"3,5,9", 8, 5, 56, 31},    // both sides, top, bottom
                          {"1;2;3;4", 8, 2, 56, 36}, {"1, 2,\t3 ;4 99", 8, 2, 56, 36},
                          {"0", 0, 0, 64, 40},       {"0 0 0 1", 0, 0, 64, 39},
                          {"0 0 1 0", 0, 0, 56, 40}, {"8x 4y", 8, 4, 56, 36},    // a number ends at what is none
                          {"abc", 0, 0, 64, 40},     {" , ;", 0, 0, 64, 40},
                          {"1000", 0, 0, 64, 40},    // an empty rectangle is the whole frame
                          {"32", 0, 0, 64, 40},      {"0 38 0 1", 0, 38, 64, 39}};
    Synchronous();
    SetKey(eCKT_RGB);
    const ComPtr<IZFrame> frame = Flat(64, 40, 77);
    const Bytes source = Video(frame).bytes();
    for (const char *threads : {"1", "2", "3", "16"})
        for (const Case &c : cases) {
            Set("process.threads", threads);
            Set("keying.borders", c.text);
            const ComPtr<IZFrame> out = Receive(frame);
            ASSERT_TRUE(out) << c.text;
            EXPECT_EQ(Props(out).vidProps.nWidth, 64);
            EXPECT_EQ(Props(out).vidProps.nHeight, -40);
            const Bytes pixels = Video(out).bytes();
            const int32_t n = std::atoi(threads), rows = c.bottom - c.top;
            for (int32_t y = 0; y < 40; ++y)
                for (int32_t x = 0; x < 64; ++x) {
                    const bool inside = x >= c.left && x < c.right && y >= c.top && y < c.bottom;
                    // The last rows of the rectangle can belong to no slice.
                    if (inside && y - c.top >= rows / n * n) continue;
                    const size_t at = static_cast<size_t>(y * 64 + x) * 4;
                    const int32_t w = c.right - c.left, column = x - c.left;
                    const bool opaque = inside && n > 1 && (column < w / 16 * 16 || column >= w / 8 * 8);
                    ASSERT_EQ(pixels[at + 3], opaque ? 255 : 77) << "'" << c.text << "' " << n << " at " << x << "," << y;
                    for (size_t i = 0; i < 3; ++i) {
                        const int32_t t = source[at + i] * 77, multiplied = (t + (t >> 8) + 1) >> 8;
                        ASSERT_EQ(pixels[at + i], inside && !opaque ? multiplied : source[at + i])
                            << "'" << c.text << "' " << n << " at " << x << "," << y;
                    }
                }
        }
}

TEST_F(Keyer, BordersOfALargeFrame) {
    Synchronous();
    SetKey(eCKT_RGB);
    const ComPtr<IZFrame> frame = Flat(1920, 1080, 77);
    for (const char *text : {"16", "10"}) {
        Set("keying.borders", text);
        const int32_t top = text[1] == '6' ? 16 : 10;
        const ComPtr<IZFrame> out = Receive(frame);
        ASSERT_TRUE(out);
        EXPECT_EQ(Video(out).size, 1920 * 1080 * 4);
        const uint8_t *p = Video(out).data();
        const auto alpha = [&](int32_t x, int32_t y) { return static_cast<int>(p[(y * 1920 + x) * 4 + 3]); };
        EXPECT_EQ(alpha(15, 500), 77);
        EXPECT_EQ(alpha(16, 500), 255);
        EXPECT_EQ(alpha(1903, 500), 255);
        EXPECT_EQ(alpha(1904, 500), 77);
        EXPECT_EQ(alpha(500, top - 1), 77);
        EXPECT_EQ(alpha(500, top), 255);
        EXPECT_EQ(alpha(500, 1080 - top - 1), 255);
        EXPECT_EQ(alpha(500, 1080 - top), 77);
    }
}

TEST_F(Keyer, BordersTextByItself) {
    const auto parsed = [](const char *text) { return zck::InsetsFromText(TextOf(text).view()); };
    EXPECT_FALSE(parsed(""));
    EXPECT_FALSE(parsed(" ;,\t"));
    const auto same = [&](const char *text, int32_t l, int32_t t, int32_t r, int32_t b) {
        const auto got = parsed(text);
        ASSERT_TRUE(got) << text;
        EXPECT_EQ(got->left, l) << text;
        EXPECT_EQ(got->top, t) << text;
        EXPECT_EQ(got->right, r) << text;
        EXPECT_EQ(got->bottom, b) << text;
    };
    same("5", 5, 5, 5, 5);
    same("5 6", 5, 6, 5, 6);
    same("5 6 7", 5, 6, 5, 7);
    same("5 6 7 8", 5, 6, 7, 8);
    same("5,6;7\r\n8 9 10", 5, 6, 7, 8);
    same("-5", -5, -5, -5, -5);
    same("5.9 x7", 5, 0, 5, 0);
}

TEST_F(Keyer, PremultipliedColourLeaves) {
    // One entry that takes a colour away entirely, and a frame with it in the left half.
    CHROMA_KEY_RAW raw = {};
    raw.eType = eCKT_RGB;
    raw.nKeysUsed = 1;
    raw.arrKeys[0].nValue = 0x0000FF00;    // green
    raw.arrKeys[0].nDelta = 0x00202020;
    raw.arrKeys[0].nSmoothRange = 10;
    raw.nMaxTransparent = 255;
    ASSERT_EQ(m_key->KeyRawSet(&raw), S_OK);
    Synchronous();
    const ComPtr<IZFrame> frame = Flat(64, 16, 200);
    uint8_t *p = Video(frame).data();
    for (int32_t i = 0; i < 64 * 16; ++i) {
        const uint8_t green[3] = {0, 255, 0}, red[3] = {3, 5, 250};
        std::memcpy(p + i * 4, i % 64 < 32 ? green : red, 3);
    }
    const ComPtr<IZFrame> out = Receive(frame);
    ASSERT_TRUE(out);
    const uint8_t *o = Video(out).data();
    for (int32_t i = 0; i < 64 * 16; ++i) {
        const bool green = i % 64 < 32;
        ASSERT_EQ(o[i * 4 + 3], green ? 0 : 255) << i;
        ASSERT_EQ(o[i * 4], green ? 0 : 3) << i;
        ASSERT_EQ(o[i * 4 + 1], green ? 0 : 5) << i;
        ASSERT_EQ(o[i * 4 + 2], green ? 0 : 250) << i;
    }
}

TEST_F(Keyer, AnyFormatIsKeyedLikeItsClone) {
    CHROMA_KEY_RAW raw = {};
    raw.nKeysUsed = 1;
    raw.arrKeys[0] = {0x00608040, 0x00405060, 40, 10, 30, 60, -40, 20, 0, 0};
    raw.nMinTransparent = 20;
    raw.nMaxTransparent = 230;
    raw.bColorCancel = 1;
    for (const eCK_Type type : {eCKT_RGB, eCKT_HLS, eCKT_YUV})
        for (const int32_t smooth : {0, 2})
            for (const char *threads : {"1", "3"})
                for (const char *borders : {"", "8 3"})
                    for (const eZFCC fcc : {eZFCC_UYVY, eZFCC_HDYC, eZFCC_YUY2, eZFCC_v210, eZFCC_RGB24, eZFCC_RGB32})
                        for (const int32_t width : {48, 67})
                            for (const eZInterlace order : {eZI_Progressive, eZI_Field2First}) {
                                raw.eType = type;
                                raw.nEdgesSmooth = smooth;
                                Z_VID_PROPS p = Picture(fcc, width, 13);
                                p.eInterlace = order;
                                const ComPtr<IZFrame> frame = Make(p, static_cast<uint32_t>(width));
                                ComPtr<IZFrame> clone;
                                ASSERT_EQ(frame->FrameClone(clone.Put(), eZFC_Full, eZFCC_ARGB32), S_OK);
                                const Bytes before = Video(clone).bytes();
                                // Keyers of their own: columns that no kernel writes keep the alpha of the frame before.
                                const auto keyed = [&](const ComPtr<IZFrame> &in) {
                                    TearDown();
                                    Create();
                                    Synchronous();
                                    Set("process.threads", threads);
                                    Set("keying.borders", borders);
                                    EXPECT_EQ(m_key->KeyRawSet(&raw), S_OK);
                                    return Receive(in);
                                };
                                const ComPtr<IZFrame> direct = keyed(frame), twice = keyed(clone);
                                ASSERT_EQ(Video(direct).bytes(), Video(twice).bytes())
                                    << Words(p) << " type " << type << " smooth " << smooth << " threads " << threads;
                                ASSERT_EQ(Video(clone).bytes(), before);
                                ASSERT_NE(Video(direct).bytes(), before);
                            }
}

// Columns behind the last whole block of 8 are written by no kernel; their alpha is what the plane held.
TEST_F(Keyer, TheAlphaPlaneIsKeptBetweenFrames) {
    Synchronous();
    Set("process.threads", "1");
    CHROMA_KEY_RAW raw = {};
    raw.eType = eCKT_RGB;
    raw.nKeysUsed = 1;
    raw.arrKeys[0].nValue = 0x0000FF00;
    raw.arrKeys[0].nDelta = 0x00010101;
    raw.nMaxTransparent = 255;
    ASSERT_EQ(m_key->KeyRawSet(&raw), S_OK);
    const ComPtr<IZFrame> odd = Flat(50, 10, 9), wide = Flat(64, 10, 9);
    const auto alpha = [&](const ComPtr<IZFrame> &frame, int32_t x, int32_t y) {
        const Seen video = Video(frame);
        return static_cast<int>(video.data()[(y * Props(frame).vidProps.nWidth + x) * 4 + 3]);
    };
    const ComPtr<IZFrame> first = Receive(odd);
    EXPECT_EQ(alpha(first, 47, 3), 255);
    EXPECT_EQ(alpha(first, 48, 3), 0);    // a new plane
    EXPECT_EQ(alpha(first, 49, 9), 0);
    const ComPtr<IZFrame> second = Receive(wide);    // larger: a new plane again
    EXPECT_EQ(alpha(second, 63, 9), 255);
    const ComPtr<IZFrame> third = Receive(odd);
    EXPECT_EQ(alpha(third, 48, 3), 255);
    EXPECT_EQ(alpha(third, 49, 9), 255);
}

TEST_F(Keyer, ABusyOutputThreadDropsTheFrame) {
    const ComPtr<IZFrame> real = Flat(16, 8, 10);
    ForeignFrame slow(real, Answers::Frame);
    std::atomic<bool> go{false};
    slow.m_clone = [&](IZFrame **clone, eZFrameClone type, eZFCC fcc) {
        while (!go) std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return real->FrameClone(clone, type, fcc);
    };
    IZFrame *out = nullptr;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, &slow, &out), S_FALSE);
    const ComPtr<IZFrame> dropped = Flat(24, 8, 10), next = Flat(32, 8, 10);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, dropped.get(), &out), S_FALSE);
    const auto waited = std::chrono::steady_clock::now() - start;
    EXPECT_GE(waited, std::chrono::milliseconds(980));
    EXPECT_LT(waited, std::chrono::milliseconds(9000));
    EXPECT_EQ(out, nullptr);
    go = true;
    EXPECT_EQ(Props(Receive(next)).vidProps.nWidth, 16);
    EXPECT_EQ(Props(Receive(next)).vidProps.nWidth, 32);
}

TEST_F(Keyer, TakesTheKeyOfAKeyObject) {
    FakeKey object;
    object.m_raw.eType = eCKT_YUV;
    object.m_raw.nKeysUsed = 20;
    EXPECT_EQ(m_key->KeySet(&object), S_OK);
    EXPECT_EQ(object.m_calls, 1);
    EXPECT_TRUE(object.m_adjustAsked);
    CHROMA_KEY_RAW back = {};
    EXPECT_EQ(m_key->KeyRawGet(&back), S_OK);
    EXPECT_EQ(back.eType, eCKT_YUV);
    EXPECT_EQ(back.nKeysUsed, 20);
    EXPECT_EQ(object.m_refs, 1U);

    // A read that fails copies nothing, and nobody is told.
    object.m_raw.eType = eCKT_HLS;
    object.m_status = E_FAIL;
    EXPECT_EQ(m_key->KeySet(&object), S_OK);
    EXPECT_EQ(object.m_calls, 2);
    EXPECT_EQ(m_key->KeyRawGet(&back), S_OK);
    EXPECT_EQ(back.eType, eCKT_YUV);
    EXPECT_EQ(object.m_refs, 1U);
}

TEST_F(Keyer, FramesThatAreNone) {
    ForeignFrame none(Flat(8, 4, 10), Answers::Nothing);
    ComPtr<IZFrame> out;
    for (const char *thread : {"true", "false"}) {
        Set("output.thread", thread);
        EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, &none, out.Put()), E_NOINTERFACE);
    }
    EXPECT_EQ(none.m_refs, 1U);
}

TEST_F(Keyer, ForeignFramesAreClonedByThemselves) {
    const ComPtr<IZFrame> real = Flat(16, 8, 10);
    ForeignFrame foreign(real, Answers::Frame);
    SetKey(eCKT_RGB);
    Synchronous();
    ComPtr<IZFrame> out;
    int32_t asked = -1;
    uint32_t code = 0;
    foreign.m_clone = [&](IZFrame **clone, eZFrameClone type, eZFCC fcc) {
        asked = type;
        code = fcc;
        return real->FrameClone(clone, type, fcc);
    };
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, &foreign, out.Put()), S_OK);
    EXPECT_EQ(asked, eZFC_Full);
    EXPECT_EQ(code, static_cast<uint32_t>(eZFCC_ARGB32));
    ASSERT_TRUE(out);
    EXPECT_EQ(Video(out).data()[3], 255);
    // A failing clone is the result of the synchronous road, and nothing on the other.
    foreign.m_clone = [](IZFrame **, eZFrameClone, eZFCC) { return static_cast<HRESULT>(0x80040248); };
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, &foreign, out.Put()), static_cast<HRESULT>(0x80040248));
    // A clone that is no frame of this family.
    ForeignFrame clone(real, Answers::Frame);
    foreign.m_clone = [&](IZFrame **o, eZFrameClone, eZFCC) {
        clone.AddRef();
        *o = &clone;
        return S_OK;
    };
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, &foreign, out.Put()), E_NOINTERFACE);
    EXPECT_EQ(clone.m_refs, 1U);
    Set("output.thread", "true");
    IZFrame *untouched = nullptr;
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, &foreign, &untouched), S_FALSE);
    AwaitOutput();
    EXPECT_EQ(m_plugin->OnMediaReceive(0, nullptr, real.get(), &untouched), S_FALSE);
    EXPECT_EQ(untouched, nullptr);
    Receive(real);
    // The keyer keeps the last frame until the next.
    EXPECT_EQ(foreign.m_refs, 1U);
}

TEST_F(Keyer, ThePrivateEntry) {
    SetKey(eCKT_RGB);
    const ComPtr<IZFrame> frame = Flat(16, 8, 10);
    ComPtr<IUnknown> out;
    // Nothing came yet: the input itself.
    EXPECT_EQ(m_process->FrameProcess(frame.get(), out.Put(), nullptr), S_FALSE);
    EXPECT_EQ(QueryFor<IUnknown>(out.get()), QueryFor<IUnknown>(frame.get()).get());
    AwaitOutput();
    EXPECT_EQ(m_process->FrameProcess(frame.get(), out.Put(), nullptr), S_OK);
    EXPECT_FALSE(QueryFor<IUnknown>(out.get()) == QueryFor<IUnknown>(frame.get()).get());
    Synchronous();
    EXPECT_EQ(m_process->FrameProcess(frame.get(), out.Put(), nullptr), S_OK);
    EXPECT_EQ(Video(QueryFor<IZFrame>(out.get())).data()[3], 255);
    AwaitOutput();    // the output thread has keyed its frame before the key goes
    SetKey(eCKT_None);
    EXPECT_EQ(m_process->FrameProcess(frame.get(), out.Put(), nullptr), E_INVALIDARG);
    EXPECT_EQ(m_process->FrameProcess(PlainObject().get(), out.Put(), nullptr), E_NOINTERFACE);
    ForeignFrame foreign(frame, Answers::Frame);    // a frame, but not of this family
    EXPECT_EQ(m_process->FrameProcess(&foreign, out.Put(), nullptr), E_NOINTERFACE);
    Set("output.thread", "true");
    EXPECT_EQ(m_process->FrameProcess(frame.get(), out.Put(), nullptr), S_OK);    // the frame keyed before
    AwaitOutput();
    EXPECT_EQ(m_process->FrameProcess(frame.get(), out.Put(), nullptr), S_FALSE);
    EXPECT_EQ(QueryFor<IUnknown>(out.get()), QueryFor<IUnknown>(frame.get()).get());
}

TEST_F(Keyer, ReadsItsPropertiesForEachFrame) {
    SetKey(eCKT_RGB);
    Synchronous();
    const ComPtr<IZFrame> frame = Flat(48, 40, 10);
    EXPECT_EQ(Video(Receive(frame)).data()[3], 255);
    Set("keying.borders", "8");
    EXPECT_EQ(Video(Receive(frame)).data()[3], 10);
    Set("keying.borders", "");
    EXPECT_EQ(Video(Receive(frame)).data()[3], 255);
    // Missing ones count as their defaults: the output thread, six slices.
    ASSERT_EQ(m_props->PropsRemove(TextOf("process.threads").get()), S_OK);
    EXPECT_EQ(Video(Receive(frame)).data()[3], 255);
    ASSERT_EQ(m_props->PropsRemove(TextOf("output.thread").get()), S_OK);
    EXPECT_FALSE(Receive(frame, S_FALSE));
    EXPECT_EQ(Video(Receive(frame)).data()[3], 255);
}

TEST_F(Keyer, MayBeAPartOfAnOuterObject) {
    const ComPtr<IUnknown> outer = PlainObject();
    void *inner = nullptr;
    EXPECT_EQ(zck::CreateObject<zck::CCoZChromaKey>(outer.get(), ZIidOf<IZPlugin>(), &inner), CLASS_E_NOAGGREGATION);
    ASSERT_EQ(zck::CreateObject<zck::CCoZChromaKey>(outer.get(), ZIidOf<IUnknown>(), &inner), S_OK);
    ComPtr<IUnknown> part;
    part.Attach(static_cast<IUnknown *>(inner));
    IZPlugin *plugin = nullptr;
    ASSERT_EQ(part->QueryInterface(ZIidOf<IZPlugin>(), reinterpret_cast<void **>(&plugin)), S_OK);
    EXPECT_EQ(RefsOf(outer.get()), 2U);
    plugin->Release();
    EXPECT_EQ(RefsOf(outer.get()), 1U);
}

}    // namespace
}    // namespace conformance
