#pragma once

#include "platform/appkit/views/NSAlert.h"
#include <QDialog>
#include <QPushButton>
#include <vector>

namespace mac {

// The window of an alert. It ends by one of its buttons alone, or with the program. Main thread.
class AlertDialog : public QDialog {
public:
    explicit AlertDialog(NSAlert const& alert);

    // Shows the window until a button is pressed; nil if the program ended meanwhile.
    NSButton run();

    // Closing the window, and the toolkit's keys for it, do nothing.
    void reject() override {}

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    struct Choice {
        NSButton button;
        QPushButton* widget;
    };

    QWidget* makeText(NSAlert const& alert);
    QWidget* makeButtons(NSAlert const& alert);
    // Presses the button of that key; false if no button has it.
    bool press(QKeyEvent const& key) const;

    std::vector<Choice> m_choices{};
    NSButton m_pressed{};
};

} // namespace mac
