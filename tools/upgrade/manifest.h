// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_MANIFEST_H
#define TOOLS_UPGRADE_MANIFEST_H

#include <string>
#include <vector>

/// The list of what an installation consists of, "installed.txt" in its folder. Its first line
/// names the program and the version; each other one has the size of a file, a tab, and its path
/// below the folder. Others may have written it: what is not of that form is left out.
struct Manifest {
    struct File {
        std::wstring path;
        long long size = -1; ///< -1: not known beforehand
    };
    bool isOurs = false; ///< the first line is that of this program
    std::vector<File> files;

    static std::wstring name() { return L"installed.txt"; }
    static Manifest read(const std::wstring& folder);
    bool has(const std::wstring& path) const;
};

/// A path that stays below the folder that it is joined to.
bool staysBelow(const std::wstring& path);

#endif
