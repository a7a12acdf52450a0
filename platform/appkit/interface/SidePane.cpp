#include "platform/appkit/interface/SidePane.h"
#include "platform/foundation/running/EventLoop.h"
#include <QEvent>
#include <QHeaderView>
#include <algorithm>

namespace mac {

namespace {

// How the table and the pane below it share the height.
constexpr int TableShare = 3;
constexpr int PaneShare = 2;

QBoxLayout* layoutAround(QWidget* widget) {
    QList<QBoxLayout*> const layouts = widget->parentWidget()->findChildren<QBoxLayout*>();
    auto const found =
        std::ranges::find_if(layouts, [&](QBoxLayout const* layout) { return layout->indexOf(widget) >= 0; });
    return found == layouts.end() ? nullptr : *found;
}

int roomIn(QWidget const* widget) {
    QMargins const margins = widget->layout() ? widget->layout()->contentsMargins() : QMargins();
    return widget->contentsRect().width() - margins.left() - margins.right();
}

} // namespace

SidePane::SidePane(QScrollArea* pane, QTableView* table, std::function<int()> widthNeeded)
    : m_pane(pane), m_layout(layoutAround(pane)), m_widthNeeded(std::move(widthNeeded)), m_width(pane->minimumWidth()) {
    QBoxLayout const* const inside = contents();
    for (int index = 0; inside && index < inside->count(); ++index)
        m_alignments.push_back(inside->itemAt(index)->alignment());
    pane->installEventFilter(this);
    pane->parentWidget()->installEventFilter(this);
    connect(table->horizontalHeader(), &QHeaderView::sectionResized, this, [this] { placeLater(); });
}

QBoxLayout* SidePane::contents() const {
    QWidget const* const widget = m_pane->widget();
    return widget ? qobject_cast<QBoxLayout*>(widget->layout()) : nullptr;
}

bool SidePane::eventFilter(QObject* watched, QEvent* event) {
    bool const isSizeOfBoth = m_pane && watched == m_pane->parentWidget() && event->type() == QEvent::Resize;
    bool const isShown = watched == m_pane && event->type() == QEvent::Show;
    if (isSizeOfBoth || isShown) guarded([&] { place(); });
    return QObject::eventFilter(watched, event);
}

// A column changes its width while the table lays itself out.
void SidePane::placeLater() {
    if (m_isPlacingLater) return;
    m_isPlacingLater = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isPlacingLater = false;
            guarded([&] { place(); });
        },
        Qt::QueuedConnection);
}

void SidePane::place() {
    if (!m_pane || !m_layout) return;
    int const room = roomIn(m_pane->parentWidget()) - m_layout->spacing() - m_width;
    turn(room >= m_widthNeeded() ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
}

void SidePane::turn(QBoxLayout::Direction direction) {
    if (m_layout->direction() == direction) return;
    bool const isBeside = direction == QBoxLayout::LeftToRight;
    m_pane->setMinimumWidth(isBeside ? m_width : 0);
    m_pane->setMaximumWidth(isBeside ? m_width : QWIDGETSIZE_MAX);
    m_pane->setSizePolicy(isBeside ? QSizePolicy::Fixed : QSizePolicy::Expanding, QSizePolicy::Expanding);
    int const place = m_layout->indexOf(m_pane);
    for (int index = 0; index < m_layout->count(); ++index)
        m_layout->setStretch(index, isBeside ? 0 : index == place ? PaneShare : TableShare);
    m_layout->setDirection(direction);
    QBoxLayout* const inside = contents();
    if (!inside) return;
    inside->setDirection(isBeside ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    for (std::size_t index = 0; index < m_alignments.size(); ++index)
        inside->itemAt(static_cast<int>(index))->setAlignment(isBeside ? m_alignments[index] : Qt::AlignTop);
}

} // namespace mac
