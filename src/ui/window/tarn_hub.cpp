// SPDX-License-Identifier: MIT
#include "ui/window/tarn_hub.h"

#include "common/box_protocol.h"
#include "common/spark_http.h"
#include "device/item.h"
#include "device/tree_view.h"
#include "media/ffmpeg_widget.h"
#include "ui/window/hub_features.h"
#include "ui/window/options.h"

#include <QCloseEvent>
#include <QTimer>

Tarn_Hub::Tarn_Hub(const Options& options, QWidget* parent)
    : QWidget(parent), m(std::make_unique<Features>(this, options))
{
    connect(Spark_Http::instance(), &Spark_Http::S_finished, this, &Tarn_Hub::R_finished);
    connect(m->form.device_list->ui.deviceView, &TreeView::S_ActionClicked, this,
            &Tarn_Hub::R_ActionClicked);
    ListWidget* storage = m->form.monitor_bottom->ui.storageWidget;
    connect(storage, &ListWidget::S_download, this, &Tarn_Hub::R_download);
    connect(storage, &ListWidget::S_delete, this, &Tarn_Hub::R_delete);
    connect(storage, &ListWidget::S_ActionClicked, this, &Tarn_Hub::R_ActionClicked);
    connect(m->form.monitor_top->ui.video_widget, &FFmpegWidget::playstatus, this,
            &Tarn_Hub::R_playstatus);
    connect(&m->audio.timer(), &QTimer::timeout, this, &Tarn_Hub::R_timerSliderout);
    connect(&m->language, &Language::chosen, this, &Tarn_Hub::retranslate);
    m->connectRooms();
    for (QWidget* widget : m->dropAreas.areas())
        widget->installEventFilter(this);
    m->form.monitor_top->ui.video_widget->installEventFilter(this);
    setWindowTitle(QStringLiteral("Tarn Hub v%1").arg(applicationVersion()));
    QTimer::singleShot(100, this, &Tarn_Hub::R_delayAction);
}

Tarn_Hub::~Tarn_Hub()
{
    m->devices->stop();
    CommandRunner::endAll();
}

void Tarn_Hub::watchEnds()
{
    m->endings.watch();
}

void Tarn_Hub::R_delayAction()
{
    m->start();
}

void Tarn_Hub::retranslate()
{
    setLocale(m->language.locale());
    m->form.retranslateUi(this);
    m->form.device_list->retranslate();
    m->form.device_info->retranslate();
    m->form.monitor_top->retranslate();
    m->form.monitor_bottom->retranslate();
    m->form.config_area->retranslate();
    m->form.control_area->retranslate();
    m->deviceInfo.retranslate();
    m->deviceAbsence.retranslate();
    m->panel.retranslate();
}

bool Tarn_Hub::eventFilter(QObject* watched, QEvent* event)
{
    if (m->dropAreas.contains(watched) && m->dropAreas.filter(watched, event))
        return true;
    if (watched == m->form.monitor_top->ui.video_widget && m->monitor.filter(event))
        return true;
    return QWidget::eventFilter(watched, event);
}

void Tarn_Hub::closeEvent(QCloseEvent* event)
{
    event->setAccepted(m->endings.mustEnd() ||
                       (m->closing.mayClose() && m->upgrade.mayClose() && m->downloads.mayClose()));
}

void Tarn_Hub::refreshLocalIP()
{
    m->localAddresses.refresh();
}

void Tarn_Hub::refreshDeviceState()
{
    m->devices->checkStates();
}

void Tarn_Hub::R_findDeviceIP(QStringList ips)
{
    m->devices->probe(ips);
}

void Tarn_Hub::R_refreshDeviceIP(QStringList ips)
{
    m->devices->setReachable(ips, qobject_cast<Spark_Thread*>(sender()));
}

void Tarn_Hub::R_finished(QVariantMap map)
{
    m->exchange.deliverResult(map);
}

