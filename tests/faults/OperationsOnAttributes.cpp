#include "pathutils/ExtendedAttributes.h"
#include "platform/files/ExtendedAttributes.h"
#include "platform/files/FinderInformation.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/text/NSString.h"
#include "platform/system/items/OpenItem.h"
#include "tests/faults/Operations.h"
#include <algorithm>

namespace mac::faults {

namespace {

// Larger than any of the file systems holds beside an item, so that it goes to the sidecar.
constexpr std::size_t LargeSize = 70'000;

NSString text(std::string const& bytes) { return NSString::stringWithUTF8String_(bytes.c_str()); }

void makeFile(Fixture const& fixture) {
    fixture.shareByDefault("w");
    fixture.makeFile("w/x");
}

void makeWithAttribute(Fixture const& fixture) {
    makeFile(fixture);
    fixture.setAttribute("w/x", "user.note", secretText("old note"));
    fixture.setAttribute("w/x", "user.other", secretText("other"));
}

void makeWithSidecar(Fixture const& fixture) {
    makeFile(fixture);
    fixture.makeSidecar("w", "x");
}

bool setValue(Fixture const& fixture, char const* name, std::string const& value) {
    return mac::setxattr(fixture.path("w/x").c_str(), name, value.data(), value.size(), 0, XATTR_NOFOLLOW) == 0;
}

std::function<bool(Fixture const&)> setting(char const* name, std::string value) {
    return [=](Fixture const& fixture) { return setValue(fixture, name, value); };
}

std::function<bool(Fixture const&)> removing(char const* name) {
    return [=](Fixture const& fixture) {
        return mac::removexattr(fixture.path("w/x").c_str(), name, XATTR_NOFOLLOW) == 0;
    };
}

bool setFinderFlags(Fixture const& fixture) {
    Result<OpenItem> const item = openItemAtPath(fixture.path("w/x"), LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return false;
    Result<FinderInformation> const read = readFinderInformation(item.value());
    if (!read.hasValue()) return false;
    FinderInformation information = read.value();
    information.setFinderFlags(kIsInvisible);
    return writeFinderInformation(item.value(), information).isDone();
}

bool setPropertyList(Fixture const& fixture) {
    NSDictionary const list = NSDictionary::dictionaryWithObject_forKey_(text("value"), text("key"));
    return pxSetExtendedAttributeDictionary_forKey_(text(fixture.path("w/x")), list, text("list"));
}

bool hasFinderFlags(Fixture const& fixture) {
    Result<OpenItem> const item = openItemAtPath(fixture.path("w/x"), LinkAtEnd::IsNotFollowed);
    if (!item.hasValue()) return false;
    Result<FinderInformation> const read = readFinderInformation(item.value());
    return read.hasValue() && read.value().finderFlags() == kIsInvisible;
}

bool hasPropertyList(Fixture const& fixture) {
    return id(pxExtendedAttributeDictionaryForKey_(text(fixture.path("w/x")), text("list"))) != nil;
}

// Whether the attribute has the value and the others are as they were, wherever each is kept.
std::function<bool(Fixture const&)> having(char const* name, std::string value) {
    return [=](Fixture const& fixture) {
        std::string const file = fixture.path("w/x");
        std::string found(value.size() + 1, '\0');
        std::ptrdiff_t const size = mac::getxattr(file.c_str(), name, found.data(), found.size(), 0, XATTR_NOFOLLOW);
        found.resize(static_cast<std::size_t>(std::max<std::ptrdiff_t>(size, 0)));
        return found == value;
    };
}

std::vector<std::string> const Exchanges{"w/x"};
std::vector<std::string> const Ways{"w"};

} // namespace

std::vector<Operation> attributeOperations() {
    Item const sidecar{"w/._x", "w/._x"};
    return {
        {.name = "set a new attribute",
         .prepare = makeFile,
         .run = setting("note", "new"),
         .isReached = having("note", "new"),
         .items = {{"w/x", "w/x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "replace an attribute",
         .prepare = makeWithAttribute,
         .run = setting("note", "new"),
         .isReached = having("note", "new"),
         .items = {{"w/x", "w/x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "set a large attribute",
         .prepare = makeWithAttribute,
         .run = setting("note", std::string(LargeSize, 'n')),
         .isReached = having("note", std::string(LargeSize, 'n')),
         .items = {{"w/x", "w/x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "replace an attribute in the sidecar",
         .prepare = makeWithSidecar,
         .run = setting("beside", "new"),
         .isReached = having("beside", "new"),
         .items = {{"w/x", "w/x"}},
         .exchanged = {"w/x", "w/._x"},
         .exchangedWays = Ways},
        {.name = "add a large attribute to the sidecar",
         .prepare = makeWithSidecar,
         .run = setting("note", std::string(LargeSize, 'n')),
         .isReached = having("note", std::string(LargeSize, 'n')),
         .items = {{"w/x", "w/x"}, sidecar},
         .exchanged = {"w/x", "w/._x"},
         .exchangedWays = Ways},
        {.name = "remove an attribute",
         .prepare = makeWithAttribute,
         .run = removing("note"),
         .items = {{"w/x", "w/x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways,
         .needs = Needs::Attributes},
        {.name = "remove the last attribute of the sidecar",
         .prepare = makeWithSidecar,
         .run = removing("beside"),
         .items = {{"w/x", "w/x"}},
         .exchanged = {"w/x", "w/._x"},
         .exchangedWays = Ways},
        {.name = "set Finder flags",
         .prepare = makeWithAttribute,
         .run = setFinderFlags,
         .isReached = hasFinderFlags,
         .items = {{"w/x", "w/x"}},
         .exchanged = Exchanges,
         .exchangedWays = Ways},
        {.name = "set a property list as an attribute",
         .prepare = makeWithAttribute,
         .run = setPropertyList,
         .isReached = hasPropertyList,
         .items = {{"w/x", "w/x"}},
         .exchangedWays = Ways},
    };
}

} // namespace mac::faults
