// Memory with an inaccessible page right behind (or right before) the bytes a
// test hands to the library, so that any read outside them crashes the test.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vkptest {

class GuardedBuffer {
public:
    enum class Guard { After, Before };

    // Room for `bytes` bytes placed flush against the guard page. `slack`
    // leaves that many accessible bytes between the data and the guard (for
    // odd-address 16-bit strings, which cannot end on a page boundary).
    GuardedBuffer(size_t bytes, Guard guard = Guard::After, size_t slack = 0);
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    unsigned char* data() const { return data_; }
    size_t size() const { return bytes_; }

    template <class T>
    T* as() const { return reinterpret_cast<T*>(data_); }

    // Copies n elements of src into the buffer (which must hold them) and
    // returns the buffer's start as T*.
    template <class T>
    T* fill(const T* src, size_t n) {
        copy(src, n * sizeof(T));
        return as<T>();
    }

private:
    void copy(const void* src, size_t n);

    unsigned char* region_ = nullptr;
    size_t regionSize_ = 0;
    unsigned char* data_ = nullptr;
    size_t bytes_ = 0;
};

size_t PageSize();

}  // namespace vkptest
