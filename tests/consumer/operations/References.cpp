#include "scripting/FileReferences.h"
#include "tests/consumer/operations/Trial.h"

// Paths, URLs and references, from one to the other.

namespace consumer {

using namespace mac;

namespace {

void tryHFSNames(Trial const& trial) {
    HFSUniStr255 name{};
    trial.expect("KRCStringBySwappingColonsAndSlashes", isText(KRCStringBySwappingColonsAndSlashes("a:b/c"), "a/b:c"));
    KRCStringGetHFSUniStr255_("a:b", &name);
    trial.expect("KRCStringGetHFSUniStr255_", name.length == 3 && name.unicode[1] == u':');
    KRCHFSUniStr255SwapColonsAndSlashes_(&name);
    trial.expect("KRCHFSUniStr255SwapColonsAndSlashes_", name.unicode[1] == u'/');
    trial.expect("KRCStringWithHFSUniStr255_", isText(KRCStringWithHFSUniStr255_(&name), "a/b"));
    trial.expect("KRCStringWithHFSUniStr255NoCopy_", isText(KRCStringWithHFSUniStr255NoCopy_(&name), "a/b"));
    KRCPathNameGetHFSUniStr255_("x:y", &name);
    trial.expect("KRCPathNameGetHFSUniStr255_", name.unicode[1] == u'/');
}

void tryExistence(Trial const& trial, Places const& places, NSString const& file) {
    bool isFolder = true;
    trial.expect("KRCPathGetFileType", KRCPathGetFileType(file) != nil && KRCPathGetFileType("/no such item") == nil);
    trial.expect("KRCPathIsSymbolicLink", !KRCPathIsSymbolicLink(file));
    trial.expect("KRCPathExists", KRCPathExists(file) && !KRCPathExists("relative"));
    trial.expect("KRCPathExistsIsDirectory_", KRCPathExistsIsDirectory_(file, &isFolder) && !isFolder);
    trial.expect("KRCPathExistsTraverseLink_", KRCPathExistsTraverseLink_(file, NO));
    trial.expect("KRCPathExistsIsDirectory_traverseLink_",
                 KRCPathExistsIsDirectory_traverseLink_(places.path("references"), &isFolder, YES) && isFolder);
    trial.expect("KRCPathGetFileSystemPath", isText(KRCPathGetFileSystemPath(file), file.UTF8String()));
    trial.expect("KRCPathDisplayNames", isText(KRCPathDisplayNames(file).lastObject(), "item"));
    trial.expect("KRCPathSubPathRelativeToBasePath_", isText(KRCPathSubPathRelativeToBasePath_("/a/b/c", "/a"), "b/c"));
}

} // namespace

void tryReferences(Places const& places) {
    Trial const trial("scripting/FileReferences");
    tryHFSNames(trial);
    NSString const file = places.file("references/item", "");
    tryExistence(trial, places, file);
    FSRef ref{};
    bool isFolder = true;
    trial.expect("KRCPathGetFSRef_", KRCPathGetFSRef_(file, &ref));
    trial.expect("KRCPathWithFSRef_", isText(KRCPathWithFSRef_(&ref), file.UTF8String()));
    trial.expect("KRCPathGetFSRef_isDirectory_", KRCPathGetFSRef_isDirectory_(file, &ref, NO));
    trial.expect("KRCPathGetFSRef_getIsDirectory_",
                 KRCPathGetFSRef_getIsDirectory_(file, &ref, &isFolder) && !isFolder);
    NSURL const folder = NSURL::fileURLWithPath_(places.path("references"));
    trial.expect("KRCURLGetFSRef_", KRCURLGetFSRef_(folder, nullptr));
    trial.expect("KRCURLWithFSRef_", isText(KRCURLWithFSRef_(&ref).path(), file.UTF8String()));
    trial.expect("KRCURLRelativeURLWithFSRef_",
                 isText(KRCURLRelativeURLWithFSRef_(folder, &ref).relativeString(), "item"));
    trial.expect("KRCURLIsOnIDisk", KRCURLIsOnIDisk(NSURL::URLWithString_("http://idisk.mac.com/ann")));
}

} // namespace consumer
