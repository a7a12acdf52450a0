#include "platform/applescript/runtime/ScriptEngine.h"
#include "benchmarks/Timing.h"
#include <cstdio>
#include <cstdlib>

// Prints what compiling and running a five-line script costs against starting `/bin/sh -c :`, and a loop of a million
// additions against the same loop in Python, its start left out. Each pair is measured in turns; the medians count.

namespace {

using namespace mac::applescript;
using namespace benchmarks;

constexpr int Rounds = 15;
constexpr std::u16string_view FiveLines = u"set x to \"a,b,c\"\nset text item delimiters to \",\"\nset n to 0\n"
                                          u"repeat with i in text items of x\nset n to n + 1\nend repeat\nn";
constexpr std::u16string_view Loop = u"set x to 0\nrepeat with i from 1 to 1000000\nset x to x + i\nend repeat\nx";
constexpr char const* PythonLoop = "x = 0\nfor i in range(1, 1000001):\n    x = x + i\n";

void runScript(std::u16string_view source) {
    ScriptError error;
    std::optional<CompiledScript> script = CompiledScript::compile(source, error);
    if (script && !script->run({}).error) return;
    std::fputs("the script failed\n", stderr);
    std::exit(1);
}

} // namespace

int main() {
    std::vector<double> script;
    std::vector<double> shell;
    std::vector<double> loop;
    std::vector<double> python;
    for (int round = 0; round < Rounds; ++round) {
        script.push_back(secondsOf([] { runScript(FiveLines); }));
        shell.push_back(secondsOf([] { runProgram({"/bin/sh", "-c", ":"}); }));
        loop.push_back(secondsOf([] { runScript(Loop); }));
        double const start = secondsOf([] { runProgram({"python3", "-c", ""}); });
        python.push_back(secondsOf([] { runProgram({"python3", "-c", PythonLoop}); }) - start);
    }
    std::printf("a five-line script: %.0f microseconds, %.3f of starting /bin/sh -c :\n", median(script) * 1e6,
                median(script) / median(shell));
    std::printf("a million additions: %.0f ms, %.2f of Python\n", median(loop) * 1e3, median(loop) / median(python));
    return 0;
}
