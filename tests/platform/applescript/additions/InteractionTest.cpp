#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/UserInterface.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/platform/desktop/Desktop.h"
#include "tests/support/DiskContents.h"
#include "tests/support/Environment.h"
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

using mac::test::EnvironmentVariable;

std::string sourceOrErrorOf(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    EXPECT_TRUE(script) << utf8FromUnits(error.message);
    ScriptOutcome const outcome = script->run({});
    if (!outcome.error) return utf8FromUnits(sourceForm(outcome.value));
    return utf8FromUnits(outcome.error->message) + " (" + std::to_string(outcome.error->number) + ")";
}

// A person who answers at once.
class Person : public UserInterface {
public:
    Person() { setUserInterface(this); }
    ~Person() override { setUserInterface(nullptr); }

    DialogOutcome runDialog(DialogRequest const& request) override {
        dialog = request;
        return answer;
    }
    std::optional<std::vector<std::size_t>> chooseFromList(ListRequest const& request) override {
        list = request;
        return chosen;
    }
    std::optional<ColorComponents> chooseColor(ColorComponents const& initial) override {
        firstColor = initial;
        return color;
    }
    std::optional<std::vector<std::string>> chooseFiles(FileRequest const& request) override {
        files = request;
        return paths;
    }
    std::u16string clipboardText() override { return clipboard; }
    void setClipboardText(std::u16string const& text) override { clipboard = text; }
    void notify(std::u16string const& title, std::u16string const& text) override { note = title + u": " + text; }

    DialogRequest dialog;
    ListRequest list;
    DialogOutcome answer{.button = 0, .answer = u"typed"};
    std::optional<std::vector<std::size_t>> chosen;
    ColorComponents firstColor{};
    std::optional<ColorComponents> color;
    FileRequest files;
    std::optional<std::vector<std::string>> paths;
    std::u16string clipboard;
    std::u16string note;
};

TEST(Interaction, NobodyAnswersWithoutAScreen) {
    for (std::u16string_view const source :
         {u"display dialog \"a\"", u"display alert \"a\"", u"choose from list {1}", u"display notification \"a\"",
          u"the clipboard", u"set the clipboard to 1", u"clipboard info", u"choose file", u"choose folder",
          u"choose file name", u"choose color", u"choose URL", u"choose application"})
        EXPECT_EQ(sourceOrErrorOf(source), "No user interaction allowed. (-1713)") << utf8FromUnits(source);
}

TEST(Interaction, BeepsAsOftenAsItIsAsked) {
    int beeps = 0;
    BeepListener const listener([&] { ++beeps; });
    EXPECT_EQ(sourceOrErrorOf(u"beep"), "");
    EXPECT_EQ(beeps, 1);
    sourceOrErrorOf(u"beep 3");
    EXPECT_EQ(beeps, 4);
    sourceOrErrorOf(u"beep (-1)");
    EXPECT_EQ(beeps, 4);
}

TEST(Interaction, ADialogHasCancelAndOK) {
    Person person;
    person.answer.button = 1;
    EXPECT_EQ(sourceOrErrorOf(u"display dialog \"a\" with title \"t\" with icon caution"), "{button returned:\"OK\"}");
    EXPECT_EQ(person.dialog.buttons, (std::vector<std::u16string>{u"Cancel", u"OK"}));
    EXPECT_EQ(person.dialog.defaultButton, 1U);
    EXPECT_EQ(person.dialog.title, u"t");
    EXPECT_EQ(person.dialog.icon, DialogRequest::Icon::Caution);
    EXPECT_FALSE(person.dialog.answer);
    person.answer.button = 0;
    EXPECT_EQ(sourceOrErrorOf(u"display dialog \"a\""), "User canceled. (-128)");
}

TEST(Interaction, ADialogAsksForText) {
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"display dialog \"a\" default answer \"x\" buttons {\"Go\"} with hidden answer"),
              "{button returned:\"Go\", text returned:\"typed\"}");
    EXPECT_EQ(person.dialog.answer, u"x");
    EXPECT_TRUE(person.dialog.hidesAnswer);
    EXPECT_FALSE(person.dialog.defaultButton);
    EXPECT_FALSE(person.dialog.cancelButton);
}

