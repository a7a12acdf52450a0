#pragma once

#include <QFontMetrics>
#include <QString>
#include <string>
#include <string_view>

namespace mac {

// What all paths of a list have in common, in UTF-16 code units: the folders that they begin with, with the slash
// behind them, and the names that they end with, with the slash before them. Both are 0 for fewer than two paths.
struct CommonPath {
    qsizetype start{0};
    qsizetype end{0};
};

// Finds what paths have in common, path after path.
class CommonPathFinder {
public:
    void add(std::u16string_view path);
    // Whether further paths cannot change what is left out: at most the first slash is in common.
    bool isEmpty() const;
    CommonPath result() const;

private:
    std::u16string m_first;
    std::size_t m_count{0};
    std::size_t m_start{0};
    std::size_t m_end{0};
};

// The path with "…" for the common folders and names: the part that tells it from the others, whole.
QString differingPart(QString const& path, CommonPath const& common);

// The path as it fits into so many pixels: whole; without the folders in common; without the names in common either.
// Only where that is too long as well its middle is left out.
QString elidedPath(QString const& path, CommonPath const& common, QFontMetrics const& metrics, int width);

} // namespace mac
