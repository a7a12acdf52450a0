#include "platform/applescript/runtime/ScriptEngine.h"
#include "platform/applescript/runtime/HeapObjects.h"
#include "platform/applescript/runtime/SourceForm.h"
#include "platform/foundation/text/Encodings.h"
#include "tests/platform/applescript/ScriptHome.h"
#include "tests/support/Failures.h"
#include "tests/support/TemporaryFolder.h"
#include <atomic>
#include <cerrno>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace mac::applescript::test {

namespace {

CompiledScript compiled(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    EXPECT_TRUE(script) << utf8FromUnits(error.message);
    return *std::move(script);
}

std::int32_t compileErrorNumber(std::u16string_view source) {
    ScriptError error;
    return CompiledScript::compile(source, error) ? 0 : error.number;
}

std::u16string repeated(std::u16string_view part, std::size_t count) {
    std::u16string text;
    for (; count > 0; --count)
        text += part;
    return text;
}

constexpr std::size_t Many = 1000000;
// Far more than any stack holds, and soon parsed.
constexpr std::size_t Enough = 100000;

TEST(ScriptEngine, AMillionOpenParenthesesOverflowTheStack) {
    EXPECT_EQ(compileErrorNumber(repeated(u"(", Many)), errors::StackOverflow);
}

TEST(ScriptEngine, AMillionOpenListsOverflowTheStack) {
    EXPECT_EQ(compileErrorNumber(repeated(u"{", Many)), errors::StackOverflow);
}

TEST(ScriptEngine, AMillionSignsAndContainersOverflowTheStack) {
    EXPECT_EQ(compileErrorNumber(repeated(u"- ", Many) + u"1"), errors::StackOverflow);
    EXPECT_EQ(compileErrorNumber(u"a" + repeated(u" of a", Many)), errors::StackOverflow);
    EXPECT_EQ(compileErrorNumber(repeated(u"not ", Many) + u"true"), errors::StackOverflow);
}

TEST(ScriptEngine, NestedOwnersRangesAndContinuationsOverflowTheStack) {
    for (std::u16string_view const part :
         {u"my ", u"its ", u"continue ", u"text from ", u"words 1 thru ", u"count ", u"a reference to "})
        EXPECT_EQ(compileErrorNumber(repeated(part, Enough) + u"1"), errors::StackOverflow) << utf8FromUnits(part);
}

TEST(ScriptEngine, NestedBlocksOverflowTheStack) {
    for (std::u16string_view const part : {u"if true then\n", u"tell me\n", u"try\n", u"repeat\n", u"script\n"})
        EXPECT_EQ(compileErrorNumber(repeated(part, Enough)), errors::StackOverflow) << utf8FromUnits(part);
}

TEST(ScriptEngine, AMillionSummandsOverflowTheStackOnlyWhenTheyAreAdded) {
    CompiledScript script = compiled(u"1" + repeated(u"+1", Many));
    ScriptOutcome const outcome = script.run({});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::StackOverflow);
}

TEST(ScriptEngine, AListNestedWhileRunningIsTakenDown) {
    CompiledScript script = compiled(u"set x to {}\nrepeat 100000 times\nset x to {x}\nend repeat\ncount x");
    EXPECT_EQ(script.run({}).value.asInteger(), 1);
}

std::int32_t runErrorNumber(std::u16string_view source) {
    ScriptOutcome const outcome = compiled(source).run({});
    return outcome.error ? outcome.error->number : 0;
}

// What a property starts with is no local of the handlers.
TEST(ScriptEngine, APropertyThatStartsWithALocalIsNotDefined) {
    EXPECT_EQ(runErrorNumber(u"local y\nproperty p : y\non run\nend run"), errors::VariableNotDefined);
    EXPECT_EQ(runErrorNumber(u"local a, b, c\nproperty p : {a, b, c}\non run x\nend run"), errors::VariableNotDefined);
}

