// One owner for every kind of system handle.
#pragma once

#include <windows.h>

#include <utility>

namespace Dravel {

// Owns one handle and gives it back by its kind's own call. `Traits` names the type, the value that means
// "none" and the call. Move-only; what it held is given back before it takes another.
template <class Traits>
class unique_handle {
 public:
    using type = typename Traits::type;

    unique_handle() = default;
    explicit unique_handle(type handle) : handle_(handle) {}
    ~unique_handle() { reset(); }
    unique_handle(unique_handle&& other) noexcept : handle_(other.release()) {}
    unique_handle& operator=(unique_handle&& other) noexcept {
        if (this != &other) reset(other.release());
        return *this;
    }

    type get() const { return handle_; }
    explicit operator bool() const { return handle_ != Traits::none(); }
    type release() { return std::exchange(handle_, Traits::none()); }
    // False when the system refused to close what was held.
    bool reset(type handle = Traits::none()) {
        const type old = std::exchange(handle_, handle);
        return old == Traits::none() || Traits::close(old);
    }

 private:
    type handle_ = Traits::none();
};

struct FileHandleTraits {
    using type = HANDLE;
    static type none() { return INVALID_HANDLE_VALUE; }
    static bool close(type handle) { return CloseHandle(handle) != FALSE; }
};
struct KernelHandleTraits {
    using type = HANDLE;
    static type none() { return nullptr; }
    static bool close(type handle) { return CloseHandle(handle) != FALSE; }
};
struct FindHandleTraits {
    using type = HANDLE;
    static type none() { return INVALID_HANDLE_VALUE; }
    static bool close(type handle) { return FindClose(handle) != FALSE; }
};

using unique_file = unique_handle<FileHandleTraits>;      // CreateFile
using unique_kernel = unique_handle<KernelHandleTraits>;  // events, threads, mappings
using unique_find = unique_handle<FindHandleTraits>;      // FindFirstFile

}  // namespace Dravel
