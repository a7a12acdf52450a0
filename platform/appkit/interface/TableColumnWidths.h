#pragma once

#include "platform/appkit/interface/PathElision.h"
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QTableView>
#include <array>
#include <functional>

namespace mac {

class TableModel;

// The widths of a table's columns: each starts wide enough for its title and its sample, those that fit their contents
// grow with what arrives, and one that fills the width takes what the others leave, but never too little to read: of
// paths that is the part in which they differ. All rows show as much of their paths as the widest of them has room for.
// A width that the user chose stays; no title is ever cut.
class TableColumnWidths : public QObject {
public:
    // Both outlive it, or the view is gone.
    TableColumnWidths(QTableView* view, TableModel& model);

    // Looks at the first rows and at those on the screen; scrolling looks at those that come into sight.
    void fitContents();
    // Fits the contents after the rows have changed: with very many rows by events of its own, since what their paths
    // have in common is read from all of them.
    void fitChangedContents();

    // The columns that the user made wider or narrower, in pixels by number.
    QMap<int, int> chosenWidths() const;
    // Takes over such widths; one that would cut the title becomes as wide as that.
    void choose(QMap<int, int> const& widths);
    // The width in pixels that the view needs to show all columns at once, the filling one at its narrowest unless the
    // user chose its width.
    int widthNeeded() const;
    // Forgets what the user chose.
    void reset();
    // Called whenever the user chose a width.
    void whenChosen(std::function<void()> function) { m_whenChosen = std::move(function); }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setInitialWidths();
    int initialWidth(int section) const;
    void followOrder();
    void fitLater();
    void fitVisible();
    void fitRows(int first, int count);
    void fitCell(int row, int section);
    void fitPath(int row, int section);
    int fillingSection() const;
    int narrowestFill() const;
    void fillWidth();
    void choosePathExtents();
    int& widestPath(PathExtent extent) { return m_widestPaths[static_cast<std::size_t>(extent)]; }
    int widestPath(PathExtent extent) const { return m_widestPaths[static_cast<std::size_t>(extent)]; }
    void takeChoice(int section, int width);
    void resize(int section, int width);
    int widthOfTitle(int section) const;
    int widthForText(QString const& text) const;
    int widthOfIcon(int section) const;

    QPointer<QTableView> m_view;
    TableModel& m_model;
    QSet<QString> m_measured;
    QSet<int> m_chosen;
    // What the paths that were looked at take at most, for each extent.
    std::array<int, 3> m_widestPaths{};
    // The widest of their differing parts alone, without what stands for the common ones.
    int m_widestDifference{0};
    bool m_isAdjusting{false};
    // Events that fit the contents are under way.
    bool m_fitsLater{false};
    std::function<void()> m_whenChosen;
};

} // namespace mac
