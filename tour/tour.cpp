// SPDX-License-Identifier: MIT
#include "tour/tour.h"

#include "device/item.h"
#include "device/tree_model.h"
#include "device/tree_view.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QTest>
#include <QTimer>

#include <cstdio>

namespace
{

constexpr int popupSeconds = 10;
/// A stop that takes longer stands before a dialog that it does not know of.
constexpr int stopSeconds = 100;

QWidget* openPopup()
{
    QWidget* popup = QApplication::activePopupWidget();
    return popup ? popup : QApplication::activeModalWidget();
}

/// Asks a dialog or menu to go, as an operator does.
void dismiss(QWidget* popup)
{
    QTest::keyClick(popup, Qt::Key_Escape);
}

/// Waits in an event loop that sleeps until something happens: what needs many turns of the loop,
/// as a web page does, gets them at once. A dialog that the program opens meanwhile runs a loop of
/// its own, which keeps this one from ending: it is told of, and has to go.
bool waitUntil(const std::function<bool()>& condition, int milliseconds,
               const std::function<void(QWidget&)>& tellOfDialog = {})
{
    if (condition())
        return true;
    bool reached = false;
    QEventLoop loop;
    const QDeadlineTimer deadline(milliseconds);
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        const bool isHeldUp = !loop.isRunning();
        reached = reached || condition();
        if (reached || deadline.hasExpired())
            loop.quit();
        if (!isHeldUp || !openPopup())
            return;
        reached = false;
        if (tellOfDialog)
            tellOfDialog(*openPopup());
        dismiss(openPopup());
    });
    look.start(20);
    loop.exec();
    return reached;
}

QString wordsOf(const QWidget& dialog)
{
    const auto* text = dialog.findChild<QWidget*>("m_tipContent");
    return text ? text->property("plainText").toString() : dialog.metaObject()->className();
}

void closePopups()
{
    // A bound, should one refuse to go.
    for (int tries = 0; tries < 10 && openPopup(); ++tries) {
        dismiss(openPopup());
        (void)waitUntil([] { return openPopup() == nullptr; }, 500);
    }
}

/// The screen once what was asked for is painted: when two looks at it see the same. Something that
/// always moves does not hold up the tour.
QImage settledScreen()
{
    const auto look = [] { return QGuiApplication::primaryScreen()->grabWindow(0).toImage(); };
    QImage seen = look();
    for (int tries = 0; tries < 20; ++tries) {
        QTest::qWait(50);
        const QImage now = look();
        if (now == seen)
            break;
        seen = now;
    }
    return seen;
}

} // namespace

Tour::Tour(Tarn_Hub& window, QString lanCommands, QString pictures)
    : m_window(window), m_lanCommands(std::move(lanCommands)), m_pictures(std::move(pictures))
{
}

bool Tour::visitAll(const std::vector<Stop>& stops)
{
    int number = 0;
    int reached = 0;
    for (const Stop& stop : stops) {
        m_pictureName = QStringLiteral("%1-%2")
                            .arg(++number, 2, 10, QLatin1Char('0'))
                            .arg(QLatin1String(stop.name));
        const bool ok = visit(stop);
        reached += ok ? 1 : 0;
        std::printf("%s: %s\n", qPrintable(QString(m_pictureName).replace("-", " ")),
                    ok ? "ok" : qPrintable("FAILED " + m_why));
        std::fflush(stdout);
    }
    return reached == number;
}

bool Tour::visit(const Stop& stop)
{
    m_pictureTaken = false;
    m_why = "for no stated reason";
    QString inTheWay;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (openPopup()) {
            inTheWay = noteDialog(*openPopup());
            closePopups();
        }
    });
    watch.start(stopSeconds * 1000);
    bool ok = stop.visit(*this);
    watch.stop();
    if (!inTheWay.isEmpty())
        ok = fail(inTheWay);
    if (!m_pictureTaken)
        takePicture();
    if (!m_pictureTaken)
        ok = fail("no picture could be written to " + m_pictures);
    closePopups();
    return ok;
}

