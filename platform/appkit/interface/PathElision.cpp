#include "platform/appkit/interface/PathElision.h"
#include "platform/foundation/text/PathSlashes.h"
#include <algorithm>

namespace mac {

namespace {

constexpr QChar Ellipsis(0x2026);

// The slash in front of what differs stays, so that it is seen to be the name of an item.
QString withoutCommonStart(QString const& path, CommonPath const& common) {
    return common.start > 1 && common.start <= path.size() ? Ellipsis + path.sliced(common.start - 1) : path;
}

} // namespace

void CommonPathFinder::add(std::u16string_view pathWithSlashes) {
    std::u16string_view const path = withoutTrailingSlashes(pathWithSlashes);
    if (m_count++ == 0) {
        m_first = path;
        m_start = m_end = path.size();
        return;
    }
    std::size_t const start = std::min(m_start, path.size());
    m_start = static_cast<std::size_t>(
        std::mismatch(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(start), m_first.begin()).first -
        path.begin());
    std::size_t const end = std::min(m_end, path.size());
    m_end = static_cast<std::size_t>(
        std::mismatch(path.rbegin(), path.rbegin() + static_cast<std::ptrdiff_t>(end), m_first.rbegin()).first -
        path.rbegin());
}

bool CommonPathFinder::isEmpty() const {
    CommonPath const common = result();
    return m_count > 1 && common.start <= 1 && common.end == 0;
}

CommonPath CommonPathFinder::result() const {
    if (m_count < 2) return {};
    std::u16string_view const first = m_first;
    std::size_t const lastSlash = first.substr(0, m_start).rfind(u'/');
    std::size_t const firstSlash = first.substr(first.size() - m_end).find(u'/');
    CommonPath common;
    if (lastSlash != std::u16string_view::npos) common.start = static_cast<qsizetype>(lastSlash) + 1;
    if (firstSlash != std::u16string_view::npos) common.end = static_cast<qsizetype>(m_end - firstSlash);
    return common;
}

QString differingPart(QString const& path, CommonPath const& common) {
    qsizetype const differing = path.size() - std::max<qsizetype>(common.start - 1, 0) - common.end;
    QString const withoutStart = withoutCommonStart(path, common);
    // If only common names are left, they identify the path.
    if (common.end == 0 || differing <= 0) return withoutStart;
    return withoutStart.chopped(common.end) + '/' + Ellipsis;
}

QString shownPath(QString const& path, CommonPath const& common, PathExtent extent) {
    switch (extent) {
    case PathExtent::Whole:
        return path;
    case PathExtent::WithoutCommonFolders:
        return withoutCommonStart(path, common);
    case PathExtent::DifferingPart:
        break;
    }
    return differingPart(path, common);
}

QString elidedPath(QString const& path, CommonPath const& common, PathExtent extent, QFontMetrics const& metrics,
                   int width) {
    QString const shown = shownPath(path, common, extent);
    return metrics.horizontalAdvance(shown) <= width ? shown : metrics.elidedText(shown, Qt::ElideMiddle, width);
}

} // namespace mac
