#pragma once
// Room for arrays of many megabytes (a decoded material, a processing map) that
// are filled once and then read.

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace zelko {

struct FreeLargeArray {
    void operator()(void* room) const { std::free(room); }
};

template <class T>
using LargeArray = std::unique_ptr<T[], FreeLargeArray>;

// Uninitialised room for bytes (at least one); throws std::bad_alloc when there is
// none. Large room is asked for in huge pages where the system has them: a fresh
// 4 KB page costs a fault of its own, and those faults are most of the time a
// one-off read or a map spends on memory.
void* allocateLargeArray(std::size_t bytes);

template <class T>
LargeArray<T> makeLargeArray(std::size_t count)
{
    static_assert(std::is_trivially_default_constructible_v<T> && std::is_trivially_destructible_v<T>);
    return LargeArray<T>(static_cast<T*>(allocateLargeArray(count * sizeof(T))));
}

}  // namespace zelko
