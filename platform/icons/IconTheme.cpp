#include "platform/icons/IconTheme.h"
#include "platform/desktop/entries/KeyFile.h"
#include "platform/system/ASCII.h"
#include "platform/system/BytePath.h"
#include "platform/system/LongPath.h"
#include "platform/system/Users.h"
#include <algorithm>
#include <charconv>
#include <map>
#include <mutex>
#include <set>
#include <tuple>

namespace mac {

namespace {

constexpr std::size_t MostThemes = 16;
constexpr std::size_t MostThemeFolders = 1024;
constexpr std::size_t LargestThemeFile = std::size_t{4} << 20;
constexpr std::size_t MostKnownIcons = 512;
constexpr char ThemeGroup[] = "Icon Theme";
constexpr std::array<std::string_view, 3> ThemeExtensions{".png", ".svg", ".xpm"};

// A folder of a theme, with the sides of pictures that it is for.
struct ThemeFolder {
    std::string path{};
    int side{0};
    int least{0};
    int most{0};

    int distanceTo(int wanted) const {
        if (wanted < least) return least - wanted;
        return wanted > most ? wanted - most : 0;
    }
};

struct FoundFile {
    std::string path{};
    ThemeFolder const* folder{nullptr};
};

int sideOf(KeyFile const& index, std::string const& group, char const* key, int fallback) {
    std::string const text = index.text(group, key).value_or("");
    int value = 0;
    bool const isNumber = std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
    return isNumber && value > 0 && value <= LargestIconSide ? value : fallback;
}

std::vector<std::string> partsAtCommas(std::string const& text) {
    std::vector<std::string> parts;
    for (std::size_t place = 0; place < text.size();) {
        std::size_t const comma = std::min(text.find(',', place), text.size());
        if (comma > place) parts.push_back(text.substr(place, comma - place));
        place = comma + 1;
    }
    return parts;
}

ThemeFolder themeFolderOf(KeyFile const& index, std::string const& path) {
    constexpr int usualThreshold = 2;
    ThemeFolder folder{.path = path, .side = sideOf(index, path, "Size", 0)};
    std::string const type = index.text(path, "Type").value_or("Threshold");
    int const threshold = type == "Threshold" ? sideOf(index, path, "Threshold", usualThreshold) : 0;
    folder.least = type == "Scalable" ? sideOf(index, path, "MinSize", folder.side) : folder.side - threshold;
    folder.most = type == "Scalable" ? sideOf(index, path, "MaxSize", folder.side) : folder.side + threshold;
    return folder;
}

// A theme as its index describes it; its files lie in folders of its name below several places.
class Theme {
public:
    Theme(std::string const& name, std::vector<std::string> const& places) {
        for (std::string const& place : places) {
            std::string folder = BytePath(place).joined(name);
            if (m_parents.empty() && m_folders.empty()) readIndex(BytePath(folder).joined("index.theme"));
            m_places.push_back(std::move(folder));
        }
    }

    std::vector<std::string> const& parents() const { return m_parents; }

    std::vector<FoundFile> filesOf(std::string const& name) const {
        std::vector<FoundFile> files;
        for (ThemeFolder const& folder : m_folders) {
            for (std::string const& place : m_places)
                addFiles(BytePath(BytePath(place).joined(folder.path)).joined(name), folder, files);
        }
        return files;
    }

private:
    static void addFiles(std::string const& stem, ThemeFolder const& folder, std::vector<FoundFile>& files) {
        for (std::string_view const extension : ThemeExtensions) {
            std::string path = stem + std::string(extension);
            if (pathExists(path)) files.push_back({std::move(path), &folder});
        }
    }

    void readIndex(std::string const& path) {
        KeyFile const index = KeyFile::readFile(path);
        m_parents = partsAtCommas(index.text(ThemeGroup, "Inherits").value_or(""));
        for (std::string const& folder : partsAtCommas(index.text(ThemeGroup, "Directories").value_or(""))) {
            // Folders for dense screens have pictures of more pixels than they say.
            bool const isForAnyScreen = index.text(folder, "Scale").value_or("1") == "1";
            bool const leadsElsewhere = folder.find("..") != std::string::npos;
            ThemeFolder const described = themeFolderOf(index, folder);
            if (isForAnyScreen && !leadsElsewhere && described.side > 0) m_folders.push_back(described);
            if (m_folders.size() == MostThemeFolders) return;
        }
    }

