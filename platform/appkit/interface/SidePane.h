#pragma once

#include <QBoxLayout>
#include <QObject>
#include <QPointer>
#include <QScrollArea>
#include <QTableView>
#include <functional>
#include <vector>

namespace mac {

// A pane of fixed width that stands beside a table while the window has room for both, and below it, as wide as the
// table, while that would hide columns. The contents of the pane are stacked beside the table and side by side below
// it. Both stand in one box layout of the pane's parent.
class SidePane : public QObject {
public:
    // widthNeeded answers the pixels that the table needs to show all of its columns.
    SidePane(QScrollArea* pane, QTableView* table, std::function<int()> widthNeeded);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();
    void placeLater();
    void turn(QBoxLayout::Direction direction);
    QBoxLayout* contents() const;

    QPointer<QScrollArea> m_pane;
    QPointer<QBoxLayout> m_layout;
    std::function<int()> m_widthNeeded;
    // The pane's width beside the table, as the form gives it.
    int const m_width;
    // How the form aligns the contents.
    std::vector<Qt::Alignment> m_alignments;
    bool m_isPlacingLater{false};
};

} // namespace mac
