#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/applications/CommonTerms.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/applications/StandardFolders.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/desktop/session/Session.h"
#include "platform/foundation/text/Encodings.h"
#include "platform/system/BytePath.h"
#include "platform/system/Users.h"
#include <algorithm>
#include <array>
#include <pwd.h>
#include <unistd.h>

namespace mac::applescript {

namespace {

// The user who runs this program.
class CurrentUser final : public ModelObject {
public:
    ClassRow const& row() const override;
    Value specifier() const override {
        return elementSpecifier(Form::Name, codes::User, system_events::itself(), name());
    }
    Value name() const { return Value::text(unitsFromFileSystemBytes(nameOfUser(::getuid()).value_or(""))); }
    // The first part of what the user database says about the person.
    Value fullName() const {
        passwd const* const record = ::getpwuid(::getuid());
        std::string_view const about = record && record->pw_gecos ? record->pw_gecos : "";
        std::string_view const name = about.substr(0, about.find(','));
        return name.empty() ? this->name() : Value::text(unitsFromFileSystemBytes(name));
    }
    Value home() const {
        return makeObject<FileObject>(ValueKind::File, FileObject::Kind::Alias, unitsFromFileSystemBytes(homePath()));
    }
};

constexpr auto UserProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&CurrentUser::name>},
    {u"full name", codeOf("anam"), codes::TextType, reading<&CurrentUser::fullName>},
    {u"home directory", codes::Home, codes::AliasType, reading<&CurrentUser::home>},
});
constexpr ClassRow UserRow{.name = u"user", .plural = u"users", .code = codes::User, .properties = UserProperties};

ClassRow const& CurrentUser::row() const { return UserRow; }

class SystemEventsRoot final : public ModelObject {
public:
    ClassRow const& row() const override;
    Value specifier() const override { return system_events::itself(); }

    Value name() const { return Value::text(u"System Events"); }
    Value identifier() const { return Value::text(u"com.apple.systemevents"); }
    Value version() const { return Value::text(u"1.3"); }
    Value isRunning() const { return Value::boolean(true); }
    Value isFrontmost() const { return Value::boolean(false); }
    ModelPointer currentUser() const { return std::make_shared<CurrentUser>(); }
    ModelPointer desktopFolder() const { return system_events::diskItemAt(desktopPath()); }
    ModelPointer startupDisk() const { return system_events::diskItemAt("/"); }
    // nullptr if the desktop has no such folder, or it is not there.
    template <Code Folder>
    ModelPointer folder() const {
        std::optional<std::string> const path = standardFolder(Folder, FolderDomain::User);
        return path ? system_events::diskItemAt(*path) : nullptr;
    }

    std::optional<std::vector<ModelPointer>> processes(Code /*elementType*/) const {
        return system_events::processes(specifier());
    }
    std::optional<std::vector<ModelPointer>> loginItems(Code /*elementType*/) const {
        return system_events::loginItems();
    }
    std::optional<std::vector<ModelPointer>> disks(Code /*elementType*/) const { return system_events::disks(); }
    std::optional<std::vector<ModelPointer>> users(Code /*elementType*/) const {
        return std::vector<ModelPointer>{currentUser()};
    }
    std::optional<std::vector<ModelPointer>> itemsAtHome(Code elementType) const {
        ModelPointer const home = system_events::diskItemAt(homePath());
        return home ? home->elements(elementType) : std::nullopt;
    }

    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        switch (elementType) {
        case codes::PropertyListFile:
            return system_events::propertyListFileNamed(name);
        case codes::DiskItem:
        case codes::File:
        case codes::Folder:
        case codes::Disk:
        case codes::Item:
            return system_events::diskItemNamed(elementType, name);
        default:
            return ModelObject::elementNamed(elementType, name);
        }
    }
};

