#include "platform/applescript/additions/AdditionKeys.h"
#include "platform/applescript/additions/AdditionParameters.h"
#include "platform/applescript/additions/Additions.h"
#include "platform/applescript/applications/StandardFolders.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Terminology.h"
#include <algorithm>
#include <array>

// The standard additions: name, event, parameters and function of each command.

namespace mac::applescript {

namespace {

constexpr auto RoundingWays = std::to_array<Enumerator>({
    {u"up", additions::constants::Up},
    {u"down", additions::constants::Down},
    {u"toward zero", additions::constants::TowardZero},
    {u"to nearest", additions::constants::ToNearest},
    {u"as taught in school", additions::constants::AsTaughtInSchool},
});

constexpr auto Domains = std::to_array<Enumerator>({
    {u"system domain", additions::constants::SystemDomain},
    {u"local domain", additions::constants::LocalDomain},
    {u"network domain", codeOf("fldn")},
    {u"user domain", additions::constants::UserDomain},
});

constexpr auto Folders = std::to_array<Enumerator>({
    {u"application support", folders::ApplicationSupport},
    {u"applications folder", folders::Applications},
    {u"desktop", folders::Desktop},
    {u"desktop folder", folders::Desktop},
    {u"documents folder", folders::Documents},
    {u"downloads folder", folders::Downloads},
    {u"fonts", folders::Fonts},
    {u"fonts folder", folders::Fonts},
    {u"home folder", folders::Home},
    {u"library folder", folders::Library},
    {u"movies folder", folders::Movies},
    {u"music folder", folders::Music},
    {u"pictures folder", folders::Pictures},
    {u"preferences", folders::Preferences},
    {u"preferences folder", folders::Preferences},
    {u"public folder", folders::Public},
    {u"startup disk", folders::StartupDisk},
    {u"temporary items", folders::TemporaryItems},
    {u"temporary items folder", folders::TemporaryItems},
    {u"trash", folders::Trash},
    {u"trash folder", folders::Trash},
    {u"users folder", folders::Users},
    {u"utilities folder", folders::Utilities},
    {u"current user folder", folders::Home},
    {u"frontmost application", additions::constants::FrontmostApplication},
    {u"me", additions::constants::Me},
    {u"current application", additions::constants::CurrentApplication},
});

constexpr auto EndOfFile = std::to_array<Enumerator>({{u"eof", codeOf("eof ")}});
constexpr auto DialogIcons = std::to_array<Enumerator>(
    {{u"stop", additions::constants::Stop}, {u"note", codeOf("note")}, {u"caution", additions::constants::Caution}});
constexpr auto AlertKinds = std::to_array<Enumerator>({{u"critical", additions::constants::Critical},
                                                       {u"informational", codeOf("infA")},
                                                       {u"warning", additions::constants::Warning}});

constexpr auto Offset = std::to_array<CommandParameter>(
    {{.label = u"of", .code = additions::parameters::OfText}, {.label = u"in", .code = additions::parameters::InText}});
constexpr auto Round = std::to_array<CommandParameter>(
    {{.label = u"rounding", .code = additions::parameters::Rounding, .enumerators = RoundingWays}});
constexpr auto RandomNumber = std::to_array<CommandParameter>({
    {.label = u"from", .code = additions::parameters::From},
    {.label = u"to", .code = codes::ToParameter},
    {.label = u"with seed", .code = additions::parameters::WithSeed},
});
constexpr auto PathTo = std::to_array<CommandParameter>({
    {.label = u"from", .code = additions::parameters::From, .enumerators = Domains},
    {.label = u"as", .code = codes::RequestedTypeParameter},
    {.label = u"folder creation", .code = additions::parameters::FolderCreation, .isBoolean = true},
});
constexpr auto ShellScript = std::to_array<CommandParameter>({
    {.label = u"as", .code = codes::RequestedTypeParameter},
    {.label = u"administrator privileges", .code = additions::parameters::AdministratorPrivileges, .isBoolean = true},
    {.label = u"user name", .code = additions::parameters::UserName},
    {.label = u"password", .code = additions::parameters::Password},
    {.label = u"with prompt", .code = codes::PromptParameter},
    {.label = u"altering line endings", .code = additions::parameters::AlteringLineEndings, .isBoolean = true},
});
constexpr auto InfoFor = std::to_array<CommandParameter>({{.label = u"size", .code = codes::Size, .isBoolean = true}});
constexpr auto ListFolder =
    std::to_array<CommandParameter>({{.label = u"invisibles", .code = codes::InvisiblesParameter, .isBoolean = true}});
constexpr auto OpenForAccess = std::to_array<CommandParameter>(
    {{.label = u"write permission", .code = additions::parameters::WritePermission, .isBoolean = true}});
constexpr auto Read = std::to_array<CommandParameter>({
    {.label = u"from", .code = additions::parameters::FromByte},
    {.label = u"for", .code = additions::parameters::ForCount},
    {.label = u"to", .code = additions::parameters::ToByte, .enumerators = EndOfFile},
    {.label = u"before", .code = additions::parameters::Before},
    {.label = u"until", .code = additions::parameters::Until},
    {.label = u"using delimiters", .code = additions::parameters::UsingDelimiters},
    {.label = u"using delimiter", .code = additions::parameters::UsingDelimiters},
    {.label = u"as", .code = additions::parameters::AsInFile},
});
constexpr auto Write = std::to_array<CommandParameter>({
    {.label = u"to", .code = additions::parameters::ToFile},
    {.label = u"starting at", .code = additions::parameters::StartingAt, .enumerators = EndOfFile},
    {.label = u"for", .code = additions::parameters::ForBytes},
    {.label = u"as", .code = additions::parameters::AsInFile},
});
constexpr auto SetEnd = std::to_array<CommandParameter>({{.label = u"to", .code = additions::parameters::ToEnd}});
constexpr auto RunScript = std::to_array<CommandParameter>({
    {.label = u"with parameters", .code = additions::parameters::WithParameters},
    {.label = u"in", .code = codeOf("dsct")},
});
constexpr auto ReplacingAnswers = std::to_array<Enumerator>(
    {{u"yes", additions::constants::Yes}, {u"no", additions::constants::No}, {u"ask", additions::constants::Ask}});
constexpr auto StoreScript = std::to_array<CommandParameter>(
    {{.label = u"in", .code = additions::parameters::In},
     {.label = u"replacing", .code = additions::parameters::Replacing, .enumerators = ReplacingAnswers}});
constexpr auto Clipboard = std::to_array<CommandParameter>({{.label = u"as", .code = codes::RequestedTypeParameter}});
constexpr auto SystemAttribute = std::to_array<CommandParameter>({{.label = u"has", .code = codeOf("has ")}});
constexpr auto LocalizedString = std::to_array<CommandParameter>(
    {{.label = u"from table", .code = codeOf("froT")}, {.label = u"in bundle", .code = codeOf("in B")}});
constexpr auto Say = std::to_array<CommandParameter>({
    {.label = u"using", .code = additions::parameters::Using},
    {.label = u"speaking rate", .code = additions::parameters::SpeakingRate},
    {.label = u"pitch", .code = additions::parameters::Pitch},
    {.label = u"volume", .code = additions::parameters::Volume},
    {.label = u"saving to", .code = additions::parameters::SavingTo},
    {.label = u"waiting until completion", .code = additions::parameters::WaitingUntilCompletion, .isBoolean = true},
});
constexpr auto SetVolume = std::to_array<CommandParameter>({
    {.label = u"output volume", .code = additions::keys::OutputVolume},
    {.label = u"input volume", .code = additions::keys::InputVolume},
    {.label = u"alert volume", .code = additions::keys::AlertVolume},
    {.label = u"output muted", .code = additions::keys::OutputMuted, .isBoolean = true},
});
constexpr auto ChooseColor =
    std::to_array<CommandParameter>({{.label = u"default color", .code = additions::parameters::DefaultColor}});
constexpr auto ChooseURL = std::to_array<CommandParameter>({
    {.label = u"showing", .code = codeOf("cusv")},
    {.label = u"editable URL", .code = codeOf("pedu"), .isBoolean = true},
});
constexpr auto ChooseApplication = std::to_array<CommandParameter>({
    {.label = u"with title", .code = codes::TitleParameter},
    {.label = u"with prompt", .code = codes::PromptParameter},
    {.label = u"multiple selections allowed", .code = codes::SeveralParameter, .isBoolean = true},
    {.label = u"as", .code = codes::RequestedTypeParameter},
});
constexpr auto DisplayDialog = std::to_array<CommandParameter>({
    {.label = u"default answer", .code = additions::parameters::DefaultAnswer},
    {.label = u"hidden answer", .code = additions::parameters::HiddenAnswer, .isBoolean = true},
    {.label = u"buttons", .code = additions::parameters::Buttons},
    {.label = u"default button", .code = additions::parameters::DefaultButton},
    {.label = u"cancel button", .code = additions::parameters::CancelButton},
    {.label = u"with title", .code = codes::TitleParameter},
    {.label = u"with icon", .code = additions::parameters::WithIcon, .enumerators = DialogIcons},
    {.label = u"giving up after", .code = additions::parameters::GivingUpAfter},
});
constexpr auto DisplayAlert = std::to_array<CommandParameter>({
    {.label = u"message", .code = additions::parameters::Message},
    {.label = u"as", .code = additions::parameters::AsAlert, .enumerators = AlertKinds},
    {.label = u"buttons", .code = additions::parameters::Buttons},
    {.label = u"default button", .code = additions::parameters::DefaultButton},
    {.label = u"cancel button", .code = additions::parameters::CancelButton},
    {.label = u"giving up after", .code = additions::parameters::GivingUpAfter},
});
constexpr auto DisplayNotification = std::to_array<CommandParameter>({
    {.label = u"with title", .code = codes::TitleParameter},
    {.label = u"subtitle", .code = additions::parameters::Subtitle},
    {.label = u"sound name", .code = codeOf("nsou")},
});
constexpr auto Choose = std::to_array<CommandParameter>({
    {.label = u"with prompt", .code = codes::PromptParameter},
    {.label = u"with title", .code = codes::TitleParameter},
    {.label = u"of type", .code = additions::parameters::OfType},
    {.label = u"default location", .code = additions::parameters::DefaultLocation},
    {.label = u"default name", .code = additions::parameters::DefaultName},
    {.label = u"default items", .code = additions::parameters::DefaultItems},
    {.label = u"OK button name", .code = additions::parameters::OKButtonName},
    {.label = u"cancel button name", .code = additions::parameters::CancelButtonName},
    {.label = u"invisibles", .code = codes::InvisiblesParameter, .isBoolean = true},
    {.label = u"multiple selections allowed", .code = codes::SeveralParameter, .isBoolean = true},
    {.label = u"empty selection allowed", .code = additions::parameters::EmptySelectionAllowed, .isBoolean = true},
});

constexpr auto OptionalDirect = DirectParameter::Optional;
constexpr auto RequiredDirect = DirectParameter::Required;

// Whether a command reads or changes more than the script's own values; it is refused to a script that may only
// compute.
enum class Effects { None, OnComputer };
constexpr auto NoEffects = Effects::None;
constexpr auto OnComputer = Effects::OnComputer;

struct AdditionRow {
    CommandTerm term;
    // Every command has one: a term without a function would be understood and then fail.
    Addition perform;
    Effects effects;
};

constexpr auto AdditionCommands = std::to_array<AdditionRow>({
    {{.name = u"offset", .code = eventOf("sysooffs"), .parameters = Offset}, additions::offset, NoEffects},
    {{.name = u"round", .code = eventOf("sysorond"), .direct = RequiredDirect, .parameters = Round},
     additions::round,
     NoEffects},
    {{.name = u"random number", .code = eventOf("sysorand"), .direct = OptionalDirect, .parameters = RandomNumber},
     additions::randomNumber,
     NoEffects},
    {{.name = u"current date", .code = eventOf("misccurd")}, additions::currentDate, NoEffects},
    {{.name = u"time to GMT", .code = eventOf("sysogtmt")}, additions::timeToGMT, NoEffects},
    {{.name = u"delay", .code = eventOf("sysodela"), .direct = OptionalDirect}, additions::delay, OnComputer},
    {{.name = u"path to",
      .code = eventOf("earsffdr"),
      .direct = RequiredDirect,
      .parameters = PathTo,
      .enumerators = Folders},
     additions::pathTo,
     OnComputer},
    {{.name = u"do shell script", .code = eventOf("sysoexec"), .direct = OptionalDirect, .parameters = ShellScript},
     additions::doShellScript,
     OnComputer},
    {{.name = u"info for", .code = eventOf("sysonfo4"), .direct = RequiredDirect, .parameters = InfoFor},
     additions::infoFor,
     OnComputer},
    {{.name = u"list folder", .code = eventOf("earslfdr"), .direct = RequiredDirect, .parameters = ListFolder},
     additions::listFolder,
     OnComputer},
    {{.name = u"list disks", .code = eventOf("earslvol")}, additions::listDisks, OnComputer},
    {{.name = u"open for access", .code = eventOf("rdwropen"), .direct = RequiredDirect, .parameters = OpenForAccess},
     additions::openForAccess,
     OnComputer},
    {{.name = u"close access", .code = eventOf("rdwrclos"), .direct = RequiredDirect},
     additions::closeAccess,
     OnComputer},
    {{.name = u"read", .code = eventOf("rdwrread"), .direct = RequiredDirect, .parameters = Read},
     additions::read,
     OnComputer},
    {{.name = u"write", .code = eventOf("rdwrwrit"), .direct = RequiredDirect, .parameters = Write},
     additions::write,
     OnComputer},
    {{.name = u"get eof", .code = eventOf("rdwrgeof"), .direct = RequiredDirect}, additions::getEnd, OnComputer},
    {{.name = u"set eof", .code = eventOf("rdwrseof"), .direct = RequiredDirect, .parameters = SetEnd},
     additions::setEnd,
     OnComputer},
    {{.name = u"run script", .code = eventOf("sysodsct"), .direct = RequiredDirect, .parameters = RunScript},
     additions::runScript,
     NoEffects},
    {{.name = u"load script", .code = eventOf("sysoload"), .direct = RequiredDirect},
     additions::loadScript,
     OnComputer},
    {{.name = u"store script", .code = eventOf("sysostor"), .direct = OptionalDirect, .parameters = StoreScript},
     additions::storeScript,
     OnComputer},
    {{.name = u"system attribute",
      .code = eventOf("fndrgstl"),
      .direct = OptionalDirect,
      .parameters = SystemAttribute},
     additions::systemAttribute,
     OnComputer},
    {{.name = u"system info", .code = eventOf("sysosigt")}, additions::systemInfo, OnComputer},
    {{.name = u"ASCII character", .code = eventOf("sysontoc"), .direct = RequiredDirect},
     additions::asciiCharacter,
     NoEffects},
    {{.name = u"ASCII number", .code = eventOf("sysocton"), .direct = RequiredDirect},
     additions::asciiNumber,
     NoEffects},
    {{.name = u"localized string",
      .code = eventOf("sysolstr"),
      .direct = RequiredDirect,
      .parameters = LocalizedString},
     additions::localizedString,
     NoEffects},
    {{.name = u"open location", .code = eventOf("GURLGURL"), .direct = OptionalDirect},
     additions::openLocation,
     OnComputer},
    {{.name = u"beep", .code = eventOf("sysobeep"), .direct = OptionalDirect}, additions::beep, OnComputer},
    {{.name = u"say", .code = eventOf("sysottos"), .direct = RequiredDirect, .parameters = Say},
     additions::say,
     OnComputer},
    {{.name = u"the clipboard", .code = eventOf("JonsgClp"), .parameters = Clipboard},
     additions::theClipboard,
     OnComputer},
    {{.name = u"set the clipboard to", .code = eventOf("JonspClp"), .direct = RequiredDirect},
     additions::setTheClipboard,
     OnComputer},
    {{.name = u"clipboard info", .code = eventOf("JonsiClp")}, additions::clipboardInfo, OnComputer},
    {{.name = u"display dialog", .code = eventOf("sysodlog"), .direct = RequiredDirect, .parameters = DisplayDialog},
     additions::displayDialog,
     OnComputer},
    {{.name = u"display alert", .code = eventOf("sysodisA"), .direct = RequiredDirect, .parameters = DisplayAlert},
     additions::displayAlert,
     OnComputer},
    {{.name = u"display notification",
      .code = eventOf("sysonotf"),
      .direct = OptionalDirect,
      .parameters = DisplayNotification},
     additions::displayNotification,
     OnComputer},
    {{.name = u"choose file", .code = eventOf("sysostdf"), .direct = OptionalDirect, .parameters = Choose},
     additions::chooseFile,
     OnComputer},
    {{.name = u"choose folder", .code = eventOf("sysostfl"), .direct = OptionalDirect, .parameters = Choose},
     additions::chooseFolder,
     OnComputer},
    {{.name = u"choose file name", .code = eventOf("sysonwfl"), .direct = OptionalDirect, .parameters = Choose},
     additions::chooseFileName,
     OnComputer},
    {{.name = u"choose color", .code = eventOf("sysochcl"), .parameters = ChooseColor},
     additions::chooseColor,
     OnComputer},
    {{.name = u"choose URL", .code = eventOf("sysochur"), .parameters = ChooseURL}, additions::chooseURL, OnComputer},
    {{.name = u"choose application", .code = eventOf("sysoppcb"), .parameters = ChooseApplication},
     additions::chooseApplication,
     OnComputer},
    {{.name = u"set volume", .code = eventOf("aevtstvl"), .direct = OptionalDirect, .parameters = SetVolume},
     additions::setVolume,
     OnComputer},
    {{.name = u"get volume settings", .code = eventOf("sysogtvl")}, additions::volumeSettings, OnComputer},
    {{.name = u"choose from list", .code = eventOf("gtqpchlt"), .direct = RequiredDirect, .parameters = Choose},
     additions::chooseFromList,
     OnComputer},
    // The language has the word for it.
    {{.name = {}, .code = eventOf("ascrcmnt")}, additions::log, NoEffects},
});

AdditionRow const* rowOf(EventCode event) {
    return std::ranges::find_if(AdditionCommands, [&](AdditionRow const& row) { return row.term.code == event; });
}

} // namespace

void addStandardAdditions(Terminology& terms) {
    for (AdditionRow const& row : AdditionCommands)
        if (!row.term.name.empty()) terms.addCommand(row.term);
    additions::addKeys(terms);
}

Addition additionFor(EventCode event) {
    auto const* const found = rowOf(event);
    return found == AdditionCommands.end() ? nullptr : found->perform;
}

bool hasEffects(EventCode event) {
    auto const* const found = rowOf(event);
    return found != AdditionCommands.end() && found->effects == Effects::OnComputer;
}

} // namespace mac::applescript
