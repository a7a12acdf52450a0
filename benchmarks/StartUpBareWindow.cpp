#include <QApplication>
#include <QStandardItemModel>
#include <QTableView>

// What the program's start is compared with: a window with a table and nothing else.
int main(int argc, char** argv) {
    QApplication const application(argc, argv);
    QStandardItemModel model(0, 6);
    QTableView table;
    table.setModel(&model);
    table.resize(1000, 620);
    table.show();
    return QApplication::exec();
}
