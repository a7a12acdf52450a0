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
#include <cstdio>

namespace mac::fuzz {

namespace {

std::string complaintAboutTypes(NSDictionary const& information) {
    static TypeTree const system = TypeTree::ofSystem();
    TypeTree types = system;
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

// One bundle serves all inputs, under a new name each time: what is known of the bundle at a path is another input's.
std::string complaintAboutBundle(std::span<std::byte const> bytes) {
    static test::TemporaryFolder const folder;
    static unsigned number = 0;
    if (number == 0) folder.makeFile("0.app/Contents/MacOS/A", "");
    std::string const former = folder.path(std::to_string(number) + ".app");
    std::string const bundle = std::to_string(++number) + ".app";
    if (std::rename(former.c_str(), folder.path(bundle).c_str()) != 0) return "the bundle cannot be renamed";
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    folder.makeFile(bundle + "/Contents/Resources/en.lproj/InfoPlist.strings", text);
    return complaintAboutApplication(folder.makeBundle(bundle, text));
}

} // namespace mac::fuzz
