// SPDX-License-Identifier: MIT
#include "ui/upgrade/upgrade_report_dialog.h"

#include "common/csv.h"
#include "upgrade/upgrade_fleet.h"
#include "upgrade/upgrade_journal.h"

#include <QClipboard>
#include <QDir>
#include <QEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QScreen>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace
{

constexpr int boxColumn = 1;
constexpr int verdictColumn = 5;
constexpr int noteColumn = 8;
constexpr int narrowestNote = 220;
constexpr int widestNote = 480;
constexpr QSize wholeTable(1600, 600);
/// What a window's frame takes, and some of what is behind it to be seen.
constexpr QSize margins(80, 80);

QColor verdictColour(UpgradeRow::Verdict verdict)
{
    switch (verdict) {
    case UpgradeRow::Verdict::Proved:
        return QColor(0x4c, 0xc3, 0x8a);
    case UpgradeRow::Verdict::Failed:
    case UpgradeRow::Verdict::Interrupted:
        return QColor(0xff, 0x7b, 0x72);
    case UpgradeRow::Verdict::NotProved:
        return QColor(0xe5, 0xb5, 0x67);
    case UpgradeRow::Verdict::UnderWay:
        break;
    }
    return QColor();
}

/// Of sixty boxes those that need somebody must not stand below the fold.
QVector<const UpgradeRow*> worstFirst(const UpgradeSession& session)
{
    const auto rank = [](const UpgradeRow* row) {
        using Verdict = UpgradeRow::Verdict;
        const QVector<Verdict> order{Verdict::Failed, Verdict::Interrupted, Verdict::NotProved,
                                     Verdict::UnderWay};
        const int place = order.indexOf(row->verdict());
        return place < 0 ? order.size() : place;
    };
    QVector<const UpgradeRow*> rows;
    for (const UpgradeRow& row : session.rows)
        rows << &row;
    std::stable_sort(rows.begin(), rows.end(), [&rank](const UpgradeRow* a, const UpgradeRow* b) {
        return rank(a) < rank(b);
    });
    return rows;
}

QLabel* plainLabel(QWidget* parent)
{
    auto* label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    return label;
}

} // namespace

UpgradeReportDialog::UpgradeReportDialog(const UpgradeFleet& fleet, QWidget* parent)
    : QDialog(parent)
    , m_fleet(fleet)
    , m_table(new QTableWidget(this))
    , m_summary(plainLabel(this))
    , m_path(plainLabel(this))
{
    setObjectName(QStringLiteral("upgradeReportDialog"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    setAttribute(Qt::WA_DeleteOnClose);
    m_summary->setObjectName(QStringLiteral("upgradeReportSummary"));
    m_path->setProperty("dim", true);
    m_table->setObjectName(QStringLiteral("upgradeReportTable"));
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setSelectionBehavior(QAbstractItemView::SelectItems);
    m_table->setWordWrap(false);
    m_table->setTabKeyNavigation(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    m_table->setColumnCount(UpgradeText::headers().size());
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_summary);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_path);
    resize(wholeTable.boundedTo(screen()->availableSize() - margins));
    // The times of boxes that are under way run on.
    m_clock.setInterval(1000);
    connect(&m_clock, &QTimer::timeout, this, &UpgradeReportDialog::fill);
    connect(&fleet, &UpgradeFleet::reportChanged, this, &UpgradeReportDialog::fill);
    m_clock.start();
    label();
}

void UpgradeReportDialog::label()
{
    setWindowTitle(tr("升级报告"));
    m_table->setAccessibleName(windowTitle());
    m_table->setHorizontalHeaderLabels(UpgradeText::headers());
    fill();
    // Only here: while boxes are under way columns must not jump, nor undo what the operator set.
    m_table->resizeColumnsToContents();
    giveRoomToNotes();
}

/// Why something went wrong is to be read before the digest is; of a long one the beginning.
void UpgradeReportDialog::giveRoomToNotes()
{
    int others = 0;
    for (int column = 0; column < m_table->columnCount(); ++column)
        others += column == noteColumn ? 0 : m_table->columnWidth(column);
    m_table->resizeColumnToContents(noteColumn);
    const int wanted = qBound(narrowestNote, m_table->columnWidth(noteColumn), widestNote);
    m_table->setColumnWidth(noteColumn, qMax(wanted, m_table->viewport()->width() - others));
}

void UpgradeReportDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    giveRoomToNotes();
}

void UpgradeReportDialog::fill()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QVector<const UpgradeSession*> sessions = m_fleet.sessions();
    QMap<UpgradeRow::Verdict, int> counts;
    int total = 0;
    for (auto it = sessions.crbegin(); it != sessions.crend(); ++it) {
        for (const UpgradeRow* listed : worstFirst(**it)) {
            const UpgradeRow& row = *listed;
            if (total == m_table->rowCount())
                m_table->insertRow(total);
            const QStringList texts = UpgradeText::cells(**it, row, now);
            ++counts[row.verdict()];
            for (int column = 0; column < texts.size(); ++column) {
                QTableWidgetItem* cell = m_table->item(total, column);
                if (!cell) {
                    cell = new QTableWidgetItem;
                    m_table->setItem(total, column, cell);
                }
                if (cell->text() != texts.at(column)) {
                    cell->setText(texts.at(column));
                    // A tooltip guesses whether its text is markup.
                    cell->setToolTip(QStringLiteral("<span>") + texts.at(column).toHtmlEscaped() +
                                     QStringLiteral("</span>"));
                }
                // Who goes down a column hears of which box each cell is.
                cell->setData(Qt::AccessibleDescriptionRole, texts.at(boxColumn));
                if (column == verdictColumn) {
                    const QColor colour = verdictColour(row.verdict());
                    cell->setForeground(colour.isValid() ? QBrush(colour) : QBrush());
                }
            }
            ++total;
        }
    }
    m_table->setRowCount(total);
    using Verdict = UpgradeRow::Verdict;
    m_summary->setText(
        tr("共[%1]个，已证实[%2]个，未证实[%3]个，失败[%4]个，已中断[%5]个，进行中[%6]个")
            .arg(total)
            .arg(counts.value(Verdict::Proved))
            .arg(counts.value(Verdict::NotProved))
            .arg(counts.value(Verdict::Failed))
            .arg(counts.value(Verdict::Interrupted))
            .arg(counts.value(Verdict::UnderWay)));
    if (!sessions.isEmpty())
        m_path->setText(
            tr("报告文件：%1")
                .arg(QDir::toNativeSeparators(UpgradeJournal::csvPath(*sessions.last()))));
}

void UpgradeReportDialog::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        label();
}

void UpgradeReportDialog::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Copy))
        copySelection();
    else
        QDialog::keyPressEvent(event);
}

void UpgradeReportDialog::copySelection() const
{
    QStringList lines;
    for (int row = 0; row < m_table->rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < m_table->columnCount(); ++column) {
            const QTableWidgetItem* cell = m_table->item(row, column);
            if (cell && cell->isSelected())
                cells << cell->text();
        }
        if (!cells.isEmpty())
            lines << Csv::clipboardLine(cells);
    }
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
