#pragma once

#include "platform/appkit/arrangement/KeyPathObserver.h"
#include "platform/appkit/interface/NSTableView.h"
#include "platform/appkit/interface/TableCellDelegate.h"
#include "platform/appkit/interface/TableColumnWidths.h"
#include "platform/appkit/interface/TableFiles.h"
#include "platform/appkit/interface/TableModel.h"
#include "platform/appkit/views/ViewBody.h"
#include <QAction>
#include <QPersistentModelIndex>
#include <QTableView>
#include <optional>

namespace mac {

// A table on the screen and its array controller: rows, order and selection follow each other. While rows come and go,
// what the user looks at stays where it is.
class NSTableView::Body : public NSControl::Body {
public:
    Body(QTableView* view, std::vector<TableColumn> columns, NSArrayController const& controller);
    ~Body() override;

    NSArrayController const& controller() const { return m_controller; }
    void setSortDescriptors(NSArray const& descriptors);
    // What a click on the column's header does.
    void sortByColumn(int column);
    // One for each column that sorts, with its title and key; the one in whose order the rows are is checked. They
    // belong to the view.
    QList<QAction*> sortActions() const { return m_sortActions; }
    // Rows stand for the files at this key path from now on.
    void setFileKeyPath(NSString const& keyPath);
    // Puts the selected rows' files on the clipboard.
    void copySelection() const;
    void resetColumnWidths();
    // The width in pixels at which all columns are seen at once.
    int widthNeeded() const { return m_widths->widthNeeded(); }
    // Keeps the widths that the user chooses in the defaults under a key for the name, and takes over those that are
    // there.
    void setAutosaveName(NSString const& name);
    NSString const& autosaveName() const { return m_autosaveName; }
    void selectAll() const;

private:
    struct Anchor {
        QPersistentModelIndex index;
        int y{0};
    };

    void prepareView();
    void connectView();
    void makeSortActions();
    NSString widthsKey() const;
    void readWidths();
    void writeWidths();
    void followRows();
    void showRows(NSArray const& rows);
    // Which of the rows that are shown will be shown next, too.
    std::vector<bool> stayingRows() const;
    void moveKeyboardToStayingRow(std::vector<bool> const& stays);
    // Whether the keyboard is on the first row and no row is selected, as when the view has just got the keyboard; a
    // user who went there without selecting it is not told apart.
    bool isKeyboardAtRest() const;
    void followSelection();
    void selectAsInView();
    // The table's order is that of its array controller.
    void followOrder();
    void showOrder();
    Anchor anchor(std::vector<bool> const& stays) const;
    void restore(Anchor const& anchor);

    QPointer<QTableView> m_view;
    NSArrayController m_controller;
    TableModel m_model;
    TableCellDelegate m_delegate{m_model};
    TableHeaderStyle m_headerStyle;
    NSArray m_shown;
    NSString m_autosaveName;
    std::optional<TableColumnWidths> m_widths;
    std::optional<TableFiles> m_files;
    QList<QAction*> m_sortActions;
    bool m_isFollowing{false};
    std::vector<std::unique_ptr<KeyPathObserver>> m_observers;
    // Ends the connections with the view before anything above goes.
    QObject m_connections;
};

} // namespace mac
