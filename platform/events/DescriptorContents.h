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

// What a descriptor holds besides its type. Copies share it until one of them is changed, so a descriptor never
// contains itself.
struct DescriptorContents {
    enum class Form { Bytes, List, Record, Event };

    Form form{Form::Bytes};
    std::vector<std::byte> bytes{};
    // The items of a list, the fields of a record, the parameters of an event.
    std::vector<DescriptorEntry> entries{};
    // The attributes of an event.
    std::vector<DescriptorEntry> attributes{};
    // At least the depth of containers within each other, this one counted; 1 for bytes.
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
// What the descriptor holds, for changing; copied first if other descriptors share it.
DescriptorContents& changeableContentsOf(AEDesc& desc);

// The bytes of a descriptor of this type; nullopt for another type and for a container.
std::optional<std::span<std::byte const>> bytesOf(AEDesc const& desc, DescType type);

// The value of a descriptor of this type; nullopt for another type and for data of another size than the value's.
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

// Sets the value of a keyword in a record or event, replacing an earlier one. False for other descriptors, and if it
// would nest too deep, which is logged.
bool putEntry(AEDesc& desc, AEKeyword keyword, AEDesc value, bool isAttribute = false);
// Replaces the item of a list at the index, counted from 1; appends for 0 and one past the last. False for other
// indexes and descriptors, and if it would nest too deep, which is logged.
bool putItem(AEDesc& desc, std::int32_t index, AEDesc value);

class NSAppleEventDescriptor::Body : public ObjectBody {
public:
    Body() = default;
    explicit Body(AEDesc newDesc) : desc(std::move(newDesc)) {}

    // In the form of the system's tools: <NSAppleEventDescriptor: 'utxt'("x")>.
    NSString description() const override;
    id copy() const override { return adopt<NSAppleEventDescriptor>(desc); }

    AEDesc desc;
};

} // namespace mac
