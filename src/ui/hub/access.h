// SPDX-License-Identifier: MIT
#pragma once

class QLabel;
class QString;
class QWidget;

/// What the fields and buttons of a form tell those who do not see it, or use no mouse. Taken from
/// what the form says anyway, so it has the form's language: call again when that changes.
namespace Access
{

/// The words of a caption, without the colon behind them.
QString words(const QLabel& caption);
/// Names what each caption is the buddy of: an input, an editor of several, a number with the
/// slider beside it ("…Slider"), or each choice of a group.
void nameByCaptions(QWidget& form);
/// Tooltips of all buttons that have a key, with the key as it stands on this system's keyboards.
/// Of a button whose key is a shortcut of another, the property "keys" says it.
void showKeys(QWidget& form);
/// Shift+F10 opens the menu of what has the keys, for keyboards without a key for that.
void addMenuKey(QWidget& window);

} // namespace Access
