// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_REPLACEMENT_H
#define TOOLS_UPGRADE_REPLACEMENT_H

#include "manifest.h"

#include <string>
#include <vector>

/// Puts a new version, which lies complete in the folder "new.tmp" of an installation, in the place
/// of the present one. Either all files change or, when one cannot be moved, none does.
///
/// Only files that a manifest names are touched. Nothing is copied: moving needs no room on the
/// disk.
class Replacement
{
public:
    explicit Replacement(std::wstring folder);

    enum Outcome {
        Done,
        Incomplete, ///< nothing has changed: the new version is not complete
        Locked,     ///< nothing has changed: a file could not be moved
        Broken      ///< neither the old nor the new version is whole; doing it again mends it
    };
    Outcome run();
    /// The file that is missing, has another size or could not be moved.
    const std::wstring& culprit() const { return m_culprit; }

    static std::wstring stagingName() { return L"new.tmp"; }
    static std::wstring formerName() { return L"old.tmp"; }
    /// The name of a folder that a broken off replacement leaves, or one of which a file was in
    /// use.
    static bool isLeft(const std::wstring& name);
    /// Removes such folders, as far as nobody holds a file in them.
    static void clean(const std::wstring& folder);

private:
    struct Move {
        std::wstring from;
        std::wstring to;
    };
    bool isWhole();
    bool exchange(const std::wstring& path);
    bool move(const std::wstring& from, const std::wstring& to);
    bool undo();
    void tidy(const std::vector<Manifest::File>& gone);

    const std::wstring m_folder;
    const std::wstring m_staging;
    std::wstring m_former;
    Manifest m_next;
    std::vector<Move> m_moves;
    std::wstring m_culprit;
};

#endif
