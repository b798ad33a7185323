// SPDX-License-Identifier: MIT
#pragma once

#include <QActionGroup>
#include <QLocale>
#include <QMenu>
#include <QObject>
#include <QTranslator>

/// The languages of the interface: Chinese is the source, the others are translators. What Qt
/// itself says (menus of input fields, file dialogs) follows where Qt's translations are installed.
class Language : public QObject
{
    Q_OBJECT

public:
    enum Choice { Chinese = 1, English = 2, Korean = 3 };

    explicit Language(QObject* parent);

    /// The system's language, Chinese for any that has no translation.
    void chooseSystemLanguage();
    /// Pops up the menu at the mouse and applies what is chosen. Blocks, serving events.
    void askAtCursor();
    void choose(int choice);
    QMenu& menu() { return m_menu; }
    /// How numbers and sizes are written in the chosen language.
    QLocale locale() const;

signals:
    /// A language was chosen, be it the one in use: everything is labelled again.
    void chosen();

private:
    QTranslator* ownTranslator();
    QTranslator* qtTranslator();

    Choice m_choice = Chinese;
    QTranslator m_english;
    QTranslator m_korean;
    QTranslator m_qtChinese;
    QTranslator m_qtKorean;
    QMenu m_menu;
    QActionGroup m_marks;
};
