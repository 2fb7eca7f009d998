// Text that becomes the key of a keyer, by the door that hosts use. First byte: whether the rest is bytes or units.
#include "fuzz/support/foreign_text.h"
#include "zchromakey/zchromakey.h"

namespace zck {
namespace {

/// One keyer for all inputs: each loading meets the key that the one before left.
IZPersist *Keyer() {
    static IZPersist *const keyer = [] {
        IClassFactory *factory = nullptr;
        fuzz::Require(DllGetClassObject(CLSID_ZChromaKey, IID_IClassFactory, reinterpret_cast<void **>(&factory)) == S_OK,
                      "the class is there");
        IZPersist *made = nullptr;
        fuzz::Require(factory->CreateInstance(nullptr, IID_IZPersist, reinterpret_cast<void **>(&made)) == S_OK,
                      "a keyer is made");
        factory->Release();
        return made;
    }();
    return keyer;
}

Text Saved() {
    Bstr text;
    fuzz::Require(Keyer()->PersistSaveToString(nullptr, text.Put(), nullptr) == S_OK, "every key is saved");
    fuzz::Require(!text.view().empty(), "a saved key has a text");
    return Text(text.view());
}

void LoadBack(TextView saved) {
    fuzz::Require(Keyer()->PersistLoad(nullptr, Bstr(saved).get(), nullptr) == S_OK, "a saved key is loaded");
}

void Walk(TextView text) {
    const Text before = Saved();
    if (FAILED(Keyer()->PersistLoad(nullptr, Bstr(text).get(), nullptr))) {
        fuzz::Require(Saved() == before, "a failed loading changes nothing");
        return;
    }
    const Text first = Saved();
    LoadBack(first);
    const Text second = Saved();
    // A number without end is written as a word, and that word is read as 0.
    const bool endless = first.find(ZCK_TEXT("inf")) != Text::npos;
    fuzz::Require(endless || second == first, "what was saved comes back");
    LoadBack(second);
    fuzz::Require(Saved() == second, "and stays");
}

}    // namespace
}    // namespace zck

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0) return 0;
    const bool units = (data[0] & 1) != 0;
    zck::Walk(units ? zck::fuzz::TextOfUnits(data + 1, size - 1) : zck::fuzz::TextOfBytes(data + 1, size - 1));
    return 0;
}
