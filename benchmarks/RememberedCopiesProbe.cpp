#include <QAbstractItemView>
#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>

// Linked into the program: tells how many microseconds after its window's first painting the table was painted with
// copies in it, and ends the process.

namespace {

using Clock = std::chrono::steady_clock;

class Paintings : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Paint || !watched->isWidgetType()) return false;
        if (static_cast<QWidget*>(watched)->isWindow() && !m_window) m_window = Clock::now();
        auto const* const table = qobject_cast<QAbstractItemView*>(watched->parent());
        bool const hasCopies = table && table->objectName() == "pathsTable" && table->model()->rowCount() > 0;
        if (hasCopies && m_window && !m_isTold) {
            m_isTold = true;
            QTimer::singleShot(0, [window = *m_window] { tell(Clock::now() - window); });
        }
        return false;
    }

private:
    static void tell(Clock::duration time) {
        std::printf("%lld\n",
                    static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(time).count()));
        std::fflush(stdout);
        std::_Exit(0);
    }

    std::optional<Clock::time_point> m_window{};
    bool m_isTold{false};
};

void watchPaintings() {
    static Paintings watch;
    QCoreApplication::instance()->installEventFilter(&watch);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchPaintings)
