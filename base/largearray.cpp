#include "base/largearray.h"

#include <algorithm>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace zelko {

namespace {

constexpr std::size_t kHugePage = std::size_t{2} << 20;
constexpr std::size_t kHugePageWorthy = std::size_t{4} << 20;

}  // namespace

void* allocateLargeArray(std::size_t bytes)
{
    bytes = std::max<std::size_t>(bytes, 1);
#if defined(__linux__)
    if (bytes >= kHugePageWorthy) {
        const std::size_t rounded = (bytes + kHugePage - 1) / kHugePage * kHugePage;
        if (void* room = std::aligned_alloc(kHugePage, rounded)) {
            madvise(room, rounded, MADV_HUGEPAGE);  // a hint: without huge pages it is plain memory
            return room;
        }
    }
#endif
    if (void* room = std::malloc(bytes))
        return room;
    throw std::bad_alloc();
}

}  // namespace zelko
