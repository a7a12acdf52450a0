#include "pathutils/AliasesAndContents.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/FileOperations.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/collections/NSData.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "tests/faults/Operations.h"
#include <cstdio>
#include <memory>
#include <stdexcept>

// What the library does with the item at a path. Where a step fails, what was done before it stays done.

namespace mac::faults {

namespace {

NSString pathAt(Fixture const& fixture, char const* relative) {
    return NSString::stringWithUTF8String_(fixture.path(relative).c_str());
}

void makeItem(Fixture const& fixture) {
    fixture.makeFile("w/x", {}, 0640);
    fixture.setAttribute("w/x", "user.note", secretText("note"));
}

void makeTree(Fixture const& fixture) {
    fixture.makeFolder("w/x", 0750);
    fixture.makeFile("w/x/a", {}, 0640);
    fixture.makeFolder("w/x/inner");
    fixture.makeFile("w/x/inner/b");
    fixture.makeLink("w/x/link", fixture.path("canary"));
}

void makeTwo(Fixture const& fixture) {
    makeItem(fixture);
    fixture.makeFile("o/x", "other");
    fixture.setAttribute("o/x", "user.other", secretText("other"));
}

void makeTreeToReplace(Fixture const& fixture) {
    makeTree(fixture);
    fixture.makeFolder("o/x");
    fixture.makeFile("o/x/old");
}

void makeNamesake(Fixture const& fixture) {
    makeItem(fixture);
    fixture.makeFile("o/y");
}

void makeModelFolders(Fixture const& fixture) {
    fixture.makeFile("w/y");
    fixture.makeFolder("o/new", 0710);
    fixture.makeFolder("o/new/inner", 0700);
}

bool removeOne(Fixture const& fixture) { return pxRemoveFile(pathAt(fixture, "w/x")); }

bool removeBoth(Fixture const& fixture) {
    return pxRemoveFiles(
        NSArray::arrayWithObjects_({pathAt(fixture, "w/x"), pathAt(fixture, "o/x")}).objectEnumerator());
}

bool trashIt(Fixture const& fixture) { return pxMoveToTrash(pathAt(fixture, "w/x")) != nil; }

bool moveByScript(Fixture const& fixture) {
    return pxMoveToFolder_(pathAt(fixture, "w/x"), pathAt(fixture, "o")) != nil;
}

bool moveItself(Fixture const& fixture) { return pxMoveToFolder2_(pathAt(fixture, "w/x"), pathAt(fixture, "o")); }

bool copyToPath(Fixture const& fixture) {
    return pxCopyToPath_(pathAt(fixture, "w/x"), pathAt(fixture, "o/copy")) == nil;
}

bool copyToFolder(Fixture const& fixture) {
    return pxCopyToFolder_(pathAt(fixture, "w/x"), pathAt(fixture, "o")) == nil;
}

bool renameLikeAnother(Fixture const& fixture) {
    return pxRenameToNameOf_(pathAt(fixture, "w/x"), pathAt(fixture, "o/y"));
}

bool renameToText(Fixture const& fixture) { return pxRenameTo_keepExtension_(pathAt(fixture, "w/x"), "y", NO) != nil; }

bool changeCase(Fixture const& fixture) { return pxRenameTo_keepExtension_(pathAt(fixture, "w/x"), "X", NO) != nil; }

bool makeAliasFile(Fixture const& fixture) {
    return pxCreateAliasFileWithContent_(pathAt(fixture, "w/alias"), NSData::dataWithBytes_length_("record", 6));
}

void makeWithSidecar(Fixture const& fixture) {
    makeItem(fixture);
    fixture.makeSidecar("w", "x");
}

bool deleteObject(Fixture const& fixture) {
    FSRef ref{};
    return KRPathGetFSRef_traverseLink_(pathAt(fixture, "w/x"), &ref, NO) && FSDeleteObject(&ref) == noErr;
}

// What was found for an alias whose record describes an item that is there no more: its path, and whether a renewed
// record leads to the same, so that the disk shows what was answered.
bool findAndRenew(Fixture const& fixture, NSData const& alias) {
    NSData renewed;
    NSString const path = pxPathOfAliasDataChangedAlias_(alias, &renewed);
    if (path == nil) return false;
    NSString const again = renewed == nil ? NSString("no renewed record") : pxPathOfAliasData(renewed);
    if (again == nil) return false;
    NSString const found = path.stringByAppendingString_("\n").stringByAppendingString_(again);
    return found.dataUsingEncoding_(NSUTF8StringEncoding).writeToFile_atomically_(pathAt(fixture, "w/found"), YES);
}

// Another file takes the place of the alias's.
Operation renewingAlias(Operation operation) {
    std::shared_ptr<NSData> const alias = std::make_shared<NSData>();
    operation.prepare = [alias](Fixture const& fixture) {
        makeItem(fixture);
        *alias = pxAliasDataOfPath(pathAt(fixture, "w/x"));
        fixture.makeFile("w/new", "new");
        if (std::rename(fixture.path("w/new").c_str(), fixture.path("w/x").c_str()) != 0)
            throw std::runtime_error("w/x cannot be replaced");
    };
    operation.run = [alias](Fixture const& fixture) { return findAndRenew(fixture, *alias); };
    return operation;
}

bool makeFolders(Fixture const& fixture) { return pxCreateFolder(pathAt(fixture, "w/new/inner")); }

bool makeUniqueFolder(Fixture const& fixture) { return pxCreateUniqueFolder(pathAt(fixture, "w/x")) != nil; }

bool makeFoldersLikeModel(Fixture const& fixture) {
    return pxCreateFolderWithAttributesFrom_(pathAt(fixture, "w/new/inner"), pathAt(fixture, "o/new/inner"));
}

bool makeFoldersWithAttributes(Fixture const& fixture) {
    return pxCreateFolderWithAttributes_from_(pathAt(fixture, "w/new/inner"),
                                              NSArray::arrayWithObject_(NSFilePosixPermissions),
                                              pathAt(fixture, "o/new/inner"));
}

bool makeTemporaryItems(Fixture const&) { return pxTemporaryItemsFolderPath() != nil; }

bool makeTemporaryItemsOfVolume(Fixture const& fixture) {
    return pxTemporaryItemsFolderPathOfPath(pathAt(fixture, "2/x")) != nil;
}

std::vector<std::string> const Exchanges{"w/x"};
std::vector<std::string> const Ways{"w", "o"};

} // namespace

std::vector<Operation> pathOperations() {
    Item const kept{"w/x", "w/x"};
    Item const moved{"w/x", "o/x"};
    return {
        {.name = "path: remove a file",
         .prepare = makeTwo,
         .run = removeOne,
         .items = {{"w/x", ""}, {"o/x", "o/x"}},
         .exchanged = Exchanges},
        {.name = "path: remove a folder",
         .prepare = makeTree,
         .run = removeOne,
         .exchanged = {"w/x", "w/x/a", "w/x/inner"},
         .failure = Failure::LeavesSomeDone},
        {.name = "path: remove several files",
         .prepare = makeTwo,
         .run = removeBoth,
         .exchanged = {"w/x", "o/x"},
         .failure = Failure::LeavesSomeDone},
        {.name = "path: move to the trash",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeTrash();
                 makeTree(fixture);
             },
         .run = trashIt,
         .items = {{"w/x", "data/Trash/files/x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "path: move into a folder by the Finder",
         .prepare = makeItem,
         .run = moveByScript,
         .items = {moved},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "path: move into a folder",
         .prepare = makeTree,
         .run = moveItself,
         .items = {moved},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "path: copy",
         .flushing = Flushing::Later,
         .prepare = makeTree,
         .run = copyToPath,
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "path: copy a file into a folder and replace",
         .flushing = Flushing::Later,
         .prepare = makeTwo,
         .run = copyToFolder,
         .items = {kept},
         .replaced = "o/x",
         .exchanged = {"w/x", "o/x"},
         .exchangedWays = Ways},
        {.name = "path: copy a folder into a folder and replace",
         .flushing = Flushing::Later,
         .prepare = makeTreeToReplace,
         .run = copyToFolder,
         .items = {kept},
         .replaced = "o/x",
         .exchanged = {"w/x", "o/x"},
         .exchangedWays = Ways},
        {.name = "path: rename like another item",
         .prepare = makeNamesake,
         .run = renameLikeAnother,
         .items = {{"w/x", "w/y"}, {"o/y", "o/y"}},
         .exchanged = {"w/x", "o/y"},
         .exchangedWays = Ways},
        {.name = "path: rename",
         .prepare = makeItem,
         .run = renameToText,
         .items = {{"w/x", "w/y"}},
         .exchanged = Exchanges,
         .exchangedWays = {"w"}},
        {.name = "path: change the case of a name",
         .prepare = makeItem,
         .run = changeCase,
         .items = {{"w/x", "w/X"}},
         .exchanged = Exchanges,
         .exchangedWays = {"w"}},
        {.name = "path: make an alias file",
         .prepare = makeItem,
         .run = makeAliasFile,
         .items = {kept},
         .exchangedWays = {"w"},
         .failure = Failure::LeavesSomeFields},
        renewingAlias({.name = "path: find an alias and renew its record", .items = {kept}, .exchangedWays = {"w"}}),
        {.name = "delete an object with its sidecar",
         .prepare = makeWithSidecar,
         .run = deleteObject,
         .items = {{"w/x", ""}, {"w/._x", ""}},
         .exchanged = {"w/x", "w/._x"}},
        {.name = "delete an empty folder",
         .prepare = [](Fixture const& fixture) { fixture.makeFolder("w/x"); },
         .run = deleteObject,
         .items = {{"w/x", ""}},
         .exchanged = Exchanges},
        {.name = "path: make folders",
         .prepare = makeItem,
         .run = makeFolders,
         .items = {kept},
         .exchangedWays = {"w"},
         .failure = Failure::LeavesSomeDone},
        {.name = "path: make a folder beside an item",
         .prepare = makeItem,
         .run = makeUniqueFolder,
         .items = {kept},
         .exchangedWays = {"w"}},
        {.name = "path: make folders like others",
         .prepare = makeModelFolders,
         .run = makeFoldersLikeModel,
         .items = {{"w/y", "w/y"}},
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeFields},
        {.name = "path: make folders with attributes",
         .prepare = makeModelFolders,
         .run = makeFoldersWithAttributes,
         .items = {{"w/y", "w/y"}},
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeDone},
        {.name = "path: make the folder for temporary items",
         .prepare = makeItem,
         .run = makeTemporaryItems,
         .items = {kept},
         .failure = Failure::LeavesSomeDone},
        {.name = "path: make the folder for temporary items of a second volume",
         .prepare = [](Fixture const& fixture) { fixture.makeFile("2/x"); },
         .run = makeTemporaryItemsOfVolume,
         .items = {{"2/x", "2/x"}},
         .needs = Needs::TwoVolumes},
    };
}

} // namespace mac::faults
