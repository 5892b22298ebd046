// Owner of a system handle.
#pragma once

#include <utility>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace zr {

class Handle {
public:
    Handle() = default;
    explicit Handle(HANDLE handle) : m_handle(handle) {}
    Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, INVALID_HANDLE_VALUE)) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~Handle() { Close(); }

    [[nodiscard]] bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE && m_handle != nullptr; }
    [[nodiscard]] HANDLE Get() const { return m_handle; }
    void Close()
    {
        if (IsOpen()) {
            ::CloseHandle(std::exchange(m_handle, INVALID_HANDLE_VALUE));
        }
    }

private:
    HANDLE m_handle = INVALID_HANDLE_VALUE;
};

}  // namespace zr
