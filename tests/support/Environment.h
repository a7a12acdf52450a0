#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

// What tests change of their own process for a while.

namespace mac::test {

// Sets an environment variable, or removes it if the value is nullopt. The destructor restores the former value.
class EnvironmentVariable {
public:
    EnvironmentVariable(char const* name, std::optional<std::string> const& value) : m_name(name) {
        if (char const* const before = std::getenv(name)) m_before = before;
        set(value);
    }
    ~EnvironmentVariable() { set(m_before); }
    EnvironmentVariable(EnvironmentVariable const&) = delete;
    EnvironmentVariable& operator=(EnvironmentVariable const&) = delete;

private:
    void set(std::optional<std::string> const& value) const {
        if (value)
            ::setenv(m_name, value->c_str(), 1);
        else
            ::unsetenv(m_name);
    }

    char const* m_name;
    std::optional<std::string> m_before;
};

// Makes a folder the current one. The destructor goes back to the former.
class CurrentFolder {
public:
    explicit CurrentFolder(std::string const& folder) {
        if (m_before < 0 || ::chdir(folder.c_str()) != 0) std::abort();
    }
    ~CurrentFolder() {
        if (::fchdir(m_before) != 0) std::abort();
        ::close(m_before);
    }
    CurrentFolder(CurrentFolder const&) = delete;
    CurrentFolder& operator=(CurrentFolder const&) = delete;

private:
    int m_before{::open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)};
};

// Limits how many files this process may open beside those that are open. The destructor restores the former limit.
class OpenFilesLimit {
public:
    explicit OpenFilesLimit(unsigned more) {
        int const firstFree = ::open("/", O_PATH | O_CLOEXEC);
        if (firstFree < 0 || ::getrlimit(RLIMIT_NOFILE, &m_before) != 0) std::abort();
        ::close(firstFree);
        rlimit const limit{static_cast<rlim_t>(firstFree) + more, m_before.rlim_max};
        if (::setrlimit(RLIMIT_NOFILE, &limit) != 0) std::abort();
    }
    ~OpenFilesLimit() {
        if (::setrlimit(RLIMIT_NOFILE, &m_before) != 0) std::abort();
    }
    OpenFilesLimit(OpenFilesLimit const&) = delete;
    OpenFilesLimit& operator=(OpenFilesLimit const&) = delete;

private:
    rlimit m_before{};
};

} // namespace mac::test
