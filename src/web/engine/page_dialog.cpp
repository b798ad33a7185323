// SPDX-License-Identifier: MIT
#include "web/engine/page_dialog.h"

#include "widgets/message_text.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace
{

constexpr int dialogWidth = 420;
constexpr int longestText = 2000;
constexpr int longestAnswer = 10000;
constexpr int longestHost = 80;

QString shortened(const QString& text)
{
    return text.size() <= longestText ? text : text.left(longestText) + QStringLiteral(" …");
}

QString headline(PageDialog::Kind kind, const QString& asker)
{
    return kind == PageDialog::Login ? PageDialog::tr("%1 要求登录").arg(asker)
                                     : PageDialog::tr("%1 的网页显示").arg(asker);
}

} // namespace

PageDialog::PageDialog(Kind kind, const QString& asker, const QString& text, QWidget* parent)
    : QDialog(parent), m_silence(new QCheckBox(tr("不再显示此网页的对话框"), this))
{
    setObjectName(QStringLiteral("pageDialog"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setWindowModality(Qt::WindowModal);
    setWindowTitle(headline(kind, asker));
    setMinimumWidth(dialogWidth);

    auto* layout = new QVBoxLayout(this);
    auto* who = new QLabel(headline(kind, asker), this);
    who->setObjectName(QStringLiteral("pageDialogAsker"));
    who->setTextFormat(Qt::PlainText);
    who->setWordWrap(true);
    who->setProperty("dim", true);
    layout->setSpacing(12);
    layout->addWidget(who);
    if (!text.isEmpty()) {
        auto* message = new MessageText(this);
        message->setObjectName(QStringLiteral("pageDialogText"));
        message->setStyleSheet(QStringLiteral("border: none; background: transparent; padding: 0"));
        message->setText(shortened(text));
        layout->addWidget(message, 1);
    }
    if (kind == Prompt)
        m_answer = addField(QString());
    if (kind == Login) {
        m_answer = addField(tr("用户名"));
        m_password = addField(tr("密码"));
        m_password->setEchoMode(QLineEdit::Password);
    }
    layout->addWidget(m_silence);
    m_silence->hide();

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* ok = buttons->addButton(tr("确定"), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    if (kind != Notice)
        buttons->addButton(tr("取消"), QDialogButtonBox::RejectRole);
    layout->addWidget(buttons);
    // Not the text, which takes the keyboard only to be copied.
    (m_answer ? static_cast<QWidget*>(m_answer) : ok)->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

QString PageDialog::shortHost(const QString& host)
{
    return host.size() <= longestHost ? host : QStringLiteral("…") + host.right(longestHost);
}

QLineEdit* PageDialog::addField(const QString& caption)
{
    if (!caption.isEmpty())
        layout()->addWidget(new QLabel(caption, this));
    auto* field = new QLineEdit(this);
    field->setMaxLength(longestAnswer);
    layout()->addWidget(field);
    return field;
}

void PageDialog::offerSilence()
{
    m_silence->show();
}

bool PageDialog::silenceWanted() const
{
    return m_silence->isChecked();
}

void PageDialog::setAnswer(const QString& answer)
{
    m_answer->setText(answer);
    m_answer->selectAll();
}

QString PageDialog::answer() const
{
    return m_answer ? m_answer->text() : QString();
}

QString PageDialog::password() const
{
    return m_password ? m_password->text() : QString();
}
