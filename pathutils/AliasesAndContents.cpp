#include "pathutils/AliasesAndContents.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/Forks.h"
#include "platform/files/aliases/Aliases.h"
#include "platform/files/references/ItemReferences.h"
#include "platform/foundation/collections/WordSum.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/system/FilePieces.h"
#include "scripting/FileReferences.h"
#include <algorithm>
#include <limits>

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

// A fork that is open for reading; its number is -1 if it could not be opened.
class OpenFork {
public:
    OpenFork(FSRef const* file, BOOL dataFork) {
        HFSUniStr255 name{};
        OSErr const named = dataFork ? FSGetDataForkName(&name) : FSGetResourceForkName(&name);
        if (named != noErr || FSOpenFork(file, name.length, name.unicode.data(), fsRdPerm, &m_number) != noErr)
            m_number = -1;
    }
    ~OpenFork() { FSCloseFork(m_number); }
    OpenFork(OpenFork const&) = delete;
    OpenFork& operator=(OpenFork const&) = delete;

    std::int16_t number() const { return m_number; }

private:
    std::int16_t m_number{-1};
};

bool areForksEqual(std::int16_t first, std::int16_t second) {
    // By design the first fork's size is compared with itself, so that it matters only whether it can be told: forks
    // of different sizes differ where the shorter one ends.
    std::int64_t size = 0;
    std::int64_t otherSize = 0;
    if (FSGetForkSize(first, &size) != noErr || FSGetForkSize(first, &otherSize) != noErr || size != otherSize)
        return false;
    // Linux: in larger blocks than the usual 1,024 bytes, which takes fewer calls and changes no answer.
    return haveEqualBytes(first, second);
}

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
    // A handle's size is a signed number of 32 bits.
    if (receiver.length() == 0 || receiver.length() > std::numeric_limits<std::int32_t>::max()) return {};
    MemoryHandle handle = NewHandle(static_cast<std::int32_t>(receiver.length()));
    if (handle) std::ranges::copy(receiver.span(), reinterpret_cast<std::byte*>(*handle));
    return handle;
}

bool pxExchangeFileWith_(NSString receiver, NSString otherPath) {
    PassingReferences const passing;
    FSRef file{};
    FSRef other{};
    return KRPathGetFSRef_traverseLink_(receiver, &file, NO) && KRPathGetFSRef_traverseLink_(otherPath, &other, NO) &&
           FSExchangeObjects(&file, &other) == noErr;
}

bool pxIsFork_equalToFork_dataFork_(FSRef const* first, FSRef const* second, BOOL dataFork) {
    if (!first || !second) return false;
    OpenFork const one(first, dataFork);
    OpenFork const other(second, dataFork);
    return one.number() < 0 || areForksEqual(one.number(), other.number());
}

bool pxIsContentsOfFile_equalToFile_(FSRef const* first, FSRef const* second) {
    return pxIsFork_equalToFork_dataFork_(first, second, YES) && pxIsFork_equalToFork_dataFork_(first, second, NO);
}

bool pxPathHasEqualContentsWithPath_(NSString receiver, NSString otherPath) {
    PassingReferences const passing;
    FSRef file{};
    FSRef other{};
    return KRPathGetFSRef_traverseLink_(receiver, &file, NO) && KRPathGetFSRef_traverseLink_(otherPath, &other, NO) &&
           pxIsContentsOfFile_equalToFile_(&file, &other);
}

int pxChecksumOfPath(NSString receiver) {
    std::optional<std::string> const path = receiver.fileSystemRepresentation();
    if (!path) return 0;
    std::uint32_t sum = 0;
    Result<void> const read =
        readFileInPieces(*path, [&](std::span<std::byte const> piece) { sum += sumOfWords(piece); });
    return read.isDone() ? checksumOfWordSum(sum) : 0;
}

NSDate pxModificationDateOfPath(NSString receiver) {
    NSString const path = receiver.stringByStandardizingPath();
    NSDictionary const attributes = NSFileManager::defaultManager().fileAttributesAtPath_traverseLink_(path, NO);
    return as<NSDate>(attributes.objectForKey_(NSFileModificationDate));
}

} // namespace mac
