// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

#include <memory>

class Item;
class Spark_Http;
namespace Ui
{
class setui;
}

/// Asks what to decode, or where to stream to. It only collects the choice; exec() returns one of
/// Result, and the caller sends the commands.
class setui : public QDialog
{
    Q_OBJECT

public:
    enum class Page { Decode, Live };
    enum Result { StartDecoding = 1, StopDecoding = 2, StartLive = 3, StopLive = 4 };

    /// `box` is the one that is asked for its sources; the dialog names it, and does not keep it.
    setui(Page page, const Item& box, Spark_Http& http, QWidget* parent);
    ~setui() override;

    /// What was chosen; valid after the dialog has closed.
    QString source() const { return m_source; }
    QString address() const { return m_address; }
    /// Empty unless the box is to listen for SRT callers.
    QString port() const { return m_port; }

public slots:
    void on_okpushButton_clicked();
    void on_cancelpushButton_clicked();
    void on_closepushButton_clicked();
    void on_oklive_clicked();
    void on_closelive_clicked();
    void on_cancellive_clicked();
    void on_radioButton_Listener_toggled(bool checked);
    void on_dec_refresh_clicked();

protected:
    void showEvent(QShowEvent* event) override;

private:
    /// What an address for what is chosen looks like.
    void showExample();
    /// Reads the sources again.
    void refresh();
    void showAnswer(const QVariantMap& map);
    void showSources(const QStringList& names);

    const std::unique_ptr<Ui::setui> m_ui;
    Spark_Http& m_http;
    QString m_request; ///< for the sources, under way; empty when none
    QString m_source;
    QString m_address;
    QString m_port;
};

/// The name of an NDI source as a box lists it: the entry up to its first "):".
QString ndiSourceName(const QString& entry);
