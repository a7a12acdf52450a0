#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/CommonTerms.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/applications/Program.h"
#include "platform/applescript/applications/SystemEvents.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/desktop/browser/FileBrowserSession.h"
#include "platform/desktop/session/FrontProcess.h"
#include "platform/files/volumes/Volumes.h"
#include "platform/foundation/text/Encodings.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

constexpr Code SortByParameter = codeOf("by  ");

// The Finder itself. What lies on the desktop and the disks are its elements.
class FinderRoot final : public ModelObject {
public:
    ClassRow const& row() const override;
    Value specifier() const override { return finderItself(); }

    std::optional<std::vector<ModelPointer>> desktopItems(Code elementType) const {
        std::shared_ptr<FinderItem> const desktop = FinderItem::atPath(desktopPath());
        if (desktop) return desktop->elements(elementType);
        return std::vector<ModelPointer>();
    }

    std::optional<std::vector<ModelPointer>> disks(Code /*elementType*/) const { return allDisks(); }

    static std::vector<ModelPointer> allDisks() {
        std::vector<ModelPointer> disks;
        for (MountedVolume const& volume : mountedVolumes()) {
            if (!volume.isStartup() && !volume.isBrowsable) continue;
            if (ModelPointer const disk = FinderItem::atPath(volume.mountPoint)) disks.push_back(disk);
        }
        return disks;
    }

    // A disk, a whole path, or something on the desktop.
    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        if (elementType == codes::Process || elementType == codes::ApplicationProcess)
            return ModelObject::elementNamed(elementType, name);
        for (ModelPointer const& disk : allDisks()) {
            std::u16string const diskName = disk->property(codes::Name)->units();
            std::size_t const length = std::min(name.find(u':'), name.size());
            if (foldedName(diskName) != foldedName(name.substr(0, length))) continue;
            bool const isDiskItself = length + 1 >= name.size();
            if (!isDiskItself) return disk->elementNamed(elementType, name.substr(length + 1));
            if (disk->isOfType(elementType)) return disk;
        }
        std::shared_ptr<FinderItem> const desktop = FinderItem::atPath(desktopPath());
        return desktop ? desktop->elementNamed(elementType, name) : nullptr;
    }

    // An application by the identifier of its bundle, a disk or a process by its own.
    ModelPointer elementIdentified(Code elementType, Value const& identifier) override {
        bool const isApplication = elementType == codes::ApplicationFile && identifier.is(ValueKind::Text);
        if (!isApplication) return ModelObject::elementIdentified(elementType, identifier);
        std::optional<std::string> const path = pathOfApplicationIdentified(identifier.units());
        std::shared_ptr<FinderItem> const found = path ? FinderItem::atPath(*path) : nullptr;
        return found && found->isOfType(elementType) ? found : nullptr;
    }
};

Value finderName(FinderRoot const& /*finder*/) { return Value::text(u"Finder"); }
Value finderIdentifier(FinderRoot const& /*finder*/) { return Value::text(u"com.apple.finder"); }
Value finderVersion(FinderRoot const& /*finder*/) { return Value::text(u"10.6"); }
Value isFinderRunning(FinderRoot const& /*finder*/) { return Value::boolean(finder::isRunning()); }
Value isFrontmost(FinderRoot const& /*finder*/) {
    std::optional<std::int32_t> const front = frontProcessID();
    return Value::boolean(front && std::ranges::any_of(fileBrowserProcesses(), [&](ProcessIdentity const& process) {
                              return process.pid == *front;
                          }));
}
ModelPointer homeFolder(FinderRoot const& /*finder*/) { return FinderItem::atPath(homePath()); }
ModelPointer desktopOfFinder(FinderRoot const& /*finder*/) { return FinderItem::atPath(desktopPath()); }
ModelPointer startupDisk(FinderRoot const& /*finder*/) { return FinderItem::atPath("/"); }
ModelPointer trashOf(FinderRoot const& /*finder*/) { return finder::trash(); }

// Linux: the file browsers tell no program what is selected in their windows, nor where a new item would go.
std::optional<Value> untold(FinderRoot const& /*finder*/) { return {}; }

std::optional<std::vector<ModelPointer>> finderProcesses(FinderRoot const& /*finder*/, Code /*elementType*/) {
    return system_events::processes(finderItself());
}

// Whatever is not the Finder itself or the trash is an item on a disk.
bool isItem(ModelObject const& object) {
    return object.isOfType(codes::Item) && object.row().property(codes::InformationWindow) != nullptr;
}

