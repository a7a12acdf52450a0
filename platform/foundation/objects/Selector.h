#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace mac {

class NSString;

// The name of a message. Selectors are interned: equal names are one pointer. The empty one is no selector.
class SEL {
public:
    constexpr SEL() = default;
    template <std::size_t N>
    SEL(char const (&name)[N]) : SEL(std::string_view(name, N - 1)) {}
    template <std::size_t N>
    SEL(char (&)[N]) = delete;
    explicit SEL(std::string_view name);
    // The selector if its name is interned already, else no selector: for names from outside, which would otherwise
    // stay in memory for good.
    static SEL ofKnownName(std::string_view name);

    std::string_view name() const { return m_name ? std::string_view(*m_name) : std::string_view(); }
    explicit operator bool() const { return m_name != nullptr; }
    bool operator==(SEL const&) const = default;

private:
    friend struct std::hash<SEL>;
    std::string const* m_name{nullptr};
};

// The selector of that name; nil or the empty string: no selector.
SEL NSSelectorFromString(NSString name);
// The selector's name; nil for no selector.
NSString NSStringFromSelector(SEL selector);

}

template <>
struct std::hash<mac::SEL> {
    std::size_t operator()(mac::SEL const& selector) const noexcept {
        return std::hash<void const*>()(selector.m_name);
    }
};
