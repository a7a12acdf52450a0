#include "platform/foundation/text/LocalizedValues.h"
#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <limits>

namespace mac {

NSString localizedDate(NSDate const& date) {
    if (date == nil) return nil;
    // Beyond any year that a file can have, and within what a date of the toolkit can hold.
    constexpr double most = 1e15;
    double const milliseconds = std::clamp(date.timeIntervalSince1970() * 1000, -most, most);
    QDateTime const time = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(milliseconds));
    return NSString::stringWithUTF8String_(QLocale().toString(time, QLocale::ShortFormat).toStdString());
}

NSString localizedSize(std::uint64_t bytes) {
    auto const most = static_cast<std::uint64_t>(std::numeric_limits<qint64>::max());
    auto const size = static_cast<qint64>(std::min(bytes, most));
    QString const text = QLocale().formattedDataSize(size, 1, QLocale::DataSizeSIFormat);
    return NSString::stringWithUTF8String_(text.toStdString());
}

} // namespace mac