    std::vector<std::string> m_places{};
    std::vector<std::string> m_parents{};
    std::vector<ThemeFolder> m_folders{};
};

// Places of themes, the user's first.
std::vector<std::string> placesOfThemes() {
    std::vector<std::string> places{BytePath(ownHomeFolder()).joined(".icons")};
    for (std::string const& folder : dataFolders())
        places.push_back(BytePath(folder).joined("icons"));
    return places;
}

std::vector<std::byte> bytesOfThemeFile(std::string const& path) {
    Result<FileContents> contents = readFileAtPath(path, LargestThemeFile);
    return contents.hasValue() ? std::move(contents.value().bytes) : std::vector<std::byte>();
}

std::optional<Picture> pictureInThemeFile(std::string const& path, int side) {
    std::vector<std::byte> const bytes = bytesOfThemeFile(path);
    if (path.ends_with(".svg")) return pictureOfDrawing(bytes, side);
    if (path.ends_with(".png")) return pictureInPNG(bytes, LargestIconSide);
    std::vector<Picture> pictures = picturesInImageFile(bytes);
    bool const isUsable = !pictures.empty() && std::max(pictures[0].width, pictures[0].height) <= LargestIconSide;
    return isUsable ? std::optional(std::move(pictures.front())) : std::nullopt;
}

// The picture that suits the side best, of the files that can be read.
std::optional<Picture> bestPicture(std::vector<FoundFile> files, int side) {
    std::ranges::stable_sort(files, {}, [side](FoundFile const& file) {
        int const distance = file.folder->distanceTo(side);
        // Among folders that are equally near, the one of larger pictures, which lose nothing.
        return std::tuple(distance, std::abs(file.folder->side - side), -file.folder->side);
    });
    for (FoundFile const& file : files) {
        if (std::optional<Picture> picture = pictureInThemeFile(file.path, side)) return picture;
    }
    return std::nullopt;
}

bool isIconName(std::string const& name) {
    return !name.empty() && name.find('/') == std::string::npos && name.find('\0') == std::string::npos;
}

std::vector<SharedPicture> picturesOfName(Theme const& theme, std::string const& name) {
    std::vector<FoundFile> const files = isIconName(name) ? theme.filesOf(name) : std::vector<FoundFile>();
    std::vector<Picture> pictures;
    for (int const side : IconSides) {
        std::optional<Picture> picture = files.empty() ? std::nullopt : bestPicture(files, side);
        if (picture) pictures.push_back(std::move(*picture));
    }
    return picturesInIconSides(std::move(pictures));
}

// Themes with those that they inherit from behind them, as far as anything is known of them.
class ThemeChain {
public:
    ThemeChain() : m_places(placesOfThemes()) {
        for (std::string const& name : chosenThemes())
            add(name);
    }

    std::vector<SharedPicture> picturesOf(std::vector<std::string> const& names) {
        std::string key;
        for (std::string const& name : names)
            key.append(name).append(1, '\n');
        auto const known = m_known.find(key);
        if (known != m_known.end()) return known->second;
        if (m_known.size() >= MostKnownIcons) m_known.clear();
        return m_known.emplace(std::move(key), lookUp(names)).first->second;
    }

private:
    void add(std::string const& name) {
        bool const isKnown = !m_names.insert(name).second;
        if (isKnown || m_themes.size() >= MostThemes || !isIconName(name)) return;
        m_themes.emplace_back(name, m_places);
        std::vector<std::string> const parents = m_themes.back().parents();
        for (std::string const& parent : parents)
            add(parent);
    }

    std::vector<SharedPicture> lookUp(std::vector<std::string> const& names) const {
        for (Theme const& theme : m_themes) {
            for (std::string const& name : names) {
                std::vector<SharedPicture> pictures = picturesOfName(theme, name);
                if (!pictures.empty()) return pictures;
            }
        }
        return {};
    }

    std::vector<std::string> m_places;
    std::set<std::string> m_names{};
    std::vector<Theme> m_themes{};
    std::map<std::string, std::vector<SharedPicture>> m_known{};
};

// What the chain was made from: names, places and the times at which the places were changed.
std::vector<std::string> stateOfThemes() {
    std::vector<std::string> state = chosenThemes();
    for (std::string const& place : placesOfThemes()) {
        Result<FileStatus> const status = fileStatusAtPath(place);
        state.push_back(place);
        state.push_back(status.hasValue() ? std::to_string(status.value().modified) : std::string());
    }
    return state;
}

} // namespace

std::vector<SharedPicture> picturesInTheme(std::vector<std::string> const& names) {
    // Never destroyed: icons may be asked for until the program's last instruction.
    struct Remembered {
        std::mutex lock{};
        std::vector<std::string> state{};
        std::unique_ptr<ThemeChain> chain{};
    };
    static Remembered& remembered = *std::make_unique<Remembered>().release();
    std::scoped_lock const lock(remembered.lock);
    std::vector<std::string> state = stateOfThemes();
    if (!remembered.chain || remembered.state != state) {
        remembered.chain = std::make_unique<ThemeChain>();
        remembered.state = std::move(state);
    }
    return remembered.chain->picturesOf(names);
}

std::vector<SharedPicture> picturesInThemeFile(std::string const& path) {
    std::vector<Picture> pictures;
    for (int const side : IconSides) {
        std::optional<Picture> picture = pictureInThemeFile(path, side);
        if (!picture) return {};
        pictures.push_back(std::move(*picture));
        // A bitmap is the same at any side.
        if (!path.ends_with(".svg")) break;
    }
    return picturesInIconSides(std::move(pictures));
}

} // namespace mac
