#pragma once

#include "platform/applescript/applications/FinderItem.h"
#include "platform/desktop/DesktopProblem.h"
#include "platform/files/trash/ReplacingTransfer.h"

// The application that looks after files. Linux: what concerns files and the trash is done here; windows are the
// desktop's file browser's.

namespace mac::applescript::finder {

// FinderTrash.cpp: the class of the trash.
extern ClassRow const TrashRow;

using FinderItems = std::vector<std::shared_ptr<FinderItem>>;

// The objects found as Finder items; throws if one is not an item.
FinderItems itemsOf(std::vector<ModelPointer> const& found);
// The folder to put something into; throws -10024 for anything else.
std::shared_ptr<FinderItem> folderOf(std::vector<ModelPointer> const& found);
// A command about one item answers that, one about several a list.
Value answerOf(Value const& meant, std::vector<Value> answers);

// DesktopPicture.cpp; both throw if the desktop does not tell.
std::optional<Value> desktopPicture(ModelObject const& root);
bool setDesktopPicture(ModelObject const& root, Value const& value, TextContext const& context);

// FinderTrash.cpp
ModelPointer trash();
bool isTrash(std::vector<ModelPointer> const& found);
Value movedToTrash(FinderItem const& item);
// The answer of a command about them.
Value moveToTrash(FinderItems const& items, Value const& meant);

// FinderTrash.cpp
Value remove(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
Value emptyTrash(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
// FinderTransfers.cpp
void moveInto(Evaluator& evaluator, FinderItem const& item, FinderItem const& folder, NameClash clash);
Value move(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
Value duplicate(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
// FinderMaking.cpp: a new folder, file or alias file, and what it is to be.
struct NewItem {
    Code type{0};
    // The path that an alias file leads to.
    std::string target{};
    // A record; null without one.
    Value const* properties{nullptr};
};
std::shared_ptr<FinderItem> makeIn(FinderItem const& folder, NewItem const& item, TextContext const& context);
Value make(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
// FinderWindows.cpp
// The script's error if no application is known for an item.
inline constexpr std::int32_t ApplicationNotFound = -10814;
// Throws the script's error about the object unless the desktop did what it was asked.
void requireDone(DesktopOutcome const& outcome, Value const& object);
// The programs that are to open items instead of their own.
inline constexpr Code UsingParameter = codeOf("usin");
// Opens the item as a double click on it does.
void openPath(std::string const& path, Value const& object);
Value open(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
Value reveal(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
Value activate(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
Value quit(ModelApplication& finder, Evaluator& evaluator, ApplicationCommand const& command);
bool isRunning();

} // namespace mac::applescript::finder
