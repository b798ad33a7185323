// SPDX-License-Identifier: MIT
#include "ui/window/language.h"

#include <QCoreApplication>
#include <QCursor>
#include <QDir>
#include <QLibraryInfo>

namespace
{

/// Beside the program, where a package brings its own Qt; else where Qt was installed. Their
/// licence does not let them be compiled in.
void loadQtTexts(QTranslator& translator, const QString& language)
{
    const QStringList folders{
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("translations")),
        QLibraryInfo::location(QLibraryInfo::TranslationsPath)};
    for (const QString& folder : folders) {
        // Tools that gather what a program needs join Qt's parts into one file, "qt_".
        for (const char* part : {"qtbase_", "qt_"}) {
            if (translator.load(QLatin1String(part) + language, folder))
                return;
        }
    }
}

} // namespace

Language::Language(QObject* parent) : QObject(parent), m_marks(nullptr)
{
    m_english.load(QStringLiteral(":/qm/qm/en_CN.qm"));
    m_korean.load(QStringLiteral(":/qm/qm/hw_CN.qm"));
    loadQtTexts(m_qtChinese, QStringLiteral("zh_CN"));
    loadQtTexts(m_qtKorean, QStringLiteral("ko"));
    const auto add = [this](const QString& icon, const QString& text, Choice choice) {
        QAction* action = m_menu.addAction(QIcon(QStringLiteral(":/spark/img/") + icon), text);
        action->setData(choice);
        action->setCheckable(true);
        m_marks.addAction(action);
    };
    add(QStringLiteral("language_zh.svg"), QStringLiteral("   中   文   "), Chinese);
    add(QStringLiteral("language_en.svg"), QStringLiteral("   English   "), English);
}

void Language::chooseSystemLanguage()
{
    switch (QLocale::system().language()) {
    case QLocale::English:
        choose(English);
        break;
    case QLocale::Korean:
        choose(Korean);
        break;
    default:
        choose(Chinese);
    }
}

void Language::askAtCursor()
{
    const QAction* action = m_menu.exec(QCursor::pos());
    if (action)
        choose(action->data().toInt());
}

void Language::choose(int choice)
{
    for (QTranslator* translator : {&m_english, &m_korean, &m_qtChinese, &m_qtKorean})
        QCoreApplication::removeTranslator(translator);
    m_choice = choice == English || choice == Korean ? Choice(choice) : Chinese;
    // The one installed last is asked first: our own words before Qt's.
    for (QTranslator* translator : {qtTranslator(), ownTranslator()}) {
        if (translator)
            QCoreApplication::installTranslator(translator);
    }
    const QList<QAction*> actions = m_menu.actions();
    for (QAction* action : actions)
        action->setChecked(action->data().toInt() == m_choice);
    emit chosen();
}

QTranslator* Language::ownTranslator()
{
    return m_choice == English ? &m_english : m_choice == Korean ? &m_korean : nullptr;
}

QTranslator* Language::qtTranslator()
{
    return m_choice == Chinese ? &m_qtChinese : m_choice == Korean ? &m_qtKorean : nullptr;
}

QLocale Language::locale() const
{
    const QLocale plain = m_choice == English  ? QLocale(QLocale::English, QLocale::UnitedStates)
                          : m_choice == Korean ? QLocale(QLocale::Korean, QLocale::SouthKorea)
                                               : QLocale(QLocale::Chinese, QLocale::China);
    // Who has chosen another country's ways of the same language keeps them.
    const QLocale system = QLocale::system();
    return system.language() == plain.language() ? system : plain;
}
