// `NameMap`: named values in order of first insertion, found regardless of the case of their names.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "platform/text.h"

namespace zck {

/// Two parallel arrays. Indices are public and stable between changes; removing moves later entries one place down. The
/// few entries of a frame are found by walking. Not for two threads at once.
template <class Value>
class NameMap {
public:
    size_t Count() const { return m_names.size(); }
    const Text &Name(size_t index) const { return m_names[index]; }
    const Value &At(size_t index) const { return m_values[index]; }

    const Value *Find(TextView name) const {
        const size_t index = IndexOf(name);
        return index < Count() ? &m_values[index] : nullptr;
    }

    /// Adds at the end, or replaces the value of an existing name, which keeps its place and spelling. The value that was
    /// replaced is handed back, so that the caller may drop it after leaving its lock. Throws `std::bad_alloc`.
    Value Set(TextView name, Value value) {
        const size_t index = IndexOf(name);
        if (index < Count()) return std::exchange(m_values[index], std::move(value));
        m_names.reserve(Count() + 1);
        m_values.reserve(Count() + 1);
        m_names.emplace_back(name);
        m_values.push_back(std::move(value));
        return Value();
    }

    /// False when there is no such name; else the value goes to `removed`.
    bool Remove(TextView name, Value &removed) {
        const size_t index = IndexOf(name);
        if (index >= Count()) return false;
        removed = std::move(m_values[index]);
        m_names.erase(m_names.begin() + static_cast<std::ptrdiff_t>(index));
        m_values.erase(m_values.begin() + static_cast<std::ptrdiff_t>(index));
        return true;
    }

    void Swap(NameMap &other) noexcept {
        m_names.swap(other.m_names);
        m_values.swap(other.m_values);
    }

private:
    size_t IndexOf(TextView name) const {
        size_t index = 0;
        while (index < Count() && !EqualNoCase(m_names[index], name)) ++index;
        return index;
    }

    std::vector<Text> m_names;
    std::vector<Value> m_values;
};

}    // namespace zck
