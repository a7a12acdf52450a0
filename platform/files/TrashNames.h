#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace mac {

// The names that an item may get in the trash, one after another. A value; for implementations.
class TrashNames {
public:
    // So many names are tried before the item stays where it is.
    static constexpr unsigned MostNames = 10'000;

    // The time of day is "14-05-22". No name is longer than so many bytes.
    TrashNames(std::string_view name, std::string_view timeOfDay, std::size_t longest);

    // The item's own, then "NAME 14-05-22.txt", then "NAME 14-05-22 2.txt" and so on. What is too long loses the end of
    // the part before the extension, whole characters of it.
    std::string name(unsigned number) const;

private:
    std::string m_base;
    std::string m_extension;
    std::string m_timeOfDay;
    std::size_t m_longest;
};

} // namespace mac
