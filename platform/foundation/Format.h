#pragma once

#include "platform/foundation/Object.h"
#include <span>
#include <string>
#include <variant>

namespace mac {

// One argument of a format, with its type: a format may ask for another, never for one that is not there.
class FormatArgument {
public:
    template<class T>
    FormatArgument(T const& value)
    {
        if constexpr (std::is_convertible_v<T const&, id const&>)
            m_value = static_cast<id const&>(value);
        else if constexpr (std::is_same_v<T, Nil>)
            m_value = id();
        else if constexpr (std::is_same_v<T, BOOL>)
            m_value = Integer { static_cast<bool>(value) ? 1U : 0U, false, sizeof(int) };
        else if constexpr (std::is_same_v<T, FourCharCode>)
            m_value = Integer { value.value(), false, sizeof(std::uint32_t) };
        else if constexpr (std::is_floating_point_v<T>)
            m_value = static_cast<double>(value);
        else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>)
            m_value = Integer { static_cast<std::uint64_t>(static_cast<std::int64_t>(value)), isSigned<T>(), sizeof(T) };
        else if constexpr (std::is_convertible_v<T const&, std::string_view>)
            m_value = std::string(std::string_view(value));
        else if constexpr (std::is_convertible_v<T, char const*>)
            m_value = value ? Text(std::string(value)) : Text(static_cast<void const*>(nullptr));
        else
            m_value = static_cast<void const*>(value);
    }

    // The bits sign-extended to 64, whether the type was signed, and its width in bytes.
    struct Integer {
        std::uint64_t bits;
        bool isSigned;
        std::size_t width;
    };
    using Text = std::variant<id, Integer, double, std::string, void const*>;

    Text const& value() const { return m_value; }

private:
    template<class T>
    static constexpr bool isSigned()
    {
        if constexpr (std::is_enum_v<T>)
            return std::is_signed_v<std::underlying_type_t<T>>;
        else
            return std::is_signed_v<T>;
    }

    Text m_value;
};

// The format with its conversions replaced by the arguments: those of C (but no %n) and %@, which prints an object's
// description, also with positions as in %2$@. An object argument serves a number conversion by its value and a C string
// serves %@; a conversion that is not known prints as it stands, a missing or nil argument as (null).
NSString formatString(NSString const& format, std::span<FormatArgument const> arguments);

}
