#pragma once

#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include <string>
#include <string_view>

namespace mac::test {

// How values are told that binary and XML carry differently: dates exactly or in whole seconds, a keyed archive's
// identifier as one (u5) or as the dictionary that stands for it.
enum class CarriedBy { Binary, XML };

// A property list as text that tells each value's kind, for comparisons:
// {"key":i1,"other":[r0.5,true,d0,<00ff>,"text"]}. Keys stand in the order of their code units; what is not printable
// ASCII as \uXXXX.
std::string dump(id const& propertyList, CarriedBy form = CarriedBy::Binary);

// The outcome of reading bytes as a property list.
struct Reading {
    id list;
    NSPropertyListFormat format{};
    std::string error;
};
Reading readList(std::string_view bytes, NSPropertyListMutabilityOptions option = NSPropertyListImmutable);

// The outcome of writing a list: bytes, or an error.
struct Writing {
    std::string bytes;
    std::string error;
};
Writing writeList(id const& list, NSPropertyListFormat format);

} // namespace mac::test
