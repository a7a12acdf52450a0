#include "platform/appkit/StatusLine.h"
#include "platform/appkit/VisibleText.h"
#include <QEvent>
#include <QVariant>

namespace mac {

namespace {

constexpr int LightMilliseconds = 1500;

} // namespace

StatusLine::StatusLine(QLabel* label) : m_label(label) {
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
    // Lines come from any thread; one way for all keeps them and the beeps in order.
    m_logListener.emplace([this](NSString const& message) {
        QMetaObject::invokeMethod(
            this, [this, line = visibleText(message)] { showLine(line); }, Qt::QueuedConnection);
    });
    m_beepListener.emplace([this] {
        QMetaObject::invokeMethod(
            this, [this] { showBeep(); }, Qt::QueuedConnection);
    });
}

StatusLine::~StatusLine() = default;

bool StatusLine::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::FontChange) showCut();
    return QObject::eventFilter(watched, event);
}

void StatusLine::showLine(QString const& line) {
    m_isBeepUnexplained = false;
    m_line = line;
    showCut();
}

void StatusLine::showBeep() {
    if (!m_label) return;
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
    m_label->setAccessibleDescription(m_line);
}

} // namespace mac
