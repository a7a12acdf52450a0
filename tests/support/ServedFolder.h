#pragma once

#include "tests/support/ChildProcess.h"
#include <cstdint>
#include <string>

namespace mac::test {

// Shows a folder at another place by a server of its own (FUSE), which can be stopped: then whoever reads there waits
// until the server goes on. The destructor ends the server, and the mount with it.
class ServedFolder {
public:
    static constexpr char Server[] = "/usr/bin/bindfs";
    // Why no folder can be served here; empty if one can.
    static std::string whyNone();

    // The folder is not yet shown when this returns.
    ServedFolder(std::string const& folder, std::string point);
    ~ServedFolder();
    ServedFolder(ServedFolder const&) = delete;
    ServedFolder& operator=(ServedFolder const&) = delete;

    bool isMounted() const;
    void waitUntilMounted() const;
    void stop() const;
    void goOn() const;

    // Whether the thread waits for an answer of some server of folders.
    static bool isWaitedForBy(std::int32_t thread);

private:
    std::string m_point;
    ChildProcess m_server;
};

} // namespace mac::test
