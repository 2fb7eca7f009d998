// A program of property calls, one a line: a letter for the call, a name, a TAB, a value or an index.
//
//   =a::b<TAB>1    set       ?a    get         -a    remove
//   #a    count    @a<TAB>2  by index          ia<TAB>3    information of a type
//   oa    options with their help              sa<TAB>1    set the option of an index
//   la    the typed reads of an owner
#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "fuzz/support/foreign_text.h"
#include "fuzz/support/trees.h"
#include "platform/object.h"
#include "props/store/props_impl.h"

namespace zck {
namespace {

/// More calls tell no more, and a tree of them all would be walked for each.
constexpr int kCallsMax = 200;
constexpr int32_t kListedMax = 100;

class CObject : public CoObject<IZPropsImpl<CObject>> {
public:
    const CPropsStore &Store() const { return m_props; }
};

struct Call {
    char letter = 0;
    Text name;
    Text value;
    bool hasValue = false;
};

Call CallOf(std::string_view line) {
    Call call;
    call.letter = line.front();
    line.remove_prefix(1);
    const size_t tab = line.find('\t');
    call.name = TextFromUtf8(line.substr(0, tab));
    call.hasValue = tab != std::string_view::npos;
    if (call.hasValue) call.value = TextFromUtf8(line.substr(tab + 1));
    return call;
}

void OneOf(HRESULT hr, std::initializer_list<HRESULT> allowed, const char *what) {
    fuzz::Require(std::find(allowed.begin(), allowed.end(), hr) != allowed.end(), what);
}

/// Both, or neither.
void GivenWith(HRESULT hr, const Bstr &text, const char *what) { fuzz::Require(hr == S_OK || !text, what); }

class Runner {
public:
    Runner() {
        const HRESULT hr = CreateObject<CObject>(nullptr, IID_IZProps, reinterpret_cast<void **>(m_props.Put()));
        fuzz::Require(hr == S_OK, "an object is made");
        m_object = static_cast<CObject *>(m_props.get());
    }

    void Run(const Call &call) {
        const Bstr name(call.name);
        const Bstr value(call.value);
        const int32_t index = IntFromText(call.value);
        switch (call.letter) {
            case '=':
                return Set(name, call.hasValue ? value.get() : nullptr);
            case '?':
                return Get(name);
            case '-':
                return OneOf(m_props->PropsRemove(name.get()), {S_OK, E_INVALIDARG}, "removing has two ends");
            case '#':
                return Count(name);
            case '@':
                return ByIndex(name, index);
            case 'i':
                return Info(name, static_cast<eZInfoType>(index));
            case 'o':
                return Options(name);
            case 's':
                return OneOf(m_props->PropsOptionSetByIndex(name.get(), index), {S_OK, E_INVALIDARG, kErrorInvalidIndex},
                             "an option is set or not");
            case 'l':
                return Read(call.name);
            default:
                return;
        }
    }

    void RequireWhole() { fuzz::RequireWhole(m_object->Store().Root(), SIZE_MAX); }

private:
    static bool IsReserved(TextView name) {
        return EqualNoCase(name, ZCK_TEXT("_info_enum_")) || StartsWithNoCase(name, ZCK_TEXT("dll-"));
    }

    void Set(const Bstr &name, BSTR value) {
        const HRESULT hr = m_props->PropsSet(name.get(), value);
        OneOf(hr, {S_OK, E_INVALIDARG}, "setting has two ends");
        // A child of an index that is not there yet gets the next index there is.
        const bool indexed = name.view().find('(') != TextView::npos;
        if (hr != S_OK || name.view().empty() || IsReserved(name.view()) || indexed) return;
        Bstr got;
        fuzz::Require(m_props->PropsGet(name.get(), got.Put()) == S_OK, "what was set is there");
        // A node without text gives its attributes, and an attribute hides a node of its name.
        const XMLParse::XMLNodePtr root = m_object->Store().Root();
        if (root->NodeFind(name.view()) && (root->AttributeExists(name.view()) || ViewOf(value).empty())) return;
        fuzz::Require(got.view() == ViewOf(value), "what was set comes back");
    }

