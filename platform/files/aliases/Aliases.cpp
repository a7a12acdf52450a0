#include "platform/files/aliases/Aliases.h"
#include "platform/files/aliases/AliasRecord.h"
#include "platform/files/references/FileStatuses.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/files/references/ItemReferences.h"
#include <algorithm>
#include <cerrno>

namespace mac {

namespace {

MemoryHandle handleWith(std::span<std::byte const> bytes) {
    MemoryHandle handle = NewHandle(static_cast<std::int32_t>(bytes.size()));
    if (handle) std::ranges::copy(bytes, reinterpret_cast<std::byte*>(*handle));
    return handle;
}

std::span<std::byte const> bytesIn(AliasHandle alias) {
    return {reinterpret_cast<std::byte const*>(*alias), static_cast<std::size_t>(GetHandleSize(alias))};
}

bool setBytes(AliasHandle alias, std::span<std::byte const> bytes) {
    SetHandleSize(alias, static_cast<std::int32_t>(bytes.size()));
    if (MemError() != noErr) return false;
    std::ranges::copy(bytes, reinterpret_cast<std::byte*>(*alias));
    return true;
}

Result<OpenItem> openTarget(FSRef const& folder, std::u16string_view name) {
    if (folder == FSRef{} && name.empty()) return openItemAtPath("/", LinkAtEnd::IsNotFollowed);
    std::optional<std::string> const bytes = fileNameOfHFSName(name);
    if (!bytes) return SystemError{.code = ENOENT, .operation = "open"};
    return openItemInFolder(folder, *bytes);
}

} // namespace

OSErr FSNewAliasUnicode(FSRef const* /*fromFile*/, FSRef const* targetParentRef, std::uint32_t targetNameLength,
                        unichar const* targetName, AliasHandle* inAlias, bool* isDirectory) {
    if (!targetParentRef || !inAlias || (!targetName && targetNameLength > 0)) return paramErr;
    Result<OpenItem> const item = openTarget(*targetParentRef, {targetName, targetNameLength});
    if (!item.hasValue()) return statusOf(item.problem(), FileOperation::Finding);
    Result<AliasRecord> const record = aliasRecordOf(item.value());
    if (!record.hasValue()) return statusOf(record.problem(), FileOperation::Finding);
    MemoryHandle handle = handleWith(record.value().bytes());
    if (!handle) return memFullErr;
    *inAlias = handle;
    if (isDirectory) *isDirectory = record.value().kind == AliasRecord::Kind::Folder;
    return noErr;
}

OSErr FSResolveAlias(FSRef const* /*fromFile*/, AliasHandle alias, FSRef* target, bool* wasChanged) {
    if (wasChanged) *wasChanged = false;
    if (!target || !wasChanged || GetHandleSize(alias) == 0) return paramErr;
    std::optional<AliasRecord> const record = AliasRecord::read(bytesIn(alias));
    if (!record) return paramErr;
    Result<FoundAlias> const found = findAlias(*record);
    if (!found.hasValue()) return statusOf(found.problem(), FileOperation::Finding);
    Result<FSRef> const reference = referenceToPath(found.value().path, LinkAtEnd::IsNotFollowed);
    if (!reference.hasValue()) return statusOf(reference.problem(), FileOperation::Finding);
    if (found.value().renewed && !setBytes(alias, found.value().renewed->bytes())) return memFullErr;
    *target = reference.value();
    *wasChanged = found.value().renewed.has_value();
    return noErr;
}

} // namespace mac
