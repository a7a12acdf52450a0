#include "platform/appkit/views/DisplayConnection.h"
#include "platform/foundation/running/UserInterface.h"
#include <QApplication>
#include <QClipboard>
#include <QColorDialog>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <memory>

namespace mac {

namespace {

QString qString(std::u16string const& text) { return QString::fromStdU16String(text); }

std::u16string units(QString const& text) { return text.toStdU16String(); }

QMessageBox::Icon iconOf(DialogRequest::Icon icon) {
    switch (icon) {
    case DialogRequest::Icon::Note:
        return QMessageBox::Information;
    case DialogRequest::Icon::Caution:
        return QMessageBox::Warning;
    case DialogRequest::Icon::Stop:
        return QMessageBox::Critical;
    default:
        return QMessageBox::NoIcon;
    }
}

// A message with a field for an answer below its texts. The box of the toolkit lays out texts and buttons alone, and
// does so anew when the desktop's style changes.
class MessageWithField : public QMessageBox {
public:
    void setField(QLineEdit* field) {
        m_field = field;
        placeField();
    }

protected:
    void changeEvent(QEvent* event) override {
        QMessageBox::changeEvent(event);
        placeField();
    }

private:
    void placeField() {
        auto* const grid = qobject_cast<QGridLayout*>(layout());
        if (!m_field || grid->indexOf(m_field) >= 0) return;
        auto* const buttons = findChild<QDialogButtonBox*>();
        // The texts stand in the last column, the buttons in the last row, which makes room.
        int const columns = grid->columnCount();
        int const row = grid->rowCount();
        grid->removeWidget(buttons);
        grid->addWidget(m_field, row, columns - 1);
        grid->addWidget(buttons, row + 1, 0, 1, columns);
        setTabOrder(m_field, buttons);
    }

    QLineEdit* m_field{nullptr};
};

// Shows folders and those files that are accepted.
class AcceptedFiles : public QSortFilterProxyModel {
public:
    explicit AcceptedFiles(std::function<bool(std::string const& path)> accepts) : m_accepts(std::move(accepts)) {}

protected:
    bool filterAcceptsRow(int row, QModelIndex const& parent) const override {
        auto const* const files = qobject_cast<QFileSystemModel const*>(sourceModel());
        QModelIndex const index = files->index(row, 0, parent);
        return files->isDir(index) || m_accepts(QFile::encodeName(files->filePath(index)).toStdString());
    }

private:
    std::function<bool(std::string const& path)> m_accepts;
};

QFileDialog::FileMode modeOf(FileRequest const& request) {
    switch (request.kind) {
    case FileRequest::Kind::Folder:
        return QFileDialog::Directory;
    case FileRequest::Kind::NewFile:
        return QFileDialog::AnyFile;
    default:
        return request.allowsSeveral ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile;
    }
}

class Widgets : public UserInterface {
public:
    DialogOutcome runDialog(DialogRequest const& request) override {
        MessageWithField box;
        // What a script says is text, whatever it looks like.
        box.setTextFormat(Qt::PlainText);
        box.setIcon(iconOf(request.icon));
        box.setWindowTitle(qString(request.title));
        box.setText(qString(request.text));
        box.setInformativeText(qString(request.details));
        std::vector<QPushButton*> const buttons = addButtons(box, request);
        QLineEdit* const field = request.answer ? addField(box, request) : nullptr;
        DialogOutcome outcome;
        QTimer time;
        if (request.seconds > 0) {
            QObject::connect(&time, &QTimer::timeout, &box, [&] {
                outcome.isTimeOver = true;
                box.done(0);
            });
            // A timer takes no more, which is 24 days.
            constexpr double most = std::numeric_limits<int>::max();
            time.start(static_cast<int>(std::min(request.seconds * 1000, most)));
        }
        box.exec();
        if (field) outcome.answer = units(field->text());
        auto const clicked = std::ranges::find(buttons, box.clickedButton());
        if (!outcome.isTimeOver && clicked != buttons.end())
            outcome.button = static_cast<std::size_t>(clicked - buttons.begin());
        return outcome;
    }

