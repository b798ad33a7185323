// SPDX-License-Identifier: MIT
#include "ui/window/language.h"

#include <QCoreApplication>
#include <QCursor>
#include <QLocale>

Language::Language(QObject* parent) : QObject(parent)
{
    m_english.load(QStringLiteral(":/qm/qm/en_CN.qm"));
    m_korean.load(QStringLiteral(":/qm/qm/hw_CN.qm"));
    const auto add = [this](const QString& icon, const QString& text, Choice choice) {
        m_menu.addAction(QIcon(QStringLiteral(":/spark/img/") + icon), text)->setData(choice);
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
    QCoreApplication::removeTranslator(&m_english);
    QCoreApplication::removeTranslator(&m_korean);
    if (choice == English)
        QCoreApplication::installTranslator(&m_english);
    else if (choice == Korean)
        QCoreApplication::installTranslator(&m_korean);
    emit chosen();
}
