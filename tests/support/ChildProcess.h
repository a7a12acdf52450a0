#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace mac::test {

// A process that a test starts. Its standard input stays open until closed or until the object's end, so that a program
// that reads to the end ends with the test at the latest. The destructor ends the process and waits for it.
class ChildProcess {
public:
    // The first argument is the program's path.
    explicit ChildProcess(std::vector<std::string> arguments);
    ~ChildProcess();
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;

    std::int32_t pid() const { return m_pid; }
    // The next line of its standard output, without the line end; empty at the end.
    std::string readLine() const;
    void writeLine(std::string const& line) const;
    // After SIGSTOP all of its threads have stopped when this returns.
    void sendSignal(int signal) const;
    // Waits until the process has ended, and leaves its exit status for wait().
    void waitUntilEnded() const;
    // Waits for the end and returns the exit status, or minus the number of the signal that ended the process.
    int wait();

private:
    std::int32_t m_pid{-1};
    int m_input{-1};
    int m_output{-1};
    bool m_isWaitedFor{false};
};

// The command of a server that gets the signal when this process ends, also by a crash.
std::vector<std::string> endingWithThisProcess(std::vector<std::string> const& command,
                                               std::string const& signal = "KILL");

} // namespace mac::test
