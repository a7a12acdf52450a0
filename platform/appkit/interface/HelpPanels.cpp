#include "platform/appkit/interface/HelpPanels.h"
#include "platform/appkit/interface/Forms.h"
#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/bundles/NSBundle.h"
#include "platform/foundation/text/NSLocalizedString.h"
#include <QAction>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTableView>
#include <QTableWidget>
#include <QVBoxLayout>

namespace mac {

namespace {

constexpr char AboutPanelName[] = "aboutPanel";
constexpr char KeysPanelName[] = "shortcutsPanel";
constexpr int AboutIconSize = 64;

QString inWords(QString text) {
    // A single "&" marks a letter.
    text.replace("&&", QString(QChar(0xFFFF)));
    return text.remove('&').replace(QChar(0xFFFF), '&');
}

QString keysOf(QAction const* action, QWidget const* window) {
    QStringList keys;
    for (QKeySequence const& key : action->shortcuts())
        keys.append(key.toString(QKeySequence::NativeText));
    QKeySequence const clearing(formProperty<QString>(action, "clearingKey"));
    if (!clearing.isEmpty() && !action->shortcuts().contains(clearing))
        keys.append(clearing.toString(QKeySequence::NativeText));
    for (QTableView const* const table : window->findChildren<QTableView*>()) {
        if (formProperty<QString>(table, "activates") == action->objectName() && !action->objectName().isEmpty())
            keys.append(QKeySequence(Qt::Key_Return).toString(QKeySequence::NativeText));
    }
    return keys.join(", ");
}

void appendKeys(std::vector<CommandKeys>& result, QMenu const* menu, QWidget const* window) {
    for (QAction const* const action : menu->actions()) {
        if (action->menu()) {
            appendKeys(result, action->menu(), window);
            continue;
        }
        QString const keys = keysOf(action, window);
        if (!keys.isEmpty()) result.push_back({inWords(menu->title()), inWords(action->text()), keys});
    }
}

// Whether a panel of that name is open; it then comes to the front.
bool raisePanel(QWidget const* window, char const* name) {
    auto* const panel = window->findChild<QDialog*>(name);
    if (!panel) return false;
    panel->raise();
    panel->activateWindow();
    return true;
}

// In the language of the window, for which the toolkit's own texts may not be installed.
void nameCloseButton(QAbstractButton* button) { button->setText(QCoreApplication::translate("Framekeeper", "Close")); }

QTableWidget* tableOf(std::vector<CommandKeys> const& commands) {
    auto table = std::make_unique<QTableWidget>(static_cast<int>(commands.size()), 3);
    table->setObjectName("shortcutsTable");
    table->setAccessibleName(QCoreApplication::translate("Framekeeper", "Keyboard shortcuts"));
    table->setHorizontalHeaderLabels({QCoreApplication::translate("Framekeeper", "Menu"),
                                      QCoreApplication::translate("Framekeeper", "Command"),
                                      QCoreApplication::translate("Framekeeper", "Keys")});
    table->verticalHeader()->hide();
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setTabKeyNavigation(false);
    table->setShowGrid(false);
    table->setAlternatingRowColors(true);
    for (int row = 0; row < table->rowCount(); ++row) {
        CommandKeys const& command = commands[static_cast<std::size_t>(row)];
        int column = 0;
        for (QString const& text : {command.menu, command.command, command.keys})
            // The table owns its items.
            table->setItem(row, column++, std::make_unique<QTableWidgetItem>(text).release());
    }
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeading | Qt::AlignVCenter);
    table->resizeColumnsToContents();
    table->horizontalHeader()->setStretchLastSection(true);
    return table.release();
}

NSString ofMainBundle(char const* key) {
    return as<NSString>(NSBundle::mainBundle().objectForInfoDictionaryKey_(NSString::stringWithUTF8String_(key)));
}

} // namespace

std::vector<CommandKeys> commandKeysOf(QWidget const* window) {
    std::vector<CommandKeys> result;
    for (QMenuBar const* const bar : window->findChildren<QMenuBar*>()) {
        for (QAction const* const action : bar->actions()) {
            if (action->menu()) appendKeys(result, action->menu(), window);
        }
    }
    return result;
}

void showKeysOf(QWidget* window) {
    if (raisePanel(window, KeysPanelName)) return;
    auto panel = std::make_unique<QDialog>(window);
    panel->setObjectName(KeysPanelName);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setWindowTitle(QCoreApplication::translate("Framekeeper", "Keyboard Shortcuts"));
    QTableWidget* const table = tableOf(commandKeysOf(window));
    auto buttons = std::make_unique<QDialogButtonBox>(QDialogButtonBox::Close);
    nameCloseButton(buttons->button(QDialogButtonBox::Close));
    QObject::connect(buttons.get(), &QDialogButtonBox::rejected, panel.get(), &QDialog::reject);
    auto layout = std::make_unique<QVBoxLayout>(panel.get());
    layout->addWidget(table);
    layout->addWidget(buttons.release());
    int const width = table->horizontalHeader()->length() + 2 * table->fontMetrics().height();
    panel->resize(std::max(width, 460), 520);
    (void)layout.release();
    // Owned by the window and deleted when it is closed.
    panel.release()->show();
    table->setFocus();
}

void showAboutPanel(QWidget* window) {
    if (raisePanel(window, AboutPanelName)) return;
    NSString const name = ofMainBundle("CFBundleName");
    NSString const version = ofMainBundle("CFBundleShortVersionString");
    QString const title = name == nil ? window->windowTitle() : visibleText(name);
    auto panel = std::make_unique<QMessageBox>(window);
    panel->setObjectName(AboutPanelName);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setModal(false);
    panel->setWindowTitle(QCoreApplication::translate("Framekeeper", "About %1").arg(title));
    panel->setTextFormat(Qt::PlainText);
    panel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    panel->setIconPixmap(window->windowIcon().pixmap(AboutIconSize));
    panel->setText(version == nil
                       ? title
                       : QCoreApplication::translate("Framekeeper", "%1, version %2").arg(title, visibleText(version)));
    panel->setInformativeText(visibleTextOf(NSLocalizedString(ofMainBundle("NSHumanReadableCopyright"), nil)));
    panel->setStandardButtons(QMessageBox::Close);
    nameCloseButton(panel->button(QMessageBox::Close));
    panel.release()->show();
}

} // namespace mac
