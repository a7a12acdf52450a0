#include "platform/appkit/views/AlertDialog.h"
#include "platform/foundation/running/EventLoop.h"
#include "platform/foundation/running/NSRunLoop.h"
#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <algorithm>
#include <memory>

namespace mac {

namespace {

// In pixels: a line of some eighty characters.
constexpr int TextWidth = 460;

QString shownText(NSString const& text) { return QString::fromStdU16String(std::u16string(text.codeUnits())); }

QStyle::StandardPixmap pictureOf(NSAlertStyle style) {
    switch (style) {
    case NSInformationalAlertStyle:
        return QStyle::SP_MessageBoxInformation;
    case NSCriticalAlertStyle:
        return QStyle::SP_MessageBoxCritical;
    default:
        return QStyle::SP_MessageBoxWarning;
    }
}

std::unique_ptr<QLabel> plainLabel(QString const& text) {
    auto label = std::make_unique<QLabel>(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFixedWidth(TextWidth);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    label->setFocusPolicy(Qt::NoFocus);
    return label;
}

bool isReturn(int key) { return key == Qt::Key_Return || key == Qt::Key_Enter; }

// Whether the key is the one that the button names.
bool isEquivalent(QKeyEvent const& key, NSString const& equivalent) {
    if (equivalent.length() == 0) return false;
    if (isReturn(key.key())) return equivalent.isEqualToString_("\r");
    if (key.key() == Qt::Key_Escape) return equivalent.isEqualToString_("\x1B");
    return key.text() == shownText(equivalent);
}

} // namespace

AlertDialog::AlertDialog(NSAlert const& alert) {
    setWindowTitle(shownText(alert.messageText()));
    setAccessibleDescription(shownText(alert.informativeText()));
    // Before the first window opens the alert is the only one: the application does not end with it.
    setAttribute(Qt::WA_QuitOnClose, false);
    auto picture = std::make_unique<QLabel>();
    int const size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize);
    picture->setPixmap(style()->standardIcon(pictureOf(alert.alertStyle())).pixmap(size, size));
    auto grid = std::make_unique<QGridLayout>();
    grid->addWidget(picture.release(), 0, 0, Qt::AlignTop);
    grid->addWidget(makeText(alert), 0, 1);
    grid->addWidget(makeButtons(alert), 1, 0, 1, 2);
    grid->setSizeConstraint(QLayout::SetFixedSize);
    setLayout(grid.release());
    for (std::size_t index = 1; index < m_choices.size(); ++index)
        setTabOrder(m_choices[index - 1].widget, m_choices[index].widget);
}

QWidget* AlertDialog::makeText(NSAlert const& alert) {
    auto texts = std::make_unique<QWidget>();
    auto column = std::make_unique<QVBoxLayout>();
    column->setContentsMargins(0, 0, 0, 0);
    std::unique_ptr<QLabel> message = plainLabel(shownText(alert.messageText()));
    QFont bold = message->font();
    bold.setBold(true);
    message->setFont(bold);
    std::unique_ptr<QLabel> details = plainLabel(shownText(alert.informativeText()));
    // The text can be read by keyboard alone, and has the keyboard first where no button is the default: so Space
    // presses none before it was chosen.
    (details->text().isEmpty() ? message : details)->setFocusPolicy(Qt::StrongFocus);
    column->addWidget(message.release());
    if (details->text().isEmpty()) {
        texts->setLayout(column.release());
        return texts.release();
    }
    details->setMinimumHeight(details->heightForWidth(TextWidth));
    int const most = screen()->availableGeometry().height() / 2;
    if (details->minimumHeight() <= most) {
        column->addWidget(details.release());
    } else {
        // The buttons stay on the screen however long the text is.
        auto area = std::make_unique<QScrollArea>();
        area->setWidget(details.release());
        area->setFixedSize(TextWidth + area->sizeHint().width() / 4, most);
        column->addWidget(area.release());
    }
    texts->setLayout(column.release());
    return texts.release();
}

QWidget* AlertDialog::makeButtons(NSAlert const& alert) {
    auto buttons = std::make_unique<QWidget>();
    auto row = std::make_unique<QHBoxLayout>();
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch();
    for (id const& object : alert.buttons()) {
        NSButton const button = uncheckedCast<NSButton>(object);
        // An ampersand is no mark of a key here.
        auto made = std::make_unique<QPushButton>(shownText(button.title()).replace('&', "&&"));
        made->setAccessibleName(shownText(button.title()));
        bool const isDefault = button.keyEquivalent().isEqualToString_("\r");
        made->setAutoDefault(false);
        made->setDefault(isDefault);
        if (isDefault) made->setFocus();
        made->installEventFilter(this);
        connect(made.get(), &QPushButton::clicked, this, [this, button] {
            m_pressed = button;
            done(Accepted);
        });
        m_choices.push_back({button, made.get()});
        // From the right to the left, after the stretch; Tab goes from the first to the last.
        row->insertWidget(1, made.release());
    }
    buttons->setLayout(row.release());
    return buttons.release();
}

NSButton AlertDialog::run() {
    // What waits for the default mode is posted once the alert is answered.
    RunLoopModeScope const mode(NSModalPanelRunLoopMode);
    exec();
    return m_pressed;
}

void AlertDialog::closeEvent(QCloseEvent* event) { event->ignore(); }

bool AlertDialog::press(QKeyEvent const& key) const {
    auto const chosen = std::ranges::find_if(
        m_choices, [&](Choice const& choice) { return isEquivalent(key, choice.button.keyEquivalent()); });
    if (chosen == m_choices.end()) return false;
    chosen->widget->click();
    return true;
}

// The toolkit's own would press a default button and close the window.
void AlertDialog::keyPressEvent(QKeyEvent* event) {
    event->accept();
    press(*event);
}

// Some desktops have Return press the button that has the keyboard.
bool AlertDialog::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        auto const& key = static_cast<QKeyEvent const&>(*event);
        if (isReturn(key.key()) || key.key() == Qt::Key_Escape) {
            press(key);
            return true;
        }
    }
    return QDialog::eventFilter(object, event);
}

} // namespace mac
