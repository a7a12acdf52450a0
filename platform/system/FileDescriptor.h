#pragma once

#include <utility>

namespace mac {

// Owns an open file descriptor and closes it. Movable; isOpen() is false after a move and for the default value.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : m_number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(m_number, other.m_number);
        return *this;
    }
    FileDescriptor(FileDescriptor const&) = delete;
    FileDescriptor& operator=(FileDescriptor const&) = delete;
    ~FileDescriptor();

    bool isOpen() const { return m_number >= 0; }
    int number() const { return m_number; }
    // Releases ownership.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number{-1};
};

} // namespace mac
