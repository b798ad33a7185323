// SPDX-License-Identifier: MIT
#include "widgets/message_box.h"

#include "ui_message_box.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScreen>

namespace
{

/// How far a notice is set off from the one before it, in pixels to the right and down.
constexpr int cascadeStep = 28;

bool isReturn(const QKeyEvent* key)
{
    return key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
}

bool isPlainReturn(const QKeyEvent* key)
{
    return isReturn(key) && (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
}

QList<const messageBox*> otherVisibleBoxes(const messageBox* box)
{
    QList<const messageBox*> boxes;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (const QWidget* window : windows) {
        const auto* other = qobject_cast<const messageBox*>(window);
        if (other && other != box && other->isVisible())
            boxes.append(other);
    }
    return boxes;
}

bool isTaken(const QList<const messageBox*>& boxes, QPoint place)
{
    for (const messageBox* box : boxes) {
        if ((box->pos() - place).manhattanLength() < cascadeStep)
            return true;
    }
    return false;
}

/// Over the middle of the parent window, or else of the screen, moved down and right past the
/// boxes already there. When the screen has no free step left, places are used again in turn.
QPoint cascadePlace(const messageBox* box)
{
    const QWidget* parent = box->parentWidget() ? box->parentWidget()->window() : nullptr;
    const QScreen* screen = parent ? parent->screen() : QApplication::primaryScreen();
    const QRect room = screen->availableGeometry();
    const bool hasParent = parent && parent->isVisible();
    const QRect frame = hasParent ? parent->frameGeometry() : room;

    // It gets its own frame only when it is shown: as wide as that of its parent.
    const QSize border = hasParent ? parent->frameSize() - parent->size() : QSize(0, 0);
    QRect place(QPoint(), box->size() + border);
    place.moveCenter(frame.center());
    place.moveLeft(qMax(room.left(), qMin(place.left(), room.right() + 1 - place.width())));
    place.moveTop(qMax(room.top(), qMin(place.top(), room.bottom() + 1 - place.height())));

    const int across = (room.right() - place.right()) / cascadeStep;
    const int down = (room.bottom() - place.bottom()) / cascadeStep;
    const int steps = 1 + qMax(0, qMin(across, down));
    const QList<const messageBox*> boxes = otherVisibleBoxes(box);
    const QPoint offset(cascadeStep, cascadeStep);
    for (int step = 0; step < steps; ++step) {
        if (!isTaken(boxes, place.topLeft() + step * offset))
            return place.topLeft() + step * offset;
    }
    return place.topLeft() + (boxes.count() % steps) * offset;
}

int runAndDelete(messageBox* box)
{
    // exec() itself deletes such a box, unless its parent was faster.
    box->setAttribute(Qt::WA_DeleteOnClose);
    return box->exec();
}

} // namespace

messageBox::messageBox(QWidget* parent) : QDialog(parent), m_ui(std::make_unique<Ui::messageBox>())
{
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    m_ui->setupUi(this);
    m_ui->Recovery->hide();
    m_ui->input->hide();
    m_ui->input->setMultiLine();
    m_ui->input->contentEdit()->installEventFilter(this);
    m_ui->label->setVisible(!m_ui->label->pixmap(Qt::ReturnByValue).isNull());
    m_ui->okpushButton->setFocus();
}

messageBox::messageBox(const QString& text, QWidget* parent) : messageBox(parent)
{
    setText(text);
}

messageBox::~messageBox() = default;

int messageBox::ask(const QString& text, QWidget* parent, const QString& okText,
                    const QString& cancelText)
{
    auto* box = new messageBox(text, parent);
    box->setButtonText(okText, cancelText);
    return runAndDelete(box);
}

void messageBox::tell(const QString& text, QWidget* parent)
{
    auto* box = new messageBox(text, parent);
    box->setNotice();
    runAndDelete(box);
}

int messageBox::askWithRecovery(const QString& text, QWidget* parent)
{
    auto* box = new messageBox(text, parent);
    box->setRecoveryVisible(true);
    return runAndDelete(box);
}

messageBox* messageBox::notify(const QString& text, QWidget* parent)
{
    auto* box = new messageBox(text, parent);
    box->setNotice();
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setAttribute(Qt::WA_ShowWithoutActivating);
    box->move(cascadePlace(box));
    box->show();
    // A question that waits blocks this notice: it must not vanish behind it.
    if (QWidget* modal = QApplication::activeModalWidget())
        modal->raise();
    return box;
}

void messageBox::setText(const QString& text)
{
    m_ui->m_tipContent->setText(text);
    // Told when the dialog comes up: it has no title.
    setAccessibleName(text);
}

QString messageBox::text() const
{
    return m_ui->m_tipContent->text();
}

void messageBox::setButtonText(const QString& okText, const QString& cancelText)
{
    m_okText = okText;
    m_cancelText = cancelText;
    applyButtonText();
}

void messageBox::setNotice()
{
    m_ui->cancelpushButton->hide();
}

void messageBox::setRecoveryVisible(bool visible)
{
    m_ui->Recovery->setVisible(visible);
}

void messageBox::showInput()
{
    m_ui->m_tipContent->hide();
    m_ui->label->hide();
    m_ui->input->setPlaceholderText(text());
    m_ui->input->contentEdit()->setAccessibleName(text());
    m_ui->input->show();
    m_ui->input->setFocus();
}

QString messageBox::inputText() const
{
    return m_ui->input->text();
}

bool messageBox::event(QEvent* event)
{
    // Left to the shortcuts, Return would press OK over a focused Cancel, and nothing at all while
    // OK and Recovery share it. As an ordinary key it finds the focused or the default button.
    if (event->type() == QEvent::ShortcutOverride &&
        isPlainReturn(static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QDialog::event(event);
}

bool messageBox::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_ui->input->contentEdit() && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (isReturn(key) && !(key->modifiers() & Qt::ShiftModifier)) {
            m_ui->okpushButton->click();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void messageBox::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        applyButtonText();
}

void messageBox::on_okpushButton_clicked()
{
    done(Confirmed);
}

void messageBox::on_cancelpushButton_clicked()
{
    done(Cancelled);
}

void messageBox::on_Recovery_clicked()
{
    done(ConfirmedKeepConfiguration);
}

void messageBox::applyButtonText()
{
    m_ui->retranslateUi(this);
    // A new text takes a button's shortcut away.
    const auto rename = [](QPushButton* button, const QString& name) {
        if (!name.isEmpty()) {
            const QKeySequence shortcut = button->shortcut();
            button->setText(name);
            button->setShortcut(shortcut);
        }
    };
    rename(m_ui->okpushButton, m_okText);
    rename(m_ui->cancelpushButton, m_cancelText);
}

QString promptText(const QString& title, const QString& prompt, QWidget* parent)
{
    auto* box = new messageBox(prompt, parent);
    box->setWindowTitle(title);
    box->showInput();
    QString answer;
    QObject::connect(box, &QDialog::accepted, box, [&answer, box] { answer = box->inputText(); });
    runAndDelete(box);
    return answer;
}
