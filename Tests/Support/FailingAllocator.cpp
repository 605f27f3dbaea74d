#include "Support/FailingAllocator.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>

#if defined(__has_feature)
#define TEST_HAS_FEATURE(x) __has_feature(x)
#else
#define TEST_HAS_FEATURE(x) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || TEST_HAS_FEATURE(address_sanitizer)
// The sanitizer's own allocator stays behind the replaced functions, so that it still checks every access.
#define UNDERLYING(name) __interceptor_##name
#elif defined(__GLIBC__) && !defined(__SANITIZE_THREAD__) && !TEST_HAS_FEATURE(thread_sanitizer) &&                    \
    !TEST_HAS_FEATURE(memory_sanitizer)
#define UNDERLYING(name) __libc_##name
#endif

namespace {

// Allocations come before any constructor and, under a sanitizer, before its own start: plain data, no checks.
thread_local long allowed = -1; // allocations until the next failure; negative when none is wanted
thread_local bool failsOnce = false;
thread_local bool failed = false;

#ifdef UNDERLYING
__attribute__((no_sanitize("address", "undefined"))) bool failsNow() {
    if (allowed < 0 || allowed-- > 0) {
        return false;
    }
    allowed = failsOnce ? -1 : 0;
    failed = true;
    errno = ENOMEM;
    return true;
}
#endif

} // namespace

#ifdef UNDERLYING
extern "C" {

void* UNDERLYING(malloc)(std::size_t size);
void* UNDERLYING(calloc)(std::size_t count, std::size_t size);
void* UNDERLYING(realloc)(void* block, std::size_t size);

__attribute__((no_sanitize("address", "undefined"))) void* malloc(std::size_t size) noexcept {
    return failsNow() ? nullptr : UNDERLYING(malloc)(size);
}

__attribute__((no_sanitize("address", "undefined"))) void* calloc(std::size_t count, std::size_t size) noexcept {
    return failsNow() ? nullptr : UNDERLYING(calloc)(count, size);
}

__attribute__((no_sanitize("address", "undefined"))) void* realloc(void* block, std::size_t size) noexcept {
    return failsNow() ? nullptr : UNDERLYING(realloc)(block, size);
}
}

// A sanitizer's own operator new would not come by malloc.
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

void* operator new(std::size_t size) {
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}
#endif

FailingAllocator::FailingAllocator(long which, Extent_e extent) {
    failed = false;
    failsOnce = extent == Once;
    allowed = which - 1;
}

FailingAllocator::~FailingAllocator() {
    allowed = -1;
}

bool FailingAllocator::hasFailed() {
    return failed;
}

bool FailingAllocator::isAvailable() {
#ifdef UNDERLYING
    return true;
#else
    return false;
#endif
}
