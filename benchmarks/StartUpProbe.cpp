#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <string>

// Linked into a program with a window: tells on standard output when the window has been painted for the first time,
// with the memory that the process then holds in KiB, and ends the process.

namespace {

long residentKilobytes() {
    std::FILE* const file = std::fopen("/proc/self/smaps_rollup", "r");
    if (!file) return 0;
    char line[256];
    long resident = 0;
    while (std::fgets(line, sizeof line, file))
        std::sscanf(line, "Rss: %ld", &resident);
    std::fclose(file);
    return resident;
}

class FirstPainting : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        bool const isWindow = watched->isWidgetType() && static_cast<QWidget*>(watched)->isWindow();
        if (isWindow && event->type() == QEvent::Paint && !m_wasSeen) {
            m_wasSeen = true;
            QTimer::singleShot(0, [] {
                std::printf("%ld\n", residentKilobytes());
                std::fflush(stdout);
                std::_Exit(0);
            });
        }
        return false;
    }

private:
    bool m_wasSeen{false};
};

void watchForFirstPainting() {
    static FirstPainting watch;
    QCoreApplication::instance()->installEventFilter(&watch);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchForFirstPainting)
