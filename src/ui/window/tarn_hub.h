// SPDX-License-Identifier: MIT
#pragma once

#include "device/action.h"

#include <QProcess>
#include <QStringList>
#include <QVariantMap>
#include <QWidget>

#include <memory>

class Item;
class QListWidgetItem;
struct Options;

/// The main window. It builds the form, connects, and forwards: each slot is one call into the
/// feature that does the work.
class Tarn_Hub : public QWidget
{
    Q_OBJECT

public:
    explicit Tarn_Hub(const Options& options, QWidget* parent = nullptr);
    ~Tarn_Hub() override;

    /// The process ends with this window, in whatever way.
    void watchEnds();

public slots:
    void refreshLocalIP();
    void refreshDeviceState();
    void R_delayAction();
    void R_findDeviceIP(QStringList ips);
    void R_refreshDeviceIP(QStringList ips);
    void R_finished(QVariantMap map);
    void R_readyReadStandardOutput();
    void R_stateChanged(QProcess::ProcessState state);
    void R_download(QList<QListWidgetItem*> items);
    void R_delete(QList<QListWidgetItem*> items);
    void R_ActionClicked(Action type, Item* itemObj);
    void R_playstatus(int status, const QString& url);
    void R_timerSliderout();
    void on_save_clicked();
    void on_refreshDevice_clicked();
    void on_firmwareUpdate_clicked();
    void on_HB_clicked(bool checked);
    void on_HX2_clicked(bool checked);
    void on_HX3_clicked(bool checked);
    void on_language_clicked();
    void on_recode_clicked(bool checked);
    void on_collapse_clicked();
    void on_expand_clicked();
    void on_full_clicked();
    void on_colsefull_clicked();
    void on_md5_clicked();
    void on_video_play_clicked(bool checked);
    void on_video_after_clicked();
    void on_video_front_clicked();
    void on_switch_monitor_clicked(bool checked);
    void on_eParam_SDIVolumeSlider_valueChanged(int value);
    void on_eParam_LineinVolumeSlider_valueChanged(int value);
    void on_eParam_LineinDelaySlider_valueChanged(int value);
    void on_H264_clicked(bool checked);
    void on_H265_clicked(bool checked);
    void on_pushButton_hxdec_on_clicked();
    void on_pushButton_live_on_clicked();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    struct Features;

    void retranslate();

    const std::unique_ptr<Features> m;
};
