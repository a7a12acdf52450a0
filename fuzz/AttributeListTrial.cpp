#include "fuzz/Trials.h"
#include "pathutils/ExtendedAttributes.h"
#include "tests/support/TemporaryFolder.h"

namespace mac::fuzz {

namespace {

std::string complaintAboutAttribute(NSString const& path, std::span<std::byte const> bytes) {
    NSData const data = NSData::dataWithBytes(bytes);
    if (!pxSetExtendedAttributeData_forKey_(path, data, "given")) return "the bytes cannot be stored";
    NSData const stored = pxExtendedAttributeDataForKey_(path, "given");
    if (bytes.empty() ? stored != nil : !stored.isEqualToData_(data)) return "the bytes are stored otherwise";
    id const list = pxExtendedAttributeDictionaryForKey_(path, "given");
    if (list == nil) return {};
    if (!pxSetExtendedAttributeDictionary_forKey_(path, list, "again")) return "the list cannot be stored";
    id const again = pxExtendedAttributeDictionaryForKey_(path, "again");
    NSData const written = pxExtendedAttributeDataForKey_(path, "again");
    if (!pxSetExtendedAttributeDictionary_forKey_(path, again, "again")) return "the list cannot be stored twice";
    if (!written.isEqualToData_(pxExtendedAttributeDataForKey_(path, "again"))) return "it changes every time";
    return {};
}

} // namespace

std::string complaintAboutAttributeList(std::span<std::byte const> bytes) {
    static test::TemporaryFolder const folder;
    static std::string const file = folder.makeFile("item", "");
    NSString const path = NSString::stringWithFileSystemRepresentation_(file);
    std::string result = complaintAboutAttribute(path, bytes);
    // Removes the attributes, so that the next input starts without them.
    for (char const* const key : {"given", "again"})
        pxRemoveExtendedAttributeForKey_(path, NSString::stringWithUTF8String_(key));
    if (result.empty() && pxExtendedAttributesKeys(path).count() > 0) return "the attributes cannot be removed";
    return result;
}

} // namespace mac::fuzz
