#include <QAbstractItemView>
#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>

// Linked into the program: tells how many microseconds after the start of its window's first painting the table was
// painted with copies in it, and 1 if that was the same painting, else 0; then it ends the process.

namespace {

using Clock = std::chrono::steady_clock;

class Paintings : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Paint || !watched->isWidgetType()) return false;
        if (static_cast<QWidget*>(watched)->isWindow() && !m_window) {
            m_window = Clock::now();
            auto const* const copies = watched->findChild<QAbstractItemView*>(TableName);
            m_wasFirst = copies && copies->model()->rowCount() > 0;
        }
        auto const* const table = qobject_cast<QAbstractItemView*>(watched->parent());
        bool const hasCopies = table && table->objectName() == TableName && table->model()->rowCount() > 0;
        if (hasCopies && m_window && !m_isTold) {
            m_isTold = true;
            QTimer::singleShot(0, [this] { tell(Clock::now() - *m_window); });
        }
        return false;
    }

private:
    static constexpr char const* TableName = "pathsTable";

    void tell(Clock::duration time) const {
        std::printf("%lld %d\n",
                    static_cast<long long>(std::chrono::duration_cast<std::chrono::microseconds>(time).count()),
                    m_wasFirst ? 1 : 0);
        std::fflush(stdout);
        std::_Exit(0);
    }

    std::optional<Clock::time_point> m_window{};
    bool m_wasFirst{false};
    bool m_isTold{false};
};

void watchPaintings() {
    static Paintings watch;
    QCoreApplication::instance()->installEventFilter(&watch);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watchPaintings)
