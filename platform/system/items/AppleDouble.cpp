#include "platform/system/items/AppleDouble.h"
#include "platform/system/items/AppleDoubleForm.h"
#include "platform/system/items/AttributesOnItem.h"
#include <algorithm>

namespace mac {

namespace {

bool isZero(AppleDouble::FinderInformation const& information) {
    return std::ranges::all_of(information, [](std::byte byte) { return byte == std::byte{0}; });
}

} // namespace

bool AppleDouble::isEmpty() const {
    return isZero(finderInformation) && informationTail.empty() && resourceFork.empty() && attributes.empty() &&
           otherParts.empty();
}

std::array<std::byte, 16> AppleDouble::defaultHomeFileSystem() {
    std::array<std::byte, 16> bytes{};
    std::ranges::copy(std::as_bytes(std::span(appledouble::HomeFileSystem)), bytes.begin());
    return bytes;
}

std::optional<std::span<std::byte const>> AppleDouble::valueOf(std::string_view name) const {
    if (name == XATTR_FINDERINFO_NAME)
        return isZero(finderInformation) ? std::nullopt : std::optional(std::span<std::byte const>(finderInformation));
    if (name == XATTR_RESOURCEFORK_NAME)
        return resourceFork.empty() ? std::nullopt : std::optional(std::span<std::byte const>(resourceFork));
    auto const found = std::ranges::find(attributes, name, &Attribute::name);
    return found == attributes.end() ? std::nullopt : std::optional(std::span<std::byte const>(found->value));
}

std::vector<std::string> AppleDouble::names() const {
    std::vector<std::string> names;
    if (!isZero(finderInformation)) names.emplace_back(XATTR_FINDERINFO_NAME);
    if (!resourceFork.empty() || laterForkSize > 0) names.emplace_back(XATTR_RESOURCEFORK_NAME);
    for (Attribute const& attribute : attributes)
        names.push_back(attribute.name);
    return names;
}

bool AppleDouble::setValue(std::string_view name, std::span<std::byte const> value) {
    std::vector<std::byte> bytes(value.begin(), value.end());
    if (name == XATTR_FINDERINFO_NAME) {
        if (value.size() != FinderInformationSize) return false;
        std::ranges::copy(value, finderInformation.begin());
        return true;
    }
    if (name == XATTR_RESOURCEFORK_NAME) {
        resourceFork = std::move(bytes);
        return true;
    }
    auto const found = std::ranges::find(attributes, name, &Attribute::name);
    if (found != attributes.end())
        found->value = std::move(bytes);
    else
        attributes.push_back({std::string(name), std::move(bytes)});
    return true;
}

bool AppleDouble::removeValue(std::string_view name) {
    if (!valueOf(name)) return false;
    if (name == XATTR_FINDERINFO_NAME)
        finderInformation = {};
    else if (name == XATTR_RESOURCEFORK_NAME)
        resourceFork.clear();
    else
        std::erase_if(attributes, [&](Attribute const& attribute) { return attribute.name == name; });
    return true;
}

} // namespace mac
