#include "platform/appkit/interface/VisibleText.h"
#include "platform/foundation/objects/NSNull.h"
#include <QTextDocument>

namespace mac {

namespace {

constexpr char16_t Replacement = u'\uFFFD';
bool turnsOrBreaks(char16_t unit) {
    return unit == u'\u061C' || unit == u'\u200E' || unit == u'\u200F' || (unit >= u'\u2028' && unit <= u'\u202E') ||
           (unit >= u'\u2066' && unit <= u'\u2069') || unit == u'\uFEFF';
}

char16_t visibleUnit(char16_t unit) {
    bool const isControl = unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
    return isControl || QChar::isSurrogate(unit) || turnsOrBreaks(unit) ? Replacement : unit;
}

} // namespace

QString visibleText(NSString const& text) {
    std::u16string_view const units = text.codeUnits();
    QString result(reinterpret_cast<QChar const*>(units.data()), static_cast<qsizetype>(units.size()));
    for (std::size_t i = 0; i < units.size(); ++i) {
        bool const isPlain = units[i] >= 0x20 && units[i] < 0x7F;
        if (isPlain) continue;
        bool const isPair =
            QChar::isHighSurrogate(units[i]) && i + 1 < units.size() && QChar::isLowSurrogate(units[i + 1]);
        if (isPair)
            ++i;
        else if (char16_t const visible = visibleUnit(units[i]); visible != units[i])
            result[static_cast<qsizetype>(i)] = QChar(visible);
    }
    return result;
}

QString visibleTextOf(id const& object) {
    if (object == nil || object.isKindOfClass_(classOf<NSNull>())) return {};
    NSString const text = as<NSString>(object);
    return visibleText(text == nil ? object.description() : text);
}

QString plainToolTip(QString const& text) { return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text) : text; }

NSString stringOf(QString const& text) {
    return NSString::stringWithCodeUnits(
        {reinterpret_cast<char16_t const*>(text.utf16()), static_cast<std::size_t>(text.size())});
}

} // namespace mac
