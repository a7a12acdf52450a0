#include "pathutils/AliasesAndContents.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/Aliases.h"
#include "platform/files/ItemReferences.h"
#include "scripting/FileReferences.h"
#include <algorithm>

namespace mac {

namespace {

// Disposes of its handle.
class OwnedHandle {
public:
    explicit OwnedHandle(MemoryHandle handle) : m_handle(handle) {}
    ~OwnedHandle() {
        if (m_handle) DisposeHandle(m_handle);
    }
    OwnedHandle(OwnedHandle const&) = delete;
    OwnedHandle& operator=(OwnedHandle const&) = delete;

    MemoryHandle handle() const { return m_handle; }

private:
    MemoryHandle m_handle;
};

} // namespace

NSData pxAliasDataOfPath(NSString receiver) {
    PassingReferences const passing;
    FSRef parent{};
    HFSUniStr255 name{};
    if (!KRPathGetParentFSRef_name_(receiver, &parent, &name)) return nil;
    AliasHandle alias{};
    if (FSNewAliasUnicode({}, &parent, name.length, name.unicode.data(), &alias, {}) != noErr) return nil;
    OwnedHandle const owned(alias);
    return pxDataWithHandle_(alias);
}

NSString pxPathOfAliasData(NSData receiver) { return pxPathOfAliasDataChangedAlias_(receiver, {}); }

NSString pxPathOfAliasDataChangedAlias_(NSData receiver, NSData* changedAlias) {
    if (changedAlias) *changedAlias = nil;
    OwnedHandle const alias(pxCreateHandle(receiver));
    if (!alias.handle()) return nil;
    PassingReferences const passing;
    FSRef target{};
    bool wasChanged = false;
    if (FSResolveAlias({}, alias.handle(), &target, &wasChanged) != noErr) return nil;
    NSString const path = KRCPathWithFSRef_(&target);
    if (!(path == nil) && wasChanged && changedAlias) *changedAlias = pxDataWithHandle_(alias.handle());
    return path;
}

NSData pxDataWithHandle_(MemoryHandle handle) {
    if (!handle || GetHandleSize(handle) < 1) return nil;
    return NSData::dataWithBytes_length_(*handle, static_cast<NSUInteger>(GetHandleSize(handle)));
}

MemoryHandle pxCreateHandle(NSData receiver) {
    if (receiver.length() == 0) return {};
    MemoryHandle const handle = NewHandle(static_cast<std::int32_t>(receiver.length()));
    if (handle) std::ranges::copy(receiver.span(), reinterpret_cast<std::byte*>(*handle));
    return handle;
}

} // namespace mac
