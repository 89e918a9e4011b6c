#pragma once

#include <algorithm>
#include <cstddef>
#include <list>
#include <utility>

/// Keeps the values that were asked for last. Searched in order of use, so meant for a few dozen.
template <typename Key, typename Value>
class RecentCache {
public:
    explicit RecentCache(std::size_t capacity) : m_capacity(capacity) {}

    /// The value kept for `key`, or the one that `make` returns. The reference holds until the
    /// next call.
    template <typename Make>
    const Value& findOrMake(const Key& key, Make make) {
        const auto found = std::find_if(m_entries.begin(), m_entries.end(),
                                        [&key](const auto& entry) { return entry.first == key; });
        if (found != m_entries.end()) {
            m_entries.splice(m_entries.begin(), m_entries, found);
        } else {
            m_entries.emplace_front(key, make());
            if (m_entries.size() > m_capacity) m_entries.pop_back();
        }
        return m_entries.front().second;
    }

private:
    std::size_t m_capacity;
    std::list<std::pair<Key, Value>> m_entries;
};
