// SPDX-License-Identifier: MIT
#include "simulator/faulty_reply.h"

#include "simulator/hostile_reply.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace sim
{
namespace
{

/// A JSON object of `size` bytes.
QByteArray hugeBody(qint64 size)
{
    const QByteArray begin = R"({"param_name":"eParam_DeviceName","status":"success","value":")";
    const QByteArray end = R"("})";
    const qint64 filling = std::max<qint64>(0, size - begin.size() - end.size());
    return begin + QByteArray(int(filling), 'x') + end;
}

} // namespace

HttpReply jsonReply(const QJsonObject& object)
{
    HttpReply reply;
    reply.body = QJsonDocument(object).toJson(QJsonDocument::Compact);
    return reply;
}

HttpReply cutReply()
{
    HttpReply reply;
    reply.cut = true;
    return reply;
}

bool waitAsFaultsWant(FaultList* faults, const QStringList& tags, HttpWire* wire)
{
    if (const auto slow = faults->strike(FaultKind::Slow, tags)) {
        if (!wire->wait(int(slow->amountOrDefault())))
            return false;
    }
    if (faults->strike(FaultKind::Silent, tags)) {
        wire->wait(-1);
        return false;
    }
    return true;
}

void spoilValue(FaultList* faults, const QStringList& tags, QJsonObject* reply)
{
    const QString key = QStringLiteral("value");
    if (const auto text = faults->strike(FaultKind::Text, tags)) {
        const QString hostile = text->text.isEmpty() ? hostileText() : text->text;
        reply->insert(key, reply->value(key).isArray() ? QJsonValue(QJsonArray{hostile})
                                                       : QJsonValue(hostile));
    }
    if (faults->strike(FaultKind::ValueAsNumber, tags))
        reply->insert(key, reply->value(key).toString().toDouble());
    if (faults->strike(FaultKind::ValueAsArray, tags))
        reply->insert(key, QJsonArray{reply->value(key)});
    if (faults->strike(FaultKind::ValueMissing, tags))
        reply->remove(key);
}

void spoilReply(FaultList* faults, const QStringList& tags, HttpReply* reply)
{
    if (faults->strike(FaultKind::Garbage, tags)) {
        reply->file.clear();
        reply->body = QByteArray("{\"value\": \"half a rep\xff\xfe\0<html>", 29);
    }
    if (faults->strike(FaultKind::NotAnObject, tags))
        reply->body = R"(["set success","success"])";
    if (faults->strike(FaultKind::EmptyReply, tags)) {
        reply->file.clear();
        reply->body.clear();
    }
    if (const auto huge = faults->strike(FaultKind::HugeReply, tags))
        reply->body = hugeBody(huge->amountOrDefault());
    if (const auto error = faults->strike(FaultKind::HttpError, tags)) {
        reply->file.clear();
        reply->status = int(error->amountOrDefault());
        reply->type = "text/html";
        reply->body = "<html><body><h1>Error</h1></body></html>";
    }
    if (const auto pace = faults->strike(FaultKind::Throttle, tags))
        reply->bytesPerSecond = pace->amountOrDefault();
    if (faults->strike(FaultKind::NoRanges, tags))
        reply->ranges = false;
    if (const auto hangUp = faults->strike(FaultKind::HangUp, tags)) {
        reply->percent = int(std::min<qint64>(100, hangUp->amountOrDefault()));
        reply->cut = reply->percent == 0;
    }
    if (const auto stall = faults->strike(FaultKind::Stall, tags)) {
        reply->percent = int(std::min<qint64>(100, stall->amountOrDefault()));
        reply->stalls = true;
    }
    makeHostile(faults, tags, reply);
}

void holdReply(FaultList* faults, const QStringList& tags, HttpWire* wire, HttpReply* reply)
{
    const auto late = faults->strike(FaultKind::LateAnswer, tags);
    const bool never = faults->strike(FaultKind::NoAnswer, tags).has_value();
    if (!late && !never)
        return;
    if (reply->afterwards)
        reply->afterwards();
    reply->afterwards = nullptr;
    if (!wire->wait(never ? -1 : int(late->amountOrDefault())) || never)
        *reply = cutReply();
}

QString failureWord(FaultList* faults, const QStringList& tags, const QString& usual)
{
    const auto fail = faults->strike(FaultKind::Fail, tags);
    if (!fail)
        return {};
    return fail->text.isEmpty() ? usual : fail->text;
}

} // namespace sim