// System Events always runs, without a window.
Value stay(ModelApplication& /*application*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    return {};
}

// Linux: only the log-out has the desktop ask.
Value refuseToEnd(ModelApplication& /*application*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    throw plainError(errors::PrivilegeViolation);
}

// The user is asked, and may still cancel.
Value logOut(ModelApplication& /*application*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    DesktopOutcome const asked = askToLogOut();
    if (asked.isDone()) return {};
    DesktopProblem const& problem = asked.problem();
    bool const isLate = problem.kind == DesktopProblem::Kind::NoAnswer;
    throw ScriptError{.number = isLate ? errors::TimedOut : errors::PrivilegeViolation,
                      .message = unitsFromFileSystemBytes(problem.text + ".")};
}

std::shared_ptr<FinderItem> folderOf(std::vector<ModelPointer> const& found) {
    std::shared_ptr<FinderItem> const folder = found.size() == 1 ? system_events::itemOf(*found.front()) : nullptr;
    if (!folder || !folder->isFolder()) throw plainError(errors::CannotPutThere);
    return folder;
}

// The items on disks that are meant; -10010 if another object is among them.
std::vector<std::shared_ptr<FinderItem>> itemsOf(std::vector<ModelPointer> const& found) {
    std::vector<std::shared_ptr<FinderItem>> items;
    for (ModelPointer const& object : found) {
        items.push_back(system_events::itemOf(*object));
        if (!items.back()) throw plainError(errors::NotOfThisClass);
    }
    return items;
}

Value makeItem(ModelApplication& application, Evaluator& evaluator, ApplicationCommand const& command, Code type) {
    Value const place = ModelApplication::placeOf(command);
    std::vector<ModelPointer> const places = place.is(ValueKind::Application)
                                                 ? std::vector<ModelPointer>{system_events::diskItemAt(homePath())}
                                                 : application.objects(place, evaluator.context());
    std::shared_ptr<FinderItem> const made = finder::makeIn(*folderOf(places),
                                                            {.type = type == codes::File ? codes::DocumentFile : type,
                                                             .properties = command.find(codes::PropertiesParameter)},
                                                            evaluator.context());
    ModelPointer const item = system_events::diskItemAt(made->path());
    if (!item) throw cannotGet(made->specifier());
    return item->specifier();
}

Value make(ModelApplication& application, Evaluator& evaluator, ApplicationCommand const& command) {
    Value const* const named = command.find(codes::NewClassParameter);
    Value const type = named ? *named : command.direct;
    if (!type.is(ValueKind::Type)) throw missingParameter(u"new", command.term.name);
    switch (type.asCode()) {
    case codes::LoginItem:
        return system_events::makeLoginItem(command, evaluator.context());
    case codes::PropertyListItem:
        return system_events::makePropertyListItem(application, command, evaluator.context());
    case codes::PropertyListFile:
        return system_events::makePropertyListFile(command, evaluator.context());
    case codes::Folder:
    case codes::File:
        return makeItem(application, evaluator, command, type.asCode());
    default:
        throw ScriptError{.number = errors::CannotMakeClass,
                          .message = u"Can’t make class " + nameOfCode(type.asCode()) + u"."};
    }
}

// Linux: to the trash, from where it can be put back.
Value remove(ModelApplication& application, Evaluator& evaluator, ApplicationCommand const& command) {
    std::vector<ModelPointer> const all = application.objects(ModelApplication::directOf(command), evaluator.context());
    bool const areLoginItems = !all.empty() && std::ranges::all_of(all, [](ModelPointer const& object) {
        return system_events::isLoginItem(*object);
    });
    if (areLoginItems) {
        system_events::removeLoginItems(all);
        return {};
    }
    for (std::shared_ptr<FinderItem> const& item : itemsOf(all))
        finder::movedToTrash(*item);
    return {};
}

Value move(ModelApplication& application, Evaluator& evaluator, ApplicationCommand const& command) {
    Value const* const to = command.find(codes::InsertionParameter);
    if (!to) throw missingParameter(u"to", command.term.name);
    TextContext const& context = evaluator.context();
    std::shared_ptr<FinderItem> const folder =
        folderOf(application.objects(ModelApplication::containerMeantBy(*to), context));
    Value const meant = ModelApplication::directOf(command);
    std::vector<Value> answers;
    for (std::shared_ptr<FinderItem> const& item : itemsOf(application.objects(meant, context))) {
        finder::moveInto(evaluator, *item, *folder, NameClash::IsRefused);
        ModelPointer const moved =
            system_events::diskItemAt(BytePath(folder->path()).joined(BytePath(item->path()).leaf()));
        answers.push_back(moved ? moved->specifier() : Value::missing());
    }
    return finder::answerOf(meant, std::move(answers));
}

// Folders in the file browser, other items with their applications.
Value open(ModelApplication& application, Evaluator& evaluator, ApplicationCommand const& command) {
    for (std::shared_ptr<FinderItem> const& item : itemsOf(application.objects(command.direct, evaluator.context())))
        finder::openPath(item->path(), command.direct);
    return {};
}

using Root = SystemEventsRoot;

// A row of a folder that the desktop keeps for a purpose.
template <Code Folder>
consteval PropertyRow folderRow(std::u16string_view name) {
    return {name, Folder, codes::Folder, reading<&Root::folder<Folder>>, nullptr, Unlisted};
}

constexpr auto SystemEventsProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&Root::name>},
    {u"id", codes::Identifier, codes::TextType, reading<&Root::identifier>},
    {u"version", codes::Version, codes::TextType, reading<&Root::version>},
    {u"running", codes::Running, codes::BooleanType, reading<&Root::isRunning>},
    {u"frontmost", codes::Frontmost, codes::BooleanType, reading<&Root::isFrontmost>},
    {u"current user", codeOf("curu"), codes::User, reading<&Root::currentUser>, nullptr, Unlisted},
    {u"startup disk", codes::StartupDisk, codes::Disk, reading<&Root::startupDisk>, nullptr, Unlisted},
    {u"desktop folder", codes::Desktop, codes::Folder, reading<&Root::desktopFolder>, nullptr, Unlisted},
    {u"", codes::Home, codes::Folder, reading<&Root::folder<folders::Home>>, nullptr, Unlisted},
    folderRow<folders::Home>(u"home folder"),
    folderRow<folders::Documents>(u"documents folder"),
    folderRow<folders::Downloads>(u"downloads folder"),
    folderRow<folders::Movies>(u"movies folder"),
    folderRow<folders::Music>(u"music folder"),
    folderRow<folders::Pictures>(u"pictures folder"),
    folderRow<folders::Public>(u"public folder"),
    folderRow<folders::Library>(u"library folder"),
    folderRow<folders::ApplicationSupport>(u"application support folder"),
    folderRow<folders::Fonts>(u"fonts folder"),
    folderRow<folders::Preferences>(u"preferences folder"),
    folderRow<folders::TemporaryItems>(u"temporary items folder"),
});
constexpr auto SystemEventsElements = std::to_array<ElementRow>({
    {codes::Process, listing<&Root::processes>},
    {codes::ApplicationProcess, listing<&Root::processes>},
    {codes::LoginItem, listing<&Root::loginItems>},
    {codes::Disk, listing<&Root::disks>},
    {codes::User, listing<&Root::users>},
    {codes::DiskItem, listing<&Root::itemsAtHome>},
    {codes::File, listing<&Root::itemsAtHome>},
    {codes::Folder, listing<&Root::itemsAtHome>},
});
constexpr ClassRow RootRow{.name = u"",
                           .plural = u"",
                           .code = codes::Application,
                           .properties = SystemEventsProperties,
                           .elements = SystemEventsElements};

ClassRow const& SystemEventsRoot::row() const { return RootRow; }

constexpr auto SystemEventsCommands = std::to_array<CommandRow>({
    {common::Make, make},
    {common::Delete, remove},
    {common::Move, move},
    {common::Open, open},
    {common::Activate, stay},
    {common::Launch, stay},
    {common::Run, stay},
    {common::Reopen, stay},
    {common::Quit, stay},
    {{.name = u"log out", .code = eventOf("fndrlogo")}, logOut},
    {common::Restart, refuseToEnd},
    {common::ShutDown, refuseToEnd},
    {common::Sleep, refuseToEnd},
});
constexpr auto SystemEventsTypes = std::to_array<NameRow>({{u"alias list", codes::AliasListType}});

std::span<ClassRow const* const> systemEventsClasses() {
    static std::vector<ClassRow const*> const all = [] {
        std::vector<ClassRow const*> rows{&RootRow, &UserRow, &system_events::LoginItemRow};
        for (std::span<ClassRow const* const> const more :
             {system_events::diskItemKinds(), system_events::processKinds(), system_events::propertyListKinds()})
            rows.insert(rows.end(), more.begin(), more.end());
        return rows;
    }();
    return all;
}

class SystemEvents final : public ModelApplication {
public:
    std::u16string name() const override { return u"System Events"; }
    std::u16string identifier() const override { return u"com.apple.systemevents"; }
    bool isRunning() const override { return true; }
    Dictionary const& dictionary() const override {
        static Dictionary const all{
            .classes = systemEventsClasses(), .types = SystemEventsTypes, .commands = SystemEventsCommands};
        return all;
    }

protected:
    ModelPointer root() override { return std::make_shared<SystemEventsRoot>(); }

    ModelPointer objectOfFile(FileObject const& file) override {
        std::optional<std::string> const path = fileSystemBytesFromUnits(file.path);
        return path ? system_events::diskItemAt(*path) : nullptr;
    }
};

} // namespace

namespace system_events {

Value itself() { return makeObject<ApplicationObject>(ValueKind::Application, u"System Events", false); }

} // namespace system_events

Application& systemEventsApplication() {
    static SystemEvents application;
    return application;
}

} // namespace mac::applescript
