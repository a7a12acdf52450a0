#include "platform/applescript/applications/StandardFolders.h"
#include "platform/applescript/language/Codes.h"
#include "platform/applescript/language/Terminology.h"
#include <array>

// The standard additions' terms: name, event and parameters of each command, and the keys of the records they answer.

namespace mac::applescript {

namespace {

constexpr auto RoundingWays = std::to_array<Enumerator>({
    {u"up", codeOf("roup")},
    {u"down", codeOf("rodn")},
    {u"toward zero", codeOf("rozr")},
    {u"to nearest", codeOf("rone")},
    {u"as taught in school", codeOf("rosc")},
});

constexpr auto Domains = std::to_array<Enumerator>({
    {u"system domain", codeOf("flds")},
    {u"local domain", codeOf("fldl")},
    {u"network domain", codeOf("fldn")},
    {u"user domain", codeOf("fldu")},
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
    {u"frontmost application", codeOf("egfp")},
    {u"me", codeOf("me  ")},
    {u"current application", codeOf("cura")},
});

constexpr auto EndOfFile = std::to_array<Enumerator>({{u"eof", codeOf("eof ")}});
constexpr auto DialogIcons =
    std::to_array<Enumerator>({{u"stop", codeOf("stop")}, {u"note", codeOf("note")}, {u"caution", codeOf("caut")}});
constexpr auto AlertKinds = std::to_array<Enumerator>(
    {{u"critical", codeOf("criT")}, {u"informational", codeOf("infA")}, {u"warning", codeOf("warN")}});

constexpr auto Offset = std::to_array<CommandParameter>(
    {{.label = u"of", .code = codeOf("psof")}, {.label = u"in", .code = codeOf("psin")}});
constexpr auto Round =
    std::to_array<CommandParameter>({{.label = u"rounding", .code = codeOf("dire"), .enumerators = RoundingWays}});
constexpr auto RandomNumber = std::to_array<CommandParameter>({
    {.label = u"from", .code = codeOf("from")},
    {.label = u"to", .code = codeOf("to  ")},
    {.label = u"with seed", .code = codeOf("seed")},
});
constexpr auto PathTo = std::to_array<CommandParameter>({
    {.label = u"from", .code = codeOf("from"), .enumerators = Domains},
    {.label = u"as", .code = codeOf("rtyp")},
    {.label = u"folder creation", .code = codeOf("crfl"), .isBoolean = true},
});
constexpr auto ShellScript = std::to_array<CommandParameter>({
    {.label = u"as", .code = codeOf("rtyp")},
    {.label = u"administrator privileges", .code = codeOf("badm"), .isBoolean = true},
    {.label = u"user name", .code = codeOf("RAun")},
    {.label = u"password", .code = codeOf("RApw")},
    {.label = u"with prompt", .code = codeOf("prmp")},
    {.label = u"altering line endings", .code = codeOf("alen"), .isBoolean = true},
});
constexpr auto InfoFor = std::to_array<CommandParameter>({{.label = u"size", .code = codes::Size, .isBoolean = true}});
constexpr auto ListFolder =
    std::to_array<CommandParameter>({{.label = u"invisibles", .code = codeOf("lfiv"), .isBoolean = true}});
constexpr auto OpenForAccess =
    std::to_array<CommandParameter>({{.label = u"write permission", .code = codeOf("perm"), .isBoolean = true}});
constexpr auto Read = std::to_array<CommandParameter>({
    {.label = u"from", .code = codeOf("rdfm")},
    {.label = u"for", .code = codeOf("rdfr")},
    {.label = u"to", .code = codeOf("rdto"), .enumerators = EndOfFile},
    {.label = u"before", .code = codeOf("rdbf")},
    {.label = u"until", .code = codeOf("rdut")},
    {.label = u"using delimiters", .code = codeOf("deli")},
    {.label = u"using delimiter", .code = codeOf("deli")},
    {.label = u"as", .code = codeOf("as  ")},
});
constexpr auto Write = std::to_array<CommandParameter>({
    {.label = u"to", .code = codeOf("refn")},
    {.label = u"starting at", .code = codeOf("wrat"), .enumerators = EndOfFile},
    {.label = u"for", .code = codeOf("nmwr")},
    {.label = u"as", .code = codeOf("as  ")},
});
constexpr auto SetEnd = std::to_array<CommandParameter>({{.label = u"to", .code = codeOf("set2")}});
constexpr auto RunScript = std::to_array<CommandParameter>({
    {.label = u"with parameters", .code = codeOf("plst")},
    {.label = u"in", .code = codeOf("dsct")},
});
constexpr auto ReplacingAnswers =
    std::to_array<Enumerator>({{u"yes", codeOf("yes ")}, {u"no", codeOf("no  ")}, {u"ask", codeOf("ask ")}});
constexpr auto StoreScript =
    std::to_array<CommandParameter>({{.label = u"in", .code = codeOf("fpth")},
                                     {.label = u"replacing", .code = codeOf("savo"), .enumerators = ReplacingAnswers}});
constexpr auto Clipboard = std::to_array<CommandParameter>({{.label = u"as", .code = codeOf("rtyp")}});
constexpr auto SystemAttribute = std::to_array<CommandParameter>({{.label = u"has", .code = codeOf("has ")}});
constexpr auto LocalizedString = std::to_array<CommandParameter>(
    {{.label = u"from table", .code = codeOf("froT")}, {.label = u"in bundle", .code = codeOf("in B")}});
constexpr auto Say = std::to_array<CommandParameter>({
    {.label = u"using", .code = codeOf("VOIC")},
    {.label = u"speaking rate", .code = codeOf("RATE")},
    {.label = u"pitch", .code = codeOf("PTCH")},
    {.label = u"volume", .code = codeOf("VOLU")},
    {.label = u"saving to", .code = codeOf("stof")},
    {.label = u"waiting until completion", .code = codeOf("wfsp"), .isBoolean = true},
});
constexpr auto SetVolume = std::to_array<CommandParameter>({
    {.label = u"output volume", .code = codeOf("ouvl")},
    {.label = u"input volume", .code = codeOf("invl")},
    {.label = u"alert volume", .code = codeOf("alvl")},
    {.label = u"output muted", .code = codeOf("mute"), .isBoolean = true},
});
constexpr auto ChooseColor = std::to_array<CommandParameter>({{.label = u"default color", .code = codeOf("dcol")}});
constexpr auto ChooseURL = std::to_array<CommandParameter>({
    {.label = u"showing", .code = codeOf("cusv")},
    {.label = u"editable URL", .code = codeOf("pedu"), .isBoolean = true},
});
constexpr auto ChooseApplication = std::to_array<CommandParameter>({
    {.label = u"with title", .code = codeOf("appr")},
    {.label = u"with prompt", .code = codeOf("prmp")},
    {.label = u"multiple selections allowed", .code = codeOf("mlsl"), .isBoolean = true},
    {.label = u"as", .code = codeOf("rtyp")},
});
constexpr auto DisplayDialog = std::to_array<CommandParameter>({
    {.label = u"default answer", .code = codeOf("dtxt")},
    {.label = u"hidden answer", .code = codeOf("htxt"), .isBoolean = true},
    {.label = u"buttons", .code = codeOf("btns")},
    {.label = u"default button", .code = codeOf("dflt")},
    {.label = u"cancel button", .code = codeOf("cbtn")},
    {.label = u"with title", .code = codeOf("appr")},
    {.label = u"with icon", .code = codeOf("disp"), .enumerators = DialogIcons},
    {.label = u"giving up after", .code = codeOf("givu")},
});
constexpr auto DisplayAlert = std::to_array<CommandParameter>({
    {.label = u"message", .code = codeOf("mesS")},
    {.label = u"as", .code = codeOf("as A"), .enumerators = AlertKinds},
    {.label = u"buttons", .code = codeOf("btns")},
    {.label = u"default button", .code = codeOf("dflt")},
    {.label = u"cancel button", .code = codeOf("cbtn")},
    {.label = u"giving up after", .code = codeOf("givu")},
});
constexpr auto DisplayNotification = std::to_array<CommandParameter>({
    {.label = u"with title", .code = codeOf("appr")},
    {.label = u"subtitle", .code = codeOf("subt")},
    {.label = u"sound name", .code = codeOf("nsou")},
});
constexpr auto Choose = std::to_array<CommandParameter>({
    {.label = u"with prompt", .code = codeOf("prmp")},
    {.label = u"with title", .code = codeOf("appr")},
    {.label = u"of type", .code = codeOf("ftyp")},
    {.label = u"default location", .code = codeOf("dflc")},
    {.label = u"default name", .code = codeOf("dfnm")},
    {.label = u"default items", .code = codeOf("inSL")},
    {.label = u"OK button name", .code = codeOf("okbt")},
    {.label = u"cancel button name", .code = codeOf("cnbt")},
    {.label = u"invisibles", .code = codeOf("lfiv"), .isBoolean = true},
    {.label = u"multiple selections allowed", .code = codeOf("mlsl"), .isBoolean = true},
    {.label = u"empty selection allowed", .code = codeOf("empL"), .isBoolean = true},
});

constexpr auto OptionalDirect = DirectParameter::Optional;
constexpr auto RequiredDirect = DirectParameter::Required;

constexpr auto AdditionCommands = std::to_array<CommandTerm>({
    {.name = u"offset", .code = eventOf("sysooffs"), .parameters = Offset},
    {.name = u"round", .code = eventOf("sysorond"), .direct = RequiredDirect, .parameters = Round},
    {.name = u"random number", .code = eventOf("sysorand"), .direct = OptionalDirect, .parameters = RandomNumber},
    {.name = u"current date", .code = eventOf("misccurd")},
    {.name = u"time to GMT", .code = eventOf("sysogtmt")},
    {.name = u"delay", .code = eventOf("sysodela"), .direct = OptionalDirect},
    {.name = u"path to",
     .code = eventOf("earsffdr"),
     .direct = RequiredDirect,
     .parameters = PathTo,
     .enumerators = Folders},
    {.name = u"do shell script", .code = eventOf("sysoexec"), .direct = OptionalDirect, .parameters = ShellScript},
    {.name = u"info for", .code = eventOf("sysonfo4"), .direct = RequiredDirect, .parameters = InfoFor},
    {.name = u"list folder", .code = eventOf("earslfdr"), .direct = RequiredDirect, .parameters = ListFolder},
    {.name = u"list disks", .code = eventOf("earslvol")},
    {.name = u"open for access", .code = eventOf("rdwropen"), .direct = RequiredDirect, .parameters = OpenForAccess},
    {.name = u"close access", .code = eventOf("rdwrclos"), .direct = RequiredDirect},
    {.name = u"read", .code = eventOf("rdwrread"), .direct = RequiredDirect, .parameters = Read},
    {.name = u"write", .code = eventOf("rdwrwrit"), .direct = RequiredDirect, .parameters = Write},
    {.name = u"get eof", .code = eventOf("rdwrgeof"), .direct = RequiredDirect},
    {.name = u"set eof", .code = eventOf("rdwrseof"), .direct = RequiredDirect, .parameters = SetEnd},
    {.name = u"run script", .code = eventOf("sysodsct"), .direct = RequiredDirect, .parameters = RunScript},
    {.name = u"load script", .code = eventOf("sysoload"), .direct = RequiredDirect},
    {.name = u"store script", .code = eventOf("sysostor"), .direct = OptionalDirect, .parameters = StoreScript},
    {.name = u"system attribute", .code = eventOf("fndrgstl"), .direct = OptionalDirect, .parameters = SystemAttribute},
    {.name = u"system info", .code = eventOf("sysosigt")},
    {.name = u"ASCII character", .code = eventOf("sysontoc"), .direct = RequiredDirect},
    {.name = u"ASCII number", .code = eventOf("sysocton"), .direct = RequiredDirect},
    {.name = u"localized string", .code = eventOf("sysolstr"), .direct = RequiredDirect, .parameters = LocalizedString},
    {.name = u"open location", .code = eventOf("GURLGURL"), .direct = OptionalDirect},
    {.name = u"beep", .code = eventOf("sysobeep"), .direct = OptionalDirect},
    {.name = u"say", .code = eventOf("sysottos"), .direct = RequiredDirect, .parameters = Say},
    {.name = u"the clipboard", .code = eventOf("JonsgClp"), .parameters = Clipboard},
    {.name = u"set the clipboard to", .code = eventOf("JonspClp"), .direct = RequiredDirect},
    {.name = u"clipboard info", .code = eventOf("JonsiClp")},
    {.name = u"display dialog", .code = eventOf("sysodlog"), .direct = RequiredDirect, .parameters = DisplayDialog},
    {.name = u"display alert", .code = eventOf("sysodisA"), .direct = RequiredDirect, .parameters = DisplayAlert},
    {.name = u"display notification",
     .code = eventOf("sysonotf"),
     .direct = OptionalDirect,
     .parameters = DisplayNotification},
    {.name = u"choose file", .code = eventOf("sysostdf"), .direct = OptionalDirect, .parameters = Choose},
    {.name = u"choose folder", .code = eventOf("sysostfl"), .direct = OptionalDirect, .parameters = Choose},
    {.name = u"choose file name", .code = eventOf("sysonwfl"), .direct = OptionalDirect, .parameters = Choose},
    {.name = u"choose color", .code = eventOf("sysochcl"), .parameters = ChooseColor},
    {.name = u"choose URL", .code = eventOf("sysochur"), .parameters = ChooseURL},
    {.name = u"choose application", .code = eventOf("sysoppcb"), .parameters = ChooseApplication},
    {.name = u"set volume", .code = eventOf("aevtstvl"), .direct = OptionalDirect, .parameters = SetVolume},
    {.name = u"get volume settings", .code = eventOf("sysogtvl")},
    {.name = u"choose from list", .code = eventOf("gtqpchlt"), .direct = RequiredDirect, .parameters = Choose},
});

struct KeyRow {
    std::u16string_view name;
    Code code;
};

constexpr auto Keys = std::to_array<KeyRow>({
    {u"displayed name", codes::DisplayedName},
    {u"short name", codes::ShortName},
    {u"name extension", codes::NameExtension},
    {u"bundle identifier", codes::BundleIdentifier},
    {u"type identifier", codeOf("utid")},
    {u"kind", codes::Kind},
    {u"creation date", codes::CreationDate},
    {u"modification date", codes::ModificationDate},
    {u"file type", codes::FileType},
    {u"file creator", codeOf("asct")},
    {u"short version", codeOf("assv")},
    {u"long version", codeOf("aslv")},
    {u"size", codes::Size},
    {u"package folder", codeOf("ispk")},
    {u"extension hidden", codes::ExtensionHidden},
    {u"visible", codes::Visible},
    {u"locked", codes::Locked},
    {u"busy status", codeOf("ibzy")},
    {u"folder", codeOf("asdr")},
    {u"button returned", codeOf("bhit")},
    {u"text returned", codeOf("ttxt")},
    {u"gave up", codeOf("gavu")},
    {u"AppleScript version", codeOf("siav")},
    {u"system version", codeOf("sisv")},
    {u"short user name", codeOf("sisn")},
    {u"long user name", codeOf("siln")},
    {u"user ID", codeOf("siid")},
    // Not 'home', which is the Finder's name of a place.
    {u"home directory", codeOf("sihd")},
    {u"computer name", codeOf("sicn")},
    {u"host name", codeOf("ldsa")},
    {u"physical memory", codeOf("sipm")},
    {u"CPU type", codeOf("sict")},
    {u"CPU speed", codeOf("sics")},
    {u"boot volume", codeOf("sibv")},
    {u"user locale", codeOf("siul")},
    {u"IPv4 address", codeOf("siip")},
    {u"primary Ethernet address", codeOf("siea")},
    {u"output volume", codeOf("ouvl")},
    {u"input volume", codeOf("invl")},
    {u"alert volume", codeOf("alvl")},
    {u"output muted", codeOf("mute")},
});

} // namespace

void addStandardAdditions(Terminology& terms) {
    for (CommandTerm const& command : AdditionCommands)
        terms.addCommand(command);
    for (KeyRow const& key : Keys)
        terms.addProperty(key.name, key.code);
}

} // namespace mac::applescript
