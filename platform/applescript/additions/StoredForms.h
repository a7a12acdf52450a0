#pragma once

#include "platform/applescript/runtime/ScriptValue.h"
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace mac::applescript {

// Values in files as `write … as integer` leaves them and `read … as integer` finds them. Numbers are big-endian:
// an integer has four bytes, a real eight, a date eight (seconds since 1904, local time), a boolean one. A list or a
// record is a mark, the number of bytes that follow, four of them, and a flat descriptor. Main thread.

// Whether values of the class have such a form.
bool isStoredClass(Code type);

// The bytes of a value of that class; of an integer also those of a real that is a whole number of 32 bits. Throws
// -1700 for another value, -2706 or -2708 for a list that is too deep or too large. REQUIRES: isStoredClass(type).
std::string storedBytes(Value const& value, Code type);

struct StoredValue {
    Value value{};
    // How many of the bytes it takes.
    std::size_t size{0};
};

// The number of bytes at the start of a value that tell its size.
inline constexpr std::size_t BytesBeforeStored = 8;

// How many bytes the value takes that begins with these, of which no more than BytesBeforeStored are looked at: a list
// may say that it takes more than there are. Throws -39 if they end too early to tell, -1702 if no such value begins
// with them. REQUIRES: isStoredClass(type).
std::size_t storedSize(std::string_view beginning, Code type);

// The value at the beginning of the bytes, which are not trusted. Throws -39 for bytes that end too early, -1702 for
// bytes that hold no such value. REQUIRES: isStoredClass(type).
StoredValue storedValueIn(std::string_view bytes, Code type);

// Scripts in files as `store script` leaves them: a line "%Framekeeper script 1, N bytes", a line feed, and the N bytes
// of the script's source text in UTF-8. The number before the comma is the form's version; files of version 1 stay
// readable. No source text begins with a percent sign. Main thread.

// More than any script has; what claims to be a larger one is not read. In bytes, without the line.
inline constexpr std::size_t MostScriptBytes = std::size_t{4} << 20;

// The bytes of a file with that source. Throws -2708 for too much of it, -1700 for text that UTF-8 cannot hold (a lone
// surrogate).
std::string storedScript(std::u16string const& source);

// The source in such a file, whose bytes are not trusted; nullopt for bytes of another kind. Throws -39 for bytes that
// end too early, -1702 for ones that are no script of a version known here, -2708 for too many of them.
std::optional<std::u16string> sourceInStoredScript(std::string_view bytes);

} // namespace mac::applescript