bool Tour::waitFor(const QString& what, const std::function<bool()>& condition, int seconds)
{
    QString inTheWay;
    if (waitUntil(condition, seconds * 1000,
                  [&](QWidget& dialog) { inTheWay = "; " + noteDialog(dialog); }))
        return true;
    return fail(QString("not within %1 s: %2%3").arg(seconds).arg(what, inTheWay));
}

QString Tour::noteDialog(const QWidget& dialog)
{
    const QString words = wordsOf(dialog);
    takePicture();
    return "a dialog is in the way: " + words;
}

bool Tour::fail(const QString& why)
{
    m_why = why;
    return false;
}

void Tour::takePicture()
{
    m_pictureTaken = settledScreen().save(m_pictures + "/" + m_pictureName + ".png");
}

TreeView* Tour::devices() const
{
    return child<TreeView>("deviceView");
}

Item* Tour::box(const QString& ip) const
{
    return devices()->treeModel()->find(ip);
}

void Tour::moveMouse(QWidget* widget, const QPoint& pos)
{
    QTest::mouseMove(widget, pos);
    // The window system reports the way there a little later.
    (void)waitUntil([&] { return QCursor::pos() == widget->mapToGlobal(pos); }, 1000);
}

void Tour::click(QWidget* widget)
{
    moveMouse(widget, widget->rect().center());
    QTest::mouseClick(widget, Qt::LeftButton);
}

void Tour::clickBox(const QString& ip)
{
    TreeView* view = devices();
    const QModelIndex index = view->treeModel()->indexOf(box(ip));
    view->scrollTo(index);
    const QRect row = view->visualRect(index);
    const QPoint title(row.left() + row.width() / 3, row.center().y());
    moveMouse(view->viewport(), title);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, title);
}

bool Tour::inPopup(const std::function<void()>& open, const QString& what,
                   const std::function<bool(QWidget&)>& isReady,
                   const std::function<void(QWidget&)>& act)
{
    // A dialog or menu runs a loop of its own inside `open`: a timer acts in it.
    enum { Waiting, Acting, Reached, Missed } state = Waiting;
    QElapsedTimer sinceOpen;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, &watch, [&] {
        if (state != Waiting)
            return;
        QWidget* popup = openPopup();
        const bool active = popup && (popup->windowType() == Qt::Popup || popup->isActiveWindow());
        const bool ready = active && isReady(*popup);
        if (!ready && sinceOpen.elapsed() < popupSeconds * 1000)
            return;
        state = Acting;
        if (ready)
            act(*popup);
        else
            takePicture();
        closePopups();
        state = ready ? Reached : Missed;
    });
    sinceOpen.start();
    watch.start(20);
    open();
    (void)waitUntil([&] { return state == Reached || state == Missed; }, 2 * popupSeconds * 1000);
    return state == Reached || fail(QString("not within %1 s: %2").arg(popupSeconds).arg(what));
}

bool Tour::answerDialog(const std::function<void()>& open, const QString& text, Qt::Key key)
{
    return inPopup(
        open, "a dialog with: " + text,
        [&](QWidget& dialog) { return wordsOf(dialog).contains(text); },
        [&](QWidget& dialog) {
            takePicture();
            QTest::keyClick(&dialog, key);
        });
}

bool Tour::tellLan(const QString& command)
{
    QFile pipe(m_lanCommands);
    if (pipe.open(QIODevice::WriteOnly | QIODevice::Unbuffered) &&
        pipe.write(command.toUtf8() + "\n") > 0)
        return true;
    return fail("kora-lan cannot be told to " + command);
}

QStringList Tour::shownTexts() const
{
    QStringList texts{m_window.windowTitle()};
    const auto widgets = m_window.findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (!widget->isVisible())
            continue;
        texts << widget->toolTip() << widget->accessibleName();
        for (const char* property : {"text", "plainText", "placeholderText", "title"})
            texts << widget->property(property).toString();
        if (const auto* list = qobject_cast<const TreeView*>(widget)) {
            const auto items = list->treeModel()->items();
            for (const Item* item : items)
                texts << item->title() << item->content();
        }
    }
    texts.removeAll(QString());
    return texts;
}
