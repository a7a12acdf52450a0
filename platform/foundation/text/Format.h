#pragma once

#include "platform/foundation/objects/Object.h"
#include <algorithm>
#include <span>
#include <string_view>
#include <variant>

namespace mac {

// One argument of a format, with its type: a format may ask for another, never for one that is not there. Text is held
// as a string object, C strings as bytes of a file name.
class FormatArgument {
public:
    // The bits sign-extended to 64, whether the type was signed, and its width in bytes.
    struct Integer {
        std::uint64_t bits;
        bool isSigned;
        std::size_t width;
    };

    // A null pointer to characters is held as a pointer.
    using Value = std::variant<id, Integer, double, void const*>;

    template <class T>
    FormatArgument(T const& value) {
        if constexpr (std::is_array_v<T> && std::is_same_v<std::remove_cv_t<std::remove_extent_t<T>>, char>)
            m_value = text(std::string_view(value, std::find(value, value + std::extent_v<T>, '\0') - value));
        else if constexpr (std::is_convertible_v<T const&, id const&>)
            m_value = id(value);
        else if constexpr (std::is_same_v<T, Nil>)
            m_value = id();
        else if constexpr (std::is_same_v<T, BOOL>)
            m_value = Integer{static_cast<bool>(value) ? 1U : 0U, false, sizeof(int)};
        else if constexpr (std::is_same_v<T, FourCharCode>)
            m_value = Integer{value.value(), false, sizeof(std::uint32_t)};
        else if constexpr (std::is_floating_point_v<T>)
            m_value = static_cast<double>(value);
        else if constexpr (std::is_enum_v<T>)
            m_value =
                Integer{static_cast<std::uint64_t>(value), std::is_signed_v<std::underlying_type_t<T>>, sizeof(T)};
        else if constexpr (std::is_integral_v<T>)
            m_value = Integer{static_cast<std::uint64_t>(value), std::is_signed_v<T>, sizeof(T)};
        else if constexpr (std::is_same_v<T, char*> || std::is_same_v<T, char const*> || std::is_same_v<T, char16_t*> ||
                           std::is_same_v<T, char16_t const*>)
            m_value = value ? Value(text(value)) : Value(static_cast<void const*>(nullptr));
        else if constexpr (std::is_convertible_v<T const&, std::string_view>)
            m_value = text(std::string_view(value));
        else if constexpr (std::is_convertible_v<T const&, std::u16string_view>)
            m_value = text(std::u16string_view(value));
        else
            m_value = static_cast<void const*>(value);
    }

    Value const& value() const { return m_value; }

private:
    static id text(std::string_view bytes);
    static id text(std::u16string_view units);

    Value m_value;
};

// The format with its conversions replaced by the arguments: those of C but %n, and %@, which prints an object's
// description whatever the width and precision; also with positions as in %2$@. No locale plays a part.
// The arguments keep their types: a number of another kind is converted (a real saturates at the ends of what the
// conversion holds), an object or text serves a number conversion by its numeric value, and a number serves %@, %s and
// %S by its digits. A conversion that is not known prints as it stands; a missing or nil argument prints (null), but a
// nil pointer under %p 0x0. A width or precision that would make more than 65,536 characters makes as many. A nil
// format raises NSInvalidArgumentException.
NSString formatString(NSString const& format, std::span<FormatArgument const> arguments);

}
