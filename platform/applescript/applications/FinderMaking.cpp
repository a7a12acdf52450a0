#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/system/BytePath.h"
#include "platform/system/items/OpenItem.h"
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// New folders, files and alias files.

namespace mac::applescript::finder {

namespace {

// Creates the item, with all permissions that the umask leaves. EEXIST if the name is taken.
Result<void> makeItem(int folder, std::string const& name, Code type, std::string const& target) {
    auto const answer = [&](bool isMade) { return isMade ? Result<void>() : lastSystemError("make", name); };
    if (type == codes::Folder) return answer(::mkdirat(folder, name.c_str(), S_IRWXU | S_IRWXG | S_IRWXO) == 0);
    if (type == codes::AliasFile) return answer(::symlinkat(target.c_str(), folder, name.c_str()) == 0);
    constexpr mode_t everybodyReads = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
    FileDescriptor const file(
        ::openat(folder, name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, everybodyReads));
    return answer(file.isOpen());
}

std::u16string firstName(Code type, std::string const& target) {
    if (type == codes::Folder) return u"untitled folder";
    if (type == codes::AliasFile) return shownName(BytePath(target).leaf()) + u" alias";
    return u"untitled";
}

Code classToMake(ApplicationCommand const& command) {
    Value const* const named = command.find(codes::NewClassParameter);
    // make folder
    Value const* const type = named || command.direct.isNothing() ? named : &command.direct;
    if (!type) throw missingParameter(u"new", command.term.name);
    if (!type->is(ValueKind::Type)) throw plainError(errors::CannotCoerce);
    switch (type->asCode()) {
    case codes::Folder:
    case codes::AliasFile:
        return type->asCode();
    case codes::AliasType:
        return codes::AliasFile;
    case codes::File:
    case codes::DocumentFile:
        return codes::DocumentFile;
    default:
        throw ScriptError{.number = errors::CannotMakeClass,
                          .message = u"Can’t make class " + nameOfCode(type->asCode()) + u"."};
    }
}

// Without a name an item gets one that nothing has: "untitled folder 2".
std::string makeUnder(OpenItem const& folder, std::optional<std::string> const& wanted, Code type,
                      std::string const& target, Value const& place) {
    std::u16string const first = firstName(type, target);
    for (unsigned number = 1;; ++number) {
        std::string const digits = std::to_string(number);
        std::u16string const numbered =
            number == 1 ? first : first + u" " + std::u16string(digits.begin(), digits.end());
        std::optional<std::string> const name = wanted ? wanted : nameOnDisk(numbered);
        if (!name) throw badFileName(place);
        Result<void> const made = makeItem(folder.item.number(), *name, type, target);
        if (made.isDone()) return *name;
        bool const isTaken = made.problem().is(EEXIST);
        if (!isTaken || wanted) throw fileError(made.problem(), isTaken ? itemSpecifier(type, *name, place) : place);
    }
}

} // namespace

std::shared_ptr<FinderItem> makeIn(FinderItem const& folder, NewItem const& item, TextContext const& context) {
    if (item.properties && !item.properties->is(ValueKind::Record))
        throw cannotMake(*item.properties, codes::RecordType);
    std::vector<std::pair<Symbol, Value>> const fields =
        item.properties ? item.properties->fields() : std::vector<std::pair<Symbol, Value>>();
    std::optional<std::string> name;
    for (auto const& [key, value] : fields) {
        if (key->code != codes::Name) continue;
        std::u16string const written = requireText(value, context);
        name = written.find(u':') == std::u16string::npos ? nameOnDisk(written) : std::nullopt;
        if (!name) throw badFileName(value);
    }
    std::string const made = makeUnder(folder.open(), name, item.type, item.target, folder.specifier());
    std::shared_ptr<FinderItem> const created = FinderItem::inFolder(folder.path(), made, folder.specifier());
    if (!created) throw cannotGet(folder.specifier());
    for (auto const& [key, value] : fields) {
        if (key->code == codes::Name) continue;
        Value const part = propertySpecifier(key, created->specifier());
        if (!created->setProperty(key->code, value, context)) throw cannotSet(part, value);
    }
    return created;
}

Value make(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    TextContext const& context = evaluator.context();
    NewItem item{.type = classToMake(command), .properties = command.find(codes::PropertiesParameter)};
    std::shared_ptr<FinderItem> const folder = folderOf(finder.objects(ModelApplication::placeOf(command), context));
    if (item.type == codes::AliasFile) {
        Value const* const to = command.find(codes::ToParameter);
        if (!to) throw missingParameter(u"to", command.term.name);
        FinderItems const originals = itemsOf(finder.objects(*to, context));
        if (originals.size() != 1) throw plainError(errors::NotSingle);
        item.target = originals.front()->path();
    }
    return makeIn(*folder, item, context)->specifier();
}

} // namespace mac::applescript::finder
