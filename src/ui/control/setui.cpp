// SPDX-License-Identifier: MIT
#include "ui/control/setui.h"

#include "common/box_protocol.h"
#include "common/http_result.h"
#include "common/spark_http.h"
#include "device/item.h"
#include "ui/hub/access.h"
#include "ui_setui.h"
#include "widgets/message_box.h"
#include "widgets/placeholder.h"

#include <QHeaderView>

namespace
{

const QString requestType = QStringLiteral("refresh");
/// Characters of names of which it is looked how many lines they take; the others get one line.
constexpr int mostMeasured = 10000;

} // namespace

QString ndiSourceName(const QString& entry)
{
    return entry.section(QStringLiteral("):"), 0, 0) + QLatin1Char(')');
}

setui::setui(Page page, const Item& box, Spark_Http& http, QWidget* parent)
    : QDialog(parent), m_ui(std::make_unique<Ui::setui>()), m_http(http)
{
    m_ui->setupUi(this);
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setProperty("deviceip", box.address());
    const bool decode = page == Page::Decode;
    // The other page would only keep its room.
    QWidget* unused = decode ? m_ui->page_live : m_ui->page_decode;
    m_ui->pages->removeWidget(unused);
    unused->hide();
    m_ui->Media_tableWidget->horizontalHeader()->hide();
    m_ui->Media_tableWidget->horizontalHeader()->setStretchLastSection(true);
    m_ui->Media_tableWidget->verticalHeader()->hide();
    resize(decode ? QSize(520, 380) : QSize(520, 0));
    const QString name = QStringList{box.address(), box.name()}.join(QLatin1Char(' ')).trimmed();
    const QString what = decode ? tr("解码控制") : tr("直播服务控制");
    setWindowTitle(what + QStringLiteral(" – ") + name);
    m_ui->box_name->setText(name);
    keepPlaceholderDim(*m_ui->stream_url);
    keepPlaceholderDim(*m_ui->srt_port);
    (decode ? m_ui->okpushButton : m_ui->oklive)->setDefault(true);
    for (QRadioButton* kind : m_ui->page_live->findChildren<QRadioButton*>())
        connect(kind, &QRadioButton::toggled, this, &setui::showExample);
    showExample();
    on_radioButton_Listener_toggled(m_ui->radioButton_Listener->isChecked());
    connect(m_ui->Media_tableWidget, &QTableWidget::cellDoubleClicked, this,
            &setui::on_okpushButton_clicked);
    connect(&m_http, &Spark_Http::S_finished, this, &setui::showAnswer);
}

setui::~setui() = default;

void setui::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (m_ui->pages->currentWidget() == m_ui->page_decode)
        refresh();
    else
        m_ui->stream_url->setFocus();
}

void setui::on_dec_refresh_clicked()
{
    refresh();
}

void setui::refresh()
{
    if (!m_request.isEmpty())
        return;
    m_ui->dec_refresh->setEnabled(false);
    const QString url =
        BoxProtocol::readUrl(property("deviceip").toString(), BoxProtocol::NDIDecodeList);
    m_request = m_http.getFirst(requestType, url);
}

void setui::showAnswer(const QVariantMap& map)
{
    if (HttpResult::typeOf(map) != requestType)
        return;
    const HttpResult result = HttpResult::fromMap(map);
    if (result.id != m_request)
        return;
    m_request.clear();
    m_ui->dec_refresh->setEnabled(true);

    m_ui->no_sources->setText(result.value.isValid() ? tr("没有找到NDI源")
                                                     : tr("未能读到NDI源，请刷新重试"));
    QStringList names;
    const QVariantList entries = result.value.toList();
    for (const QVariant& entry : entries)
        names << ndiSourceName(entry.toString());
    showSources(names);
}

void setui::showSources(const QStringList& names)
{
    QTableWidget* table = m_ui->Media_tableWidget;
    const QTableWidgetItem* current = table->currentItem();
    const QString chosen = current ? current->text() : QString();
    table->clearContents();
    table->setRowCount(names.size());
    for (int row = 0; row < names.size(); ++row) {
        table->setItem(row, 0, new QTableWidgetItem(names.at(row)));
        table->item(row, 0)->setToolTip(names.at(row).toHtmlEscaped());
    }
    // Thousands, in letters of many fonts, would take the window the better part of a second.
    int measured = 0;
    for (int row = 0; row < names.size(); ++row) {
        measured += names.at(row).size();
        if (measured > mostMeasured)
            break;
        table->resizeRowToContents(row);
    }
    const int again = chosen.isEmpty() ? -1 : names.indexOf(chosen);
    table->setCurrentCell(again, again < 0 ? -1 : 0);
    m_ui->no_sources->setVisible(names.isEmpty());
    table->setFocus();
}

void setui::on_okpushButton_clicked()
{
    const QTableWidgetItem* item = m_ui->Media_tableWidget->currentItem();
    m_source = item ? item->text() : QString();
    if (m_source.isEmpty()) {
        messageBox::tell(tr("请选择您要解码的源"), this);
        return;
    }
    done(StartDecoding);
}

void setui::on_cancelpushButton_clicked()
{
    reject();
}

void setui::on_closepushButton_clicked()
{
    done(StopDecoding);
}

void setui::on_oklive_clicked()
{
    m_address = m_ui->stream_url->text();
    m_port = m_ui->radioButton_Listener->isChecked() ? m_ui->srt_port->text() : QString();
    if (m_address.isEmpty()) {
        messageBox::tell(tr("请输入正确的url"), this);
        return;
    }
    if (m_ui->radioButton_Listener->isChecked() && m_port.isEmpty()) {
        messageBox::tell(tr("请输入正确的端口号"), this);
        return;
    }
    done(StartLive);
}

void setui::on_closelive_clicked()
{
    done(StopLive);
}

void setui::on_cancellive_clicked()
{
    reject();
}

void setui::showExample()
{
    QString example = QStringLiteral("rtmp://server/app/stream");
    if (m_ui->radioButton_rtsp->isChecked())
        example = QStringLiteral("rtsp://server:8554/stream");
    else if (m_ui->radioButton_srt->isChecked())
        example = QStringLiteral("srt://server:9000");
    else if (m_ui->radioButton_Listener->isChecked())
        example = QStringLiteral("cam1");
    m_ui->stream_url->setPlaceholderText(tr("例如 %1").arg(example));
    m_ui->srt_port->setPlaceholderText(tr("例如 %1").arg(9000));
}

void setui::on_radioButton_Listener_toggled(bool checked)
{
    m_ui->srt_port->setVisible(checked);
    m_ui->caption_port->setVisible(checked);
    m_ui->caption_id->setVisible(checked);
    m_ui->caption_url->setVisible(!checked);
    m_ui->caption_url->setBuddy(checked ? nullptr : m_ui->stream_url);
    m_ui->caption_id->setBuddy(checked ? m_ui->stream_url : nullptr);
    Access::nameByCaptions(*this);
    if (!isVisible())
        return;
    // As high as it has to be; the width stays, so that no button moves sideways under the mouse.
    resize(width(), sizeHint().height());
    (m_ui->stream_url->text().isEmpty() ? m_ui->stream_url : m_ui->srt_port)->setFocus();
}
