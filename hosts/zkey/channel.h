// A bounded queue between two threads. Its bound is what keeps a fast reader from filling memory.
#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace zkey {

template <class T>
class Channel {
public:
    explicit Channel(std::size_t capacity) : m_capacity(capacity) {}

    /// Waits for room. False when the other side has given up; the item is then dropped.
    bool Push(T item) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_items.size() < m_capacity || m_cancelled; });
        if (m_cancelled) return false;
        m_items.push_back(std::move(item));
        m_changed.notify_all();
        return true;
    }

    /// Waits for an item. Empty when the sender has closed and everything was taken, or when either side gave up.
    std::optional<T> Pop() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return !m_items.empty() || m_closed || m_cancelled; });
        if (m_cancelled || m_items.empty()) return std::nullopt;
        std::optional<T> item(std::move(m_items.front()));
        m_items.pop_front();
        m_changed.notify_all();
        return item;
    }

    /// No more items will come.
    void Close() { Set(m_closed); }
    /// Gives up: both sides come back at once.
    void Cancel() { Set(m_cancelled); }

private:
    void Set(bool &flag) {
        const std::lock_guard lock(m_mutex);
        flag = true;
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<T> m_items;
    std::size_t m_capacity;
    bool m_closed = false;
    bool m_cancelled = false;
};

}    // namespace zkey
