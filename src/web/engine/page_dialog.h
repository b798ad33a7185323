// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QCheckBox;
class QLineEdit;
class MessageText;

/// What a page or its server asks of the user. Says above all who asks: that line is ours, and
/// nothing of the page stands in it.
class PageDialog : public QDialog
{
    Q_OBJECT

public:
    enum Kind { Notice, Question, Prompt, Login };

    /// `asker` is the host, "192.168.1.5" or "192.168.1.5:8080"; `text` is the page's, shown plain
    /// and cut where it is absurdly long. Modal to the window of `parent`.
    PageDialog(Kind kind, const QString& asker, const QString& text, QWidget* parent);

    /// The end of a host's name that would push the rest out of sight: its end tells who it is.
    static QString shortHost(const QString& host);

    /// Offers to hear no more of this page.
    void offerSilence();
    bool silenceWanted() const;

    void setAnswer(const QString& answer); ///< what a prompt proposes
    QString answer() const;                ///< of a prompt, or the user name of a login
    QString password() const;

private:
    QLineEdit* addField(const QString& caption);

    QLineEdit* m_answer = nullptr;
    QLineEdit* m_password = nullptr;
    QCheckBox* m_silence;
};
