#pragma once

#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <unistd.h>

namespace mac::test {

// A service on the session's bus that appends what it is asked for to a log, a line each, and answers by its mode.
class FakeService : public QDBusVirtualObject {
public:
    FakeService(std::string mode, std::string log) : m_mode(std::move(mode)), m_log(std::move(log)) {}

    // Several processes may append to the log.
    void write(std::string const& line) const {
        int const file = ::open(m_log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
        std::string const bytes = line + "\n";
        if (::write(file, bytes.data(), bytes.size()) < 0) std::abort();
        ::close(file);
    }

    QString introspect(QString const&) const override { return {}; }

protected:
    std::string const& mode() const { return m_mode; }

private:
    std::string m_mode;
    std::string m_log;
};

} // namespace mac::test
