#include "platform/appkit/StatusLine.h"
#include "platform/appkit/VisibleText.h"
#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QVariant>

namespace mac {

namespace {

constexpr int LightMilliseconds = 1500;

// What assistive technology learns of the label: a status bar with the name of what it says, whole also where it is cut
// on the screen.
class AccessibleStatusLine : public QAccessibleWidget {
public:
    explicit AccessibleStatusLine(QWidget* label) : QAccessibleWidget(label, QAccessible::StatusBar) {}

    QString text(QAccessible::Text kind) const override {
        QString const line = widget()->accessibleDescription();
        return kind == QAccessible::Name && !line.isEmpty() ? line : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* makeAccessibleStatusLine(QString const& className, QObject* object) {
    bool const isStatusLine = className == "QLabel" && object && object->property("showsLog").toBool();
    // The toolkit owns it.
    return isStatusLine ? std::make_unique<AccessibleStatusLine>(static_cast<QLabel*>(object)).release() : nullptr;
}

// The toolkit has made an ordinary label's interface by now, when the form named it.
void becomeStatusBar(QLabel* label) {
    QAccessible::installFactory(makeAccessibleStatusLine);
    QAccessibleInterface* const former = QAccessible::queryAccessibleInterface(label);
    if (former) QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(former));
}

} // namespace

StatusLine::StatusLine(QLabel* label, KeyPathScope const& scope) : m_label(label) {
    becomeStatusBar(label);
    label->setTextFormat(Qt::PlainText);
    label->setAutoFillBackground(true);
    label->installEventFilter(this);
    m_explanation.setSingleShot(true);
    m_light.setSingleShot(true);
    m_light.setInterval(LightMilliseconds);
    connect(&m_explanation, &QTimer::timeout, this, [this] {
        if (m_isBeepUnexplained && m_label) showLine(m_label->property("beepText").toString());
    });
    connect(&m_light, &QTimer::timeout, this, [this] {
        if (m_label) m_label->setPalette({});
    });
    connectNotices(scope);
    // Lines come from any thread; one way for all keeps them, the beeps and the ends of actions in order.
    m_logListener.emplace(
        [this](NSString const& message) { later([this, line = visibleText(message)] { showLine(line); }); });
    m_beepListener.emplace([this] { later([this] { showBeep(); }); });
}

StatusLine::~StatusLine() = default;

void StatusLine::later(std::function<void()> function) {
    QMetaObject::invokeMethod(this, std::move(function), Qt::QueuedConnection);
}

void StatusLine::connectNotices(KeyPathScope const& scope) {
    m_noticeButton = m_label->window()->findChild<QAbstractButton*>(m_label->property("noticeButton").toString());
    if (m_noticeButton) m_noticeButton->hide();
    QString const notice = m_label->property("noticeKeyPath").toString();
    QString const hasButton = m_label->property("noticeButtonKeyPath").toString();
    if (!hasButton.isEmpty()) m_noticeHasButton = std::make_unique<BoundValue>(scope, hasButton, [] {});
    if (!notice.isEmpty()) m_notice = std::make_unique<BoundValue>(scope, notice, [this] { takeNotice(); });
}

void StatusLine::takeNotice() {
    bool const hasButton = m_noticeHasButton && isTruth(m_noticeHasButton->value());
    later([this, hasButton, line = visibleTextOf(m_notice->value())] {
        showLine(line, hasButton ? Kind::Notice : Kind::Line);
    });
}

void StatusLine::beginAction() {
    later([this] { m_toldByAction = 0; });
}

void StatusLine::endAction() {
    later([this] {
        if (m_toldByAction == 0) showLine({});
    });
}

bool StatusLine::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::FontChange) showCut();
    return QObject::eventFilter(watched, event);
}

void StatusLine::showLine(QString const& line, Kind kind) {
    ++m_toldByAction;
    m_isBeepUnexplained = false;
    m_line = line;
    if (m_noticeButton) m_noticeButton->setVisible(kind == Kind::Notice);
    showCut();
}

void StatusLine::showAtOnce(QString const& line) {
    showLine(line);
    if (m_label) m_label->repaint();
}

void StatusLine::showBeep() {
    if (!m_label) return;
    ++m_toldByAction;
    QPalette lit = m_label->palette();
    lit.setColor(QPalette::Window, lit.color(QPalette::Highlight));
    lit.setColor(QPalette::WindowText, lit.color(QPalette::HighlightedText));
    m_label->setPalette(lit);
    m_light.start();
    m_isBeepUnexplained = true;
    m_explanation.start();
}

void StatusLine::showCut() {
    if (!m_label) return;
    QString const shown = m_label->fontMetrics().elidedText(m_line, Qt::ElideRight, m_label->contentsRect().width());
    if (m_label->text() != shown) m_label->setText(shown);
    m_label->setToolTip(shown == m_line ? QString() : plainToolTip(m_line));
    if (m_label->accessibleDescription() == m_line) return;
    m_label->setAccessibleDescription(m_line);
    QAccessibleEvent named(m_label, QAccessible::NameChanged);
    QAccessible::updateAccessibility(&named);
}

} // namespace mac
