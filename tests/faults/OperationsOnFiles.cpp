#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/dates/NSDate.h"
#include "platform/foundation/files/NSFileManager.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include "platform/foundation/text/NSString.h"
#include "tests/faults/Operations.h"

namespace mac::faults {

namespace {

NSString text(std::string const& bytes) { return NSString::stringWithUTF8String_(bytes.c_str()); }

NSData data(std::string const& bytes) { return NSData::dataWithBytes_length_(bytes.data(), bytes.size()); }

void makeFile(Fixture const& fixture) {
    fixture.shareByDefault("w");
    fixture.makeFile("w/x", "old", 0640);
    fixture.setAttribute("w/x", "user.note", secretText("note"));
}

void makeNothing(Fixture const&) {}

bool writeData(Fixture const& fixture) {
    return data(secretText("w/x") + std::string(5000, 'n')).writeToFile_atomically_(text(fixture.path("w/x")), YES);
}

bool writePropertyList(Fixture const& fixture) {
    NSDictionary const list = NSDictionary::dictionaryWithObject_forKey_(text(secretText("w/x")), text("key"));
    NSData const bytes = NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        list, NSPropertyListXMLFormat_v1_0, nullptr);
    return bytes.writeToFile_atomically_(text(fixture.path("w/x")), YES);
}

NSDictionary permissions(int mode) {
    return NSDictionary::dictionaryWithObject_forKey_(NSNumber::numberWithInt_(mode), text(NSFilePosixPermissions));
}

NSDictionary creationDate() {
    return NSDictionary::dictionaryWithObject_forKey_(NSDate::dateWithTimeIntervalSince1970_(1'000'000'000),
                                                      text(NSFileCreationDate));
}

bool createFile(Fixture const& fixture) {
    return NSFileManager::defaultManager().createFileAtPath_contents_attributes_(
        text(fixture.path("w/x")), data(secretText("w/x")), permissions(0600));
}

bool createDatedFile(Fixture const& fixture) {
    return NSFileManager::defaultManager().createFileAtPath_contents_attributes_(
        text(fixture.path("w/x")), data(secretText("w/x")), creationDate());
}

bool replaceByCreating(Fixture const& fixture) {
    return NSFileManager::defaultManager().createFileAtPath_contents_attributes_(text(fixture.path("w/x")),
                                                                                 data(secretText("w/x")), nil);
}

bool createFolder(Fixture const& fixture) {
    return NSFileManager::defaultManager().createDirectoryAtPath_attributes_(text(fixture.path("w/x")),
                                                                             permissions(0700));
}

bool createLink(Fixture const& fixture) {
    return NSFileManager::defaultManager().createSymbolicLinkAtPath_pathContent_(text(fixture.path("w/x")),
                                                                                 text("elsewhere"));
}

bool changePermissions(Fixture const& fixture) {
    return NSFileManager::defaultManager().changeFileAttributes_atPath_(permissions(0600), text(fixture.path("w/x")));
}

bool changeCreationDate(Fixture const& fixture) {
    return NSFileManager::defaultManager().changeFileAttributes_atPath_(creationDate(), text(fixture.path("w/x")));
}

std::vector<std::string> const Ways{"w"};

} // namespace

std::vector<Operation> fileOperations() {
    Item const kept{"w/x", "w/x"};
    return {
        {.name = "write a new file", .prepare = makeNothing, .run = writeData, .exchangedWays = Ways},
        {.name = "write a file that exists",
         .prepare = makeFile,
         .run = writeData,
         .items = {kept},
         .exchangedWays = Ways},
        {.name = "write a file of another user",
         .prepare =
             [](Fixture const& fixture) {
                 makeFile(fixture);
                 fixture.giveAway("w/x");
             },
         .run = writeData,
         .items = {kept},
         .exchangedWays = Ways},
        {.name = "write a file that a link leads to",
         .prepare =
             [](Fixture const& fixture) {
                 fixture.makeFile("o/x", "old");
                 fixture.makeLink("w/x", fixture.path("o/x"));
             },
         .run = writeData,
         .items = {kept, {"o/x", "o/x"}},
         .exchangedWays = Ways},
        {.name = "write a property list",
         .prepare = makeFile,
         .run = writePropertyList,
         .items = {kept},
         .exchangedWays = Ways},
        {.name = "create a file", .prepare = makeNothing, .run = createFile, .exchangedWays = Ways},
        {.name = "create a file with a creation date",
         .prepare = makeNothing,
         .run = createDatedFile,
         .exchangedWays = Ways,
         .failure = Failure::LeavesSomeFields},
        {.name = "create a file that exists",
         .prepare = makeFile,
         .run = replaceByCreating,
         .items = {kept},
         .exchangedWays = Ways},
        {.name = "create a folder", .prepare = makeNothing, .run = createFolder, .exchangedWays = Ways},
        {.name = "create a link", .prepare = makeNothing, .run = createLink, .exchangedWays = Ways},
        {.name = "change permissions",
         .prepare = makeFile,
         .run = changePermissions,
         .items = {kept},
         .exchangedWays = Ways},
        {.name = "change a creation date",
         .prepare = makeFile,
         .run = changeCreationDate,
         .items = {kept},
         .exchangedWays = Ways},
    };
}

} // namespace mac::faults