TEST(ScriptEngine, APropertyOfANestedScriptObjectSeesNoLocalsAroundTheOuterOne) {
    EXPECT_EQ(runErrorNumber(u"script A\nscript B\nproperty p : x\nend script\nend script"),
              errors::VariableNotDefined);
    EXPECT_EQ(runErrorNumber(u"on make1()\nset v to 5\nscript A\nscript B\nproperty p : x\nend script\nend "
                             u"script\nreturn p of B of A\nend make1\nmake1()"),
              errors::VariableNotDefined);
    EXPECT_EQ(compiled(u"on make1(v)\nscript A\nproperty p : v\nend script\nreturn p of A\nend make1\nmake1(7)")
                  .run({})
                  .value.asInteger(),
              7);
}

TEST(ScriptEngine, AContainerOfManyOwnersOverflowsTheStack) {
    EXPECT_EQ(compileErrorNumber(u"a" + repeated(u"'s a", Enough) + u" of b"), errors::StackOverflow);
}

TEST(ScriptEngine, AnAddedOperandOfManyTermsOverflowsTheStack) {
    EXPECT_EQ(runErrorNumber(u"set x to {1}\nset x to x & 1 & {1" + repeated(u"+1", Many) + u"}"),
              errors::StackOverflow);
}

TEST(ScriptEngine, WhatAnObjectOfAnApplicationSaysToRunningMustBeABoolean) {
    EXPECT_EQ(runErrorNumber(u"tell application \"System Events\" to (every process whose name is \"no such\") is "
                             u"running"),
              errors::CannotCoerce);
}

TEST(ScriptEngine, PeopleReadResultsWithoutQuotesAndBrackets) {
    struct Row {
        std::u16string_view source;
        std::u16string_view form;
    };
    constexpr auto rows = std::to_array<Row>({
        {u"{\"a\", {1, \"b\"}, {c:\"d\"}}", u"a, 1, b, c:d"},
        {u"date \"1/2/2003\"", u"date Thursday, January 2, 2003 12:00:00 AM"},
        {u"application \"No Such One\"", u"application No Such One"},
        {u"a reference to item \"a\" of {\"b\"}", u"item a of b"},
    });
    for (Row const& row : rows)
        EXPECT_EQ(humanForm(compiled(row.source).run({}).value), row.form);
    EXPECT_EQ(humanForm(compiled(u"POSIX file \"/a b\"").run({}).value), u"file " + nameOfStartupVolume() + u":a b");
}

TEST(ScriptEngine, AListThatHoldsItselfHasNoSourceFormAndIsFreed) {
    ContainerObject::collectCircles();
    std::size_t const before = ContainerObject::countOfAll();
    {
        CompiledScript script = compiled(u"set x to {}\nset end of x to x\nx");
        ScriptOutcome const outcome = script.run({});
        ASSERT_TRUE(outcome.value.is(ValueKind::List));
        EXPECT_THROW(sourceForm(outcome.value), ScriptError);
        EXPECT_GT(ContainerObject::countOfAll(), before);
    }
    ContainerObject::collectCircles();
    EXPECT_EQ(ContainerObject::countOfAll(), before);
}

TEST(ScriptEngine, WhatACompiledScriptHoldsInCirclesGoesWithIt) {
    ContainerObject::collectCircles();
    std::size_t const before = ContainerObject::countOfAll();
    {
        CompiledScript script = compiled(u"set x to {}\nset end of x to x\n1");
        script.run({});
        EXPECT_GT(ContainerObject::countOfAll(), before);
    }
    EXPECT_EQ(ContainerObject::countOfAll(), before);
}

TEST(ScriptEngine, AFlagStopsAnEndlessLoopEvenInsideATry) {
    std::atomic<bool> const cancelled{true};
    CompiledScript script = compiled(u"repeat\ntry\nrepeat\nend repeat\nend try\nend repeat");
    ScriptOutcome const outcome = script.run({.cancelled = &cancelled});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::UserCanceled);
}

TEST(ScriptEngine, AnEndlessLoopStopsWhenItsTimeIsOver) {
    CompiledScript script = compiled(u"repeat\nend repeat");
    ScriptOutcome const outcome = script.run({.seconds = 0.01});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::TimedOut);
}

