// SPDX-License-Identifier: MIT
#include "manifest.h"

#include "paths.h"

#include <algorithm>
#include <sstream>

namespace
{

constexpr std::size_t mostManifestBytes = 256 * 1024;
constexpr std::size_t mostFiles = 2000;
constexpr std::size_t longestListed = 150;
constexpr std::size_t mostDigits = 12;

/// False when the line is not one of a file.
bool readLine(const std::string& line, Manifest::File& file)
{
    const std::size_t tab = line.find('\t');
    if (tab == std::string::npos || tab == 0 || tab > mostDigits)
        return false;
    const std::string size = line.substr(0, tab);
    if (size != "-") {
        if (size.find_first_not_of("0123456789") != std::string::npos)
            return false;
        file.size = std::stoll(size);
    }
    file.path = fromUtf8(line.substr(tab + 1));
    return staysBelow(file.path);
}

} // namespace

bool staysBelow(const std::wstring& path)
{
    if (path.empty() || path.size() > longestListed ||
        path.find_first_of(L":/*?\"<>|") != path.npos)
        return false;
    std::wistringstream parts(path + L'\\');
    std::wstring part;
    while (std::getline(parts, part, L'\\')) {
        // The system drops dots and blanks at the end of a name.
        if (part.empty() || part.back() == L'.' || part.back() == L' ' || part.front() < L' ')
            return false;
    }
    return true;
}

Manifest Manifest::read(const std::wstring& folder)
{
    Manifest manifest;
    std::istringstream lines(readFile(folder + L'\\' + name(), mostManifestBytes));
    std::string line;
    std::getline(lines, line);
    manifest.isOurs = line.compare(0, 9, "Tarn Hub ") == 0;
    while (manifest.isOurs && manifest.files.size() < mostFiles && std::getline(lines, line)) {
        if (!line.empty() && line.back() == '\r')
            line.pop_back();
        File file;
        if (readLine(line, file))
            manifest.files.push_back(file);
    }
    return manifest;
}

bool Manifest::has(const std::wstring& path) const
{
    return std::any_of(files.begin(), files.end(),
                       [&path](const File& file) { return isSameName(file.path, path); });
}
