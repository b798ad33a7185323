// SPDX-License-Identifier: MIT
#include "tests/support/table.h"
#include "ui/window/language.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <memory>

#ifdef LUPDATE
namespace
{

struct Message {
    QString context;
    QString source;
    QString type;
    QStringList forms;
    bool hasNumber = false;
};

Message readMessage(QXmlStreamReader& xml, const QString& context)
{
    Message message;
    message.context = context;
    message.hasNumber = xml.attributes().value("numerus") == QString("yes");
    while (xml.readNextStartElement()) {
        if (xml.name() == QString("source")) {
            message.source = xml.readElementText();
        } else if (xml.name() == QString("translation")) {
            message.type = xml.attributes().value("type").toString();
            if (!message.hasNumber) {
                message.forms << xml.readElementText();
                continue;
            }
            while (xml.readNextStartElement())
                message.forms << xml.readElementText();
        } else {
            xml.skipCurrentElement();
        }
    }
    return message;
}

QVector<Message> readMessages(const QString& path)
{
    QFile file(path);
    QVector<Message> messages;
    if (!file.open(QIODevice::ReadOnly))
        return messages;
    QXmlStreamReader xml(&file);
    QString context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QString("name"))
            context = xml.readElementText();
        else if (xml.name() == QString("message"))
            messages << readMessage(xml, context);
    }
    return messages;
}

QStringList marksIn(const QString& text)
{
    static const QRegularExpression mark("%L?(\\d+|n)");
    QStringList marks;
    for (auto all = mark.globalMatch(text); all.hasNext();)
        marks << all.next().captured();
    marks.sort();
    marks.removeDuplicates();
    return marks;
}

/// What is wrong with a translation; empty when nothing is.
QString faultOf(const Message& message, int forms)
{
    static const QRegularExpression han("\\p{Han}");
    if (!message.type.isEmpty())
        return message.type;
    if (message.forms.size() != (message.hasNumber ? forms : 1))
        return QString("%1 forms").arg(message.forms.size());
    for (const QString& text : message.forms) {
        if (text.trimmed().isEmpty())
            return "empty";
        if (text.contains(han))
            return "Chinese is left in it";
        QStringList marks = marksIn(message.source);
        // "the selected box" needs no number.
        if (message.hasNumber && forms > 1 && &text == &message.forms.first() &&
            !text.contains("%n"))
            marks.removeOne("%n");
        if (marksIn(text) != marks)
            return "takes other values";
        // Where something is joined to the source, its blank is needed; elsewhere it is a slip.
        if (text.endsWith(' ') && !message.source.endsWith(' '))
            return "ends in a blank";
    }
    return QString();
}

} // namespace
#endif

class tst_Translations : public QObject
{
    Q_OBJECT

private slots:
#ifdef LUPDATE
    /// Of every text that stands in the sources now, as `lupdate` finds them.
    void everyTextIsTranslated_data()
    {
        columns<QString, int>("name", "forms");
        row("English", "en_CN.ts", 2);
        row("Korean", "hw_CN.ts", 1);
    }

    void everyTextIsTranslated()
    {
        const auto [name, forms] = cells<QString, int>();
        QTemporaryDir folder;
        const QString path = folder.filePath(name);
        QVERIFY(QFile::copy(QString(TRANSLATIONS "/") + name, path));
        QProcess lupdate;
        lupdate.start(LUPDATE, {"-silent", SOURCES, "-ts", path});
        QVERIFY(lupdate.waitForFinished(60000));
        QVERIFY2(lupdate.exitCode() == 0, lupdate.readAllStandardError());
        const QVector<Message> messages = readMessages(path);
        QVERIFY(messages.size() > 300);
        QStringList faults;
        for (const Message& message : messages) {
            const QString fault = faultOf(message, forms);
            if (!fault.isEmpty())
                faults << message.context + ": " + message.source + " (" + fault + ")";
        }
        QVERIFY2(faults.isEmpty(), faults.join('\n').toUtf8());
    }
#endif

    void numbersChooseTheirForm_data()
    {
        columns<int, int, QString>("choice", "count", "text");
        row("Chinese", int(Language::Chinese), 1, "1项失败");
        row("one", int(Language::English), 1, "1 setting failed");
        row("several", int(Language::English), 2, "2 settings failed");
        row("none", int(Language::English), 0, "0 settings failed");
        row("Korean", int(Language::Korean), 2, "설정 2개 실패");
    }

    void numbersChooseTheirForm()
    {
        const auto [choice, count, text] = cells<int, int, QString>();
        Language language(nullptr);
        language.choose(choice);
        QCOMPARE(QCoreApplication::translate("UpgradeReport", "%n项失败", nullptr, count), text);
    }

    /// The menu that Qt itself gives a field to type in.
    void qtSpeaksTheChosenLanguage()
    {
        QLineEdit field;
        const auto copy = [&field] {
            const std::unique_ptr<QMenu> menu(field.createStandardContextMenu());
            QString text = menu->actions().at(4)->text().section('\t', 0, 0);
            return text.remove('&').remove(QRegularExpression("\\(.\\)"));
        };
        Language language(nullptr);
        for (int round = 0; round < 2; ++round) {
            language.choose(Language::Korean);
            QCOMPARE(copy(), QString("복사"));
            language.choose(Language::English);
            QCOMPARE(copy(), QString("Copy"));
            language.choose(Language::Chinese);
            QCOMPARE(copy(), QString("复制"));
        }
    }

    void menuMarksTheChosenLanguage()
    {
        Language language(nullptr);
        const QList<QAction*> actions = language.menu().actions();
        for (int choice : {Language::English, Language::Chinese, Language::Korean}) {
            language.choose(choice);
            for (const QAction* action : actions)
                QCOMPARE(action->isChecked(), action->data().toInt() == choice);
        }
    }
};

QTEST_MAIN(tst_Translations)
#include "tst_translations.moc"
