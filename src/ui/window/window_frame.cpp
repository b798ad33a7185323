// SPDX-License-Identifier: MIT
#include "ui/window/window_frame.h"

#include "device/item.h"
#include "ui/window/caption_columns.h"
#include "ui_tarn_hub.h"
#include "web/web_pane.h"

#include <QMovie>
#include <QScreen>
#include <QVBoxLayout>

WindowFrame::WindowFrame(Ui::Tarn_Hub& form, QWidget* window)
    : QObject(window)
    , m_form(form)
    , m_window(window)
    , m_webPane(new WebPane(form.web_widget))
    , m_logo(new QMovie(QStringLiteral(":/spark/img/logoning.gif"), QByteArray(), this))
{
    form.web_widget->layout()->addWidget(m_webPane);
    sizeWindow();
    for (QSplitter* splitter : {form.left_splitter, form.main_splitter, form.monitor_splitter})
        fixSplitter(splitter);
    form.left_splitter->setStretchFactor(0, 1);
    form.main_splitter->setStretchFactor(1, 1);
    form.main_splitter->setStretchFactor(3, 1);
    form.monitor_splitter->setStretchFactor(0, 1);
    new CaptionColumns({form.config_area->ui.layout4, form.control_area->ui.layout4}, this);
    connect(form.monitor_top->ui.fold_panels, &QToolButton::toggled, this, &WindowFrame::arrange);
}

/// As large as the panes want, and no larger than the screen.
void WindowFrame::sizeWindow()
{
    const QSize comfortable(1600, 960);
    const QRect screen = m_window->screen()->availableGeometry();
    const QSize size = screen.size().boundedTo(comfortable);
    m_window->resize(size);
    m_window->move(screen.center() - QRect(QPoint(), size).center());
}

/// The panes cannot be dragged.
void WindowFrame::fixSplitter(QSplitter* splitter)
{
    for (int n = 1; n < splitter->count(); ++n) {
        splitter->handle(n)->setAttribute(Qt::WA_StyledBackground);
        splitter->handle(n)->setEnabled(false);
    }
}

void WindowFrame::sizePanes()
{
    constexpr int left = 350;
    constexpr int right = 600;
    constexpr int lower = 260;
    QSplitter* main = m_form.main_splitter;
    main->setSizes({left, main->width() - left - right - 2 * main->handleWidth(), right});
    for (QSplitter* splitter : {m_form.left_splitter, m_form.monitor_splitter})
        splitter->setSizes({splitter->height() - lower - splitter->handleWidth(), lower});
}

void WindowFrame::showStart()
{
    Ui::MonitorArea& monitor = m_form.monitor_top->ui;
    m_form.device_list->ui.expand->hide();
    monitor.label_wait->setMovie(m_logo);
    m_logo->start();
    // Nobody sees it move on another page, and it would cost more than the rest of the window.
    const auto pause = [this, &monitor] {
        m_logo->setPaused(monitor.stackedWidget->currentWidget() != monitor.page_wait);
    };
    connect(monitor.stackedWidget, &QStackedWidget::currentChanged, this, pause);
    monitor.tip->clear();
    monitor.stackedWidget->setCurrentWidget(monitor.page_video);
    pause();
}

void WindowFrame::showNothingSelected()
{
    setCaptions(QString());
    m_shown = Shown::Nothing;
    arrange();
}

void WindowFrame::showKora(const Item& box)
{
    setCaptions(box.combinedLabel());
    m_shown = Shown::Kora;
    m_showsInfo = true;
    m_isWaiting = box.isUpgrading();
    if (m_isWaiting)
        showWaiting();
    else
        showMonitorPage();
    m_webPane->setUrl(QString());
    arrange();
}

void WindowFrame::showWaiting()
{
    Ui::MonitorArea& monitor = m_form.monitor_top->ui;
    monitor.stackedWidget->setCurrentWidget(monitor.page_wait);
    m_isWaiting = true;
    arrange();
}

void WindowFrame::showMonitorPage()
{
    Ui::MonitorArea& monitor = m_form.monitor_top->ui;
    monitor.stackedWidget->setCurrentWidget(
        monitor.switch_monitor->isChecked() ? monitor.page_meta : monitor.page_video);
}

void WindowFrame::showWebPage(const QString& url)
{
    m_shown = Shown::WebPage;
    m_showsInfo = false;
    m_webPane->setUrl(url);
    arrange();
}

void WindowFrame::arrange()
{
    Ui::MonitorArea& monitor = m_form.monitor_top->ui;
    const bool kora = m_shown == Shown::Kora;
    const bool web = m_shown == Shown::WebPage;
    m_form.left_splitter->setVisible(!m_isFull);
    m_form.device_info->setVisible(m_showsInfo);
    m_form.middle_widget->setVisible(!web);
    m_form.monitor_bottom->setVisible(kora && !m_isWaiting && !m_isFull);
    m_form.right_widget->setVisible(kora && !monitor.fold_panels->isChecked() && !m_isFull);
    m_form.web_widget->setVisible(web);
    monitor.fold_panels->setVisible(!m_isFull);
    monitor.fold_panels->setEnabled(kora);
    monitor.full->setVisible(!m_isFull);
    monitor.colsefull->setVisible(m_isFull);
}

/// The name of the selected box in the title of every area.
void WindowFrame::setCaptions(const QString& text)
{
    for (QLabel* caption : {m_form.monitor_top->ui.monitor_title_value,
                            m_form.config_area->ui.device_config_title_value,
                            m_form.control_area->ui.device_control_title_value,
                            m_form.monitor_bottom->ui.device_storage_title_value,
                            m_form.device_info->ui.device_info_title_value})
        caption->setText(text);
}

void WindowFrame::setFullScreen(bool on)
{
    // The window manager may have ended it meanwhile.
    if (on == m_isFull && on == m_window->isFullScreen())
        return;
    m_isFull = on;
    if (on)
        m_wasMaximized = m_window->isMaximized();
    arrange();
    if (on) {
        m_window->showFullScreen();
        // Escape leads back, whatever had the keyboard.
        m_form.monitor_top->ui.video_widget->setFocus();
    } else if (m_wasMaximized) {
        m_window->showMaximized();
    } else {
        m_window->showNormal();
    }
}
