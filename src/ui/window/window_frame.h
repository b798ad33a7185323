// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QVector>

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
    void setCaptions(const QString& text);
    void sizeWindow();
    void fixSplitter(QSplitter* splitter);

    Ui::Tarn_Hub& m_form;
    QWidget* m_window;
    WebPane* m_webPane;
    QMovie* m_logo;
    /// Panes that full screen hid and that come back with it.
    QVector<QWidget*> m_hiddenPanes;
    bool m_wasMaximized = false;
};
