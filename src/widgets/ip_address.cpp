// SPDX-License-Identifier: MIT
#include "widgets/ip_address.h"

#include <QClipboard>
#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QRegularExpressionValidator>
#include <QScopedValueRollback>
#include <QStringList>
#include <QStyle>
#include <QVBoxLayout>
#include <QVariant>

#include <algorithm>

namespace
{

bool isAddress(const QString& text)
{
    static const QRegularExpression address(QRegularExpression::anchoredPattern(QStringLiteral(
        "((2[0-4]\\d|25[0-5]|[01]?\\d\\d?)\\.){3}(2[0-4]\\d|25[0-5]|[01]?\\d\\d?)")));
    return address.match(text).hasMatch();
}

QHBoxLayout* tightRow(QWidget* widget)
{
    auto* row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    return row;
}

} // namespace

IPAddress::IPAddress(QWidget* parent)
    : QWidget(parent)
    , bgColor(QStringLiteral("#00000000"))
    , borderColor(QStringLiteral("#00000000"))
    , borderRadius(3)
{
    auto* frame = new QFrame(this);
    frame->setObjectName(QStringLiteral("frameIP"));
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    outer->addWidget(frame);

    txtIP1 = createField(QStringLiteral("txtIP1"), frame);
    txtIP2 = createField(QStringLiteral("txtIP2"), frame);
    txtIP3 = createField(QStringLiteral("txtIP3"), frame);
    txtIP4 = createField(QStringLiteral("txtIP4"), frame);
    m_fields = {txtIP1, txtIP2, txtIP3, txtIP4};

    auto* validator = new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("(2[0-5]{2}|2[0-4][0-9]|1?[0-9]{1,2})")), this);
    QHBoxLayout* row = tightRow(frame);
    for (QLineEdit* field : m_fields) {
        field->setValidator(validator);
        if (field != txtIP1) {
            auto* dot = new QLabel(QStringLiteral("."), frame);
            dot->setAlignment(Qt::AlignCenter);
            row->addWidget(dot);
        }
        row->addWidget(field);
    }
    frame->setStyleSheet(frameStyle());
    setFocusProxy(txtIP1);
    // The frame's own border has the look that it was built with, whoever has the keys.
    m_outline = new QFrame(this);
    m_outline->setObjectName(QStringLiteral("outlineIP"));
    m_outline->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_outline->setProperty("focused", false);
}

void IPAddress::nameFields()
{
    for (int index = 0; index < FieldCount; ++index)
        m_fields[index]->setAccessibleName(
            tr("%1，第%2段，共4段").arg(accessibleName()).arg(index + 1));
}

QString IPAddress::getIP()
{
    if (!isAddress(ip))
        ip.clear();
    return ip;
}

QSize IPAddress::sizeHint() const
{
    return QSize(250, 20);
}

QSize IPAddress::minimumSizeHint() const
{
    return QSize(30, 10);
}

void IPAddress::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    m_outline->setGeometry(rect());
}

void IPAddress::showFocus()
{
    const bool hasKeys = std::any_of(m_fields.begin(), m_fields.end(),
                                     [](const QLineEdit* field) { return field->hasFocus(); });
    if (m_outline->property("focused").toBool() == hasKeys)
        return;
    m_outline->setProperty("focused", hasKeys);
    style()->unpolish(m_outline);
    style()->polish(m_outline);
}

bool IPAddress::eventFilter(QObject* watched, QEvent* event)
{
    for (int index = 0; index < FieldCount; ++index) {
        if (watched != m_fields[index])
            continue;
        if (event->type() == QEvent::KeyPress)
            return handleKey(index, static_cast<QKeyEvent*>(event));
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            showFocus();
        if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::FocusOut)
            m_justMovedOn = false;
    }
    return QWidget::eventFilter(watched, event);
}

void IPAddress::textChanged(const QString& text)
{
    const int value = text.toInt();
    if (!m_filling && text.size() == 3 && value >= 100 && value <= 255) {
        for (int index = 0; index + 1 < FieldCount; ++index) {
            if (m_fields[index]->hasFocus()) {
                moveOn(index);
                m_justMovedOn = true;
                break;
            }
        }
    }
    ip = QStringLiteral("%1.%2.%3.%4")
             .arg(txtIP1->text(), txtIP2->text(), txtIP3->text(), txtIP4->text());
}

void IPAddress::R_returnPressed()
{
    if (isAddress(ip))
        emit returnPressed();
}

