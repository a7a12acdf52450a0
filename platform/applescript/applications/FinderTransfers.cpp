#include "platform/applescript/applications/Finder.h"
#include "platform/applescript/applications/FinderPlaces.h"
#include "platform/applescript/runtime/Coercion.h"
#include "platform/applescript/runtime/Evaluator.h"
#include "platform/applescript/runtime/FileErrors.h"
#include "platform/applescript/runtime/RunLimits.h"
#include "platform/system/BytePath.h"
#include <cerrno>

// Moving and duplicating.

namespace mac::applescript::finder {

namespace {

bool isReplacing(ApplicationCommand const& command, TextContext const& context) {
    Value const* const replacing = command.find(codes::ReplacingParameter);
    return replacing && requireBoolean(*replacing, context);
}

// "letter copy.txt", then "letter copy 2.txt".
std::u16string nameOfCopy(std::u16string const& name, unsigned number) {
    std::size_t const dot = name.rfind(u'.');
    bool const hasExtension = dot != std::u16string::npos && dot > 0 && dot + 1 < name.size();
    std::u16string const stem = hasExtension ? name.substr(0, dot) : name;
    std::string const digits = std::to_string(number);
    std::u16string const mark =
        number == 1 ? std::u16string(u" copy") : u" copy " + std::u16string(digits.begin(), digits.end());
    return stem + mark + (hasExtension ? name.substr(dot) : std::u16string());
}

Value itemIn(FinderItem const& folder, std::string const& name, Value const& complaint) {
    std::shared_ptr<FinderItem> const item = FinderItem::inFolder(folder.path(), name, folder.specifier());
    if (!item) throw cannotGet(complaint);
    return item->specifier();
}

// Beside itself under another name.
Value duplicateHere(Evaluator& evaluator, FinderItem const& item) {
    OpenItem const original = item.open();
    std::shared_ptr<FinderItem> const folder = FinderItem::atPath(parentOf(item.path()));
    if (!folder || original.name.empty()) throw plainError(errors::CannotPutThere);
    for (unsigned number = 1;; ++number) {
        std::optional<std::string> const name = nameOnDisk(nameOfCopy(shownName(original.name), number));
        if (!name) throw badFileName(item.specifier());
        Result<void, ReplacingProblem> const copied =
            copyItem({.item = original, .folder = original.folder, .name = *name, .shouldContinue = mayRunGoOn},
                     NameClash::IsRefused);
        if (copied.isDone()) return itemIn(*folder, *name, item.specifier());
        evaluator.stopIfAsked();
        if (!copied.problem().transfer.error.is(EEXIST))
            throw transferError(copied.problem(), item.specifier(), FileCommand::Transfer);
    }
}

bool liesIn(FinderItem const& item, FinderItem const& folder) {
    std::shared_ptr<FinderItem> const parent = FinderItem::atPath(parentOf(item.path()));
    return parent && parent->facts().identity == folder.facts().identity;
}

} // namespace

void moveInto(Evaluator& evaluator, FinderItem const& item, FinderItem const& folder, NameClash clash) {
    OpenItem const original = item.open();
    OpenItem const place = folder.open();
    if (original.name.empty()) throw plainError(errors::CannotPutThere);
    if (liesIn(item, folder)) return;
    Result<void, ReplacingProblem> const moved =
        moveItem({.item = original, .folder = place.item, .name = original.name, .shouldContinue = mayRunGoOn}, clash);
    if (moved.isDone()) return;
    if (moved.problem().transfer.kind != TransferProblem::Kind::OriginalStays) evaluator.stopIfAsked();
    throw transferError(moved.problem(), item.specifier(), FileCommand::Transfer);
}

// Linux: to another disk it is moved too; the copy is whole before the original goes.
Value move(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    TextContext const& context = evaluator.context();
    Value const* const to = command.find(codes::InsertionParameter);
    if (!to) throw missingParameter(u"to", command.term.name);
    Value const meant = ModelApplication::directOf(command);
    FinderItems const items = itemsOf(finder.objects(meant, context));
    std::vector<ModelPointer> const place = finder.objects(ModelApplication::containerMeantBy(*to), context);
    if (isTrash(place)) return moveToTrash(items, meant);
    std::shared_ptr<FinderItem> const folder = folderOf(place);
    NameClash const clash = isReplacing(command, context) ? NameClash::IsReplaced : NameClash::IsRefused;
    std::vector<Value> answers;
    for (std::shared_ptr<FinderItem> const& item : items) {
        evaluator.stopIfAsked();
        moveInto(evaluator, *item, *folder, clash);
        answers.push_back(itemIn(*folder, std::string(BytePath(item->path()).leaf()), item->specifier()));
    }
    return answerOf(meant, std::move(answers));
}

Value duplicate(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command) {
    TextContext const& context = evaluator.context();
    Value const* const to = command.find(codes::InsertionParameter);
    Value const meant = ModelApplication::directOf(command);
    FinderItems const items = itemsOf(finder.objects(meant, context));
    std::shared_ptr<FinderItem> const folder =
        to ? folderOf(finder.objects(ModelApplication::containerMeantBy(*to), context)) : nullptr;
    NameClash const clash = isReplacing(command, context) ? NameClash::IsReplaced : NameClash::IsRefused;
    std::vector<Value> answers;
    for (std::shared_ptr<FinderItem> const& item : items) {
        evaluator.stopIfAsked();
        bool const isHere = !folder || liesIn(*item, *folder);
        if (isHere) {
            answers.push_back(duplicateHere(evaluator, *item));
            continue;
        }
        OpenItem const original = item->open();
        OpenItem const place = folder->open();
        if (original.name.empty()) throw plainError(errors::CannotPutThere);
        Result<void, ReplacingProblem> const copied = copyItem(
            {.item = original, .folder = place.item, .name = original.name, .shouldContinue = mayRunGoOn}, clash);
        if (!copied.isDone()) {
            evaluator.stopIfAsked();
            throw transferError(copied.problem(), item->specifier(), FileCommand::Transfer);
        }
        answers.push_back(itemIn(*folder, original.name, item->specifier()));
    }
    return answerOf(meant, std::move(answers));
}

} // namespace mac::applescript::finder
