// `KeyedList`: elements in order, found by position or by the key of their name.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace zck::XMLParse {

/// Elements of type `T` in order, each with a 64-bit key or with none. Several may bear one key; they keep their order.
///
/// A search takes no memory. Short lists are searched along the elements, longer ones through a balanced tree of keys.
/// Adding throws `std::bad_alloc` and then leaves the list as it was. Not locked.
template <class T>
class KeyedList {
public:
    static constexpr size_t kNone = std::numeric_limits<size_t>::max();

    size_t Size() const noexcept { return m_slots.size(); }
    bool Empty() const noexcept { return m_slots.empty(); }
    T &operator[](size_t position) noexcept { return m_slots[position].element; }
    const T &operator[](size_t position) const noexcept { return m_slots[position].element; }

    /// The position of the `nth` element with this key, or `kNone`.
    size_t Find(uint64_t key, size_t nth = 0) const noexcept {
        if (m_index != nullptr) {
            const auto found = m_index->find(key);
            return found != m_index->end() && nth < found->second.size() ? found->second[nth] : kNone;
        }
        for (size_t i = 0; i < m_slots.size(); ++i) {
            if (m_slots[i].keyed && m_slots[i].key == key && nth-- == 0) return i;
        }
        return kNone;
    }

    void Append(uint64_t key, T element) { Insert(Size(), key, std::move(element)); }
    /// An element that no key finds.
    void AppendUnkeyed(T element) { InsertSlot(Size(), {0, false, std::move(element)}); }
    /// At a position; past the end appends.
    void Insert(size_t position, uint64_t key, T element) { InsertSlot(position, {key, true, std::move(element)}); }
    void InsertUnkeyed(size_t position, T element) { InsertSlot(position, {0, false, std::move(element)}); }

    /// The element at a position gets another key and stays where it is.
    void Rekey(size_t position, uint64_t key) {
        Slot &slot = m_slots[position];
        if (slot.keyed && slot.key == key) return;
        if (m_index != nullptr) {
            IndexAdd(key, position);
            if (slot.keyed) IndexDrop(slot.key, position);
        }
        slot.key = key;
        slot.keyed = true;
    }

    T Remove(size_t position) noexcept {
        T element = std::move(m_slots[position].element);
        if (m_index != nullptr) {
            if (m_slots[position].keyed) IndexDrop(m_slots[position].key, position);
            if (position + 1 != Size()) ShiftIndex(position + 1, -1);
        }
        m_slots.erase(m_slots.begin() + static_cast<std::ptrdiff_t>(position));
        return element;
    }

    void Clear() noexcept {
        m_index.reset();
        m_slots.clear();
    }
    void Swap(KeyedList &other) noexcept {
        m_slots.swap(other.m_slots);
        m_index.swap(other.m_index);
    }

private:
    /// So many elements are searched faster in a row than through the tree.
    static constexpr size_t kSearchedInRow = 16;

    struct Slot {
        uint64_t key;
        bool keyed;
        T element;
    };
    using Positions = std::vector<size_t>;

    void InsertSlot(size_t position, Slot slot) {
        position = std::min(position, Size());
        if (m_slots.size() == m_slots.capacity()) m_slots.reserve(std::max<size_t>(4, 2 * m_slots.size()));
        if (m_index == nullptr && Size() == kSearchedInRow) BuildIndex();
        if (m_index != nullptr) {
            const bool last = position == Size();
            if (!last) ShiftIndex(position, 1);
            if (slot.keyed) {
                try {
                    IndexAdd(slot.key, position);
                } catch (...) {
                    if (!last) ShiftIndex(position + 1, -1);
                    throw;
                }
            }
        }
        m_slots.insert(m_slots.begin() + static_cast<std::ptrdiff_t>(position), std::move(slot));
    }

    void BuildIndex() {
        auto index = std::make_unique<std::map<uint64_t, Positions>>();
        for (size_t i = 0; i < m_slots.size(); ++i) {
            if (m_slots[i].keyed) (*index)[m_slots[i].key].push_back(i);
        }
        m_index = std::move(index);
    }

    void IndexAdd(uint64_t key, size_t position) {
        Positions &positions = (*m_index)[key];
        positions.insert(std::lower_bound(positions.begin(), positions.end(), position), position);
    }

    /// A key that nobody bears any more goes with its last position: names may come and go for as long as a list lives.
    void IndexDrop(uint64_t key, size_t position) noexcept {
        const auto found = m_index->find(key);
        Positions &positions = found->second;
        positions.erase(std::lower_bound(positions.begin(), positions.end(), position));
        if (positions.empty()) m_index->erase(found);
    }

    void ShiftIndex(size_t from, std::ptrdiff_t by) noexcept {
        for (auto &entry : *m_index) {
            for (size_t &position : entry.second) {
                if (position >= from) position += static_cast<size_t>(by);
            }
        }
    }

    std::vector<Slot> m_slots;
    std::unique_ptr<std::map<uint64_t, Positions>> m_index;
};

}    // namespace zck::XMLParse