void IPAddress::setIP(const QString& ip)
{
    if (this->ip != ip && isAddress(ip))
        fill(ip);
}

void IPAddress::clear()
{
    {
        const QScopedValueRollback<bool> filling(m_filling, true);
        for (QLineEdit* field : m_fields)
            field->clear();
    }
    txtIP1->setFocus();
}

void IPAddress::setBgColor(const QString& bgColor)
{
    if (this->bgColor != bgColor)
        this->bgColor = bgColor;
}

void IPAddress::setBorderColor(const QString& borderColor)
{
    if (this->borderColor != borderColor)
        this->borderColor = borderColor;
}

void IPAddress::setBorderRadius(int borderRadius)
{
    if (this->borderRadius != borderRadius)
        this->borderRadius = borderRadius;
}

QLineEdit* IPAddress::createField(const QString& name, QFrame* frame)
{
    auto* field = new QLineEdit(frame);
    field->setObjectName(name);
    field->setAlignment(Qt::AlignCenter);
    field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    field->setContextMenuPolicy(Qt::NoContextMenu);
    field->installEventFilter(this);
    connect(field, &QLineEdit::textChanged, this, &IPAddress::textChanged);
    connect(field, &QLineEdit::returnPressed, this, &IPAddress::R_returnPressed);
    return field;
}

QString IPAddress::frameStyle() const
{
    return QStringLiteral("QFrame#frameIP{border:1px solid %1;border-radius:%2px;}")
               .arg(borderColor)
               .arg(borderRadius) +
           QStringLiteral("QLabel{min-width:15px;background-color:%1;}").arg(bgColor) +
           QStringLiteral("QLineEdit{background-color:%1;border:none;}").arg(bgColor) +
           QStringLiteral("QLineEdit#txtIP1{border-top-left-radius:%1px;"
                          "border-bottom-left-radius:%1px;}")
               .arg(borderRadius) +
           QStringLiteral("QLineEdit#txtIP4{border-top-right-radius:%1px;"
                          "border-bottom-right-radius:%1px;}")
               .arg(borderRadius);
}

bool IPAddress::handleKey(int index, const QKeyEvent* key)
{
    const QLineEdit* field = m_fields[index];
    const bool justMovedOn = m_justMovedOn;
    const bool plain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool isFirst = index == 0;
    const bool isLast = index == FieldCount - 1;
    m_justMovedOn = false;

    if (key->matches(QKeySequence::Paste))
        return pasteAddress();
    if (key->text() == QLatin1String(".")) {
        // Whoever types "192.168" over an old address types this dot for the move just made.
        if (!isLast && !field->text().isEmpty() && !justMovedOn)
            moveOn(index);
    } else if (key->key() == Qt::Key_Backspace) {
        if (!isFirst && field->text().isEmpty())
            moveTo(index - 1, true);
    } else if (plain && !field->hasSelectedText()) {
        if (key->key() == Qt::Key_Left && !isFirst && field->cursorPosition() == 0) {
            moveTo(index - 1, true);
        } else if (key->key() == Qt::Key_Right && !isLast &&
                   field->cursorPosition() == field->text().size()) {
            moveTo(index + 1, false);
        }
    }
    return false;
}

bool IPAddress::pasteAddress()
{
    const QString text = QGuiApplication::clipboard()->text().trimmed();
    if (!isAddress(text) || txtIP1->isReadOnly())
        return false;
    // "010" is accepted as an address but not by a field: zeros in front go.
    QStringList parts = text.split(QLatin1Char('.'));
    for (QString& part : parts)
        part = QString::number(part.toInt());
    fill(parts.join(QLatin1Char('.')));
    moveTo(FieldCount - 1, true);
    return true;
}

void IPAddress::fill(const QString& address)
{
    const QScopedValueRollback<bool> filling(m_filling, true);
    ip = address;
    const QStringList parts = address.split(QLatin1Char('.'));
    for (int index = 0; index < FieldCount; ++index)
        m_fields[index]->setText(parts.at(index));
}

void IPAddress::moveOn(int index)
{
    QLineEdit* next = m_fields[index + 1];
    next->setFocus(Qt::OtherFocusReason);
    next->selectAll();
}

void IPAddress::moveTo(int index, bool toEnd)
{
    QLineEdit* field = m_fields[index];
    field->setFocus(Qt::OtherFocusReason);
    field->deselect();
    field->setCursorPosition(toEnd ? field->text().size() : 0);
}
