#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/files/references/HFSPaths.h"
#include "platform/files/trash/Trash.h"
#include "platform/system/items/OpenItem.h"
#include <array>

// The trash and the commands that fill and empty it.

namespace mac::applescript {

namespace {

// The trash of all volumes; its elements are the trashed items, the last one first.
class FinderTrash final : public ModelObject {
public:
    ClassRow const& row() const override { return finder::TrashRow; }
    bool isOfType(Code sought) const override { return sought == codes::Container || row().isKindOf(sought); }
    Value specifier() const override { return propertySpecifier(termSymbol(codes::Trash, u"trash"), finderItself()); }

    std::optional<std::vector<ModelPointer>> items(Code elementType) {
        std::vector<ModelPointer> found;
        for (TrashedItem const& trashed : trashedItems()) {
            ModelPointer const item = FinderItem::atPath(trashed.path);
            if (item && item->isOfType(elementType)) found.push_back(item);
        }
        return found;
    }

    std::optional<Value> coerced(Code wanted) override {
        Result<std::string, TrashProblem> const path = trashFolderForPath(homePath(), MissingTrash::IsMade);
        std::shared_ptr<FinderItem> const folder = path.hasValue() ? FinderItem::atPath(path.value()) : nullptr;
        return folder ? folder->coerced(wanted) : std::nullopt;
    }
};

Value trashName(FinderTrash const& /*trash*/) { return Value::text(u"Trash"); }

constexpr auto TrashProperties = std::to_array<PropertyRow>({
    {u"name", codes::Name, codes::TextType, reading<&trashName>},
    {u"displayed name", codes::DisplayedName, codes::TextType, reading<&trashName>},
});
constexpr auto TrashElements = std::to_array<ElementRow>({
    {codes::Item, listing<&FinderTrash::items>},
    {codes::Container, listing<&FinderTrash::items>},
    {codes::Folder, listing<&FinderTrash::items>},
    {codes::File, listing<&FinderTrash::items>},
    {codes::DocumentFile, listing<&FinderTrash::items>},
    {codes::ApplicationFile, listing<&FinderTrash::items>},
    {codes::AliasFile, listing<&FinderTrash::items>},
    {codes::Package, listing<&FinderTrash::items>},
});

} // namespace

namespace finder {

constinit ClassRow const TrashRow{.name = u"trash-object",
                                  .plural = u"",
                                  .code = codeOf("ctrs"),
                                  .properties = TrashProperties,
                                  .elements = TrashElements};

ModelPointer trash() { return std::make_shared<FinderTrash>(); }

bool isTrash(std::vector<ModelPointer> const& found) { return found.size() == 1 && &found.front()->row() == &TrashRow; }

Value movedToTrash(FinderItem const& item) {
    Result<TrashedItem, TrashProblem> const result = mac::moveToTrash(item.open());
    if (!result.hasValue()) throw trashError(result.problem(), item.specifier());
    std::shared_ptr<FinderItem> const trashed = FinderItem::atPath(result.value().path);
    if (!trashed) throw cannotGet(item.specifier());
    return trashed->specifier();
}

// The first item that cannot be trashed ends the command; items trashed before it stay in the trash.
Value moveToTrash(FinderItems const& items, Value const& meant) {
    std::vector<Value> answers;
    for (std::shared_ptr<FinderItem> const& item : items) {
        stopRunIfAsked();
        answers.push_back(movedToTrash(*item));
    }
    return answerOf(meant, std::move(answers));
}

Value remove(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    Value const meant = ModelApplication::directOf(command);
    return moveToTrash(itemsOf(finder.objects(meant, evaluator.context())), meant);
}

Value emptyTrash(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    bool const isTold = !command.direct.isNothing();
    if (isTold && !isTrash(finder.objects(command.direct, evaluator.context()))) throw plainError(-10010);
    EmptiedTrash const emptied = mac::emptyTrash(mayRunGoOn);
    stopRunIfAsked();
    if (emptied.left > 0) throw trashError(emptied.firstProblem, trash()->specifier());
    bool const wasEmpty = emptied.removed == 0;
    if (wasEmpty) throw ScriptError{.number = errors::UserCanceled, .message = u"The operation can’t be completed."};
    return {};
}

} // namespace finder

} // namespace mac::applescript