// Linux: no program may do that on a script's behalf without asking.
Value refuse(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    throw plainError(errors::PrivilegeViolation);
}

// The desktop's file browser watches what it shows.
Value update(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    finder::itemsOf(finder.objects(ModelApplication::directOf(command), evaluator.context()));
    return {};
}

// By name, or by the property whose name or code is given.
Value sort(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    Value const* const by = command.find(SortByParameter);
    Code code = codes::Name;
    if (by && by->is(ValueKind::Type)) code = by->asCode();
    if (by && by->is(ValueKind::Specifier) && by->specifier().property) code = by->specifier().property->code;
    std::vector<std::pair<Value, ModelPointer>> items;
    for (ModelPointer const& item : finder.objects(command.direct, evaluator.context())) {
        std::optional<Value> const key = item->property(code);
        if (!key) throw cannotGet(propertySpecifier(termSymbol(code, nameOfCode(code)), item->specifier()));
        items.emplace_back(*key, item);
    }
    std::ranges::stable_sort(items, [&](auto const& one, auto const& other) {
        bool const mayCompare = one.first.is(ValueKind::Text) || one.first.isNumber() || one.first.is(ValueKind::Date);
        return mayCompare && isOrdered(Operation::Less, one.first, other.first, evaluator.context());
    });
    std::vector<Value> sorted;
    sorted.reserve(items.size());
    for (auto const& [key, item] : items)
        sorted.push_back(item->specifier());
    return Value::list(std::move(sorted));
}

constexpr auto FinderRootProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&finderName>},
    {u"id", codes::Identifier, codes::TextType, reading<&finderIdentifier>},
    {u"version", codes::Version, codes::TextType, reading<&finderVersion>},
    {u"product version", codeOf("ver2"), codes::TextType, reading<&finderVersion>},
    {u"running", codes::Running, codes::BooleanType, reading<&isFinderRunning>},
    {u"frontmost", codes::Frontmost, codes::BooleanType, reading<&isFrontmost>},
    {u"home", codes::Home, codes::Folder, reading<&homeFolder>},
    {u"desktop", codes::Desktop, codes::Folder, reading<&desktopOfFinder>},
    {u"startup disk", codes::StartupDisk, codes::Disk, reading<&startupDisk>},
    {u"trash", codes::Trash, codes::Item, reading<&trashOf>},
    {u"selection", codeOf("sele"), codes::ListType, reading<&untold>},
    {u"insertion location", codeOf("pins"), codes::ReferenceType, reading<&untold>},
    {u"desktop picture", codeOf("dpic"), codes::FileURLType, reading<&finder::desktopPicture>,
     writing<&finder::setDesktopPicture>, InProperties::Unlisted},
});
constexpr auto FinderRootElements = std::to_array<ElementRow>({
    {codes::Disk, listing<&FinderRoot::disks>},
    {codes::Process, listing<&finderProcesses>},
    {codes::ApplicationProcess, listing<&finderProcesses>},
    {codes::Item, listing<&FinderRoot::desktopItems>},
    {codes::Container, listing<&FinderRoot::desktopItems>},
    {codes::Folder, listing<&FinderRoot::desktopItems>},
    {codes::File, listing<&FinderRoot::desktopItems>},
    {codes::DocumentFile, listing<&FinderRoot::desktopItems>},
    {codes::ApplicationFile, listing<&FinderRoot::desktopItems>},
    {codes::AliasFile, listing<&FinderRoot::desktopItems>},
    {codes::Package, listing<&FinderRoot::desktopItems>},
});
constexpr ClassRow FinderRootRow{.name = u"",
                                 .plural = u"",
                                 .code = codes::Application,
                                 .properties = FinderRootProperties,
                                 .elements = FinderRootElements};

constexpr auto OpenParameters = std::to_array<CommandParameter>({
    {.label = u"using", .code = finder::UsingParameter},
});
constexpr auto SortParameters = std::to_array<CommandParameter>({{.label = u"by", .code = SortByParameter}});
constexpr auto UpdateParameters = std::to_array<CommandParameter>({
    {.label = u"necessity", .code = codeOf("nec?"), .isBoolean = true},
    {.label = u"registering applications", .code = codeOf("reg?"), .isBoolean = true},
});
constexpr auto EmptyParameters =
    std::to_array<CommandParameter>({{.label = u"security", .code = codeOf("sec?"), .isBoolean = true}});
constexpr DirectParameter Required = DirectParameter::Required;
constexpr DirectParameter Optional = DirectParameter::Optional;

