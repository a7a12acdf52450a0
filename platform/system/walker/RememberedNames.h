#pragma once

#include "platform/system/walker/RememberedFolders.h"
#include <unordered_map>

namespace mac {

// Finds what the index has for the subfolders of one folder by their names, for a folder whose list is read anew.
class RememberedNames {
public:
    RememberedNames(RememberedFolders const& folders, RememberedFolders::Cursor children) {
        while (std::optional<RememberedFolders::Child> const child = folders.next(children)) {
            if (child->place != RememberedFolders::None) m_places.emplace(child->name, child->place);
        }
    }

    // The place of the folder of that name; RememberedFolders::None if it has no entry.
    RememberedFolders::Place place(std::string_view name) const {
        auto const found = m_places.find(name);
        return found == m_places.end() ? RememberedFolders::None : found->second;
    }

private:
    std::unordered_map<std::string_view, RememberedFolders::Place> m_places;
};

} // namespace mac