    std::optional<std::vector<std::size_t>> chooseFromList(ListRequest const& request) override {
        QDialog dialog;
        dialog.setWindowTitle(qString(request.title));
        QVBoxLayout layout(&dialog);
        QLabel prompt(qString(request.text));
        prompt.setTextFormat(Qt::PlainText);
        QListWidget list;
        prompt.setBuddy(&list);
        list.setSelectionMode(request.allowsSeveral ? QAbstractItemView::ExtendedSelection
                                                    : QAbstractItemView::SingleSelection);
        for (std::u16string const& item : request.items)
            list.addItem(qString(item));
        for (std::size_t const index : request.chosen)
            list.item(static_cast<int>(index))->setSelected(true);
        QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
        QPushButton* const accept = buttons.button(QDialogButtonBox::Ok);
        if (!request.acceptButton.empty()) accept->setText(qString(request.acceptButton));
        if (!request.cancelButton.empty())
            buttons.button(QDialogButtonBox::Cancel)->setText(qString(request.cancelButton));
        layout.addWidget(&prompt);
        layout.addWidget(&list);
        layout.addWidget(&buttons);
        auto const enable = [&] { accept->setEnabled(request.allowsNone || !list.selectedItems().isEmpty()); };
        enable();
        QObject::connect(&list, &QListWidget::itemSelectionChanged, &dialog, enable);
        QObject::connect(&buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
        QObject::connect(&buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
        if (dialog.exec() != QDialog::Accepted) return {};
        std::vector<std::size_t> chosen;
        for (int row = 0; row < list.count(); ++row)
            if (list.item(row)->isSelected()) chosen.push_back(static_cast<std::size_t>(row));
        return chosen;
    }

    std::optional<ColorComponents> chooseColor(ColorComponents const& initial) override {
        QColorDialog dialog(QColor::fromRgba64(initial[0], initial[1], initial[2]));
        if (dialog.exec() != QDialog::Accepted) return {};
        QRgba64 const chosen = dialog.selectedColor().rgba64();
        return ColorComponents{chosen.red(), chosen.green(), chosen.blue()};
    }

    std::optional<std::vector<std::string>> chooseFiles(FileRequest const& request) override {
        QFileDialog dialog;
        dialog.setWindowTitle(qString(request.title));
        dialog.setFileMode(modeOf(request));
        if (request.kind == FileRequest::Kind::NewFile) dialog.setAcceptMode(QFileDialog::AcceptSave);
        if (request.kind == FileRequest::Kind::Folder) dialog.setOption(QFileDialog::ShowDirsOnly);
        if (request.showsHidden) dialog.setFilter(dialog.filter() | QDir::Hidden);
        if (request.accepts) {
            // The desktop's own dialog asks about names alone.
            dialog.setOption(QFileDialog::DontUseNativeDialog);
            // Owned by the dialog from here on.
            dialog.setProxyModel(std::make_unique<AcceptedFiles>(request.accepts).release());
        }
        if (!request.folder.empty()) dialog.setDirectory(QFile::decodeName(request.folder.c_str()));
        if (!request.name.empty()) dialog.selectFile(qString(request.name));
        if (dialog.exec() != QDialog::Accepted) return {};
        std::vector<std::string> paths;
        for (QString const& path : dialog.selectedFiles())
            paths.push_back(QFile::encodeName(path).toStdString());
        return paths;
    }

    std::u16string clipboardText() override { return units(QApplication::clipboard()->text()); }
    void setClipboardText(std::u16string const& text) override { QApplication::clipboard()->setText(qString(text)); }

    void notify(std::u16string const& title, std::u16string const& text) override {
        QDBusMessage message =
            QDBusMessage::createMethodCall("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                           "org.freedesktop.Notifications", "Notify");
        constexpr int standardTime = -1;
        // Markup in the text would be read as such.
        message.setArguments({QApplication::applicationName(), 0U, QString(), qString(title),
                              qString(text).toHtmlEscaped(), QStringList(), QVariantMap(), standardTime});
        QDBusConnection::sessionBus().send(message);
    }

private:
    static QLineEdit* addField(MessageWithField& box, DialogRequest const& request) {
        auto field = std::make_unique<QLineEdit>(qString(*request.answer));
        if (request.hidesAnswer) field->setEchoMode(QLineEdit::Password);
        field->setAccessibleName(qString(request.text));
        field->selectAll();
        QLineEdit* const placed = field.release();
        box.setField(placed);
        placed->setFocus();
        return placed;
    }

    static std::vector<QPushButton*> addButtons(QMessageBox& box, DialogRequest const& request) {
        std::vector<QPushButton*> buttons;
        for (std::u16string const& name : request.buttons) {
            // Buttons of this role keep their order on every desktop, and none becomes the default by itself.
            QPushButton* const button = box.addButton(qString(name), QMessageBox::ActionRole);
            button->setAutoDefault(false);
            buttons.push_back(button);
        }
        if (request.defaultButton) box.setDefaultButton(buttons.at(*request.defaultButton));
        if (request.cancelButton) box.setEscapeButton(buttons.at(*request.cancelButton));
        return buttons;
    }
};

} // namespace

void installUserInterface() {
    static Widgets widgets;
    setUserInterface(&widgets);
}

} // namespace mac
