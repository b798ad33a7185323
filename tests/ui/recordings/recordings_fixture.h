// SPDX-License-Identifier: MIT
#pragma once

#include "simulator/sample_clip.h"
#include "tests/support/window_fixture.h"
#include "ui/recordings/list_widget.h"

#include <QLabel>
#include <QRegularExpression>
#include <QToolButton>

/// The window with two boxes, the storage list of one of them, and what is played of it.
class RecordingsFixture : public WindowFixture
{
protected:
    void openBoxes()
    {
        sim::makeSampleClips();
        m_box = addBox(7);
        m_other = addBox(8);
        openKnowing({7, 8});
    }
    void forgetRecordings()
    {
        m_box->clearFaults();
        const QStringList left = m_box->recordings();
        for (const QString& name : left)
            m_box->removeRecording(name);
    }
    void stopPlaying()
    {
        if (child<QToolButton>("video_play")->isChecked())
            click("video_play");
        QTRY_COMPARE(address(), QString());
    }

    ListWidget* list() const { return child<ListWidget>("storageWidget"); }
    QStringList titles() const
    {
        QStringList rows;
        for (int n = 0; n < list()->count(); ++n)
            rows << list()->item(n)->text();
        return rows;
    }
    QStringList playing() const
    {
        QStringList names;
        for (const auto& entry : list()->entries()) {
            if (entry->property("ispaly").toBool())
                names << entry->title();
        }
        return names;
    }
    QString address() const { return child<QLabel>("decodeaddress")->text(); }
    void clickEntry(int row)
    {
        list()->scrollToItem(list()->item(row));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {},
                          list()->visualItemRect(list()->item(row)).center());
    }
    /// Selects box 7 with these `recordings`, from top to bottom.
    void selectBox(const QStringList& recordings)
    {
        // The newest is listed first.
        for (int n = recordings.size() - 1; n >= 0; --n)
            m_box->addRecording(recordings.at(n));
        select(7);
        QTRY_COMPARE(titles(), recordings);
    }

    sim::VirtualBox* m_box = nullptr;
    sim::VirtualBox* m_other = nullptr;
};
