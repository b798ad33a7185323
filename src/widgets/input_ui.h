// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <memory>

class QCompleter;
class QTextEdit;

namespace Ui
{
class Inputui;
}

/// A text entry panel with two pages: one line (a title) or several lines (content). A new panel
/// shows the single line.
class Inputui : public QWidget
{
    Q_OBJECT

public:
    enum Page { SingleLine = 0, MultiLine = 1 };

    explicit Inputui(QWidget* parent = nullptr);
    ~Inputui() override;

    /// Shows a page, 0 (SingleLine) or 1 (MultiLine). Any other index is ignored.
    void setCurrentIndex(int index);
    int currentIndex() const;
    /// Short for setCurrentIndex(MultiLine).
    void setMultiLine();

    /// The placeholder of the current page's field. An empty text also left-aligns both fields. The
    /// next language change puts the panel's own placeholder back.
    void setPlaceholderText(const QString& text);

    /// The current page's text, always plain: markup is shown and returned as it was typed.
    void setText(const QString& text);
    QString text() const;

    /// Suggestions for the single-line field, listed as soon as it is clicked. The caller owns the
    /// completer; null takes it away.
    void setCompleter(QCompleter* completer);

    /// The multi-line field, for a dialog that gives its keys another meaning. Owned by the panel.
    QTextEdit* contentEdit() const;

signals:
    /// The single-line text changed, by the user or by setText().
    void textChanged(const QString& str);
    /// Enter was pressed in the single-line field.
    void returnPressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private slots:
    void on_titleEdit_textChanged(const QString& arg1);

private:
    /// Sizes the panel by the page it shows: one line is as high as its field, no more.
    void fitPage();
    void showSuggestions();

    std::unique_ptr<Ui::Inputui> m_ui;
};
