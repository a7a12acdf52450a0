#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mac {

// Tells by its file name whether a folder is a package, and whether it is one that is looked for. Names are compared
// byte by byte. A name that is nothing but the suffix is a hidden folder, not a package.
class PackageRule {
public:
    PackageRule(std::string suffix, std::vector<std::string> names);

    bool isPackage(std::string_view name) const {
        return name.size() > m_suffix.size() && !m_suffix.empty() && name.ends_with(m_suffix);
    }
    bool isWanted(std::string_view package) const;
    // Whether a folder of a relative path ("a/B.app/c") is a package.
    bool crossesPackage(std::string_view relativePath) const;

private:
    std::string m_suffix;
    std::vector<std::string> m_names;
};

} // namespace mac
