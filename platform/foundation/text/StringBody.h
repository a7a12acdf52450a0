#pragma once

#include "platform/foundation/text/NSString.h"
#include <atomic>
#include <cstring>
#include <string>

namespace mac {

// The code units of an immutable or mutable string, for implementations: which of the two it is, its class says.
class NSString::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(std::u16string units) : m_units(std::move(units)) {}
    // Refers to code units that the caller keeps unchanged while the body lives.
    explicit Body(std::u16string_view borrowed) : m_borrowed(borrowed) {}

    std::u16string_view units() const { return isBorrowed() ? m_borrowed : std::u16string_view(m_units); }
    // What changes is the caller's; the remembered hash is forgotten.
    std::u16string& mutableUnits() {
        m_hash.store(0, std::memory_order_relaxed);
        return m_units;
    }

    bool isEqual(id const& other) const override;
    std::uint64_t hash() const override;
    NSString description() const override;
    id copy() const override;
    id mutableCopy() const override;

private:
    bool isMutable() const;
    bool isBorrowed() const { return m_borrowed.data() != nullptr; }

    std::u16string m_units{};
    // Without data: the units are its own.
    std::u16string_view m_borrowed{};
    // The hash, computed on first need; 0 before that.
    mutable std::atomic<std::uint64_t> m_hash{0};
};

// By bytes: comparing unit by unit is what look-ups by path would spend their time on.
inline bool areSameUnits(std::u16string_view one, std::u16string_view other) {
    return one.size() == other.size() &&
           (one.empty() || std::memcmp(one.data(), other.data(), one.size() * sizeof(char16_t)) == 0);
}

// A new immutable string of the code units.
inline NSString makeString(std::u16string units) { return adopt<NSString>(std::move(units)); }

// Raises NSInvalidArgumentException, naming the message, for nil.
void requireArgument(id const& argument, char const* message);

// Raises NSRangeException, naming the message, unless the range lies within the length.
void checkRange(NSRange range, std::size_t length, char const* message);

}