    void Get(const Bstr &name) {
        Bstr value;
        const HRESULT hr = m_props->PropsGet(name.get(), value.Put());
        OneOf(hr, {S_OK, S_FALSE}, "getting has two ends");
        GivenWith(hr, value, "nothing is given for nothing");
    }

    void Count(const Bstr &name) {
        int32_t count = -1;
        const HRESULT hr = m_props->PropsGetCount(name.get(), &count);
        OneOf(hr, {S_OK, E_INVALIDARG}, "counting has two ends");
        if (hr != S_OK) return;
        for (int32_t i = 0; i <= std::min(count, kListedMax); ++i) {
            Bstr listed;
            Bstr value;
            int32_t isNode = -1;
            const HRESULT at = m_props->PropsGetByIndex(name.get(), i, listed.Put(), value.Put(), &isNode);
            fuzz::Require(at == (i < count ? S_OK : kErrorInvalidIndex), "what is counted is listed");
            if (at == S_OK) fuzz::Require(listed && value && (isNode == 0 || isNode == 1), "an entry is given whole");
        }
    }

    void ByIndex(const Bstr &name, int32_t index) {
        Bstr listed;
        Bstr value;
        const HRESULT hr = m_props->PropsGetByIndex(name.get(), index, listed.Put(), value.Put(), nullptr);
        OneOf(hr, {S_OK, E_INVALIDARG, kErrorInvalidIndex}, "listing has its ends");
        GivenWith(hr, listed, "no name for nothing");
        GivenWith(hr, value, "no value for nothing");
    }

    void Info(const Bstr &name, eZInfoType type) {
        Bstr info;
        const HRESULT hr = m_props->PropsInfoGet(name.get(), type, info.Put());
        OneOf(hr, {S_OK, S_FALSE, E_INVALIDARG}, "information has its ends");
        fuzz::Require((hr == S_OK) == !info.view().empty(), "information is given or not");
    }

    void Options(const Bstr &name) {
        int32_t count = -1;
        const HRESULT hr = m_props->PropsOptionGetCount(name.get(), &count);
        fuzz::Require(hr == (name.view().empty() ? E_INVALIDARG : S_OK), "options are counted");
        if (hr != S_OK) return;
        for (int32_t i = 0; i <= std::min(count, kListedMax); ++i) {
            Bstr option;
            Bstr help;
            const HRESULT at = m_props->PropsOptionGetByIndex(name.get(), i, option.Put(), help.Put());
            fuzz::Require(at == (i < count ? S_OK : kErrorInvalidIndex), "what is counted is listed");
            if (at == S_OK) fuzz::Require(!option.view().empty(), "an option is a word");
        }
        int32_t index = -7;
        Bstr value;
        Bstr help;
        const HRESULT current = m_props->PropsOptionGet(name.get(), &index, value.Put(), help.Put());
        OneOf(current, {S_OK, kErrorFileNotFound}, "the current option is there or not");
        fuzz::Require(index >= -1 && index < std::max(count, 0), "its index is one of the options");
    }

    void Read(TextView name) {
        const CPropsStore &store = m_object->Store();
        store.GetBool(name, true);
        store.GetFloat(name, 1);
        const Text text = store.GetText(name, ZCK_TEXT("none"));
        const int32_t number = store.GetInt(name, 7);
        const bool there = !name.empty() && store.Root()->AttributeExists(name);
        fuzz::Require(number == (there ? IntFromText(text) : 7), "a number is the text's");
        fuzz::Require(there || text == ZCK_TEXT("none"), "a default stands for nothing");
    }

    ComPtr<IZProps> m_props;
    CObject *m_object = nullptr;
};

void Walk(std::string_view program) {
    Runner runner;
    for (int calls = 0; !program.empty() && calls < kCallsMax; ++calls) {
        const size_t end = std::min(program.find('\n'), program.size());
        if (end != 0) runner.Run(CallOf(program.substr(0, end)));
        program.remove_prefix(std::min(end + 1, program.size()));
    }
    runner.RequireWhole();
    runner.Run(CallOf("?"));
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    zck::Walk({reinterpret_cast<const char *>(data), size});
    return 0;
}
