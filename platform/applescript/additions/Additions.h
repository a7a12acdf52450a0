#pragma once

#include "platform/applescript/runtime/Evaluator.h"
#include "platform/foundation/running/UserInterface.h"

// The standard additions: what scripts can do besides the language itself. Each takes its event's parameters.

namespace mac::applescript::additions {

// AdditionsText.cpp
Value offset(Evaluator& evaluator, CommandArguments const& arguments);
Value round(Evaluator& evaluator, CommandArguments const& arguments);
Value randomNumber(Evaluator& evaluator, CommandArguments const& arguments);
Value asciiCharacter(Evaluator& evaluator, CommandArguments const& arguments);
Value asciiNumber(Evaluator& evaluator, CommandArguments const& arguments);
Value localizedString(Evaluator& evaluator, CommandArguments const& arguments);
Value log(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsSystem.cpp
Value currentDate(Evaluator& evaluator, CommandArguments const& arguments);
Value timeToGMT(Evaluator& evaluator, CommandArguments const& arguments);
Value delay(Evaluator& evaluator, CommandArguments const& arguments);
Value runScript(Evaluator& evaluator, CommandArguments const& arguments);
Value systemAttribute(Evaluator& evaluator, CommandArguments const& arguments);
Value pathTo(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsComputer.cpp
Value systemInfo(Evaluator& evaluator, CommandArguments const& arguments);
Value listDisks(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsSound.cpp; they throw -192 if the program that does it is missing.
Value setVolume(Evaluator& evaluator, CommandArguments const& arguments);
Value volumeSettings(Evaluator& evaluator, CommandArguments const& arguments);
Value say(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsShell.cpp
// Linux: what files and commands say in no named encoding is UTF-8 where it is that, for that is what files here hold;
// else Mac OS Roman.
std::u16string textOfBytes(std::string const& bytes);
Value doShellScript(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsScripts.cpp
Value loadScript(Evaluator& evaluator, CommandArguments const& arguments);
Value storeScript(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsInteraction.cpp; all but beep throw -1713 if the program has no screen.
Value displayDialog(Evaluator& evaluator, CommandArguments const& arguments);
Value displayAlert(Evaluator& evaluator, CommandArguments const& arguments);
Value displayNotification(Evaluator& evaluator, CommandArguments const& arguments);
Value beep(Evaluator& evaluator, CommandArguments const& arguments);
Value theClipboard(Evaluator& evaluator, CommandArguments const& arguments);
Value setTheClipboard(Evaluator& evaluator, CommandArguments const& arguments);
Value clipboardInfo(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsChoosing.cpp; they throw -1713 as those above.
Value chooseFromList(Evaluator& evaluator, CommandArguments const& arguments);
Value chooseURL(Evaluator& evaluator, CommandArguments const& arguments);
Value chooseApplication(Evaluator& evaluator, CommandArguments const& arguments);
Value chooseColor(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsChoosingFiles.cpp; they throw -1713 as those above.
Value chooseFile(Evaluator& evaluator, CommandArguments const& arguments);
Value chooseFolder(Evaluator& evaluator, CommandArguments const& arguments);
Value chooseFileName(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsLocations.cpp
Value openLocation(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsFiles.cpp
// The file as it was named; for a mere path, its file.
Value asFile(Value const& named, std::u16string const& path);
Value infoFor(Evaluator& evaluator, CommandArguments const& arguments);
Value listFolder(Evaluator& evaluator, CommandArguments const& arguments);

// AdditionsReadWrite.cpp
Value openForAccess(Evaluator& evaluator, CommandArguments const& arguments);
Value closeAccess(Evaluator& evaluator, CommandArguments const& arguments);
Value read(Evaluator& evaluator, CommandArguments const& arguments);
Value write(Evaluator& evaluator, CommandArguments const& arguments);
Value getEnd(Evaluator& evaluator, CommandArguments const& arguments);
Value setEnd(Evaluator& evaluator, CommandArguments const& arguments);

// What commands that ask the person at the screen have in common. Main thread.

// Throws -1713 if this program has no screen.
UserInterface& requireInterface();

// The key of a record that a command answers.
Symbol keyOf(Code code);
// Parameters; empty and false if they are not given.
std::u16string textAt(CommandArguments const& arguments, Code code, TextContext const& context);
bool flagAt(CommandArguments const& arguments, Code code, TextContext const& context);
// The items of a list as text; a single value counts as a list of itself.
std::vector<std::u16string> textsIn(Value const& list, TextContext const& context);

} // namespace mac::applescript::additions
