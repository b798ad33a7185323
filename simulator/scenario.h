// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class QJsonObject;

namespace sim
{

class LanCommands;
class VirtualLan;

/// A scenario file: boxes that are special, and things that happen to them in time. Its form is
/// described in scenarios/README.md.
class Scenario : public QObject
{
    Q_OBJECT

public:
    explicit Scenario(QObject* parent = nullptr);

    /// Adds the file's boxes to `lan`, unplugged; a box that is there already is changed. False
    /// when the file is not as it must be; errorString() tells where.
    bool load(const QString& file, VirtualLan* lan);
    /// Addresses of boxes that are not to be plugged in at first.
    QStringList unplugged() const { return m_unplugged; }
    /// Starts the clock of the file's steps. `commands` must outlive the object.
    void start(LanCommands* commands);
    QString errorString() const { return m_error; }

signals:
    /// A step has been done; `text` is its command and, after a failure, the reason.
    void stepped(const QString& text);

private:
    struct Step {
        int ms;
        QString command;
    };

    bool loadBox(const QJsonObject& box, VirtualLan* lan);
    bool loadStep(const QJsonObject& step);
    bool refuse(const QString& why);

    QVector<Step> m_steps;
    QStringList m_unplugged;
    QString m_error;
};

} // namespace sim
