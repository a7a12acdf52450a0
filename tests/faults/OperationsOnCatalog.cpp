#include "coreutils/IconsAndImages.h"
#include "pathutils/AliasesAndContents.h"
#include "pathutils/ExtendedAttributes.h"
#include "pathutils/FileOperations.h"
#include "pathutils/FinderMetadata.h"
#include "platform/files/references/CatalogInformation.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/files/NSFileAttributes.h"
#include "tests/faults/Operations.h"

// Locks, permissions, dates and Finder information of items, what they take over from another item, and two files that
// exchange their contents.

namespace mac::faults {

namespace {

constexpr double Date = 1'000'000'000;

NSString catalogPath(Fixture const& fixture, char const* relative) {
    return NSString::stringWithUTF8String_(fixture.path(relative).c_str());
}

NSString itemPath(Fixture const& fixture) { return catalogPath(fixture, "w/x"); }
NSString modelPath(Fixture const& fixture) { return catalogPath(fixture, "o/x"); }

void makeMarked(Fixture const& fixture) {
    fixture.makeFile("w/x", {}, 0640);
    fixture.setAttribute("w/x", "user.note", secretText("note"));
}

void makeWithModel(Fixture const& fixture) {
    makeMarked(fixture);
    fixture.makeText("o/x", "model", 0600);
    fixture.setAttribute("o/x", "user.first", "1");
    fixture.setAttribute("o/x", "user.second", "2");
}

void makeNestedWithModels(Fixture const& fixture) {
    for (char const* const folder : {"w/x", "w/x/inner", "o/x", "o/x/inner"})
        fixture.makeFolder(folder, folder[0] == 'w' ? 0755 : 0700);
}

void makeFilesToExchange(Fixture const& fixture) {
    makeMarked(fixture);
    fixture.makeFile("w/y", "other", 0600);
    fixture.setAttribute("w/y", "user.other", secretText("other"));
}

void makeFilesWithSidecarsToExchange(Fixture const& fixture) {
    makeFilesToExchange(fixture);
    fixture.makeSidecar("w", "x");
    fixture.makeSidecar("w", "y");
}

// Writes the fields of the mask as `change` makes them.
bool changeCatalog(Fixture const& fixture, FSCatalogInfoBitmap which, void (*change)(FSCatalogInfo&)) {
    FSRef ref{};
    FSCatalogInfo information;
    if (!KRPathGetFSRef_traverseLink_(itemPath(fixture), &ref, NO)) return false;
    if (FSGetCatalogInfo(&ref, which, &information, {}, {}, {}) != noErr) return false;
    change(information);
    return FSSetCatalogInfo(&ref, which, &information) == noErr;
}

std::function<bool(Fixture const&)> changing(FSCatalogInfoBitmap which, void (*change)(FSCatalogInfo&)) {
    return [=](Fixture const& fixture) { return changeCatalog(fixture, which, change); };
}

// Whether the fields of the mask are as `isSet` says, wherever each is kept.
std::function<bool(Fixture const&)> showing(FSCatalogInfoBitmap which, bool (*isSet)(FSCatalogInfo const&)) {
    return [=](Fixture const& fixture) {
        FSRef ref{};
        FSCatalogInfo information;
        return KRPathGetFSRef_traverseLink_(itemPath(fixture), &ref, NO) &&
               FSGetCatalogInfo(&ref, which, &information, {}, {}, {}) == noErr && isSet(information);
    };
}

bool isLocked(FSCatalogInfo const& information) { return (information.nodeFlags & kFSNodeLockedMask) != 0; }

bool isOfType(FSCatalogInfo const& information) { return information.finderInfo.front() == std::byte{'T'}; }

bool isProtected(FSCatalogInfo const& information) {
    return isLocked(information) && (information.permissions.mode & 0200U) == 0;
}

bool isDated(FSCatalogInfo const& information) {
    NSDate const date = NSDate::dateWithTimeIntervalSince1970_(Date);
    UTCDateTime expected{};
    return pxUTCDateTime_(date, &expected) && information.createDate == expected &&
           information.contentModDate == expected;
}

bool isInvisible(Fixture const& fixture) {
    std::uint16_t flags = 0;
    return pxFinderFlagsOfPath_(itemPath(fixture), &flags) && (flags & kIsInvisible) != 0;
}

bool protectAndLock(Fixture const& fixture) { return pxPathSetNotWritable_locked_(itemPath(fixture), YES, YES); }

bool setDates(Fixture const& fixture) {
    NSDate const date = NSDate::dateWithTimeIntervalSince1970_(Date);
    return pxSetFileModificationDate_creationDate_(itemPath(fixture), date, date);
}

bool takeInformation(Fixture const& fixture) { return pxSetFileAttributesFrom_(itemPath(fixture), modelPath(fixture)); }

bool takeAttributes(Fixture const& fixture) {
    return pxSetExtendedFileAttributesFrom_skipKeys_(itemPath(fixture), modelPath(fixture), nil);
}

bool takePermissions(Fixture const& fixture) {
    return pxSetFileAttributes_from_(itemPath(fixture), NSArray::arrayWithObject_(NSFilePosixPermissions),
                                     modelPath(fixture));
}

bool takePermissionsUpwards(Fixture const& fixture) {
    return pxSetFileAttributes_from_recurseUntilBeforeDstPath_(
        catalogPath(fixture, "w/x/inner"), NSArray::arrayWithObject_(NSFilePosixPermissions),
        catalogPath(fixture, "o/x/inner"), catalogPath(fixture, "w"));
}

bool setFlags(Fixture const& fixture) {
    return pxSetFinderFlagsOfPath_mask_(itemPath(fixture), kIsInvisible, kIsInvisible);
}

bool removeNote(Fixture const& fixture) { return pxRemoveExtendedAttributeForKey_(itemPath(fixture), "note"); }

bool exchangeFiles(Fixture const& fixture) {
    return pxExchangeFileWith_(itemPath(fixture), catalogPath(fixture, "w/y"));
}

std::vector<std::string> const Exchanges{"w/x"};
std::vector<std::string> const Ways{"w"};
std::vector<std::string> const WaysWithModel{"w", "o"};

} // namespace

std::vector<Operation> catalogOperations() {
    Item const kept{"w/x", "w/x"};
    Item const model{"o/x", "o/x"};
    return {
        {.name = "catalog: lock a file",
         .prepare = makeMarked,
         .run = changing(kFSCatInfoNodeFlags, [](FSCatalogInfo& i) { i.nodeFlags |= kFSNodeLockedMask; }),
         .isReached = showing(kFSCatInfoNodeFlags, isLocked),
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "catalog: change permissions",
         .prepare = makeMarked,
         .run = changing(kFSCatInfoPermissions,
                         [](FSCatalogInfo& i) { i.permissions.mode &= static_cast<std::uint16_t>(~0040); }),
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "catalog: change the date of modification",
         .prepare = makeMarked,
         .run = changing(kFSCatInfoContentMod, [](FSCatalogInfo& i) { i.contentModDate.lowSeconds += 100; }),
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "catalog: change Finder information",
         .prepare = makeMarked,
         .run = changing(kFSCatInfoFinderInfo, [](FSCatalogInfo& i) { i.finderInfo.front() = std::byte{'T'}; }),
         .isReached = showing(kFSCatInfoFinderInfo, isOfType),
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "catalog: protect and lock a file",
         .prepare = makeMarked,
         .run = protectAndLock,
         .isReached = showing(kFSCatInfoNodeFlags | kFSCatInfoPermissions, isProtected),
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeFields},
        {.name = "catalog: set both dates",
         .prepare = makeMarked,
         .run = setDates,
         .isReached = showing(kFSCatInfoCreateDate | kFSCatInfoContentMod, isDated),
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeFields},
        {.name = "catalog: take over the information of another item",
         .prepare = makeWithModel,
         .run = takeInformation,
         .items = {kept, model},
         .exchanged = {"w/x", "o/x"},
         .exchangedWays = WaysWithModel,
         .failure = Failure::LeavesSomeFields},
        {.name = "catalog: take over the attributes of another item",
         .prepare = makeWithModel,
         .run = takeAttributes,
         .items = {kept, model},
         .exchanged = {"o/x"},
         .exchangedWays = WaysWithModel,
         .failure = Failure::LeavesSomeFields},
        {.name = "catalog: take over permissions",
         .prepare = makeWithModel,
         .run = takePermissions,
         .items = {kept, model},
         .exchangedWays = WaysWithModel},
        {.name = "catalog: take over permissions upwards",
         .prepare = makeNestedWithModels,
         .run = takePermissionsUpwards,
         .exchangedWays = WaysWithModel,
         .failure = Failure::LeavesSomeDone},
        {.name = "catalog: set Finder flags by path",
         .prepare = makeMarked,
         .run = setFlags,
         .isReached = isInvisible,
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "catalog: remove an attribute by path",
         .prepare = makeMarked,
         .run = removeNote,
         .items = {kept},
         .exchanged = Exchanges,
         .exchangedWays = Ways,
         .needs = Needs::Attributes},
        {.name = "exchange two files",
         .prepare = makeFilesToExchange,
         .run = exchangeFiles,
         .items = {{"w/x", "w/y"}, {"w/y", "w/x"}},
         .exchanged = {"w/x", "w/y"},
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeFieldsIfCut,
         .needs = Needs::ExchangedNames},
        {.name = "exchange two files with sidecars",
         .prepare = makeFilesWithSidecarsToExchange,
         .run = exchangeFiles,
         .items = {{"w/x", "w/y"}, {"w/y", "w/x"}, {"w/._x", "w/._y"}, {"w/._y", "w/._x"}},
         .exchanged = {"w/x", "w/y"},
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeFieldsIfCut,
         .needs = Needs::ExchangedNames},
    };
}

} // namespace mac::faults
