#pragma once

#include "tests/macos/running/runtime/References.h"

namespace harbrook::running {

/// A reference that keeps its object. (What stands in for the platform is written without automatic reference
/// counting, which would hide mistakes of the counting itself.)
template <typename Object>
class Kept {
public:
    Kept() = default;
    Kept(Object object) : object_(objc_retain(object)) {}
    Kept(const Kept& other) : Kept(other.object_) {}
    Kept& operator=(const Kept& other) {
        const auto before = object_;
        object_ = objc_retain(other.object_);
        objc_release(before);
        return *this;
    }
    ~Kept() { objc_release(object_); }

    operator Object() const { return object_; }
    [[nodiscard]] Object get() const { return object_; }

private:
    Object object_ = nil;
};

} // namespace harbrook::running