TEST(ScriptEngine, AScriptWithinAScriptGetsNoTimeOfItsOwn) {
    mac::test::TemporaryFolder const folder;
    std::string const mark = folder.path("mark");
    CompiledScript script = compiled(u"delay 0.03\nrun script \"delay 0.03\ndo shell script \\\"touch " +
                                     unitsFromFileSystemBytes(mark) + u"\\\"\"");
    ScriptOutcome const outcome = script.run({.seconds = 0.05});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::TimedOut);
    EXPECT_NE(::access(mark.c_str(), F_OK), 0);
}

TEST(ScriptEngine, AFlagStopsAScriptAfterEveryCommand) {
    mac::test::TemporaryFolder const folder;
    std::atomic<bool> const cancelled{true};
    std::u16string const file = u"(POSIX file \"" + unitsFromFileSystemBytes(folder.path("file")) + u"\")";
    CompiledScript script = compiled(u"set f to open for access " + file + u" with write permission\nwrite \"a\" to f");
    ScriptOutcome const outcome = script.run({.cancelled = &cancelled});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::UserCanceled);
    compiled(u"close access " + file).run({});
    struct stat status {};
    ASSERT_EQ(::stat(folder.path("file").c_str(), &status), 0);
    EXPECT_EQ(status.st_size, 0);
}

std::u16string fileIn(mac::test::TemporaryFolder const& folder, std::string_view name) {
    return u"(POSIX file \"" + unitsFromFileSystemBytes(folder.path(name)) + u"\")";
}

std::int32_t errorNumberOf(std::u16string_view source) {
    ScriptOutcome const outcome = compiled(source).run({});
    return outcome.error ? outcome.error->number : 0;
}

TEST(ScriptEngine, WhatIsNoFileIsNeitherReadNorWritten) {
    mac::test::TemporaryFolder const folder;
    ASSERT_EQ(::mkfifo(folder.path("pipe").c_str(), S_IRUSR | S_IWUSR), 0);
    folder.makeFolder("folder");
    for (char const* const name : {"pipe", "folder"}) {
        std::u16string const item = fileIn(folder, name);
        EXPECT_EQ(errorNumberOf(u"read " + item), errors::FilePermission) << name;
        EXPECT_EQ(errorNumberOf(u"get eof " + item), errors::FilePermission) << name;
        EXPECT_EQ(errorNumberOf(u"open for access " + item), errors::FilePermission) << name;
        EXPECT_EQ(errorNumberOf(u"write \"x\" to " + item), errors::FilePermission) << name;
    }
}

TEST(ScriptEngine, AFileThatMayNotBeOpenedIsNotSaidToBeMissing) {
    mac::test::TemporaryFolder const folder;
    folder.makeFile("file", "x");
    std::u16string const source = u"write \"y\" to " + fileIn(folder, "file");
    for (auto const& [refusal, number] : {std::pair(EPERM, errors::FilePermission), std::pair(EIO, errors::InputOutput),
                                          std::pair(EDQUOT, errors::DiskFull)})
        mac::test::withRefusedCall(SYS_openat, refusal,
                                   [&, number = number] { EXPECT_EQ(errorNumberOf(source), number); });
}

TEST(ScriptEngine, WhatTheDiskDoesNotReadOrTakeIsSaid) {
    mac::test::TemporaryFolder const folder;
    folder.makeFile("file", "x");
    std::u16string const file = fileIn(folder, "file");
    for (auto const& [refusal, number] :
         {std::pair(ENOSPC, errors::DiskFull), std::pair(EDQUOT, errors::DiskFull), std::pair(EIO, errors::InputOutput),
          std::pair(EBADF, errors::NotOpenForWriting)})
        mac::test::withRefusedCall(SYS_pwrite64, refusal, [&, number = number] {
            EXPECT_EQ(errorNumberOf(u"write \"y\" to " + file), number);
        });
    mac::test::withRefusedCall(SYS_pread64, EIO,
                               [&] { EXPECT_EQ(errorNumberOf(u"read " + file), errors::InputOutput); });
}

