#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/ApplicationList.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/Operators.h"
#include "platform/desktop/FileBrowserSession.h"
#include "platform/desktop/FrontProcess.h"
#include "platform/files/Volumes.h"
#include "platform/foundation/Encodings.h"
#include <algorithm>
#include <array>

namespace mac::applescript {

namespace {

// The Finder itself. What lies on the desktop and the disks are its elements.
class FinderRoot final : public ModelObject {
public:
    Code type() const override { return codeOf("capp"); }
    Value specifier() const override { return finderItself(); }

    std::optional<Value> property(Code code) override {
        switch (code) {
        case codeOf("pcls"):
            return Value::type(codeOf("capp"));
        case codeOf("pnam"):
            return Value::text(u"Finder");
        case codeOf("ID  "):
            return Value::text(u"com.apple.finder");
        case codeOf("vers"):
        case codeOf("ver2"):
            return Value::text(u"10.6");
        case codeOf("prun"):
            return Value::boolean(finder::isRunning());
        case codeOf("pisf"):
            return Value::boolean(isFrontmost());
        default:
            return {};
        }
    }

    ModelPointer objectProperty(Code code) override {
        switch (code) {
        case codeOf("home"):
            return FinderItem::atPath(homePath());
        case codeOf("desk"):
            return FinderItem::atPath(desktopPath());
        case codeOf("sdsk"):
            return FinderItem::atPath("/");
        case codeOf("trsh"):
            return finder::trash();
        default:
            return nullptr;
        }
    }

    std::optional<std::vector<ModelPointer>> elements(Code elementType) override {
        if (elementType == codeOf("cdis")) return disks();
        std::shared_ptr<FinderItem> const desktop = FinderItem::atPath(desktopPath());
        if (desktop) return desktop->elements(elementType);
        return std::vector<ModelPointer>();
    }

    // A disk, a whole path, or something on the desktop.
    ModelPointer elementNamed(Code elementType, std::u16string const& name) override {
        for (ModelPointer const& disk : disks()) {
            std::u16string const diskName = disk->property(codeOf("pnam"))->units();
            std::size_t const length = std::min(name.find(u':'), name.size());
            if (foldedName(diskName) != foldedName(name.substr(0, length))) continue;
            bool const isDiskItself = length + 1 >= name.size();
            if (!isDiskItself) return disk->elementNamed(elementType, name.substr(length + 1));
            if (disk->isOfType(elementType)) return disk;
        }
        std::shared_ptr<FinderItem> const desktop = FinderItem::atPath(desktopPath());
        return desktop ? desktop->elementNamed(elementType, name) : nullptr;
    }

private:
    static bool isFrontmost() {
        std::optional<std::int32_t> const front = frontProcessID();
        return front && std::ranges::any_of(fileBrowserProcesses(),
                                            [&](ProcessIdentity const& process) { return process.pid == *front; });
    }

    static std::vector<ModelPointer> disks() {
        std::vector<ModelPointer> disks;
        for (MountedVolume const& volume : mountedVolumes()) {
            if (!volume.isStartup() && !volume.isBrowsable) continue;
            if (ModelPointer const disk = FinderItem::atPath(volume.mountPoint)) disks.push_back(disk);
        }
        return disks;
    }
};

// Whatever is not the Finder itself or the trash is an item on a disk.
bool isItem(ModelObject const& object) { return object.type() != codeOf("capp") && object.type() != codeOf("ctrs"); }

struct CommandRow {
    EventCode event;
    finder::Command command;
};

// Names of things that this disk's owner alone may do, and that nothing here does.
Value refuse(ModelApplication& /*finder*/, Evaluator& /*evaluator*/, ApplicationCommand const& /*command*/) {
    throw ScriptError{.number = -10004, .message = messageOfNumber(-10004)};
}

// The desktop's file browser watches what it shows.
Value update(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    finder::itemsOf(finder.objects(ModelApplication::directOf(command), evaluator.context()));
    return {};
}

// By name, or by the property whose name or code is given.
Value sort(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    Value const* const by = command.find(codeOf("by  "));
    Code code = codeOf("pnam");
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

constexpr auto CommandRows = std::to_array<CommandRow>({
    {eventOf("coredelo"), finder::remove},
    {eventOf("coremove"), finder::move},
    {eventOf("coreclon"), finder::duplicate},
    {eventOf("corecrel"), finder::make},
    {eventOf("aevtodoc"), finder::open},
    {eventOf("miscmvis"), finder::reveal},
    {eventOf("miscslct"), finder::reveal},
    {eventOf("miscactv"), finder::activate},
    {eventOf("ascrnoop"), finder::activate},
    {eventOf("aevtoapp"), finder::activate},
    {eventOf("aevtrapp"), finder::activate},
    {eventOf("aevtquit"), finder::quit},
    {eventOf("fndrempt"), finder::emptyTrash},
    {eventOf("fndrfupd"), update},
    {eventOf("DATASORT"), sort},
    {eventOf("fndrfera"), refuse},
    {eventOf("fndrejct"), refuse},
    {eventOf("fndrrest"), refuse},
    {eventOf("fndrshut"), refuse},
    {eventOf("fndrslep"), refuse},
});

class Finder final : public ModelApplication {
public:
    std::u16string name() const override { return u"Finder"; }
    std::u16string identifier() const override { return u"com.apple.finder"; }
    Terminology const* terms() const override { return &finderTerms(); }
    bool isRunning() const override { return finder::isRunning(); }

protected:
    ModelPointer root() override { return std::make_shared<FinderRoot>(); }

    ModelPointer objectOfFile(FileObject const& file) override {
        std::optional<std::string> const path = fileSystemBytesFromUnits(file.path);
        return path ? FinderItem::atPath(*path) : nullptr;
    }

    std::optional<Value> carryOut(Evaluator& evaluator, ApplicationCommand const& command) override {
        auto const* const row = std::ranges::find(CommandRows, command.term.code, &CommandRow::event);
        if (row == CommandRows.end()) return {};
        return row->command(*this, evaluator, command);
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
    if (found.front()->type() == codeOf("capp")) {
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
