#include "app/AppController.h"
#include "benchmarks/Timing.h"
#include "platform/appkit/interface/InterfaceFile.h"
#include "platform/foundation/numbers/NSNumber.h"
#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string_view>
#include <unistd.h>

// How long the event loop is held at most while the program's own window gets, reorders, filters and selects 100,000
// rows, compared with a table view on a standard item model and a sorting and filtering proxy. The two take turns.
//
// usage: large_table MAIN_INTERFACE_FILE [alone]
//   alone   measures the program and nothing else, in a small part of the time

using namespace framekeeper;
using benchmarks::median;

namespace {

constexpr int RowCount = 100'000;
constexpr int FurtherRows = 1'000;
constexpr int Rounds = 5;
// Longer than whatever in the window waits.
constexpr int QuietMilliseconds = 350;
constexpr int VersionCount = 500;
constexpr int FolderCount = 97;
constexpr int ColumnCount = 6;
constexpr int PathColumn = 1;

// Knows how long the longest single event took: time of the processor, in which other programs play no part.
class MeasuringApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override {
        if (m_depth > 0) return QApplication::notify(receiver, event);
        ++m_depth;
        double const start = now();
        bool const result = QApplication::notify(receiver, event);
        m_longest = std::max(m_longest, now() - start);
        --m_depth;
        return result;
    }

    // The longest time in milliseconds that the main thread is held by the step and by all that follows from it, until
    // it is done and no work is left.
    double longestHold(
        std::function<void()> const& step, std::function<bool()> const& isDone = [] { return true; }) {
        m_longest = 0;
        QTimer::singleShot(0, this, step);
        do
            finishEvents();
        while (!isDone());
        return m_longest;
    }