TEST(Interaction, ADialogGivesUp) {
    Person person;
    person.answer = {.isTimeOver = true};
    EXPECT_EQ(sourceOrErrorOf(u"display dialog \"a\" giving up after 2"), "{button returned:\"\", gave up:true}");
    EXPECT_EQ(person.dialog.seconds, 2);
    person.answer = {.button = 1};
    EXPECT_EQ(sourceOrErrorOf(u"display dialog \"a\" giving up after 2"), "{button returned:\"OK\", gave up:false}");
}

TEST(Interaction, AsksBeforeAScriptReplacesAFile) {
    Person person;
    ScriptHome const home;
    home.folder().makeFile("a.scpt", "return 5");
    std::u16string const path = unitsFromFileSystemBytes(home.path("a.scpt"));
    std::u16string const store = u"script a\nend script\nstore script a in POSIX file \"" + path + u"\"";
    std::u16string const run = u"run (load script POSIX file \"" + path + u"\")";
    EXPECT_EQ(sourceOrErrorOf(store + u" replacing ask"), "User canceled. (-128)");
    EXPECT_EQ(person.dialog.text, u"“a.scpt” already exists. Do you want to replace it?");
    EXPECT_EQ(sourceOrErrorOf(run), "5");
    person.answer.button = 1;
    EXPECT_EQ(sourceOrErrorOf(store), "");
    EXPECT_EQ(sourceOrErrorOf(run), "");
    person.dialog = {};
    EXPECT_EQ(sourceOrErrorOf(store + u" replacing yes"), "");
    EXPECT_EQ(person.dialog.text, u"");
}

TEST(Interaction, AnUnansweredDialogIsCanceled) {
    Person person;
    person.answer = {};
    for (std::u16string_view const source :
         {u"display alert \"a\" buttons {\"Delete\", \"Keep\"}", u"display dialog \"a\" buttons {\"Delete\"}",
          u"display dialog \"a\" giving up after 2"})
        EXPECT_EQ(sourceOrErrorOf(source), "User canceled. (-128)") << utf8FromUnits(source);
}

TEST(Interaction, ButtonsGoByNameOrNumberAndMustBeThere) {
    Person person;
    person.answer.button = 2;
    EXPECT_EQ(
        sourceOrErrorOf(u"display dialog \"a\" buttons {\"A\", \"B\", \"C\"} default button 2 cancel button \"A\""),
        "{button returned:\"C\"}");
    EXPECT_EQ(person.dialog.defaultButton, 1U);
    EXPECT_EQ(person.dialog.cancelButton, 0U);
    for (std::u16string_view const source :
         {u"display dialog \"a\" buttons {}", u"display dialog \"a\" buttons {1, 2, 3, 4}",
          u"display dialog \"a\" default button 3", u"display dialog \"a\" default button 0",
          u"display dialog \"a\" cancel button \"Nope\"", u"choose from list {}"})
        EXPECT_EQ(sourceOrErrorOf(source), "Parameter error. (-50)") << utf8FromUnits(source);
}

TEST(Interaction, AnAlertHasOK) {
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"display alert \"a\" message \"b\" as critical"), "{button returned:\"OK\"}");
    EXPECT_EQ(person.dialog.details, u"b");
    EXPECT_EQ(person.dialog.icon, DialogRequest::Icon::Stop);
    EXPECT_EQ(sourceOrErrorOf(u"display alert \"a\" buttons {\"No\", \"Yes\"} cancel button \"No\""),
              "User canceled. (-128)");
    EXPECT_EQ(person.dialog.defaultButton, 1U);
}

TEST(Interaction, AListAnswersItsItemsOrFalse) {
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"choose from list {1, \"b\"}"), "false");
    person.chosen = {0, 1};
    EXPECT_EQ(sourceOrErrorOf(
                  u"choose from list {1, \"b\"} with prompt \"p\" default items {\"b\"} OK button name \"Go\" with "
                  u"multiple selections allowed"),
              "{1, \"b\"}");
    EXPECT_EQ(person.list.chosen, std::vector<std::size_t>{1});
    EXPECT_EQ(person.list.text, u"p");
    EXPECT_EQ(person.list.acceptButton, u"Go");
    EXPECT_TRUE(person.list.allowsSeveral);
    EXPECT_FALSE(person.list.allowsNone);
}

