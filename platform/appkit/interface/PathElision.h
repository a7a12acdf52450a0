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

// Finds what paths have in common, path after path; slashes at their ends do not count.
class CommonPathFinder {
public:
    void add(std::u16string_view pathWithSlashes);
    // Whether further paths cannot change what is left out: at most the first slash is in common.
    bool isEmpty() const;
    CommonPath result() const;

private:
    std::u16string m_first;
    std::size_t m_count{0};
    std::size_t m_start{0};
    std::size_t m_end{0};
};

// How much of its paths a list shows, the same in all rows: each whole, with "…/" for the common folders, or with "/…"
// for the common names as well.
enum class PathExtent { Whole, WithoutCommonFolders, DifferingPart };

// The path with "…" for the common folders and names: the part that tells it from the others, whole.
QString differingPart(QString const& path, CommonPath const& common);

// As much of the path as the extent says.
QString shownPath(QString const& path, CommonPath const& common, PathExtent extent);

// The same within so many pixels: what is wider loses its middle.
QString elidedPath(QString const& path, CommonPath const& common, PathExtent extent, QFontMetrics const& metrics,
                   int width);

} // namespace mac