void Tarn_Hub::R_readyReadStandardOutput()
{
    auto* process = qobject_cast<QProcess*>(sender());
    if (!process)
        return;
    const QString reply = m->runner.takeReply(process);
    if (!reply.isEmpty())
        m->exchange.deliverReply(*process, reply);
}

void Tarn_Hub::R_stateChanged(QProcess::ProcessState state)
{
    auto* process = qobject_cast<QProcess*>(sender());
    if (!process || state != QProcess::NotRunning)
        return;
    m->runner.takeRest(process);
    m->runner.noteEnd(process);
    m->exchange.deliverEnd(*process);
}

void Tarn_Hub::R_download(QList<QListWidgetItem*> items)
{
    m->downloads.ask(items);
}

void Tarn_Hub::R_delete(QList<QListWidgetItem*> items)
{
    m->recordings.remove(items);
}

void Tarn_Hub::R_ActionClicked(Action type, Item* itemObj)
{
    m->exchange.deliverAction(type, itemObj);
}

void Tarn_Hub::R_playstatus(int status, const QString& url)
{
    m->recordings.showStatus(status, url);
}

void Tarn_Hub::R_timerSliderout()
{
    m->audio.send();
}

void Tarn_Hub::on_save_clicked()
{
    m->save.save();
}

void Tarn_Hub::on_refreshDevice_clicked()
{
    m->devices->forgetIdleDevices();
}

void Tarn_Hub::on_firmwareUpdate_clicked()
{
    m->upgrade.choosePackage();
}

void Tarn_Hub::on_HB_clicked(bool checked)
{
    m->encoder.setHb(checked);
}

void Tarn_Hub::on_HX2_clicked(bool checked)
{
    m->encoder.setHx2(checked);
}

void Tarn_Hub::on_HX3_clicked(bool checked)
{
    m->encoder.setHx3(checked);
}

void Tarn_Hub::on_language_clicked()
{
    m->language.askAtCursor();
}

void Tarn_Hub::on_recode_clicked(bool checked)
{
    m->record.setRecording(checked);
}

void Tarn_Hub::on_collapse_clicked()
{
    m->deviceList.setExpanded(false);
}

void Tarn_Hub::on_expand_clicked()
{
    m->deviceList.setExpanded(true);
}

void Tarn_Hub::on_full_clicked()
{
    m->frame.setFullScreen(true);
}

void Tarn_Hub::on_colsefull_clicked()
{
    m->frame.setFullScreen(false);
}

void Tarn_Hub::on_md5_clicked()
{
    m->upgrade.showMd5();
}

void Tarn_Hub::on_video_play_clicked(bool checked)
{
    m->recordings.playSelected(checked);
}

void Tarn_Hub::on_video_after_clicked()
{
    m->recordings.playNeighbour(-1);
}

void Tarn_Hub::on_video_front_clicked()
{
    m->recordings.playNeighbour(1);
}

void Tarn_Hub::on_switch_monitor_clicked(bool)
{
    m->frame.showMonitorPage();
}

void Tarn_Hub::on_eParam_SDIVolumeSlider_valueChanged(int)
{
    m->audio.sliderMoved(m->form.control_area->ui.eParam_SDIVolumeSlider, BoxProtocol::SDIVolume);
}

void Tarn_Hub::on_eParam_LineinVolumeSlider_valueChanged(int)
{
    m->audio.sliderMoved(m->form.control_area->ui.eParam_LineinVolumeSlider,
                         BoxProtocol::LineinVolume);
}

void Tarn_Hub::on_eParam_LineinDelaySlider_valueChanged(int)
{
    m->audio.sliderMoved(m->form.control_area->ui.eParam_LineinDelaySlider,
                         BoxProtocol::LineinDelay);
}

void Tarn_Hub::on_H264_clicked(bool checked)
{
    m->encoder.setH264(checked);
}

void Tarn_Hub::on_H265_clicked(bool checked)
{
    m->encoder.setH265(checked);
}

void Tarn_Hub::on_pushButton_hxdec_on_clicked()
{
    m->decode.ask();
}

void Tarn_Hub::on_pushButton_live_on_clicked()
{
    m->live.ask();
}
