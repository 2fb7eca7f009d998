// The key object as this program uses it: one reference picture, one key, and its history.
#pragma once

#include <string>

#include "hosts/zkey/plugin_door.h"

namespace zkey {

/// What an operation answered. A refused pick can come with a picture, a stored adjustment without one.
struct EditResult {
    HRESULT status = S_OK;
    Ref<IUnknown> picture;
};

class KeyEditor {
public:
    /// Starts from the keyer's key.
    KeyEditor(Keyer &keyer, IZFrame *reference);

    /// `options` are name=value pairs of the library.
    EditResult Detect(const std::string &options);
    EditResult Add(int32_t x, int32_t y, const std::string &options);
    EditResult Exclude(int32_t x, int32_t y, const std::string &options);
    EditResult AddRect(int32_t left, int32_t top, int32_t right, int32_t bottom);
    EditResult Adjust(eCK_Adjust what, double value);
    EditResult Back();
    EditResult Forward();
    EditResult Reset();
    EditResult Preview();

    CHROMA_KEY_RAW Key() const;
    double Adjustment(eCK_Adjust what) const;
    IZKey *Object() const { return m_key.get(); }

    /// Saved states, and the place of the walk among them: -1 at the head. The library does not tell; they follow from what
    /// was done.
    int32_t HistorySize() const { return m_size; }
    int32_t HistoryPosition() const { return m_position; }

private:
    EditResult Edited(EditResult result);

    Ref<IZKey> m_key;
    int32_t m_size = 1;    // the state before the keyer's key
    int32_t m_position = -1;
};

}    // namespace zkey
