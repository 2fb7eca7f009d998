// Settings, trees and their text.
#include <cstring>

#include "keying/plugin/chroma_key.h"
#include "platform/settings.h"
#include "props/store/store.h"
#include "tests/failures/failing_memory.h"
#include "tests/support/sample_key.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/settings_place.h"
#include "xml/document.h"
#include "xml/parser.h"
#include "xml/writer.h"
#include "zchromakey/zchromakey.h"

namespace zck::test {
namespace {

constexpr TextView kKey = ZCK_TEXT("Software\\Test\\Failures");

Bstr Of(std::string_view text) {
    const FailingMemory::Pause pause;
    return Bstr(TextFromUtf8(text));
}

TEST(TextFailures, Settings) {
    const SettingsPlace place(kKey);
    const auto setting = [](TextView name, TextView value) { return StoredSetting{Text(name), Text(value)}; };
    const std::vector<StoredSetting> old = {setting(ZCK_TEXT("name"), ZCK_TEXT("the old value, too long for a short string"))};
    const std::vector<StoredSetting> fresh = {
        setting(ZCK_TEXT("name"), ZCK_TEXT("another value that is too long for it")),
        setting(ZCK_TEXT("second"), ZCK_TEXT("with = and \\ and # in it, and long enough"))};
    EachRequestFailsOnce([&] {
        {
            const FailingMemory::Pause pause;
            if (FAILED(SettingsSave(place.Key(), old))) return E_FAIL;
        }
        HRESULT hr = SettingsSave(place.Key(), fresh);
        const bool saved = SUCCEEDED(hr);
        std::vector<StoredSetting> read;
        if (saved) hr = SettingsLoad(place.Key(), read);
        if (SUCCEEDED(hr)) return read.size() == 2 && read[1].value == fresh[1].value ? S_OK : E_FAIL;
        const FailingMemory::Pause pause;
        // What was not saved left the old, what was not read is still there.
        if (SettingsLoad(place.Key(), read) != S_OK) return E_FAIL;
        return read.size() == (saved ? 2u : 1u) ? hr : E_FAIL;
    });
}

TEST(TextFailures, PropertiesOfAStore) {
    EachRequestFailsOnce([] {
        return Guarded([] {
            CPropsStore store;
            bool changed = false;
            HRESULT hr =
                store.Set(ZCK_TEXT("first::second::a_name_that_is_long_enough"), Of("and a value as long").get(), changed);
            Bstr text;
            if (SUCCEEDED(hr)) hr = store.Get(ZCK_TEXT("first::second::a_name_that_is_long_enough"), text.Put());
            if (SUCCEEDED(hr) && text.view() != ZCK_TEXT("and a value as long")) return E_FAIL;
            if (SUCCEEDED(hr)) hr = store.Set(TextView(), Of("one=1 two='2 and more of it'").get(), changed);
            if (SUCCEEDED(hr)) hr = store.Get(TextView(), text.Put());
            Bstr name;
            int32_t isNode = 0;
            if (SUCCEEDED(hr)) hr = store.GetByIndex(TextView(), 0, name.Put(), text.Put(), &isNode);
            if (SUCCEEDED(hr)) hr = store.Remove(ZCK_TEXT("two"));
            return hr;
        });
    });
}

TEST(TextFailures, TreesAndTheirText) {
    const Text text = TextFromUtf8(kSampleText);
    EachRequestFailsOnce([&] {
        return Guarded([&] {
            const XMLParse::XMLNodePtr node = XMLParse::CoXMLNode::Create(ZCK_TEXT("root"));
            HRESULT hr = XMLParse::ParseXML(*node, text);
            Bstr written;
            if (SUCCEEDED(hr)) hr = XMLParse::WriteXML(*node, written.Put());
            return SUCCEEDED(hr) && written.view() != text ? E_FAIL : hr;
        });
    });
}

TEST(TextFailures, TreesInFiles) {
    const ScratchFolder folder;
    const Text path = TextFromUtf8(folder.Path("tree.xml"));
    folder.Put("tree.xml", kSampleText);
    EachRequestFailsOnce([&] {
        return Guarded([&] {
            const XMLParse::XMLNodePtr node = XMLParse::CoXMLNode::Create(ZCK_TEXT("root"));
            HRESULT hr = XMLParse::LoadFile(*node, path);
            if (SUCCEEDED(hr)) hr = XMLParse::SaveFile(*node, path, false);
            const FailingMemory::Pause pause;
            return folder.Bytes("tree.xml") == kSampleText ? hr : E_FAIL;
        });
    });
}

// A key of a plug-in, out and in again. What fails leaves the key as it was.
TEST(TextFailures, SavedKeys) {
    ComPtr<IZChromaKey> plugin;
    ASSERT_EQ(S_OK, CreateObject<CCoZChromaKey>(nullptr, IID_IZChromaKey, plugin.PutVoid()));
    const auto persist = QueryFor<IZPersist>(plugin.get());
    const CHROMA_KEY_RAW key = SampleKey();
    const Bstr text = Of(kSampleText);
    EachRequestFailsOnce(
        [&] {
            CHROMA_KEY_RAW former = {};
            former.nEdgesSmooth = 7;
            plugin->KeyRawSet(&former);
            Bstr saved;
            HRESULT hr = persist->PersistSaveToString(nullptr, saved.Put(), nullptr);
            if (SUCCEEDED(hr)) hr = persist->PersistLoad(nullptr, text.get(), nullptr);
            CHROMA_KEY_RAW present = {};
            plugin->KeyRawGet(&present);
            return std::memcmp(SUCCEEDED(hr) ? &key : &former, &present, sizeof(key)) == 0 ? hr : E_FAIL;
        },
        {.bMaySucceed = true});    // whether the text is the path of a file may stay unknown
}

}    // namespace
}    // namespace zck::test
