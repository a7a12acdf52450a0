#include "platform/appkit/interface/LeadingLabels.h"
#include <QEvent>
#include <QLabel>
#include <memory>

namespace mac {

namespace {

bool isLeading(QLabel const* label) { return (label->alignment() & Qt::AlignHorizontal_Mask) == Qt::AlignLeft; }

class LeadingLabel : public QObject {
public:
    explicit LeadingLabel(QLabel* label) : QObject(label), m_label(label) {
        label->installEventFilter(this);
        align();
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == m_label && event->type() == QEvent::LayoutDirectionChange) align();
        return QObject::eventFilter(watched, event);
    }

private:
    void align() {
        Qt::Alignment const side = m_label->isRightToLeft() ? Qt::AlignRight : Qt::AlignLeft;
        m_label->setAlignment((m_label->alignment() & Qt::AlignVertical_Mask) | side | Qt::AlignAbsolute);
    }

    QLabel* m_label;
};

} // namespace

void keepLabelsLeading(QWidget* window) {
    for (QLabel* const label : window->findChildren<QLabel*>()) {
        // It belongs to the label.
        if (isLeading(label)) (void)std::make_unique<LeadingLabel>(label).release();
    }
}

} // namespace mac
