#pragma once

#include <glib-object.h>

#include <memory>
#include <utility>

namespace harbrook::gtk {

/// Owns one reference to a GObject.
template <typename T>
class GObjectPtr {
public:
    GObjectPtr() = default;
    GObjectPtr(std::nullptr_t) {}
    GObjectPtr(const GObjectPtr& other) : object_(other.object_) {
        if (object_) g_object_ref(object_);
    }
    GObjectPtr(GObjectPtr&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    GObjectPtr& operator=(GObjectPtr other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~GObjectPtr() {
        if (object_) g_object_unref(object_);
    }

    /// Takes over a reference that the caller owns (`transfer full`).
    [[nodiscard]] static GObjectPtr adopt(T* object) { return GObjectPtr(object); }
    /// Adds a reference to an object that somebody else owns (`transfer none`).
    [[nodiscard]] static GObjectPtr share(T* object) {
        if (object) g_object_ref(object);
        return GObjectPtr(object);
    }
    /// Takes the first reference of a floating object, such as a widget that was just made.
    [[nodiscard]] static GObjectPtr sink(T* object) {
        if (object) g_object_ref_sink(object);
        return GObjectPtr(object);
    }

    [[nodiscard]] T* get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    /// Gives the reference to the caller.
    [[nodiscard]] T* release() { return std::exchange(object_, nullptr); }

private:
    explicit GObjectPtr(T* object) : object_(object) {}

    T* object_ = nullptr;
};

template <auto free>
struct FreeWith {
    template <typename T>
    void operator()(T* pointer) const {
        free(pointer);
    }
};

using GCharPtr = std::unique_ptr<char, FreeWith<g_free>>;
using GErrorPtr = std::unique_ptr<GError, FreeWith<g_error_free>>;
using GVariantPtr = std::unique_ptr<GVariant, FreeWith<g_variant_unref>>;
using GBytesPtr = std::unique_ptr<GBytes, FreeWith<g_bytes_unref>>;
using GSourcePtr = std::unique_ptr<GSource, FreeWith<g_source_unref>>;

} // namespace harbrook::gtk
