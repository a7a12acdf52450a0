#include "benchmarks/StartUpRun.h"
#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

// Linked into a program with a window: tells when the window has been painted for the first time, with the memory that
// the process then holds, and ends the process.

namespace {

class FirstPainting : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        bool const isWindow = watched->isWidgetType() && static_cast<QWidget*>(watched)->isWindow();
        if (isWindow && event->type() == QEvent::Paint && !m_wasSeen) {
            m_wasSeen = true;
            QTimer::singleShot(0, &benchmarks::tellMemoryAndEnd);
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
