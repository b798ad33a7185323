// SPDX-License-Identifier: MIT
#include "widgets/input_ui.h"

#include "ui_input_ui.h"
#include "widgets/placeholder.h"

#include <QAbstractItemModel>
#include <QCompleter>
#include <QEvent>
#include <QPainter>
#include <QStyleOption>

Inputui::Inputui(QWidget* parent) : QWidget(parent), m_ui(std::make_unique<Ui::Inputui>())
{
    m_ui->setupUi(this);
    m_ui->titleCount->hide();
    m_ui->contentCount->hide();
    m_ui->label->hide();
    fitPage();
    connect(m_ui->titleEdit, &QLineEdit::returnPressed, this, &Inputui::returnPressed);

    keepPlaceholderDim(*m_ui->titleEdit);
    keepPlaceholderDim(*m_ui->contentEdit);
    m_ui->titleEdit->installEventFilter(this);
    m_ui->contentEdit->installEventFilter(this);
    installEventFilter(this);
}

Inputui::~Inputui() = default;

void Inputui::setCurrentIndex(int index)
{
    if (index != SingleLine && index != MultiLine)
        return;
    m_ui->stackedWidget->setCurrentIndex(index);
    fitPage();
}

int Inputui::currentIndex() const
{
    return m_ui->stackedWidget->currentIndex();
}

void Inputui::setMultiLine()
{
    setCurrentIndex(MultiLine);
}

void Inputui::setPlaceholderText(const QString& text)
{
    if (currentIndex() == MultiLine) {
        m_ui->contentEdit->setPlaceholderText(text);
    } else {
        m_ui->titleEdit->setPlaceholderText(text);
    }
    if (text.isEmpty()) {
        m_ui->titleEdit->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        m_ui->contentEdit->setAlignment(Qt::AlignLeft);
    }
}

void Inputui::setText(const QString& text)
{
    if (currentIndex() == MultiLine) {
        m_ui->contentEdit->setPlainText(text);
    } else {
        m_ui->titleEdit->setText(text);
    }
}

QString Inputui::text() const
{
    return currentIndex() == MultiLine ? m_ui->contentEdit->toPlainText() : m_ui->titleEdit->text();
}

void Inputui::setCompleter(QCompleter* completer)
{
    m_ui->titleEdit->setCompleter(completer);
}

QTextEdit* Inputui::contentEdit() const
{
    return m_ui->contentEdit;
}

bool Inputui::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == this && event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
    } else if (watched == m_ui->titleEdit && event->type() == QEvent::MouseButtonPress) {
        showSuggestions();
    }
    return QWidget::eventFilter(watched, event);
}

void Inputui::paintEvent(QPaintEvent*)
{
    // A plain QWidget subclass does not draw the background that a style sheet gives it.
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
}

void Inputui::on_titleEdit_textChanged(const QString& arg1)
{
    emit textChanged(arg1);
}

void Inputui::fitPage()
{
    const bool multiLine = currentIndex() == MultiLine;
    const auto ignored = QSizePolicy::Ignored;
    const auto heightOf = [](QWidget* widget, QSizePolicy::Policy policy) {
        widget->setSizePolicy(widget->sizePolicy().horizontalPolicy(), policy);
    };
    heightOf(m_ui->titlePage, multiLine ? ignored : QSizePolicy::Preferred);
    heightOf(m_ui->contentPage, multiLine ? QSizePolicy::Expanding : ignored);
    heightOf(m_ui->stackedWidget, multiLine ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    heightOf(this, multiLine ? QSizePolicy::Expanding : QSizePolicy::Fixed);
    m_ui->stackedWidget->updateGeometry();

    // Whoever focuses the panel means the field that it shows.
    if (multiLine) {
        setFocusProxy(m_ui->contentEdit);
    } else {
        setFocusProxy(m_ui->titleEdit);
    }
}

void Inputui::showSuggestions()
{
    QCompleter* completer = m_ui->titleEdit->completer();
    if (!completer || !completer->model() || completer->model()->rowCount() == 0)
        return;
    // A click asks for the whole list, whatever the field already holds.
    completer->setCompletionPrefix(QString());
    completer->complete();
}
