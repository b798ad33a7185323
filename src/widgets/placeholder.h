// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

/// Keeps the words in an empty field apart from typed text, whatever becomes of its colours: a
/// style sheet that names a text colour would otherwise paint both alike.
void keepPlaceholderDim(QWidget& field);
