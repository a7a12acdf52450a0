#include "platform/foundation/objects/NSArchiver.h"
#include "platform/foundation/collections/NSDictionary.h"
#include "platform/foundation/numbers/NSNumber.h"
#include "platform/foundation/objects/Method.h"
#include "platform/foundation/propertylists/NSPropertyListSerialization.h"
#include <map>
#include <memory>
#include <string>

namespace mac {

namespace {

constexpr char ArchiverKey[] = "$archiver";
constexpr char ArchiverName[] = "NSArchiver";
constexpr char VersionKey[] = "$version";
constexpr int ArchiveVersion = 1;
// The class of the root object; missing where it is nil.
constexpr char ClassKey[] = "$class";
constexpr char ListKey[] = "$list";
// Stands for a class where the root object is a property list itself.
constexpr char PlainListName[] = "property list";

using ArchivedForms = std::map<std::string, ArchivedForm, std::less<>>;

// Never destroyed: objects may be archived until the program's last instruction.
ArchivedForms& archivedForms() {
    static ArchivedForms& forms = *std::make_unique<ArchivedForms>().release();
    return forms;
}

struct NamedForm {
    std::string_view name;
    ArchivedForm const* form;
};

// The form that the object's class, or the nearest one above it, has.
std::optional<NamedForm> archivedFormOf(id const& object) {
    for (Class cls = object.class_(); cls != nil; cls = cls.superclass()) {
        auto const form = archivedForms().find(cls.name());
        if (form != archivedForms().end()) return NamedForm{form->first, &form->second};
    }
    return std::nullopt;
}

NSMutableDictionary emptyArchive() {
    NSMutableDictionary const archive = NSMutableDictionary::dictionary();
    archive.setObject_forKey_(NSString(ArchiverName), ArchiverKey);
    archive.setObject_forKey_(NSNumber::numberWithInt_(ArchiveVersion), VersionKey);
    return archive;
}

NSData dataOfArchive(NSDictionary const& archive) {
    return NSPropertyListSerialization::dataFromPropertyList_format_errorDescription_(
        archive, NSPropertyListBinaryFormat_v1_0, nullptr);
}

bool isArchive(NSDictionary const& archive) {
    NSString const archiver = as<NSString>(archive.objectForKey_(ArchiverKey));
    NSNumber const version = as<NSNumber>(archive.objectForKey_(VersionKey));
    return archiver.isEqualToString_(ArchiverName) && version.isEqual_(NSNumber::numberWithInt_(ArchiveVersion));
}

} // namespace

ClassDescription NSArchiver::describeClass() {
    return {.name = "NSArchiver",
            .superclass = classOf<NSObject>(),
            .classMethods = {classMethod<&archivedDataWithRootObject_>("archivedDataWithRootObject:")}};
}

ClassDescription NSUnarchiver::describeClass() {
    return {.name = "NSUnarchiver",
            .superclass = classOf<NSObject>(),
            .classMethods = {classMethod<&unarchiveObjectWithData_>("unarchiveObjectWithData:")}};
}

NSData NSArchiver::archivedDataWithRootObject_(id const& rootObject) {
    NSMutableDictionary const archive = emptyArchive();
    if (rootObject == nil) return dataOfArchive(archive);
    std::optional<NamedForm> const named = archivedFormOf(rootObject);
    id const list = named ? named->form->listOf(rootObject) : rootObject;
    if (list == nil) return nil;
    archive.setObject_forKey_(NSString::stringWithUTF8String_(std::string(named ? named->name : PlainListName)),
                              ClassKey);
    archive.setObject_forKey_(list, ListKey);
    return dataOfArchive(archive);
}

id NSUnarchiver::unarchiveObjectWithData_(NSData const& data) {
    if (data == nil) return nil;
    NSDictionary const archive =
        as<NSDictionary>(NSPropertyListSerialization::propertyListFromData_mutabilityOption_format_errorDescription_(
            data, NSPropertyListImmutable, nullptr, nullptr));
    if (!isArchive(archive)) return nil;
    std::string const name = as<NSString>(archive.objectForKey_(ClassKey)).UTF8String();
    id const list = archive.objectForKey_(ListKey);
    if (name == PlainListName) return list;
    auto const form = archivedForms().find(name);
    return form == archivedForms().end() || list == nil ? id() : form->second.objectOf(list);
}

void addArchivedForm(Class const& cls, ArchivedForm const& form) {
    archivedForms().insert_or_assign(std::string(cls.name()), form);
}

} // namespace mac
