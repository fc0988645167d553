#pragma once

#include <glib-object.h>

#include <memory>

namespace cameralibs {

struct GObjectUnref {
    void operator()(void* object) const noexcept { g_object_unref(object); }
};

/// Owns one reference to a GObject.
template <class T> using GObjectPointer = std::unique_ptr<T, GObjectUnref>;

/// Owns a GError, or nothing after a success. A class instead of a unique_ptr, because C++17 cannot pass one as an out
/// parameter.
class GErrorPointer {
public:
    GErrorPointer() noexcept = default;
    explicit GErrorPointer(GError* error) noexcept
        : m_error(error)
    {
    }
    GErrorPointer(const GErrorPointer&) = delete;
    GErrorPointer& operator=(const GErrorPointer&) = delete;
    ~GErrorPointer() { g_clear_error(&m_error); }

    /// For a function's `GError**` parameter. Frees an earlier error first, because GLib wants the parameter empty.
    [[nodiscard]] GError** out() noexcept
    {
        g_clear_error(&m_error);
        return &m_error;
    }

    [[nodiscard]] explicit operator bool() const noexcept { return m_error != nullptr; }
    [[nodiscard]] const GError* get() const noexcept { return m_error; }
    [[nodiscard]] const GError* operator->() const noexcept { return m_error; }

private:
    GError* m_error = nullptr;
};

} // namespace cameralibs
