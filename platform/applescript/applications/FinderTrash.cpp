#include "platform/applescript/Evaluator.h"
#include "platform/applescript/RunLimits.h"
#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/files/HFSPaths.h"
#include "platform/files/Trash.h"
#include "platform/foundation/Encodings.h"
#include "platform/system/items/OpenItem.h"
#include <cerrno>

// The trash, and what is thrown into it.

namespace mac::applescript {

namespace {

// Of all volumes; its elements are what was thrown away, the last one first.
class FinderTrash final : public ModelObject {
public:
    Code type() const override { return codeOf("ctrs"); }
    bool isOfType(Code sought) const override {
        return sought == codeOf("ctrs") || sought == codeOf("cobj") || sought == codeOf("ctnr");
    }
    Value specifier() const override { return propertySpecifier(termSymbol(codeOf("trsh"), u"trash"), finderItself()); }

    std::optional<Value> property(Code code) override {
        if (code == codeOf("pcls")) return Value::type(codeOf("ctrs"));
        if (code == codeOf("pnam") || code == codeOf("dnam")) return Value::text(u"Trash");
        return {};
    }

    std::optional<std::vector<ModelPointer>> elements(Code elementType) override {
        std::vector<ModelPointer> items;
        for (TrashedItem const& trashed : trashedItems()) {
            ModelPointer const item = FinderItem::atPath(trashed.path);
            if (item && item->isOfType(elementType)) items.push_back(item);
        }
        return items;
    }

    std::optional<Value> coerced(Code wanted) override {
        std::optional<std::string> const path = trashFolderForPath(homePath(), true);
        std::shared_ptr<FinderItem> const folder = path ? FinderItem::atPath(*path) : nullptr;
        return folder ? folder->coerced(wanted) : std::nullopt;
    }
};

ScriptError trashError(TrashFailure const& failure, Value const& object) {
    switch (failure.problem) {
    case TrashProblem::NotThere:
    case TrashProblem::Changed:
        return fileError(ENOENT, object);
    case TrashProblem::NotAllowed:
        return fileError(EACCES, object);
    case TrashProblem::ReadOnly:
        return fileError(EROFS, object);
    case TrashProblem::Full:
        return fileError(ENOSPC, object);
    case TrashProblem::NameTaken:
        return fileError(EEXIST, object);
    case TrashProblem::InTrash:
    case TrashProblem::Immovable:
        return {.number = -10010, .message = messageOfNumber(-10010), .from = object};
    default:
        return {.number = -10000, .message = unitsFromFileSystemBytes(failure.reason), .from = object};
    }
}

} // namespace

namespace finder {

ModelPointer trash() { return std::make_shared<FinderTrash>(); }

bool isTrash(std::vector<ModelPointer> const& found) {
    return found.size() == 1 && found.front()->type() == codeOf("ctrs");
}

Value movedToTrash(FinderItem const& item) {
    TrashResult<TrashedItem> const result = mac::moveToTrash(item.open());
    if (!result.hasValue()) throw trashError(result.failure(), item.specifier());
    std::shared_ptr<FinderItem> const trashed = FinderItem::atPath(result.value().path);
    if (!trashed) throw fileError(ENOENT, item.specifier());
    return trashed->specifier();
}

// What cannot be thrown away ends it; what was thrown away until then stays in the trash.
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
    if (emptied.left > 0) throw trashError(emptied.firstFailure, trash()->specifier());
    bool const wasEmpty = emptied.removed == 0;
    if (wasEmpty) throw ScriptError{.number = errors::UserCanceled, .message = u"The operation can’t be completed."};
    return {};
}

} // namespace finder

} // namespace mac::applescript
