#pragma once

#include "platform/appkit/interface/KeyPathScope.h"
#include "platform/foundation/running/Beep.h"
#include "platform/foundation/running/Log.h"
#include <QAbstractButton>
#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <optional>

namespace mac {

// A label that shows the last line of the log or the last notice of the program, cut to its width with the whole line
// in the tool tip, and lights up for a beep. A beep without a line says so in the words of the label's dynamic property
// beepText. What it shows goes when a later action ends without a beep, a line or a notice.
//
// Dynamic properties: noticeKeyPath, whose value is shown each time it is set (nil shows nothing); noticeButton, the
// name of a button that is visible beside a notice while noticeButtonKeyPath was true when the notice was set.
class StatusLine : public QObject {
public:
    StatusLine(QLabel* label, KeyPathScope const& scope);
    ~StatusLine() override;

    // An action is sent; it has been sent.
    void beginAction();
    void endAction();
    // Shows the line without waiting for the event loop, which the program is going to block.
    void showAtOnce(QString const& line);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    enum class Kind { Line, Notice };

    void connectNotices(KeyPathScope const& scope);
    void takeNotice();
    void showLine(QString const& line, Kind kind = Kind::Line);
    void showBeep();
    void showCut();
    // Calls the function from the event loop, after all that was told before.
    void later(std::function<void()> function);

    QPointer<QLabel> m_label;
    QPointer<QAbstractButton> m_noticeButton;
    QString m_line;
    // Lines and beeps since the last action began.
    int m_toldByAction{0};
    // A beep that no line has explained yet.
    bool m_isBeepUnexplained{false};
    QTimer m_explanation;
    QTimer m_light;
    std::unique_ptr<BoundValue> m_notice;
    std::unique_ptr<BoundValue> m_noticeHasButton;
    std::optional<LogListener> m_logListener;
    std::optional<BeepListener> m_beepListener;
};

} // namespace mac
