// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>
#include <array>

class QFrame;
class QKeyEvent;
class QLineEdit;

/// An editor for one IPv4 address: four fields in one frame.
///
/// A full number or "." moves on to the next field and selects what it holds, so that typing
/// replaces it; a "." typed right after such a move counts as part of it. Backspace in an empty
/// field moves back, and so do the arrow keys at the ends of a field. A whole address pasted into
/// any field, blanks around it or not, fills all four.
class IPAddress : public QWidget
{
    Q_OBJECT

public:
    explicit IPAddress(QWidget* parent = nullptr);

    /// Names the four fields after the accessible name of the whole; again when the language
    /// changes.
    void nameFields();

    /// The address in dotted form, empty while it is incomplete or invalid.
    QString getIP();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    /// Enter was pressed in a field while the address is valid.
    void returnPressed();

protected:
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private slots:
    void textChanged(const QString& text);
    void R_returnPressed();

public slots:
    /// Shows a dotted address; an invalid one is ignored. Does not move the focus.
    void setIP(const QString& ip);
    /// Empties the four fields and focuses the first.
    void clear();
    /// The three looks are stored only: the style sheet stays as the constructor built it.
    void setBgColor(const QString& bgColor);
    void setBorderColor(const QString& borderColor);
    void setBorderRadius(int borderRadius);

private:
    static constexpr int FieldCount = 4;

    QLineEdit* createField(const QString& name, QFrame* frame);
    QString frameStyle() const;
    void showFocus();
    /// Both return true if the key was used up here and must not reach the field.
    bool handleKey(int index, const QKeyEvent* key);
    bool pasteAddress();
    void fill(const QString& address);
    void moveOn(int index);
    void moveTo(int index, bool toEnd);

    QLineEdit* txtIP1;
    QLineEdit* txtIP2;
    QLineEdit* txtIP3;
    QLineEdit* txtIP4;
    QString ip;
    QString bgColor;
    QString borderColor;
    int borderRadius;

    std::array<QLineEdit*, FieldCount> m_fields;
    QFrame* m_outline; ///< what the style sheet draws around the fields
    /// The fields are being written by code: the focus stays where it is.
    bool m_filling = false;
    /// The last key filled a field up and moved the focus on.
    bool m_justMovedOn = false;
};
