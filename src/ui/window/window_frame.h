// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

class Item;
class QMovie;
class QSplitter;
class QWidget;
class WebPane;
namespace Ui
{
class Tarn_Hub;
}

/// The window's panes: their sizes, and which of them show what.
class WindowFrame : public QObject
{
    Q_OBJECT

public:
    /// `form` is the built form of `window`, which owns everything in it.
    WindowFrame(Ui::Tarn_Hub& form, QWidget* window);

    /// The panes of a window that has its size by now.
    void sizePanes();
    /// What shows before any box is selected.
    void showStart();

    void showNothingSelected();
    /// The panes of a KORA box, with its name in every title; one that is being upgraded shows the
    /// waiting page.
    void showKora(const Item& box);
    /// The waiting page, in place of picture and recordings, while the selected box is upgraded.
    void showWaiting();
    /// The picture, or the stream information, as the monitor's toggle says.
    void showMonitorPage();
    void showWebPage(const QString& url);

    void setFullScreen(bool on);

private:
    enum class Shown { Nothing, Kora, WebPage };

    /// Shows and hides the panes as everything below says. The operator may have folded those on
    /// the right away, for a larger picture.
    void arrange();
    void setCaptions(const QString& text);
    void sizeWindow();
    void fixSplitter(QSplitter* splitter);

    Ui::Tarn_Hub& m_form;
    QWidget* m_window;
    WebPane* m_webPane;
    QMovie* m_logo;
    Shown m_shown = Shown::Nothing;
    bool m_showsInfo = true;
    bool m_isWaiting = false; ///< the selected box is being upgraded
    bool m_isFull = false;
    bool m_wasMaximized = false;
};
