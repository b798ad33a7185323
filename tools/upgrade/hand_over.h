// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_HAND_OVER_H
#define TOOLS_UPGRADE_HAND_OVER_H

#include "texts.h"

#include <string>

/// The way from the running version of the program to the next one. run() takes minutes at most; it
/// belongs on a thread of its own, so that the user sees that something goes on.
class HandOver
{
public:
    /// What the program says: its own file name, the downloaded installer and its version, which
    /// only the log is told. Whoever starts this may say anything.
    HandOver(std::wstring program, std::wstring installer, std::wstring version);

    /// Waits for the end of the program, installs, and starts the program again: the new one, or
    /// the old one when that did not work.
    void run();

    /// Text::None when all went well; then the detail is empty.
    Text problem() const { return m_problem; }
    const std::wstring& detail() const { return m_detail; }

private:
    bool isSensible();
    bool install();
    void judge(unsigned long exitCode);
    void start();
    bool fail(Text problem, const std::wstring& detail = {});

    const std::wstring m_folder; ///< the program's and this one's
    const std::wstring m_name;
    const std::wstring m_installer;
    const std::wstring m_version;
    Text m_problem = Text::None;
    std::wstring m_detail;
};

#endif
