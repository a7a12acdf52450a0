#include "platform/appkit/interface/InterfaceIcons.h"
#include "platform/desktop/session/AnsweringItems.h"
#include "platform/foundation/bundles/BundleInformation.h"
#include "platform/icons/IconPictures.h"
#include "platform/icons/IconSource.h"
#include "platform/system/LongPath.h"
#include <QApplication>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPalette>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>

namespace mac {

namespace {

constexpr double Box = 16;
constexpr double LineWidth = 1.4;
// The tile behind a window's icon, in units of the box.
constexpr double TileCorner = 3;
constexpr double TileMargin = 2.5;
constexpr QRgb TileColor = 0xFF2A5D8F;

// Reads letters and numbers, one command after the other.
class PathReader {
public:
    explicit PathReader(QString const& text) : m_text(text.toLatin1()) {}

    std::optional<QPainterPath> read() {
        while (m_isGood && !atEnd())
            readCommand();
        return m_isGood && !m_path.isEmpty() ? std::optional(m_path) : std::nullopt;
    }

private:
    bool atEnd() {
        while (m_position < m_text.size() && (m_text[m_position] == ' ' || m_text[m_position] == ','))
            ++m_position;
        return m_position == m_text.size();
    }

    void readCommand() {
        if (QChar::isLetter(static_cast<unsigned char>(m_text[m_position]))) m_command = m_text[m_position++];
        bool const isRelative = m_command >= 'a';
        QPointF const origin = isRelative ? m_path.currentPosition() : QPointF();
        switch (isRelative ? m_command - 'a' + 'A' : m_command) {
        case 'M':
            m_path.moveTo(origin + point());
            m_command = isRelative ? 'l' : 'L';
            return;
        case 'L':
            return m_path.lineTo(origin + point());
        case 'H':
            return m_path.lineTo(origin.x() + number(), m_path.currentPosition().y());
        case 'V':
            return m_path.lineTo(m_path.currentPosition().x(), origin.y() + number());
        case 'Q': {
            std::array const points{point(), point()};
            return m_path.quadTo(origin + points[0], origin + points[1]);
        }
        case 'C': {
            std::array const points{point(), point(), point()};
            return m_path.cubicTo(origin + points[0], origin + points[1], origin + points[2]);
        }
        case 'Z':
            m_path.closeSubpath();
            // No number may follow.
            m_command = '\0';
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
        m_isGood = m_isGood && !atEnd();
        if (!m_isGood) return 0;
        char const* const start = m_text.constData() + m_position;
        double value = 0;
        std::from_chars_result const read = std::from_chars(start, m_text.constEnd(), value, std::chars_format::fixed);
        m_isGood = read.ec == std::errc() && std::isfinite(value);
        m_position += read.ptr - start;
        return value;
    }

    QByteArray m_text;
    qsizetype m_position{0};
    char m_command{'\0'};
    QPainterPath m_path;
    bool m_isGood{true};
};

class DrawnIconEngine : public QIconEngine {
public:
    explicit DrawnIconEngine(QPainterPath const& path) : m_path(path) {}

    void paint(QPainter* painter, QRect const& rect, QIcon::Mode mode, QIcon::State) override {
        QPalette const palette = QGuiApplication::palette();
        QColor color = palette.color(QPalette::Active, QPalette::ButtonText);
        if (mode == QIcon::Disabled) color = palette.color(QPalette::Disabled, QPalette::ButtonText);
        if (mode == QIcon::Selected) color = palette.color(QPalette::Active, QPalette::HighlightedText);
        drawLine(*painter, rect, color);
    }

    QPixmap pixmap(QSize const& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return result;
    }

    QIconEngine* clone() const override { return std::make_unique<DrawnIconEngine>(m_path).release(); }

protected:
    QPainterPath const& path() const { return m_path; }

    void drawLine(QPainter& painter, QRectF const& rect, QColor const& color) const {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(rect.topLeft());
        painter.scale(rect.width() / Box, rect.height() / Box);
        painter.setPen(QPen(color, LineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(m_path);
        painter.restore();
    }

private:
    QPainterPath m_path;
};

class TileIconEngine : public DrawnIconEngine {
public:
    using DrawnIconEngine::DrawnIconEngine;

    void paint(QPainter* painter, QRect const& rect, QIcon::Mode, QIcon::State) override {
        double const unit = rect.width() / Box;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(QColor(TileColor));
        painter->drawRoundedRect(rect, TileCorner * unit, TileCorner * unit);
        painter->restore();
        double const margin = TileMargin * unit;
        drawLine(*painter, QRectF(rect).adjusted(margin, margin, -margin, -margin), Qt::white);
    }

    QIconEngine* clone() const override { return std::make_unique<TileIconEngine>(path()).release(); }
};

template <class Engine>
QIcon iconWith(QString const& pathText) {
    std::optional<QPainterPath> const path = pathFromText(pathText);
    return path ? QIcon(std::make_unique<Engine>(*path).release()) : QIcon();
}

} // namespace

std::optional<QPainterPath> pathFromText(QString const& text) { return PathReader(text).read(); }

QIcon drawnIcon(QString const& pathText) { return iconWith<DrawnIconEngine>(pathText); }

QIcon tileIcon(QString const& pathText) { return iconWith<TileIconEngine>(pathText); }

namespace {

constexpr std::size_t MostKnown = 512;

// All pictures in one icon, which takes the best for the screen.
QIcon iconOfPictures(std::vector<Picture> const& pictures) {
    QIcon icon;
    for (Picture const& picture : pictures) {
        QImage const image(reinterpret_cast<uchar const*>(picture.pixels.data()), picture.width, picture.height,
                           static_cast<qsizetype>(picture.width) * 4, QImage::Format_ARGB32);
        icon.addPixmap(QPixmap::fromImage(image));
    }
    return icon;
}

QIcon generalIcon() {
    QString const name("application-x-executable");
    return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name)
                                     : drawnIcon("M2.5 3 H13.5 V13 H2.5 Z M2.5 5.8 H13.5 M4.3 4.4 H4.5 M6.1 4.4 H6.3");
}

QIcon readIcon(std::string const& bundle) {
    NSString const name = as<NSString>(informationOfBundle(bundle).objectForKey_("CFBundleIconFile"));
    return iconOfPictures(picturesInIconFile(iconFileInBundle(bundle, name)));
}

} // namespace

QIcon BundleIcons::iconOfBundle(NSString const& path) {
    std::optional<std::string> const bundle = path.fileSystemRepresentation();
    if (!bundle) return {};
    auto const known = m_known.find(*bundle);
    if (!AnsweringItems::shared()->mayRead(*bundle)) return known == m_known.end() ? QIcon() : known->second.icon;
    Result<FileStatus> const status = fileStatusAtPath(*bundle);
    if (!status.hasValue() || status.value().kind != FileStatus::Kind::Folder) return {};
    if (known != m_known.end() && known->second.modified == status.value().modified) return known->second.icon;
    if (m_known.size() >= MostKnown) {
        m_known.clear();
        // The theme may have changed since.
        m_general = {};
    }
    QIcon icon = readIcon(*bundle);
    if (icon.isNull()) {
        if (m_general.isNull()) m_general = generalIcon();
        icon = m_general;
    }
    m_known.insert_or_assign(*bundle, Known{status.value().modified, icon});
    return icon;
}

} // namespace mac
