#include "platform/appkit/DrawnIcon.h"
#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QRegularExpression>
#include <array>
#include <memory>

namespace mac {

namespace {

constexpr double Box = 16;
constexpr double LineWidth = 1.4;

// Reads letters and numbers, one command after the other.
class PathReader {
public:
    explicit PathReader(QString const& text) : m_text(text) {}

    std::optional<QPainterPath> read() {
        while (m_isGood && !atEnd())
            readCommand();
        return m_isGood && !m_path.isEmpty() ? std::optional(m_path) : std::nullopt;
    }

private:
    bool atEnd() {
        while (m_position < m_text.size() && (m_text[m_position].isSpace() || m_text[m_position] == ','))
            ++m_position;
        return m_position == m_text.size();
    }

    void readCommand() {
        if (m_text[m_position].isLetter()) m_command = m_text[m_position++];
        QPointF const origin = m_command.isLower() ? m_path.currentPosition() : QPointF();
        switch (m_command.toUpper().unicode()) {
        case u'M':
            m_path.moveTo(origin + point());
            m_command = m_command.isLower() ? u'l' : u'L';
            return;
        case u'L':
            return m_path.lineTo(origin + point());
        case u'H':
            return m_path.lineTo(origin.x() + number(), m_path.currentPosition().y());
        case u'V':
            return m_path.lineTo(m_path.currentPosition().x(), origin.y() + number());
        case u'Q': {
            std::array const points{point(), point()};
            return m_path.quadTo(origin + points[0], origin + points[1]);
        }
        case u'C': {
            std::array const points{point(), point(), point()};
            return m_path.cubicTo(origin + points[0], origin + points[1], origin + points[2]);
        }
        case u'Z':
            m_path.closeSubpath();
            // No number may follow.
            m_command = QChar();
            return;
        default:
            m_isGood = false;
        }
    }

    QPointF point() {
        double const x = number();
        return {x, number()};
    }

    double number() {
        static QRegularExpression const pattern(R"([-+]?(\d+\.?\d*|\.\d+))");
        QRegularExpressionMatch const match = atEnd()
                                                  ? QRegularExpressionMatch()
                                                  : pattern.match(m_text, m_position, QRegularExpression::NormalMatch,
                                                                  QRegularExpression::AnchorAtOffsetMatchOption);
        m_isGood = m_isGood && match.hasMatch();
        if (!m_isGood) return 0;
        m_position = match.capturedEnd();
        return match.captured().toDouble();
    }

    QString m_text;
    qsizetype m_position{0};
    QChar m_command;
    QPainterPath m_path;
    bool m_isGood{true};
};

class DrawnIconEngine : public QIconEngine {
public:
    explicit DrawnIconEngine(QPainterPath path) : m_path(std::move(path)) {}

    void paint(QPainter* painter, QRect const& rect, QIcon::Mode mode, QIcon::State) override {
        QPalette const palette = QGuiApplication::palette();
        QColor color = palette.color(QPalette::Active, QPalette::ButtonText);
        if (mode == QIcon::Disabled) color = palette.color(QPalette::Disabled, QPalette::ButtonText);
        if (mode == QIcon::Selected) color = palette.color(QPalette::Active, QPalette::HighlightedText);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / Box, rect.height() / Box);
        painter->setPen(QPen(color, LineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(m_path);
        painter->restore();
    }

    QPixmap pixmap(QSize const& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return result;
    }

    QIconEngine* clone() const override { return std::make_unique<DrawnIconEngine>(m_path).release(); }

private:
    QPainterPath m_path;
};

} // namespace

std::optional<QPainterPath> pathFromText(QString const& text) { return PathReader(text).read(); }

QIcon drawnIcon(QString const& pathText) {
    std::optional<QPainterPath> path = pathFromText(pathText);
    if (!path) return {};
    return QIcon(std::make_unique<DrawnIconEngine>(*std::move(path)).release());
}

} // namespace mac
