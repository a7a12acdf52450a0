#pragma once

#include "platform/foundation/NSPropertyListSerialization.h"
#include <string>
#include <string_view>

namespace mac::test {

// How dates are told: exactly, or in the whole seconds that XML has.
enum class Dates { Exact, WholeSeconds };

// A property list as text that tells each value's kind, for comparisons:
// {"key":i1,"other":[r0.5,true,d0,<00ff>,"text"]}. Keys stand in the order of their code units; what is not printable
// ASCII as \uXXXX.
std::string dump(id const& propertyList, Dates dates = Dates::Exact);

// What came of reading some bytes as a property list.
struct Reading {
    id list;
    NSPropertyListFormat format{};
    std::string error;
};
Reading readList(std::string_view bytes, NSPropertyListMutabilityOptions option = NSPropertyListImmutable);

// What came of writing a list: bytes, or an error.
struct Writing {
    std::string bytes;
    std::string error;
};
Writing writeList(id const& list, NSPropertyListFormat format);

} // namespace mac::test
