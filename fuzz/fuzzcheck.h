#pragma once
// Invariant checks for the fuzz targets: a broken invariant must stop the run
// with a message, so libFuzzer keeps the input as a crash.

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#define FUZZ_CHECK(condition)                                                                    \
    do {                                                                                         \
        if (!(condition)) {                                                                      \
            std::fprintf(stderr, "%s:%d: invariant broken: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                                        \
        }                                                                                        \
    } while (false)

inline std::string_view fuzzBytes(const unsigned char* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}
