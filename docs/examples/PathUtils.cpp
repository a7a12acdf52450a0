#include "docs/examples/Example.h"
#include "pathutils/AliasesAndContents.h"
#include "pathutils/BundleVersions.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "pathutils/PXFileManagerHandler.h"
#include "pathutils/PathRelations.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSFileManager.h"
#include <span>

using namespace mac;

namespace examples {

namespace {

NSData dataOf(std::string_view text) { return NSData::dataWithBytes(std::as_bytes(std::span(text))); }

// A file with this text; answers its path.
NSString fileIn(NSString const& folder, NSString const& name, std::string_view text) {
    NSString const path = folder.stringByAppendingPathComponent_(name);
    expect(dataOf(text).writeToFile_atomically_(path, NO));
    return path;
}

// pathutils/BundleVersions: versions are compared number by number, not as text.
void showBundleVersions() {
    expect(pxVersionCompare_("2.10", "2.9") > 0);
    expect(pxTrimmedVersion("2.1.0").isEqualToString_("2.1"));
}

// pathutils/PathRelations: below means below by whole names.
void showPathRelations(NSString const& folder) {
    NSString const file = fileIn(folder, "letter.txt", "Dear Anna");
    expect(pxIsChildOf_(file, folder));
    expect(!pxIsChildOf_(folder, file));
    expect(pxIsEqualToPath_(pxParentPathOfPath(file), folder));
}

// pathutils/FileOperations: what fails leaves everything as it was and answers nil, NO or a message.
void showFileOperations(NSString const& folder) {
    NSString const file = fileIn(folder, "draft.txt", "Dear Anna");
    NSString const renamed = pxRenameTo_keepExtension_(file, "final", YES).stringByExpandingTildeInPath();
    expect(renamed.lastPathComponent().isEqualToString_("final.txt"));
    expect(pxRemoveFile(renamed));
    expect(pxRemoveFile2(renamed) != nil);
}

// pathutils/PXFileManagerHandler: keeps why a file manager stopped.
void showFileManagerHandler(NSString const& folder) {
    PXFileManagerHandler const handler = PXFileManagerHandler::alloc();
    NSFileManager const manager = NSFileManager::defaultManager();
    NSString const missing = folder.stringByAppendingPathComponent_("missing");
    expect(!manager.removeFileAtPath_handler_(missing, handler) || handler.errorInfo() == nil);
}

// pathutils/ExtendedAttributes: data by name; nil if the file has none of that name.
void showExtendedAttributes(NSString const& folder) {
    NSString const file = fileIn(folder, "coloured.txt", "");
    if (!pxSetExtendedAttributeData_forKey_(file, dataOf("blue"), "com.example.colour")) return;
    expect(pxExtendedAttributeDataForKey_(file, "com.example.colour").isEqualToData_(dataOf("blue")));
    expect(pxRemoveExtendedAttributeForKey_(file, "com.example.colour"));
    expect(pxExtendedAttributeDataForKey_(file, "com.example.colour") == nil);
}

// pathutils/FinderMetadata: how many items a folder holds.
void showFinderMetadata(NSString const& folder) {
    NSString const box = folder.stringByAppendingPathComponent_("box");
    expect(pxCreateFolder(box));
    fileIn(box, "one", "");
    std::uint32_t items = 0;
    expect(pxValenceOfPath_(box, &items) && items == 1);
}

// pathutils/AliasesAndContents: an alias finds its item after it has moved.
void showAliasesAndContents(NSString const& folder) {
    NSString const file = fileIn(folder, "here.txt", "the same text");
    NSData const alias = pxAliasDataOfPath(file);
    NSString const moved = pxRenameTo_keepExtension_(file, "there", YES).stringByExpandingTildeInPath();
    expect(pxPathOfAliasData(alias).isEqualToString_(moved));
    expect(pxPathHasEqualContentsWithPath_(moved, fileIn(folder, "twin.txt", "the same text")));
}

} // namespace

void showPathUtils(NSString const& folder) {
    showBundleVersions();
    showPathRelations(folder);
    showFileOperations(folder);
    showFileManagerHandler(folder);
    showExtendedAttributes(folder);
    showFinderMetadata(folder);
    showAliasesAndContents(folder);
}

} // namespace examples
