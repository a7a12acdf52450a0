#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>

namespace mac {

// The null object. Every handle compares with it and converts from it; 0 and nullptr do not.
struct Nil {
    explicit constexpr Nil(int) {}
};
inline constexpr Nil nil{0};

// A truth value of an interface. It takes exactly a bool, so that no pointer, number or handle becomes one unseen.
class BOOL {
public:
    template <std::same_as<bool> T>
    constexpr BOOL(T value) : m_value(value) {}
    explicit constexpr operator bool() const { return m_value; }
    constexpr bool operator!() const { return !m_value; }

private:
    bool m_value;
};
inline constexpr BOOL YES{true};
inline constexpr BOOL NO{false};

// The widths are those of the 32-bit interfaces, whatever the machine.
using NSInteger = std::int32_t;
using NSUInteger = std::uint32_t;
using NSTimeInterval = double;
using unichar = char16_t;

inline constexpr NSUInteger NSNotFound = 0x7FFFFFFF;

struct NSRange {
    NSUInteger location{0};
    NSUInteger length{0};

    constexpr bool operator==(NSRange const&) const = default;
};

enum NSComparisonResult : NSInteger {
    NSOrderedAscending = -1,
    NSOrderedSame = 0,
    NSOrderedDescending = 1,
};

// A four-character code such as 'aevt', most significant character first.
class FourCharCode {
public:
    constexpr FourCharCode() = default;
    explicit constexpr FourCharCode(std::uint32_t value) : m_value(value) {}
    explicit consteval FourCharCode(char const (&text)[5]) {
        for (std::size_t index = 0; index < 4; ++index)
            m_value = m_value << 8 | static_cast<unsigned char>(text[index]);
    }
    constexpr std::uint32_t value() const { return m_value; }
    constexpr bool operator==(FourCharCode const&) const = default;

private:
    std::uint32_t m_value{0};
};

}