constexpr auto FinderCommands = std::to_array<CommandRow>({
    {common::Delete, finder::remove},
    {common::Move, finder::move},
    {common::Duplicate, finder::duplicate},
    {common::Make, finder::make},
    {{.name = u"open", .code = common::Open.code, .direct = Required, .parameters = OpenParameters}, finder::open},
    {common::Reveal, finder::reveal},
    {common::Select, finder::reveal},
    {common::Activate, finder::activate},
    {common::Launch, finder::activate},
    {common::Run, finder::activate},
    {common::Reopen, finder::activate},
    {common::Quit, finder::quit},
    {{.name = u"empty", .code = eventOf("fndrempt"), .direct = Optional, .parameters = EmptyParameters},
     finder::emptyTrash},
    {{.name = u"update", .code = eventOf("fndrfupd"), .direct = Required, .parameters = UpdateParameters}, update},
    {{.name = u"sort", .code = eventOf("DATASORT"), .direct = Required, .parameters = SortParameters}, sort},
    {{.name = u"erase", .code = eventOf("fndrfera"), .direct = Required}, refuse},
    {{.name = u"eject", .code = eventOf("fndrejct"), .direct = Optional}, refuse},
    {common::Restart, refuse},
    {common::ShutDown, refuse},
    {common::Sleep, refuse},
});

constexpr auto FinderConstants = std::to_array<NameRow>({
    {u"read only", codes::ReadOnly},
    {u"read write", codes::ReadWrite},
    {u"write only", codes::WriteOnly},
    {u"none", codes::NoAccess},
});
constexpr auto FinderTypes = std::to_array<NameRow>({{u"alias list", codes::AliasListType}});

std::span<ClassRow const* const> finderClasses() {
    static std::vector<ClassRow const*> const all = [] {
        std::vector<ClassRow const*> rows{&FinderRootRow, &finder::TrashRow};
        for (std::span<ClassRow const* const> const more : {finderItemKinds(), system_events::processKinds()})
            rows.insert(rows.end(), more.begin(), more.end());
        return rows;
    }();
    return all;
}

ClassRow const& FinderRoot::row() const { return FinderRootRow; }

class Finder final : public ModelApplication {
public:
    std::u16string name() const override { return u"Finder"; }
    std::u16string identifier() const override { return u"com.apple.finder"; }
    Dictionary const& dictionary() const override {
        static Dictionary const all{
            .classes = finderClasses(), .types = FinderTypes, .constants = FinderConstants, .commands = FinderCommands};
        return all;
    }
    bool isRunning() const override { return finder::isRunning(); }

protected:
    ModelPointer root() override { return std::make_shared<FinderRoot>(); }

    ModelPointer objectOfFile(FileObject const& file) override {
        std::optional<std::string> const path = fileSystemBytesFromUnits(file.path);
        std::shared_ptr<FinderItem> const item = path ? FinderItem::atPath(*path) : nullptr;
        bool const isMeant = item && (!file.identity || item->facts().identity == *file.identity);
        return isMeant ? item : nullptr;
    }
};

} // namespace

namespace finder {

FinderItems itemsOf(std::vector<ModelPointer> const& found) {
    FinderItems items;
    for (ModelPointer const& object : found) {
        if (!isItem(*object)) throw plainError(errors::NotOfThisClass);
        items.push_back(std::static_pointer_cast<FinderItem>(object));
    }
    return items;
}

std::shared_ptr<FinderItem> folderOf(std::vector<ModelPointer> const& found) {
    if (found.size() != 1) throw plainError(errors::CannotPutThere);
    // The Finder's own elements are what lies on the desktop.
    if (found.front()->type() == codes::Application) {
        std::shared_ptr<FinderItem> const desktop = FinderItem::atPath(desktopPath());
        if (!desktop) throw cannotGet(Value::text(shownName(desktopPath())));
        return desktop;
    }
    if (!isItem(*found.front())) throw plainError(errors::CannotPutThere);
    std::shared_ptr<FinderItem> const folder = std::static_pointer_cast<FinderItem>(found.front());
    if (!folder->isFolder()) throw plainError(errors::CannotPutThere);
    return folder;
}

Value answerOf(Value const& meant, std::vector<Value> answers) {
    bool const isSingle = answers.size() == 1 && !meant.is(ValueKind::List);
    if (isSingle) return answers.front();
    return Value::list(std::move(answers));
}

} // namespace finder

Application& finderApplication() {
    static Finder finder;
    return finder;
}

} // namespace mac::applescript
