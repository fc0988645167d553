#pragma once

#include <glib-object.h>

#include <memory>

namespace cameralibs {

struct GObjectUnref {
    void operator()(void* object) const noexcept { g_object_unref(object); }
};

/// Owns one reference to a GObject.
template <class T> using GObjectPointer = std::unique_ptr<T, GObjectUnref>;

} // namespace cameralibs
