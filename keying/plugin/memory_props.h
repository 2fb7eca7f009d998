// Named text values of one object, kept in memory in the order in which they were first set.
#pragma once

#include <vector>

#include "platform/sync.h"
#include "platform/text.h"
#include "zchromakey/props.h"

namespace zck {

/// A flat store of properties. Names are compared without regard to ASCII case. Any thread may call it.
class CMemoryProps {
public:
    /// Sets or adds a value. `E_INVALIDARG` for an empty name.
    HRESULT Set(TextView name, TextView value);
    /// The value, or `S_FALSE` and an empty text when there is none of that name.
    HRESULT Get(TextView name, Text *value) const;
    int32_t Count() const;
    /// `kErrorInvalidIndex` outside 0 .. count - 1.
    HRESULT GetByIndex(int32_t index, Text *name, Text *value) const;
    /// `E_INVALIDARG` for a name that is not there. "_all_props_" removes everything.
    HRESULT Remove(TextView name);

    /// The value as a truth value or a number, or the given default when there is none of that name.
    bool GetBool(TextView name, bool fallback) const;
    int32_t GetInt(TextView name, int32_t fallback) const;

private:
    struct Entry {
        Text name;
        Text value;
    };

    std::vector<Entry>::const_iterator Find(TextView name) const;

    mutable CriticalSection m_lock;
    std::vector<Entry> m_entries;
};

}    // namespace zck
