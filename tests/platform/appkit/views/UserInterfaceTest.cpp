#include "platform/foundation/running/UserInterface.h"
#include "platform/appkit/views/NSApplication.h"
#include "tests/platform/appkit/interface/LoadedWindow.h"
#include "tests/support/TemporaryFolder.h"
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace mac::test {
namespace {

UserInterface& interface() {
    needApplication();
    NSApplication::sharedApplication();
    return *userInterface();
}

// What a person does once the dialog is there.
template <class Function>
void answer(Function function) {
    QTimer::singleShot(0, [function] { function(*qobject_cast<QDialog*>(QApplication::activeModalWidget())); });
}

QPushButton* buttonNamed(QDialog const& dialog, QString const& name) {
    for (QPushButton* const button : dialog.findChildren<QPushButton*>())
        if (button->text() == name) return button;
    return nullptr;
}

DialogRequest request() {
    return {.text = u"<b>a</b>", .buttons = {u"Cancel", u"OK"}, .defaultButton = 1, .cancelButton = 0};
}

TEST(UserInterface, ADialogAnswersTheButtonThatIsClicked) {
    answer([](QDialog const& dialog) { buttonNamed(dialog, "OK")->click(); });
    EXPECT_EQ(interface().runDialog(request()).button, 1U);
    answer([](QDialog const& dialog) { buttonNamed(dialog, "Cancel")->click(); });
    EXPECT_EQ(interface().runDialog(request()).button, 0U);
}

TEST(UserInterface, AnswersTheColorThatIsChosen) {
    ColorComponents const color{65535, 0, 257};
    answer([](QDialog& dialog) { dialog.accept(); });
    EXPECT_EQ(interface().chooseColor(color), color);
    answer([](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(interface().chooseColor(color), std::nullopt);
}

TEST(UserInterface, AnswersTheFilesThatAreChosen) {
    TemporaryFolder const folder;
    std::string const text = folder.makeFile("a.txt", "");
    folder.makeFile("b.png", "");
    FileRequest request{.title = u"Which?", .folder = folder.path()};
    auto const choose = [](QString const& name) {
        answer([name](QDialog& dialog) {
            EXPECT_EQ(dialog.windowTitle(), "Which?");
            dialog.findChild<QLineEdit*>()->setText(name);
            static_cast<QFileDialog&>(dialog).selectFile(name);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
    };
    choose("a.txt");
    EXPECT_EQ(interface().chooseFiles(request), std::vector<std::string>{text});
    request.kind = FileRequest::Kind::NewFile;
    request.name = u"new";
    choose("other");
    EXPECT_EQ(interface().chooseFiles(request), std::vector<std::string>{folder.path("other")});
    request.kind = FileRequest::Kind::Folder;
    answer([](QDialog& dialog) { dialog.reject(); });
    EXPECT_EQ(interface().chooseFiles(request), std::nullopt);
}

TEST(UserInterface, ShowsTheFilesThatAreAccepted) {
    TemporaryFolder const folder;
    folder.makeFile("a.txt", "");
    folder.makeFile("b.png", "");
    folder.makeFolder("inner");
    FileRequest const request{.folder = folder.path(),
                              .accepts = [](std::string const& path) { return path.ends_with(".txt"); }};
    QStringList shown;
    answer([&](QDialog& dialog) {
        QAbstractItemModel const& files = *dialog.findChild<QListView*>("listView")->model();
        // The folder's place changes while the folders around it are read.
        QPersistentModelIndex const root = dialog.findChild<QListView*>("listView")->rootIndex();
        EXPECT_TRUE(QTest::qWaitFor([&] { return files.rowCount(root) >= 2; }, 60'000));
        for (int row = 0; row < files.rowCount(root); ++row)
            shown.append(files.index(row, 0, root).data().toString());
        dialog.reject();
    });
    EXPECT_EQ(interface().chooseFiles(request), std::nullopt);
    shown.sort();
    EXPECT_EQ(shown, (QStringList{"a.txt", "inner"}));
}

TEST(UserInterface, ReturnIsTheDefaultButtonAndEscapeTheOneThatCancels) {
    answer([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Return); });
    EXPECT_EQ(interface().runDialog(request()).button, 1U);
    answer([](QDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
    EXPECT_EQ(interface().runDialog(request()).button, 0U);
}

TEST(UserInterface, ReturnIsNoButtonWhereNoneIsTheDefault) {
    DialogRequest asked = request();
    asked.buttons = {u"Delete", u"Keep", u"Later"};
    asked.defaultButton.reset();
    asked.cancelButton.reset();
    answer([](QDialog& dialog) {
        QTest::keyClick(&dialog, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        if (QWidget* const button = dialog.focusWidget()) QTest::keyClick(button, Qt::Key_Return);
        EXPECT_TRUE(dialog.isVisible());
        buttonNamed(dialog, "Later")->click();
    });
    EXPECT_EQ(interface().runDialog(asked).button, 2U);
}

TEST(UserInterface, TheButtonsStandInTheirOrder) {
    DialogRequest asked = request();
    asked.buttons = {u"Delete", u"Keep", u"Cancel"};
    asked.defaultButton = 0;
    asked.cancelButton = 1;
    answer([](QDialog const& dialog) {
        int const first = buttonNamed(dialog, "Delete")->x();
        int const second = buttonNamed(dialog, "Keep")->x();
        EXPECT_LT(first, second);
        EXPECT_LT(second, buttonNamed(dialog, "Cancel")->x());
        buttonNamed(dialog, "Cancel")->click();
    });
    EXPECT_EQ(interface().runDialog(asked).button, 2U);
}

TEST(UserInterface, ADialogShowsTextAsItIs) {
    QString shown;
    Qt::TextFormat format = Qt::AutoText;
    answer([&](QDialog& dialog) {
        shown = qobject_cast<QMessageBox*>(&dialog)->text();
        format = qobject_cast<QMessageBox*>(&dialog)->textFormat();
        dialog.reject();
    });
    interface().runDialog(request());
    EXPECT_EQ(shown, "<b>a</b>");
    EXPECT_EQ(format, Qt::PlainText);
}

TEST(UserInterface, ADialogTakesAnAnswer) {
    DialogRequest asked = request();
    asked.answer = u"x";
    asked.hidesAnswer = true;
    QLineEdit::EchoMode mode = QLineEdit::Normal;
    answer([&](QDialog const& dialog) {
        auto* const field = dialog.findChild<QLineEdit*>();
        mode = field->echoMode();
        field->setText(field->text() + "yz");
        buttonNamed(dialog, "OK")->click();
    });
    EXPECT_EQ(interface().runDialog(asked).answer, u"xyz");
    EXPECT_EQ(mode, QLineEdit::Password);
}

void expectFieldBetweenTextAndButtons(QDialog const& dialog) {
    auto const placeOf = [&](QWidget const& widget) { return QRect(widget.mapTo(&dialog, QPoint()), widget.size()); };
    QRect const text = placeOf(*dialog.findChild<QLabel*>("qt_msgbox_informativelabel"));
    QRect const field = placeOf(*dialog.findChild<QLineEdit*>());
    EXPECT_LE(text.bottom(), field.top());
    EXPECT_LE(field.bottom(), placeOf(*buttonNamed(dialog, "OK")).top());
    EXPECT_EQ(field.left(), text.left());
}

TEST(UserInterface, TheAnswerIsTypedAboveTheButtons) {
    DialogRequest asked = request();
    asked.details = u"b";
    asked.icon = DialogRequest::Icon::Note;
    asked.answer = u"x";
    answer([](QDialog& dialog) {
        expectFieldBetweenTextAndButtons(dialog);
        // The desktop's style changes, and the dialog is laid out anew.
        QEvent change(QEvent::StyleChange);
        QApplication::sendEvent(&dialog, &change);
        QApplication::processEvents();
        expectFieldBetweenTextAndButtons(dialog);
        QTest::keyClicks(dialog.focusWidget(), "yz");
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
    });
    DialogOutcome const outcome = interface().runDialog(asked);
    EXPECT_EQ(outcome.answer, u"yz") << "what stands there is selected, and so replaced";
    EXPECT_EQ(outcome.button, 1U);
}

TEST(UserInterface, ADialogGoesByItselfWhenItsTimeIsOver) {
    DialogRequest asked = request();
    asked.seconds = 0.001;
    EXPECT_FALSE(interface().runDialog(asked).button);
}

TEST(UserInterface, ADialogMayStayForYears) {
    DialogRequest asked = request();
    // In milliseconds 4 more than there are numbers of 32 bits.
    asked.seconds = 4294967.3;
    answer([](QDialog const& dialog) {
        constexpr int later = 40;
        QTimer::singleShot(later, &dialog, [&dialog] { buttonNamed(dialog, "OK")->click(); });
    });
    EXPECT_EQ(interface().runDialog(asked).button, 1U);
}

TEST(UserInterface, ADialogThatEndsWithTheProgramIsNotAnswered) {
    DialogRequest const asked{.text = u"a", .buttons = {u"Delete", u"Keep"}, .defaultButton = 1};
    UserInterface& screen = interface();
    std::vector<DialogOutcome> outcomes;
    QTimer::singleShot(0, [&] {
        answer([](QDialog const&) { NSApplication::sharedApplication().terminate_(nil); });
        outcomes.push_back(screen.runDialog(asked));
        // While the program ends, nobody is there to answer another one.
        outcomes.push_back(screen.runDialog(request()));
    });
    NSApplication::sharedApplication().run();
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_FALSE(outcomes[0].button);
    EXPECT_FALSE(outcomes[1].button);
}

ListRequest listRequest() { return {.text = u"which", .items = {u"a", u"b", u"c"}, .acceptButton = u"Go"}; }

TEST(UserInterface, AListAnswersTheChosenItems) {
    ListRequest asked = listRequest();
    asked.allowsSeveral = true;
    asked.chosen = {2};
    answer([](QDialog const& dialog) {
        dialog.findChild<QListWidget*>()->item(0)->setSelected(true);
        buttonNamed(dialog, "Go")->click();
    });
    EXPECT_EQ(interface().chooseFromList(asked), (std::vector<std::size_t>{0, 2}));
}

TEST(UserInterface, AListMustBeAnsweredOrCanceled) {
    bool isEnabled = true;
    answer([&](QDialog& dialog) {
        isEnabled = buttonNamed(dialog, "Go")->isEnabled();
        dialog.reject();
    });
    EXPECT_FALSE(interface().chooseFromList(listRequest()));
    EXPECT_FALSE(isEnabled);
    ListRequest asked = listRequest();
    asked.allowsNone = true;
    answer([](QDialog const& dialog) { buttonNamed(dialog, "Go")->click(); });
    EXPECT_EQ(interface().chooseFromList(asked), std::vector<std::size_t>());
}

TEST(UserInterface, TheClipboardIsTheDesktops) {
    interface().setClipboardText(u"añ");
    EXPECT_EQ(interface().clipboardText(), u"añ");
}

} // namespace
} // namespace mac::test
