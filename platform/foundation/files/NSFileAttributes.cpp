#include "platform/foundation/files/NSFileAttributes.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/numbers/NSNumber.h"

namespace mac {

namespace {

NSNumber numberAt(NSDictionary const& attributes, NSString const& key) {
    return as<NSNumber>(attributes.objectForKey_(key));
}

} // namespace

NSString NSDictionary::fileType() const { return as<NSString>(objectForKey_(NSFileType)); }

unsigned long long NSDictionary::fileSize() const { return numberAt(*this, NSFileSize).unsignedLongLongValue(); }

NSUInteger NSDictionary::filePosixPermissions() const {
    return numberAt(*this, NSFilePosixPermissions).unsignedIntegerValue();
}

NSDate NSDictionary::fileModificationDate() const { return as<NSDate>(objectForKey_(NSFileModificationDate)); }

NSDate NSDictionary::fileCreationDate() const { return as<NSDate>(objectForKey_(NSFileCreationDate)); }

NSString NSDictionary::fileOwnerAccountName() const { return as<NSString>(objectForKey_(NSFileOwnerAccountName)); }

NSString NSDictionary::fileGroupOwnerAccountName() const {
    return as<NSString>(objectForKey_(NSFileGroupOwnerAccountName));
}

unsigned long long NSDictionary::fileSystemNumber() const {
    return numberAt(*this, NSFileSystemNumber).unsignedLongLongValue();
}

unsigned long long NSDictionary::fileSystemFileNumber() const {
    return numberAt(*this, NSFileSystemFileNumber).unsignedLongLongValue();
}

bool NSDictionary::fileIsImmutable() const { return numberAt(*this, NSFileImmutable).boolValue(); }

bool NSDictionary::fileIsAppendOnly() const { return numberAt(*this, NSFileAppendOnly).boolValue(); }

bool NSDictionary::fileExtensionHidden() const { return numberAt(*this, NSFileExtensionHidden).boolValue(); }

} // namespace mac
