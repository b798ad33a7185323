// SPDX-License-Identifier: MIT
#ifndef TESTS_UPDATE_UPDATE_FIXTURE_H
#define TESTS_UPDATE_UPDATE_FIXTURE_H

#include "common/spark_http.h"
#include "simulator/update_server.h"
#include "tests/support/files.h"
#include "update/update_check.h"

#include <QCryptographicHash>
#include <QDirIterator>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/// An update server of our own, and what a check made of its offers.
class UpdateFixture : public QObject
{
protected:
    /// For each test anew.
    void serve()
    {
        m_data = std::make_unique<QTemporaryDir>();
        qputenv("APPDATA", m_data->filePath("data").toUtf8());
        QDir(m_data->path()).mkpath("data");
        m_server = std::make_unique<sim::UpdateServer>(TEST_BLOCK ".1");
        QVERIFY(m_server->start());
        m_installers.clear();
        m_packages.clear();
        m_key.clear();
        m_url.clear();
    }

    static QString sha256Of(const QByteArray& content)
    {
        return QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex();
    }
    /// Where installers come to; it exists.
    QString upgradeFolder() const
    {
        const QString path = m_data->path() + "/data/Tarn Hub/upgrade/";
        QDir().mkpath(path);
        return path;
    }

    std::unique_ptr<UpdateCheck> started()
    {
        auto check = std::make_unique<UpdateCheck>(
            *Spark_Http::instance(), UpdateSource{m_url.isEmpty() ? m_server->url() : m_url, m_key},
            "1.0.0.10");
        connect(check.get(), &UpdateCheck::installerReady, this,
                [this](const Installer& installer) { m_installers << installer; });
        connect(check.get(), &UpdateCheck::firmwareReady, this,
                [this](const QString& path) { m_packages << path; });
        connect(Spark_Http::instance(), &Spark_Http::S_finished, check.get(),
                [this, it = check.get()](const QVariantMap& map) {
                    if (map.value("type") == "toupgrade")
                        it->handleProgram(map.value("body").toString());
                    else if (map.value("type") == "toupgradekora")
                        it->handleFirmware(map.value("body").toString());
                    ++m_answers;
                });
        m_answers = 0;
        check->start();
        return check;
    }

    /// Runs the check until both answers have been dealt with.
    void check()
    {
        const auto check = started();
        QTRY_COMPARE_WITH_TIMEOUT(m_answers, 2, 15000);
        // A package comes, or fails, after its descriptor.
        QTRY_VERIFY_WITH_TIMEOUT(!check->isBusy(), 15000);
    }

    QStringList filesBelowData() const
    {
        QStringList files;
        QDirIterator all(m_data->path(), QDir::Files, QDirIterator::Subdirectories);
        while (all.hasNext())
            files << QDir(m_data->path()).relativeFilePath(all.next());
        files.sort();
        return files;
    }

    std::unique_ptr<QTemporaryDir> m_data;
    std::unique_ptr<sim::UpdateServer> m_server;
    QVector<Installer> m_installers;
    QStringList m_packages;
    QByteArray m_key;
    QString m_url; ///< in place of that of m_server
    int m_answers = 0;
};

#endif
