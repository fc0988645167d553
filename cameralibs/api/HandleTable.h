#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <shared_mutex>
#include <utility>
#include <vector>

namespace cameralibs {

using Handle = std::uint64_t;

/// Reserves `count` consecutive handles, unique within the process across all kinds of objects, and returns the first.
[[nodiscard]] inline Handle newHandles(std::uint64_t count = 1)
{
    // Small numbers are never valid handles: wrong arguments tend to be small.
    static std::atomic<Handle> next{0x10000};
    return next.fetch_add(count, std::memory_order_relaxed);
}

/// The live objects of one kind by handle. Thread-safe.
template <class T> class HandleTable {
public:
    /// False once the table is closed.
    [[nodiscard]] bool add(Handle handle, std::shared_ptr<T> object)
    {
        const std::unique_lock lock(m_mutex);
        if (m_closed)
            return false;
        m_objects.emplace(handle, std::move(object));
        return true;
    }

    /// Null for a handle that is unknown, stale or of another kind.
    [[nodiscard]] std::shared_ptr<T> find(Handle handle) const
    {
        const std::shared_lock lock(m_mutex);
        const auto found = m_objects.find(handle);
        return found == m_objects.end() ? nullptr : found->second;
    }

    /// Invalidates the handle. If several threads try at the same time, one gets the object and the others get null.
    [[nodiscard]] std::shared_ptr<T> take(Handle handle)
    {
        const std::unique_lock lock(m_mutex);
        const auto found = m_objects.find(handle);
        if (found == m_objects.end())
            return nullptr;
        std::shared_ptr<T> object = std::move(found->second);
        m_objects.erase(found);
        return object;
    }

    [[nodiscard]] std::vector<std::shared_ptr<T>> all() const
    {
        const std::shared_lock lock(m_mutex);
        std::vector<std::shared_ptr<T>> objects;
        for (const auto& entry : m_objects)
            objects.push_back(entry.second);
        return objects;
    }

    /// Invalidates every handle and returns the objects. Nothing can be added any more.
    [[nodiscard]] std::vector<std::shared_ptr<T>> close()
    {
        const std::unique_lock lock(m_mutex);
        m_closed = true;
        std::vector<std::shared_ptr<T>> objects;
        for (auto& entry : m_objects)
            objects.push_back(std::move(entry.second));
        m_objects.clear();
        return objects;
    }

private:
    mutable std::shared_mutex m_mutex;
    std::map<Handle, std::shared_ptr<T>> m_objects;
    bool m_closed = false;
};

} // namespace cameralibs
