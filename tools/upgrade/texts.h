// SPDX-License-Identifier: MIT
#ifndef TOOLS_UPGRADE_TEXTS_H
#define TOOLS_UPGRADE_TEXTS_H

enum class Text {
    None,
    Installing,
    NotAsked,      ///< the arguments are not those of the program
    StillRuns,     ///< the program did not end
    NotOurs,       ///< the installer lies elsewhere than where the program puts it
    NotStarted,    ///< the installer could not be started
    Declined,      ///< the user refused the administrator's right
    StillInstalls, ///< the installer did not end in time
    Unchanged,     ///< the installer failed and left the old version as it was
    Damaged,       ///< it says that it could not
    NoProgram      ///< the program could not be started again
};

/// In the language of the user's system.
const wchar_t* text(Text which);

#endif
