#include "benchmarks/Timing.h"
#include "platform/applescript/runtime/ScriptEngine.h"
#include <cstdio>
#include <cstdlib>

// Prints, for what scripts do over and over, what twice as much of it costs against once (2 where the cost grows as the
// work does, 4 where it grows with its square); a bubble sort of 2,000 numbers against the same sort in Python; and
// `osa -e 1` against an empty program with the same libraries. The two programs are given as arguments. Each pair is
// measured in turns; the medians count.

namespace {

using namespace mac::applescript;
using namespace benchmarks;

constexpr int Rounds = 5;

void runScript(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    if (script && !script->run({}).error) return;
    std::fputs("the script failed\n", stderr);
    std::exit(1);
}

std::u16string decimal(int number) {
    std::string const digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

std::u16string repeated(int count, std::u16string_view before, std::u16string_view body) {
    return std::u16string(before) + u"repeat with i from 1 to " + decimal(count) + u"\n" + std::u16string(body) +
           u"end repeat\n";
}

std::u16string declarations(int count, std::u16string_view before, std::u16string_view after) {
    std::u16string source;
    for (int index = 0; index < count; ++index)
        source += std::u16string(before) + decimal(index) + std::u16string(after);
    return source;
}

struct Work {
    char const* name;
    std::u16string (*source)(int count);
    int count;
};

constexpr Work Works[] = {
    {"appending to text", [](int count) { return repeated(count, u"set t to \"\"\n", u"set t to t & \"some\" & i\n"); },
     80000},
    {"appending to a list", [](int count) { return repeated(count, u"set l to {}\n", u"set end of l to i\n"); }, 80000},
    {"prepending to a list", [](int count) { return repeated(count, u"set l to {}\n", u"set beginning of l to i\n"); },
     80000},
    {"joining lists at the end", [](int count) { return repeated(count, u"set l to {}\n", u"set l to l & {i}\n"); },
     80000},
    {"joining lists at the beginning",
     [](int count) { return repeated(count, u"set l to {}\n", u"set l to {i} & l\n"); }, 80000},
    {"word i of a text",
     [](int count) {
         return u"set t to \"\"\n" + repeated(count, u"", u"set t to t & \"word \"\n") +
                repeated(count, u"", u"set w to word i of t\n");
     },
     20000},
    {"handlers",
     [](int count) {
         return declarations(count, u"on h", u"()\nreturn 1\nend\n") + declarations(count, u"my h", u"()\n");
     },
     20000},
    {"variables", [](int count) { return declarations(count, u"set v", u" to 1\n"); }, 20000},
    {"properties", [](int count) { return declarations(count, u"property p", u" : 1\n"); }, 20000},
};

void measureGrowth(Work const& work) {
    std::vector<double> once;
    std::vector<double> twice;
    std::u16string const shorter = work.source(work.count);
    std::u16string const longer = work.source(work.count * 2);
    for (int round = 0; round < Rounds; ++round) {
        once.push_back(secondsOf([&] { runScript(shorter); }));
        twice.push_back(secondsOf([&] { runScript(longer); }));
    }
    std::printf("%s, %d times: %.0f ms; twice as often %.2f of that\n", work.name, work.count, median(once) * 1e3,
                median(twice) / median(once));
}

constexpr std::u16string_view Sort = u"set l to {}\nset n to 12345\nrepeat 2000 times\n"
                                     u"set n to (n * 1103 + 12345) mod 65536\nset end of l to n\nend repeat\n"
                                     u"repeat with i from 1999 to 1 by -1\nrepeat with j from 1 to i\n"
                                     u"if item j of l > item (j + 1) of l then\nset m to item j of l\n"
                                     u"set item j of l to item (j + 1) of l\nset item (j + 1) of l to m\n"
                                     u"end if\nend repeat\nend repeat\n";
constexpr char const* PythonSort = "l = []\nn = 12345\nfor k in range(2000):\n    n = (n * 1103 + 12345) % 65536\n"
                                   "    l.append(n)\nfor i in range(1999, 0, -1):\n    for j in range(0, i):\n"
                                   "        if l[j] > l[j + 1]:\n            m = l[j]\n            l[j] = l[j + 1]\n"
                                   "            l[j + 1] = m\n";

void measureSort() {
    std::vector<double> script;
    std::vector<double> python;
    for (int round = 0; round < Rounds; ++round) {
        script.push_back(secondsOf([] { runScript(Sort); }));
        double const start = secondsOf([] { runProgram({"python3", "-c", ""}); });
        python.push_back(secondsOf([] { runProgram({"python3", "-c", PythonSort}); }) - start);
    }
    std::printf("a bubble sort of 2,000 numbers: %.0f ms, %.2f of Python\n", median(script) * 1e3,
                median(script) / median(python));
}

void measureStart(std::string const& osa, std::string const& empty) {
    constexpr int starts = 31;
    std::vector<double> script;
    std::vector<double> nothing;
    for (int round = 0; round < starts; ++round) {
        script.push_back(secondsOf([&] { runProgram({osa, "-e", "1"}); }));
        nothing.push_back(secondsOf([&] { runProgram({empty}); }));
    }
    std::printf("osa -e 1: %.1f ms, %.2f of an empty program\n", median(script) * 1e3,
                median(script) / median(nothing));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: script_speed OSA EMPTY-PROGRAM\n", stderr);
        return 1;
    }
    for (Work const& work : Works)
        measureGrowth(work);
    measureSort();
    measureStart(argv[1], argv[2]);
    return 0;
}
