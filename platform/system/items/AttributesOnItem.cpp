#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/AppleDoubleForm.h"
#include "platform/system/items/AttributeNames.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/xattr.h>

namespace mac {

namespace {

constexpr std::string_view Namespace = "user.";
// What the system takes for a name, and for all names of an item.
constexpr std::size_t LongestSystemName = 255;
constexpr std::size_t LargestSystemList = 65536;

int failure(int errorNumber) {
    errno = errorNumber;
    return -1;
}

std::ptrdiff_t systemValue(OpenItem const& item, AttributeName const& name, void* value, std::size_t size) {
    if (name.onSystem.empty()) return failure(ENODATA);
    return ::getxattr(item.systemPath().c_str(), name.onSystem.c_str(), value, size);
}

} // namespace

bool AttributeName::isFinderInformation() const { return shown == XATTR_FINDERINFO_NAME; }

bool AttributeName::isResourceFork() const { return shown == XATTR_RESOURCEFORK_NAME; }

std::optional<AttributeName> attributeName(char const* name) {
    std::size_t const length = name ? std::strlen(name) : 0;
    if (length > 0 && Namespace.size() + length <= LongestSystemName)
        return AttributeName{name, std::string(Namespace) + name};
    if (length > 0 && length <= appledouble::LongestName) return AttributeName{name, {}};
    if (!name)
        errno = EFAULT;
    else
        errno = length == 0 ? EINVAL : ENAMETOOLONG;
    return std::nullopt;
}

bool isNothing(AttributeName const& name, std::span<std::byte const> value) {
    if (name.isResourceFork()) return value.empty();
    return name.isFinderInformation() && value.size() == AppleDouble::FinderInformationSize &&
           std::ranges::all_of(value, [](std::byte byte) { return byte == std::byte{0}; });
}

bool holdsNothing(OpenItem const& item, AttributeName const& name) {
    if (!name.isFinderInformation() && !name.isResourceFork()) return false;
    AppleDouble::FinderInformation bytes{};
    std::ptrdiff_t const length = systemValue(item, name, bytes.data(), bytes.size());
    return length >= 0 && isNothing(name, std::span(bytes).first(static_cast<std::size_t>(length)));
}

std::ptrdiff_t valueOnItem(OpenItem const& item, AttributeName const& name, void* value, std::size_t size) {
    if (holdsNothing(item, name)) return failure(ENODATA);
    if (value && size > 0) return systemValue(item, name, value, size);
    // The system takes a size of 0 for the question how long it is.
    std::ptrdiff_t const length = systemValue(item, name, nullptr, 0);
    return value && length > 0 ? failure(ERANGE) : length;
}

int removeOnItem(OpenItem const& item, AttributeName const& name) {
    if (name.onSystem.empty()) return failure(ENODATA);
    return ::removexattr(item.systemPath().c_str(), name.onSystem.c_str());
}

int writeOnItem(OpenItem const& item, AttributeName const& name, std::span<std::byte const> value, int systemOptions) {
    if (name.onSystem.empty()) return failure(E2BIG);
    return ::setxattr(item.systemPath().c_str(), name.onSystem.c_str(), value.data(), value.size(), systemOptions);
}

std::optional<std::vector<std::string>> namesOnItem(OpenItem const& item) {
    std::vector<char> list(LargestSystemList);
    ssize_t const length = ::listxattr(item.systemPath().c_str(), list.data(), list.size());
    std::vector<std::string> names;
    if (length < 0) return errno == EOPNOTSUPP ? std::optional(names) : std::nullopt;
    char const* const end = list.data() + length;
    for (char const* place = list.data(); place < end;) {
        std::string_view const name(place, static_cast<std::size_t>(std::find(place, end, '\0') - place));
        if (name.size() > Namespace.size() && name.starts_with(Namespace))
            names.emplace_back(name.substr(Namespace.size()));
        place += name.size() + 1;
    }
    std::erase_if(names, [&](std::string const& name) { return holdsNothing(item, *attributeName(name.c_str())); });
    return names;
}

} // namespace mac
