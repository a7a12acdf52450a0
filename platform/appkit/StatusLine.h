#pragma once

#include "platform/foundation/Beep.h"
#include "platform/foundation/Log.h"
#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <optional>

namespace mac {

// A label that shows the last line of the log, cut to its width with the whole line in the tool tip, and lights up for
// a beep. A beep without a line says so in the words of the label's dynamic property beepText.
class StatusLine : public QObject {
public:
    explicit StatusLine(QLabel* label);
    ~StatusLine() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showLine(QString const& line);
    void showBeep();
    void showCut();

    QPointer<QLabel> m_label;
    QString m_line;
    // A beep that no line has explained yet.
    bool m_isBeepUnexplained{false};
    QTimer m_explanation;
    QTimer m_light;
    std::optional<LogListener> m_logListener;
    std::optional<BeepListener> m_beepListener;
};

} // namespace mac
