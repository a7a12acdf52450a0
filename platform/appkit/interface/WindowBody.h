#pragma once

#include "platform/appkit/interface/NSWindow.h"
#include "platform/appkit/interface/RememberedSize.h"
#include <QPointer>
#include <QWidget>
#include <memory>

namespace mac {

class NSWindow::Body : public ObjectBody {
public:
    explicit Body(QWidget* widget = nullptr) : m_widget(widget) {}

    QWidget* widget() const { return m_widget; }
    NSString const& autosaveName() const { return m_autosaveName; }
    bool setAutosaveName(NSString const& name) {
        m_size.reset();
        m_autosaveName = m_widget ? name : NSString();
        if (m_autosaveName == nil) return false;
        m_size = std::make_unique<RememberedSize>(m_widget,
                                                  NSString::stringWithFormat_("NSWindow Frame %@", m_autosaveName));
        return true;
    }

private:
    QPointer<QWidget> m_widget;
    NSString m_autosaveName;
    std::unique_ptr<RememberedSize> m_size;
};

} // namespace mac