TEST(Interaction, TheClipboardHoldsText) {
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"set the clipboard to 12\nthe clipboard"), "\"12\"");
    EXPECT_EQ(sourceOrErrorOf(u"the clipboard as integer"), "12");
    EXPECT_EQ(sourceOrErrorOf(u"set the clipboard to \"ab\"\nreturn the clipboard"), "\"ab\"");
    EXPECT_EQ(sourceOrErrorOf(u"clipboard info"), "{{Unicode text, 4}}");
    EXPECT_EQ(sourceOrErrorOf(u"set the clipboard to {a:1}"), "Can’t make {a:1} into type text. (-1700)");
    person.clipboard.clear();
    EXPECT_EQ(sourceOrErrorOf(u"clipboard info"), "{}");
}

TEST(Interaction, ANotificationIsNotAnswered) {
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"display notification \"a\" with title \"t\" subtitle \"s\""), "");
    EXPECT_EQ(person.note, u"t: s\na");
}

TEST(Interaction, ChoosesAColor) {
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"choose color"), "User canceled. (-128)");
    person.color = ColorComponents{65535, 1, 0};
    EXPECT_EQ(sourceOrErrorOf(u"choose color default color {1, 70000, -2}"), "{65535, 1, 0}");
    EXPECT_EQ(person.firstColor, (ColorComponents{1, 65535, 0}));
    EXPECT_EQ(sourceOrErrorOf(u"choose color default color {1, 2}"), "Parameter error. (-50)");
}

TEST(Interaction, ChoosesFiles) {
    ScriptHome const home;
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"choose file"), "User canceled. (-128)");
    EXPECT_EQ(person.files.kind, FileRequest::Kind::File);
    EXPECT_EQ(person.files.title, u"Choose a File");
    EXPECT_FALSE(person.files.accepts);
    person.paths = {home.path("Documents/f1.txt")};
    EXPECT_EQ(sourceOrErrorOf(u"POSIX path of (choose file with prompt \"Which?\" with invisibles)"),
              "\"" + home.path("Documents/f1.txt") + "\"");
    EXPECT_EQ(person.files.title, u"Which?");
    EXPECT_TRUE(person.files.showsHidden);
    person.paths->push_back(home.path("Documents/f2.txt"));
    EXPECT_EQ(sourceOrErrorOf(u"count (choose file with multiple selections allowed)"), "2");
    EXPECT_TRUE(person.files.allowsSeveral);
    person.paths = {home.path("none")};
    EXPECT_TRUE(sourceOrErrorOf(u"choose file").ends_with("(-43)"));
    std::u16string const folder = unitsFromFileSystemBytes(home.path("Documents"));
    sourceOrErrorOf(u"choose file default location POSIX file \"" + folder + u"\"");
    EXPECT_EQ(person.files.folder, home.path("Documents"));
    EXPECT_TRUE(
        sourceOrErrorOf(u"choose file default location POSIX file \"" + folder + u"/none\"").ends_with("(-43)"));
}

TEST(Interaction, ChoosesFilesOfTypes) {
    ScriptHome const home;
    std::string const text = home.path("Documents/f1.txt");
    std::string const picture = home.folder().makeFile("a.png", "");
    Person person;
    struct Row {
        std::u16string_view types;
        bool acceptsText;
        bool acceptsPicture;
    };
    for (Row const& row : {Row{u"\"txt\"", true, false}, Row{u"{\"public.image\"}", false, true},
                           Row{u"{\"public.text\", \"PNG\"}", true, true}, Row{u"{\"TEXT\"}", true, false},
                           Row{u"{\"public.folder\"}", false, false}, Row{u"{}", false, false}}) {
        sourceOrErrorOf(u"choose file of type " + std::u16string(row.types));
        ASSERT_TRUE(person.files.accepts) << utf8FromUnits(row.types);
        EXPECT_EQ(person.files.accepts(text), row.acceptsText) << utf8FromUnits(row.types);
        EXPECT_EQ(person.files.accepts(picture), row.acceptsPicture) << utf8FromUnits(row.types);
        EXPECT_FALSE(person.files.accepts(home.path("none")));
    }
}

