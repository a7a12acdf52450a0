#include "benchmarks/Timing.h"
#include "tests/support/TemporaryFolder.h"
#include <cstdio>
#include <cstdlib>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <vector>

// What one page of many hosts costs: `framekeeper-cli report` against Python, which reads the same files with its json
// module and does nothing with them. Both are processes of their own, and their processor time is told. Rounds take
// turns.
//
// usage: host_report FRAMEKEEPER_CLI [HOSTS [COPIES]]

using benchmarks::median;

namespace {

constexpr int Rounds = 5;
constexpr int DefaultHosts = 500;
constexpr int DefaultCopies = 200;

std::string factsWith(int host, int copies) {
    std::string json = R"({"framekeeper": 1, "gathered": "2026-11-22T10:00:00Z", "copies": [)";
    for (int copy = 0; copy < copies; ++copy) {
        std::string const number = std::to_string(copy);
        std::string const version = "2." + std::to_string((host + copy) % 40);
        bool const runs = copy % 50 == 0;
        json += copy == 0 ? "\n" : ",\n";
        (json += R"(  {"path": "/srv/anna/Software/Backup )") += number;
        (json += R"(/Mirror Frame.app", "uri": "file:///srv/anna/Software/Backup%20)") += number;
        (json += R"(/Mirror%20Frame.app", "version": ")") += version;
        ((((json += R"(", "versionString": ")") += version) += " (") += version) += R"text()", "exists": true)text";
        json += runs ? R"(, "isRunning": true, "processID": 4711)" : R"(, "isRunning": false, "processID": null)";
        (json += R"(, "isAutolaunched": )") += copy == 0 ? "true" : "false";
        json += R"(, "isInToolbar": false})";
    }
    return json + "\n]}\n";
}

// The processor time of a program that must succeed, its children's included.
double processorSecondsOfProgram(std::vector<std::string> const& words) {
    int status = -1;
    rusage usage{};
    bool const hasEnded = ::wait4(benchmarks::startProgram(words), &status, 0, &usage) >= 0;
    if (!hasEnded || status != 0) {
        std::fprintf(stderr, "%s failed\n", words[0].c_str());
        std::exit(1);
    }
    auto const seconds = [](timeval const& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void measure(char const* name, std::vector<std::string> const& ours, std::vector<std::string> const& theirs) {
    std::vector<double> times;
    std::vector<double> ratios;
    for (int round = 0; round < Rounds; ++round) {
        double const others = processorSecondsOfProgram(theirs);
        times.push_back(processorSecondsOfProgram(ours));
        ratios.push_back(times.back() / others);
    }
    std::printf("%s: %.2f s of processor time, %.2f times what Python takes to read the files (median of %d pairs)\n",
                name, median(times), median(ratios), Rounds);
}

} // namespace

int main(int argc, char** argv) {
    int const hosts = argc > 2 ? std::atoi(argv[2]) : DefaultHosts;
    int const copies = argc > 3 ? std::atoi(argv[3]) : DefaultCopies;
    if (argc < 2 || hosts < 1 || copies < 1) {
        std::fprintf(stderr, "usage: host_report FRAMEKEEPER_CLI [HOSTS [COPIES]]\n");
        return 2;
    }
    mac::test::TemporaryFolder const folder;
    for (int host = 0; host < hosts; ++host)
        folder.makeFile("facts/host" + std::to_string(host) + ".json", factsWith(host, copies));
    std::string const script =
        folder.makeFile("read.py", "import json, os, sys\nfor name in os.listdir(sys.argv[1]):\n"
                                   "    with open(os.path.join(sys.argv[1], name), 'rb') as file:\n"
                                   "        json.load(file)\n");
    std::string const facts = folder.path("facts");
    std::printf("%d hosts with %d copies each\n", hosts, copies);
    std::vector<std::string> const python{"python3", script, facts};
    measure("HTML", {argv[1], "report", facts}, python);
    measure("CSV", {argv[1], "report", "--csv", facts}, python);
}
