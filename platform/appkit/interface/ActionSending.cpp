#include "platform/appkit/interface/ActionSending.h"
#include "platform/foundation/running/EventLoop.h"
#include <QCoreApplication>
#include <QGuiApplication>
#include <QScopedValueRollback>
#include <QTableView>

namespace mac {

namespace {

// Events that arrive faster than they are handled must not keep the program here.
constexpr int MostMilliseconds = 1000;

class BusyPointer {
public:
    BusyPointer() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }
    ~BusyPointer() { QGuiApplication::restoreOverrideCursor(); }
    BusyPointer(BusyPointer const&) = delete;
    BusyPointer& operator=(BusyPointer const&) = delete;
};

} // namespace

void ActionSending::send(NSControl const& control, QObject const* owner) {
    if (m_isBusy && !owner->property("worksWhileBusy").toBool()) return;
    QString const busyText = owner->property("busyText").toString();
    if (busyText.isEmpty())
        sendNow(control);
    else
        sendWhileBusy(control, busyText);
}

void ActionSending::sendNow(NSControl const& control) {
    if (m_statusLine) m_statusLine->beginAction();
    guarded([&] { control.sendAction_to_(control.action(), control.target()); });
    if (m_statusLine) m_statusLine->endAction();
    // Cells show what is on the disk, such as icons, which no key tells of.
    for (QTableView* const table : m_window->findChildren<QTableView*>())
        table->viewport()->update();
}

void ActionSending::sendWhileBusy(NSControl const& control, QString const& busyText) {
    QScopedValueRollback<bool> const busy(m_isBusy, true);
    BusyPointer const pointer;
    if (m_statusLine) m_statusLine->showAtOnce(busyText);
    sendNow(control);
    QCoreApplication::processEvents(QEventLoop::AllEvents, MostMilliseconds);
}

} // namespace mac
