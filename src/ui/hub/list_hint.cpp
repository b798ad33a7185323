// SPDX-License-Identifier: MIT
#include "ui/hub/list_hint.h"

#include <QAbstractItemView>
#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>
#include <QVariant>

namespace
{

constexpr int margin = 16;

QLabel* makeLabel(QWidget* parent, const QString& name)
{
    auto* label = new QLabel(parent);
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignHCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

ListHint::ListHint(QAbstractItemView* list)
    : QWidget(list->viewport())
    , m_list(list)
    , m_title(makeLabel(this, QStringLiteral("title")))
    , m_words(makeLabel(this, QStringLiteral("words")))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    m_words->setProperty("dim", true);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(margin, margin, margin, margin);
    layout->addStretch(1);
    layout->addWidget(m_title);
    layout->addWidget(m_words);
    layout->addStretch(1);
    const QAbstractItemModel* rows = list->model();
    connect(rows, &QAbstractItemModel::rowsInserted, this, &ListHint::refresh);
    connect(rows, &QAbstractItemModel::rowsRemoved, this, &ListHint::refresh);
    connect(rows, &QAbstractItemModel::modelReset, this, &ListHint::refresh);
    list->viewport()->installEventFilter(this);
}

bool ListHint::isListEmpty() const
{
    return m_list->model()->rowCount() == 0;
}

void ListHint::refresh()
{
    // None that is hidden keeps words of another language.
    const bool isEmpty = isListEmpty();
    m_title->setText(isEmpty ? title() : QString());
    m_words->setText(isEmpty ? words() : QString());
    m_title->setHidden(m_title->text().isEmpty());
    setHidden(m_title->text().isEmpty() && m_words->text().isEmpty());
    place();
}

void ListHint::place()
{
    setGeometry(m_list->viewport()->rect());
    raise();
}

void ListHint::changeEvent(QEvent* event)
{
    if (event->type() == QEvent::LanguageChange)
        refresh();
    QWidget::changeEvent(event);
}

bool ListHint::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Resize)
        place();
    return QWidget::eventFilter(watched, event);
}
