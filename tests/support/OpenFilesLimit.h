#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace mac::test {

// Lets this process open no more than a few files beside those that it has open, for as long as the object lives.
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