TEST(ScriptEngine, AShellCommandThatSaysNothingMoreStillEndsWithTheRun) {
    CompiledScript script = compiled(u"do shell script \"exec >/dev/null 2>&1; exec sleep 1000\"");
    ScriptOutcome const outcome = script.run({.seconds = 0.2});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::TimedOut);
}

TEST(ScriptEngine, AFlagStopsAShellCommandThatNeverEnds) {
    std::atomic<bool> const cancelled{true};
    CompiledScript script = compiled(u"do shell script \"cat /dev/zero\"");
    ScriptOutcome const outcome = script.run({.cancelled = &cancelled});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::UserCanceled);
}

TEST(ScriptEngine, TextThatDoublesForeverIsRefused) {
    engineState().text = TextContext();
    engineState().text.mostUnits = 1U << 20U;
    CompiledScript script = compiled(u"set x to \"abcdefgh\"\nrepeat\nset x to x & x\nend repeat");
    ScriptOutcome const outcome = script.run({});
    engineState().text = TextContext();
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::ValueTooLarge);
}

TEST(ScriptEngine, PropertiesKeepTheirValuesFromRunToRun) {
    CompiledScript script = compiled(u"property n : 0\nset n to n + 1\nn");
    EXPECT_EQ(script.run({}).value.asInteger(), 1);
    EXPECT_EQ(script.run({}).value.asInteger(), 2);
    EXPECT_EQ(compiled(u"property n : 0\nset n to n + 1\nn").run({}).value.asInteger(), 1);
}

TEST(ScriptEngine, TextItemDelimitersStayFromScriptToScript) {
    engineState().text = TextContext();
    compiled(u"set AppleScript's text item delimiters to \"-\"").run({});
    EXPECT_EQ(compiled(u"{1, 2} as text").run({}).value.units(), u"1-2");
    engineState().text = TextContext();
}

TEST(ScriptEngine, LoneSurrogatesPassThrough) {
    std::u16string const source = u"\"a" + std::u16string(1, char16_t{0xDC80}) + u"b\"";
    EXPECT_EQ(compiled(source).run({}).value.units(), source.substr(1, 3));
}

TEST(ScriptEngine, AScriptThatOnlyComputesRunsNoCommands) {
    CompiledScript script = compiled(u"do shell script \"true\"");
    ScriptOutcome const outcome = script.run({.computesOnly = true});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->number, errors::AccessNotAllowed);
}

TEST(ScriptEngine, ErrorsSayWhereTheyAre) {
    ScriptError error;
    EXPECT_FALSE(CompiledScript::compile(u"set x to", error));
    EXPECT_EQ(error.range->start, 8U);
    ScriptOutcome const outcome = compiled(u"set x to 1\nset y to z").run({});
    ASSERT_TRUE(outcome.error);
    EXPECT_EQ(outcome.error->range->start, 20U);
    EXPECT_EQ(outcome.error->range->end, 21U);
}

TEST(ScriptEngine, RunGetsItsArguments) {
    ScriptOutcome const outcome =
        compiled(u"on run argv\nitem 2 of argv\nend run").run({}, {Value::text(u"a"), Value::text(u"b")});
    EXPECT_EQ(outcome.value.units(), u"b");
}

TEST(ScriptEngine, LogReachesItsListener) {
    std::u16string logged;
    compiled(u"log {1, \"a\"}").run({.log = [&](std::u16string const& line) { logged = line; }});
    EXPECT_EQ(logged, u"(*{1, \"a\"}*)");
}

TEST(ScriptSymbol, OfATermIsShownAsItIsSpelt) {
    Symbol const one = termSymbol(codeOf("home"), u"home directory");
    Symbol const other = termSymbol(codeOf("home"), u"home");
    EXPECT_EQ(one->spelling, u"home directory");
    EXPECT_EQ(other->spelling, u"home");
    EXPECT_TRUE(isSameName(one, other));
    EXPECT_EQ(termSymbol(codeOf("home"), u"home"), other);
}

TEST(SourceForm, PeopleReadTextWithoutQuotes) {
    EXPECT_EQ(humanForm(compiled(u"{1, \"a\", {b:2}}").run({}).value), u"1, a, b:2");
}

} // namespace

} // namespace mac::applescript::test
