#pragma once

#include <utility>

namespace mac {

// An open file of the system, closed with the object. One that could not be opened is none.
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
    // Somebody else closes it.
    int release() { return std::exchange(m_number, -1); }

private:
    int m_number{-1};
};

} // namespace mac