TEST(Interaction, ChoosesAFolderAndANameForAFile) {
    ScriptHome const home;
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"choose folder"), "User canceled. (-128)");
    EXPECT_EQ(person.files.kind, FileRequest::Kind::Folder);
    person.paths = {home.path("Documents")};
    EXPECT_EQ(sourceOrErrorOf(u"POSIX path of (choose folder)"), "\"" + home.path("Documents/") + "\"");
    person.paths = {home.path("new file")};
    EXPECT_EQ(sourceOrErrorOf(u"POSIX path of (choose file name default name \"draft\")"),
              "\"" + home.path("new file") + "\"");
    EXPECT_EQ(person.files.kind, FileRequest::Kind::NewFile);
    EXPECT_EQ(person.files.name, u"draft");
    EXPECT_EQ(sourceOrErrorOf(u"class of (choose file name)"), "file");
    EXPECT_EQ(person.files.name, u"untitled");
}

TEST(Interaction, OpensALocation) {
    ScriptHome const home;
    EnvironmentVariable const display("DISPLAY", ":of-nobody");
    // Read until the program has written and closed it.
    std::string const told = home.path("told");
    ASSERT_EQ(::mkfifo(told.c_str(), S_IRUSR | S_IWUSR), 0);
    std::string const program = home.folder().makeFile("browser", "#!/bin/sh\necho \"$*\" >'" + told + "'\n");
    ASSERT_EQ(::chmod(program.c_str(), S_IRWXU), 0);
    home.folder().makeFile(".local/share/applications/web.desktop",
                           "[Desktop Entry]\nType=Application\nName=Web\nExec=" + program + " --open %u\n");
    home.folder().makeFile(".config/mimeapps.list", "[Default Applications]\nx-scheme-handler/https=web.desktop\n");
    EXPECT_EQ(sourceOrErrorOf(u"open location \"HTTPS://example.org/?a=b%20c&d\""), "");
    EXPECT_EQ(mac::test::textOf(told), "--open HTTPS://example.org/?a=b%20c&d\n");
    EXPECT_TRUE(sourceOrErrorOf(u"open location \"unknown:a\"").ends_with("(-10814)"));
    EXPECT_TRUE(sourceOrErrorOf(u"open location \"file:///no/such/item\"").ends_with("(-1728)"));
    // The file of another computer is not the one that has its path here.
    std::u16string const here = unitsFromFileSystemBytes(home.path("Documents"));
    EXPECT_TRUE(sourceOrErrorOf(u"open location \"file://elsewhere" + here + u"\"").ends_with("(-43)"));
    EXPECT_EQ(sourceOrErrorOf(u"open location \"no location\""), "Parameter error. (-50)");
    EXPECT_EQ(sourceOrErrorOf(u"open location \"-o:a\""), "Parameter error. (-50)");
    EnvironmentVariable const noDisplay("DISPLAY", std::nullopt);
    EXPECT_TRUE(sourceOrErrorOf(u"open location \"https://example.org/\"").ends_with("(-1713)"));
}

TEST(Interaction, ChoosesAURL) {
    Person person;
    person.answer = {.button = 1, .answer = u"https://example.org/"};
    EXPECT_EQ(sourceOrErrorOf(u"choose URL"), "\"https://example.org/\"");
    person.answer.button = 0;
    EXPECT_EQ(sourceOrErrorOf(u"choose URL"), "User canceled. (-128)");
}

TEST(Interaction, ChoosesAnApplication) {
    ScriptHome const home;
    home.folder().makeFile(".local/share/applications/b.desktop",
                           "[Desktop Entry]\nType=Application\nName=Beta\nExec=/bin/true\n");
    home.folder().makeFile(".local/share/applications/a.desktop",
                           "[Desktop Entry]\nType=Application\nName=alpha\nExec=/bin/true\n");
    Person person;
    EXPECT_EQ(sourceOrErrorOf(u"choose application"), "User canceled. (-128)");
    EXPECT_EQ(person.list.items, (std::vector<std::u16string>{u"alpha", u"Beta"}));
    person.chosen = {1};
    EXPECT_EQ(sourceOrErrorOf(u"choose application with prompt \"Which?\""), "application \"Beta\"");
    EXPECT_EQ(person.list.text, u"Which?");
    EXPECT_EQ(sourceOrErrorOf(u"POSIX path of (choose application as alias)"),
              "\"" + home.path(".local/share/applications/b.desktop") + "\"");
    EXPECT_EQ(sourceOrErrorOf(u"choose application with multiple selections allowed"), "{application \"Beta\"}");
}

} // namespace

} // namespace mac::applescript::test
