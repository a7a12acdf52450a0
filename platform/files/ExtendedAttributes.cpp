#include "platform/files/ExtendedAttributes.h"
#include "platform/system/items/AttributesOnItem.h"
#include "platform/system/items/ItemAttributes.h"
#include <cerrno>
#include <cstring>

namespace mac {

namespace {

SystemError refusal(int code, char const* operation) { return {.code = code, .operation = operation}; }

// The border: the callers' contract is -1 and errno.
std::ptrdiff_t answer(Result<std::size_t> const& length) {
    if (length.hasValue()) return static_cast<std::ptrdiff_t>(length.value());
    errno = length.problem().code;
    return -1;
}

int answer(Result<void> const& done) {
    Result<std::size_t> const length = done.isDone() ? Result<std::size_t>(std::size_t{0}) : done.problem();
    return static_cast<int>(answer(length));
}

LinkAtEnd linkAtEndOf(int options) {
    return (options & XATTR_NOFOLLOW) == 0 ? LinkAtEnd::IsFollowed : LinkAtEnd::IsNotFollowed;
}

Result<OpenItem> openItem(char const* path, int options) {
    if (!path) return refusal(EFAULT, "open");
    return openItemAtPath(path, linkAtEndOf(options));
}

// What a call names: an item, and one of its attributes.
struct NamedAttribute {
    OpenItem item;
    AttributeName name;
};

Result<AttributeName> attributeName(char const* name) {
    if (!name) return refusal(EFAULT, "getxattr");
    return AttributeName::make(name);
}

Result<NamedAttribute> open(char const* path, char const* name, int options) {
    Result<AttributeName> wanted = attributeName(name);
    if (!wanted.hasValue()) return wanted.problem();
    Result<OpenItem> item = openItem(path, options);
    if (!item.hasValue()) return item.problem();
    return NamedAttribute{item.takeValue(), wanted.takeValue()};
}

// Copies the bytes to a buffer; a null buffer takes no bytes and is never too small.
Result<std::size_t> deliver(std::span<std::byte const> bytes, void* buffer, std::size_t size) {
    if (buffer && size < bytes.size()) return refusal(ERANGE, "getxattr");
    if (buffer && !bytes.empty()) std::memcpy(buffer, bytes.data(), bytes.size());
    return bytes.size();
}

Result<std::vector<std::string>> namesOf(char const* path, int options) {
    std::optional<std::vector<std::string>> names = path ? namesAtPath(path) : std::nullopt;
    if (names) return std::move(*names);
    Result<OpenItem> const item = openItem(path, options);
    if (!item.hasValue()) return item.problem();
    return namesOfAttributes(item.value());
}

Result<std::size_t> list(char const* path, char* names, std::size_t size, int options) {
    if ((options & ~XATTR_NOFOLLOW) != 0) return refusal(EINVAL, "listxattr");
    Result<std::vector<std::string>> const all = namesOf(path, options);
    if (!all.hasValue()) return all.problem();
    std::string list;
    for (std::string const& name : all.value())
        list.append(name).push_back('\0');
    return deliver(std::as_bytes(std::span(list)), names, size);
}

Result<std::size_t> get(char const* path, char const* name, void* value, std::size_t size, int options) {
    Result<AttributeName> const wanted = attributeName(name);
    if (!wanted.hasValue()) return wanted.problem();
    std::span<std::byte> const buffer(static_cast<std::byte*>(value), value ? size : 0);
    // To the system an empty buffer is none.
    bool const isUsual = path && (!value || size > 0);
    std::optional<std::size_t> const length =
        isUsual ? valueAtPath(path, wanted.value(), buffer, linkAtEndOf(options)) : std::nullopt;
    if (length) return *length;
    Result<OpenItem> const item = openItem(path, options);
    if (!item.hasValue()) return item.problem();
    if (!value) return sizeOfAttribute(item.value(), wanted.value());
    Result<std::vector<std::byte>> const bytes = readAttribute(item.value(), wanted.value());
    if (!bytes.hasValue()) return bytes.problem();
    return deliver(bytes.value(), value, size);
}

Result<void> set(char const* path, char const* name, std::span<std::byte const> value, int options) {
    constexpr int known = XATTR_NOFOLLOW | XATTR_CREATE | XATTR_REPLACE;
    bool const mustBeNew = (options & XATTR_CREATE) != 0;
    bool const mustExist = (options & XATTR_REPLACE) != 0;
    if ((options & ~known) != 0 || (mustBeNew && mustExist)) return refusal(EINVAL, "setxattr");
    Result<AttributeName> const wanted = attributeName(name);
    if (!wanted.hasValue()) return wanted.problem();
    if (!value.data() && !value.empty()) return refusal(EFAULT, "setxattr");
    if (!wanted.value().accepts(value.size())) return refusal(ERANGE, "setxattr");
    Result<OpenItem> const item = openItem(path, options);
    if (!item.hasValue()) return item.problem();
    AttributeCondition const orAny = mustExist ? AttributeCondition::MustExist : AttributeCondition::Any;
    AttributeCondition const condition = mustBeNew ? AttributeCondition::MustBeNew : orAny;
    return writeAttribute(item.value(), wanted.value(), value, condition);
}

Result<void> remove(char const* path, char const* name, int options) {
    if ((options & ~XATTR_NOFOLLOW) != 0) return refusal(EINVAL, "removexattr");
    Result<NamedAttribute> const attribute = open(path, name, options);
    if (!attribute.hasValue()) return attribute.problem();
    return removeAttribute(attribute.value().item, attribute.value().name);
}

} // namespace

std::ptrdiff_t listxattr(char const* path, char* names, std::size_t size, int options) {
    return answer(list(path, names, size, options));
}

std::ptrdiff_t getxattr(char const* path, char const* name, void* value, std::size_t size, std::uint32_t position,
                        int options) {
    bool const isKnown = (options & ~XATTR_NOFOLLOW) == 0 && position == 0;
    return answer(isKnown ? get(path, name, value, size, options) : refusal(EINVAL, "getxattr"));
}

int setxattr(char const* path, char const* name, void const* value, std::size_t size, std::uint32_t position,
             int options) {
    if (position != 0) return answer(Result<void>(refusal(EINVAL, "setxattr")));
    return answer(set(path, name, {static_cast<std::byte const*>(value), size}, options));
}

int removexattr(char const* path, char const* name, int options) { return answer(remove(path, name, options)); }

} // namespace mac
