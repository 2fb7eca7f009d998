// `NameMap`: named values in order of first insertion, found by the key of their names.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "platform/name_key.h"

namespace zck {

/// Parallel arrays, and an index for more names than are quickly walked. Positions are public and stable between changes;
/// removing moves later entries one place down. Two names with one key are one name. Not for two threads at once.
template <class Value>
class NameMap {
public:
    size_t Count() const { return m_names.size(); }
    const Text &Name(size_t position) const { return m_names[position]; }
    const Value &At(size_t position) const { return m_values[position]; }
    Value &At(size_t position) { return m_values[position]; }

    const Value *Find(TextView name) const {
        const size_t position = PositionOf(NameKey(name));
        return position < Count() ? &m_values[position] : nullptr;
    }

    /// Adds at the end, or replaces the value of an existing name, which keeps its place and spelling. The value that was
    /// replaced is handed back, so that the caller may drop it after leaving its lock. Throws `std::bad_alloc` and is then
    /// unchanged.
    Value Set(TextView name, Value value) {
        const uint64_t key = NameKey(name);
        const size_t position = PositionOf(key);
        if (position < Count()) return std::exchange(m_values[position], std::move(value));
        Text spelling(name);
        Grow(m_names);
        Grow(m_values);
        Grow(m_keys);
        if (position >= kWalked) IndexAdd(key);
        m_names.push_back(std::move(spelling));
        m_values.push_back(std::move(value));
        m_keys.push_back(key);
        return Value();
    }

    /// False when there is no such name; else the value goes to `removed`.
    bool Remove(TextView name, Value &removed) {
        const uint64_t key = NameKey(name);
        const size_t position = PositionOf(key);
        if (position >= Count()) return false;
        removed = std::move(m_values[position]);
        Erase(m_names, position);
        Erase(m_values, position);
        Erase(m_keys, position);
        IndexDrop(key, position);
        return true;
    }

    void Swap(NameMap &other) noexcept {
        m_names.swap(other.m_names);
        m_values.swap(other.m_values);
        m_keys.swap(other.m_keys);
        m_index.swap(other.m_index);
    }

private:
    static constexpr size_t kWalked = 16;

    template <class T>
    static void Grow(std::vector<T> &list) {
        if (list.size() == list.capacity()) list.reserve(std::max<size_t>(4, 2 * list.size()));
    }

    template <class T>
    static void Erase(std::vector<T> &list, size_t position) {
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(position));
    }

    // The count when there is no such key.
    size_t PositionOf(uint64_t key) const {
        if (Count() > kWalked) {
            const auto found = m_index.find(key);
            return found != m_index.end() ? found->second : Count();
        }
        return static_cast<size_t>(std::find(m_keys.begin(), m_keys.end(), key) - m_keys.begin());
    }

    // For the key that comes next. The index stays empty until it is needed.
    void IndexAdd(uint64_t key) {
        std::map<uint64_t, size_t> fresh;
        if (m_index.empty()) {
            for (size_t i = 0; i < Count(); ++i) fresh.emplace(m_keys[i], i);
            fresh.emplace(key, Count());
            m_index.swap(fresh);
        } else {
            m_index.emplace(key, Count());
        }
    }

    void IndexDrop(uint64_t key, size_t position) {
        m_index.erase(key);
        if (Count() <= kWalked) m_index.clear();
        for (auto &entry : m_index) {
            if (entry.second > position) --entry.second;
        }
    }

    std::vector<Text> m_names;
    std::vector<Value> m_values;
    std::vector<uint64_t> m_keys;
    std::map<uint64_t, size_t> m_index;    // positions by key; empty up to `kWalked` names
};

}    // namespace zck
