#include "fuzz/Trials.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/launchservices/BundleFiles.h"
#include "platform/launchservices/DiskItem.h"
#include "platform/launchservices/DisplayNames.h"
#include "platform/launchservices/ItemInformation.h"
#include "platform/launchservices/TypeIdentifiers.h"
#include "platform/launchservices/TypeTree.h"
#include "tests/support/TemporaryFolder.h"

namespace mac::fuzz {

namespace {

std::string complaintAboutTypes(NSDictionary const& information) {
    TypeTree types = TypeTree::ofSystem();
    types.addDeclarationsIn(information);
    if (!conforms(types, "public.png", "public.image")) return "a type of the system was replaced";
    for (id const& object : as<NSArray>(information.objectForKey_(kUTExportedTypeDeclarationsKey))) {
        NSDictionary const declaration = as<NSDictionary>(object);
        NSString const name = as<NSString>(declaration.objectForKey_(kUTTypeIdentifierKey));
        std::string const identifier = name.UTF8String();
        if (identifier.empty()) continue;
        if (!types.typeOf(identifier)) return "a declared type is not known";
        conforms(types, identifier, "public.item");
    }
    return "";
}

std::string complaintAboutApplication(std::string const& path) {
    Result<DiskItem> const item = diskItemAtPath(path);
    if (!item.hasValue() || !item.value().isApplicationBundle()) return "the bundle is no application";
    if (displayNameOf(item.value()).length() == 0) return "the application has no display name";
    NSString const place = NSString::stringWithFileSystemRepresentation_(path);
    LSItemInfoRecord record;
    if (LSCopyItemInfoForURL(NSURL::fileURLWithPath_(place), kLSRequestAllInfo, &record) != noErr)
        return "the application's information cannot be had";
    NSDictionary const information = bundleInformation(path);
    // NSBundle logs each file that cannot be used, which most inputs are.
    if (information == nil) return "";
    NSBundle const bundle = NSBundle::bundleWithPath_(place);
    if (!information.isEqual_(bundle.infoDictionary())) return "the information file is read in two ways";
    NSString const executable = bundle.executablePath();
    if (executable != nil && !executable.hasPrefix_(place)) return "the program lies outside of the bundle";
    return complaintAboutTypes(information);
}

} // namespace

std::string complaintAboutBundle(std::span<std::byte const> bytes) {
    test::TemporaryFolder const folder;
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    std::string const bundle = folder.makeBundle("A.app", text);
    folder.makeFile("A.app/Contents/Resources/en.lproj/InfoPlist.strings", text);
    folder.makeFile("A.app/Contents/MacOS/A", "");
    return complaintAboutApplication(bundle);
}

} // namespace mac::fuzz
