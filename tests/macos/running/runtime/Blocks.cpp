#include "tests/macos/running/runtime/References.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

// Blocks by clang's published layout. A copy on the heap counts among the living objects.

namespace {

struct Descriptor {
    unsigned long reserved;
    unsigned long size;
    void (*copy)(void* to, const void* from);
    void (*dispose)(const void* block);
};

struct Block {
    void* isa;
    int flags;
    int holders;
    void (*invoke)(void*);
    Descriptor* descriptor;
};

constexpr int hasCopyAndDispose = 1 << 25;
constexpr int fieldIsObject = 3;
constexpr int fieldIsBlock = 7;

} // namespace

extern "C" {

void* _NSConcreteStackBlock[32];
void* _NSConcreteGlobalBlock[32];
void* _NSConcreteMallocBlock[32];

void* _Block_copy(const void* from) {
    const auto* const block = static_cast<const Block*>(from);
    if (!block || block->isa == _NSConcreteGlobalBlock) return const_cast<void*>(from);
    if (block->isa == _NSConcreteMallocBlock) {
        ++static_cast<Block*>(const_cast<void*>(from))->holders;
        return const_cast<void*>(from);
    }
    auto* const copy = static_cast<Block*>(std::malloc(block->descriptor->size));
    std::memcpy(copy, block, block->descriptor->size);
    copy->isa = _NSConcreteMallocBlock;
    copy->holders = 1;
    if (copy->flags & hasCopyAndDispose) copy->descriptor->copy(copy, block);
    harbrook::running::noteBlock(copy, true);
    return copy;
}

void _Block_release(const void* from) {
    auto* const block = static_cast<Block*>(const_cast<void*>(from));
    if (!block || block->isa != _NSConcreteMallocBlock || --block->holders > 0) return;
    if (block->flags & hasCopyAndDispose) block->descriptor->dispose(block);
    harbrook::running::noteBlock(block, false);
    std::free(block);
}

void _Block_object_assign(void* place, const void* object, int flags) {
    if ((flags & (fieldIsObject | fieldIsBlock)) == 0) {
        std::fputs("a block captures a variable that it may change, which nothing here supports\n", stderr);
        std::abort();
    }
    *static_cast<void**>(place) = objc_retain(static_cast<id>(const_cast<void*>(object)));
}

void _Block_object_dispose(const void* object, int flags) {
    if (flags & (fieldIsObject | fieldIsBlock)) objc_release(static_cast<id>(const_cast<void*>(object)));
}
}