    void finishEvents() {
        QEventLoop loop;
        QTimer::singleShot(QuietMilliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    }

private:
    static double now() {
        timespec time{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
    }

    int m_depth{0};
    double m_longest{0};
};

struct Copy {
    std::string path;
    std::string version;
    std::string versionString;
};

// In no order, as a walk finds them.
std::vector<Copy> copies(int count) {
    std::vector<Copy> result;
    for (int index = 0; index < count; ++index) {
        int const shuffled = static_cast<int>(index * 7919LL % count);
        std::string const version = std::to_string(shuffled % VersionCount);
        std::string path = "/volumes/Folder ";
        path += std::to_string(shuffled % FolderCount);
        path += "/Backup ";
        path += std::to_string(shuffled);
        path += "/Mirror Frame.app";
        std::string versionString = "2.";
        versionString += version;
        versionString += " (" + version + ")";
        result.push_back({std::move(path), version, std::move(versionString)});
    }
    return result;
}

NSString text(std::string const& utf8) { return NSString::stringWithUTF8String_(utf8); }

// New records, made as the program makes them.
NSMutableSet recordsOf(AppController const& controller, std::vector<Copy> const& copies) {
    NSMutableSet const records = NSMutableSet::set();
    for (Copy const& copy : copies) {
        NSMutableSet const one = NSMutableSet::set();
        controller.pathObjects_addPath_(one, text(copy.path));
        id const record = one.anyObject();
        record.setValue_forKey_(text(copy.version), "version");
        record.setValue_forKey_(text(copy.versionString), "versionString");
        records.addObject_(record);
    }
    return records;
}

struct Holds {
    std::vector<double> ours;
    std::vector<double> theirs;
};

struct Results {
    Holds fill;
    Holds sameAgain;
    Holds replacement;
    Holds order;
    Holds filter;
    Holds selection;
};

void measureProgram(MeasuringApplication& application, NSString const& interface, Results& results) {
    auto loaded = InterfaceFile::load(interface);
    if (std::string const* const reason = std::get_if<std::string>(&loaded)) {
        std::fprintf(stderr, "%s\n", reason->c_str());
        std::exit(1);
    }
    InterfaceFile const& file = *std::get<std::unique_ptr<InterfaceFile>>(loaded);
    file.widget()->show();
    application.finishEvents();

    AppController const controller = as<AppController>(file.controller());
    auto* const table = file.widget()->findChild<QTableView*>("pathsTable");
    auto* const filter = file.widget()->findChild<QLineEdit*>("filterField");
    NSArrayController const arrangement = controller.pathsArrayController();
    auto const fillWith = [&](int count) {
        NSMutableSet records = recordsOf(controller, copies(count));
        return application.longestHold(
            [&] {
                controller.setPaths_(records);
                records = nil;
            },
            [&] { return isSame(arrangement.content(), controller.paths()); });
    };
    auto const showsRows = [&](int count) { return [=] { return table->model()->rowCount() == count; }; };
    results.fill.ours.push_back(fillWith(RowCount));
    table->selectionModel()->select(table->model()->index(RowCount / 2, 0),
                                    QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    results.sameAgain.ours.push_back(fillWith(RowCount));
    results.replacement.ours.push_back(fillWith(RowCount + FurtherRows));
    NSArray const order = arrangement.sortDescriptors();
    results.order.ours.push_back(
        application.longestHold([&] { emit table->horizontalHeader()->sectionClicked(PathColumn); },
                                [&] { return !arrangement.sortDescriptors().isEqual_(order); }));
    results.filter.ours.push_back(
        application.longestHold([&] { filter->setText("9"); }, [&] { return arrangement.filterPredicate() != nil; }));
    application.longestHold([&] { filter->clear(); }, showsRows(RowCount + FurtherRows));
    results.selection.ours.push_back(application.longestHold([&] { table->selectAll(); }));
}

void refill(QStandardItemModel& model, std::vector<Copy> const& copies) {
    model.setRowCount(0);
    for (Copy const& copy : copies) {
        QList<QStandardItem*> row;
        for (std::string const& cell : {copy.versionString, copy.path, std::string("Yes"), std::string("No"),
                                        std::string("No"), std::string("No")})
            row.append(std::make_unique<QStandardItem>(QString::fromStdString(cell)).release());
        model.appendRow(row);
    }
}

// The proxy sorts and filters when told, not at every single row that comes: that would take minutes.
void measurePlain(MeasuringApplication& application, Results& results) {
    QStandardItemModel model(0, ColumnCount);
    QSortFilterProxyModel proxy;
    proxy.setDynamicSortFilter(false);
    proxy.setSortCaseSensitivity(Qt::CaseInsensitive);
    proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy.setFilterKeyColumn(PathColumn);
    QTableView table;
    table.resize(1000, 500);
    table.setModel(&proxy);
    table.show();
    application.finishEvents();

    auto const fillWith = [&](int count) {
        std::vector<Copy> const rows = copies(count);
        return application.longestHold([&] {
            proxy.setSourceModel(nullptr);
            refill(model, rows);
            proxy.setSourceModel(&model);
            proxy.sort(0, Qt::DescendingOrder);
        });
    };
    results.fill.theirs.push_back(fillWith(RowCount));
    results.sameAgain.theirs.push_back(fillWith(RowCount));
    results.replacement.theirs.push_back(fillWith(RowCount + FurtherRows));
    results.order.theirs.push_back(application.longestHold([&] { proxy.sort(PathColumn, Qt::AscendingOrder); }));
    results.filter.theirs.push_back(application.longestHold([&] { proxy.setFilterFixedString("9"); }));
    proxy.setFilterFixedString({});
    application.finishEvents();
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    results.selection.theirs.push_back(application.longestHold([&] { table.selectAll(); }));
}

void print(char const* name, Holds const& holds) {
    if (holds.theirs.empty()) {
        std::printf("%-22s program %6.1f ms\n", name, median(holds.ours));
        return;
    }
    std::printf("%-22s program %6.1f ms, item model and proxy %7.1f ms, ratio %.2f\n", name, median(holds.ours),
                median(holds.theirs), median(holds.ours) / median(holds.theirs));
}

} // namespace

int main(int argc, char** argv) {
    bool const isAlone = argc == 3 && std::string_view(argv[2]) == "alone";
    if (argc != 2 && !isAlone) {
        std::fprintf(stderr, "usage: large_table MAIN_INTERFACE_FILE [alone]\n");
        return 2;
    }
    // Nothing to search: the walk has a benchmark of its own.
    std::string folder = "/tmp/framekeeper-large-table-XXXXXX";
    if (!::mkdtemp(folder.data())) return 1;
    for (char const* const name : {"HOME", "FRAMEKEEPER_LOCAL_COMPUTER"})
        ::setenv(name, folder.c_str(), 1);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    NSString const interface = text(argv[1]);
    {
        MeasuringApplication application(argc, argv);
        Results results;
        for (int round = 0; round < Rounds; ++round) {
            measureProgram(application, interface, results);
            if (!isAlone) measurePlain(application, results);
        }
        std::printf("The event loop is held at most, with %d rows (medians of %d):\n", RowCount, Rounds);
        print("first fill", results.fill);
        print("the same again", results.sameAgain);
        print("1,000 rows more", results.replacement);
        print("new order", results.order);
        print("letter in the filter", results.filter);
        print("all rows selected", results.selection);
    }
    ::rmdir(folder.c_str());
}
