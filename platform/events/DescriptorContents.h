#pragma once

#include "platform/events/AEDataModel.h"
#include "platform/events/NSAppleEventDescriptor.h"
#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <span>
#include <vector>

namespace mac {

// A value under its keyword; in a list the keyword is zero.
struct DescriptorEntry {
    AEKeyword keyword{};
    AEDesc desc{};
};

// What a descriptor holds besides its type. Shared by copies until one of them is changed, so an entry is never the
// descriptor it stands in and there are no circles.
struct DescriptorContents {
    enum class Form { Bytes, List, Record, Event };

    Form form{Form::Bytes};
    std::vector<std::byte> bytes{};
    // The items of a list, the fields of a record, the parameters of an event.
    std::vector<DescriptorEntry> entries{};
    // Of an event.
    std::vector<DescriptorEntry> attributes{};
    // At least the number of containers in one another, this one counted; 1 for bytes.
    std::size_t depth{1};

    std::vector<DescriptorEntry>& entriesOrAttributes(bool areAttributes) {
        return areAttributes ? attributes : entries;
    }
};

using DescriptorForm = DescriptorContents::Form;

AEDesc makeDesc(DescType type, std::span<std::byte const> bytes);
AEDesc makeContainer(DescType type, DescriptorForm form);

template <class T>
AEDesc makeDescOf(DescType type, T const& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    return makeDesc(type, std::as_bytes(std::span(&value, 1)));
}

// What the descriptor holds, for reading.
DescriptorContents const& contentsOf(AEDesc const& desc);
// The same for changing: its own copy where others share it.
DescriptorContents& changeableContentsOf(AEDesc& desc);

// The bytes of a descriptor of this type; nothing for another type and for a container.
std::optional<std::span<std::byte const>> bytesOf(AEDesc const& desc, DescType type);

// The value of a descriptor of this type whose data has just the size of one.
template <class T>
std::optional<T> valueOf(AEDesc const& desc, DescType type) {
    std::optional<std::span<std::byte const>> const bytes = bytesOf(desc, type);
    if (!bytes || bytes->size() != sizeof(T)) return std::nullopt;
    std::array<std::byte, sizeof(T)> copy;
    std::ranges::copy(*bytes, copy.begin());
    return std::bit_cast<T>(copy);
}

// The first value under the keyword; null where there is none.
AEDesc const* findEntry(std::span<DescriptorEntry const> entries, AEKeyword keyword);

// Puts a value under the keyword of a record or event, in place of the one that is there. False for anything else, and
// where it would nest too deep, which is logged.
bool putEntry(AEDesc& desc, AEKeyword keyword, AEDesc value, bool isAttribute = false);
// Puts an item in place of the one at the index counted from 1; at the end for 0 and for one past the last. False for
// anything else.
bool putItem(AEDesc& desc, std::int32_t index, AEDesc value);

class NSAppleEventDescriptor::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(AEDesc newDesc) : desc(std::move(newDesc)) {}

    // As the system's tools print it: <NSAppleEventDescriptor: 'utxt'("x")>.
    NSString description() const override;
    id copy() const override { return adopt<NSAppleEventDescriptor>(desc); }

    AEDesc desc;
};

} // namespace mac
