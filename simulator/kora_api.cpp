// SPDX-License-Identifier: MIT
#include "simulator/kora_api.h"

#include "simulator/faulty_reply.h"
#include "simulator/form_body.h"
#include "simulator/parameters.h"
#include "simulator/sample_clip.h"
#include "simulator/web_page.h"

#include <QDateTime>
#include <QFileInfo>
#include <QJsonArray>
#include <QRegularExpression>

namespace sim
{
namespace
{

const QString setFailed = QStringLiteral("set failed");
const QString failed = QStringLiteral("failed");
const QByteArray mediaPrefix = QByteArrayLiteral("/media/");

HttpReply notFound()
{
    HttpReply reply;
    reply.status = 404;
    reply.type = "text/html";
    reply.body = "<html><body><h1>404 Not Found</h1></body></html>";
    return reply;
}

BoxRequest logEntry(const HttpRequest& request)
{
    BoxRequest entry;
    entry.time = QDateTime::currentMSecsSinceEpoch();
    entry.method = request.method;
    entry.path = request.path;
    entry.query = request.query;
    const bool isUpload = !request.fileField.isEmpty();
    entry.body = isUpload ? request.fileName.toUtf8() : request.body;
    entry.bodySize = isUpload ? request.fileSize : request.body.size();
    return entry;
}

/// A name that stays inside the recordings' folder.
bool isPlainFileName(const QString& name)
{
    return !name.isEmpty() && name.size() < 200 && !name.startsWith(QLatin1Char('.')) &&
           !name.contains(QLatin1Char('/')) && !name.contains(QLatin1Char('\\')) &&
           !name.contains(QChar(0));
}

QByteArray mediaType(const QString& name)
{
    const QString suffix = QFileInfo(name).suffix().toLower();
    if (suffix == QLatin1String("mp4"))
        return "video/mp4";
    return suffix == QLatin1String("mov") ? "video/quicktime" : "application/octet-stream";
}

/// The digest with its first digit changed.
QByteArray wrongMd5(QByteArray md5)
{
    md5[0] = md5[0] == '0' ? '1' : '0';
    return md5;
}

} // namespace

QString versionOfFirmwareFile(const QString& fileName)
{
    const QString base = QFileInfo(fileName).completeBaseName();
    static const QRegularExpression version(QStringLiteral("\\d+(?:\\.\\d+)+"));
    const QRegularExpressionMatch match = version.match(base);
    return match.hasMatch() ? match.captured() : base;
}

KoraApi::KoraApi(BoxState* state, FaultList* faults, BoxHardware* hardware,
                 std::function<void(const BoxRequest&)> requested)
    : m_state(state), m_faults(faults), m_hardware(hardware), m_requested(std::move(requested))
{
}

QStringList KoraApi::postPaths()
{
    return {QStringLiteral("/config"), QStringLiteral("/control"), QStringLiteral("/upload")};
}

UploadLimits KoraApi::beforeUpload()
{
    const QStringList tags = {QStringLiteral("upload")};
    UploadLimits limits;
    if (const auto cut = m_faults->strike(FaultKind::CutUpload, tags))
        limits.percent = int(cut->amountOrDefault());
    if (const auto pace = m_faults->strike(FaultKind::Throttle, tags))
        limits.bytesPerSecond = pace->amountOrDefault();
    return limits;
}

HttpReply KoraApi::handle(const HttpRequest& request)
{
    const BoxRequest entry = logEntry(request);
    m_state->log(entry);
    m_requested(entry);
    if (request.path == "/config")
        return config(request);
    if (request.path == "/control" && request.method == "POST")
        return control(request);
    if (request.path == "/upload" && request.method == "POST")
        return upload(request);
    if (request.path.startsWith(mediaPrefix))
        return media(request);
    return notFound();
}

HttpReply KoraApi::handleWeb(const HttpRequest& request, const QByteArray& dashboard)
{
    const BoxRequest entry = logEntry(request);
    m_state->log(entry);
    m_requested(entry);
    const QStringList tags = {QStringLiteral("web")};
    if (!waitAsFaultsWant(m_faults, tags, request.wire))
        return cutReply();
    HttpReply reply = webReply(request, dashboard);
    spoilReply(m_faults, tags, &reply);
    return reply;
}

HttpReply KoraApi::config(const HttpRequest& request)
{
    const bool isRead = request.method != "POST";
    const QMap<QString, QString> fields = parseForm(isRead ? request.query : request.body);
    const QString action = fields.value(QStringLiteral("action"));
    if (isRead && action == QLatin1String("get"))
        return read(fields.value(QStringLiteral("param_name")), request);
    if (!isRead && action == QLatin1String("set"))
        return write(fields, request);
    return jsonReply({{QStringLiteral("status"), failed}});
}

HttpReply KoraApi::read(const QString& name, const HttpRequest& request)
{
    const QStringList tags = {QStringLiteral("config"), QStringLiteral("read"), name};
    if (!waitAsFaultsWant(m_faults, tags, request.wire))
        return cutReply();
    QJsonObject object{{QStringLiteral("param_name"), name}};
    const QString key = QStringLiteral("value");
    if (name == QLatin1String("eParam_RecordList")) {
        QJsonArray names;
        for (const Recording& recording : m_state->recordings())
            names.append(recording.name);
        object.insert(key, names);
    } else if (name == QLatin1String("eParam_NDIDecodeList")) {
        object.insert(key, QJsonArray::fromStringList(m_state->decodeSources()));
    } else if (m_state->hasParameter(name) && !m_faults->strike(FaultKind::Unknown, tags)) {
        object.insert(key, m_state->parameter(name));
    } else {
        object.insert(QStringLiteral("status"), failed);
    }
    spoilValue(m_faults, tags, &object);
    HttpReply reply = jsonReply(object);
    spoilReply(m_faults, tags, &reply);
    return reply;
}

HttpReply KoraApi::write(const QMap<QString, QString>& fields, const HttpRequest& request)
{
    const QString name = fields.value(QStringLiteral("param_name"));
    const QString value = fields.value(QStringLiteral("value"));
    const QStringList tags = {QStringLiteral("config"), QStringLiteral("write"), name};
    if (!waitAsFaultsWant(m_faults, tags, request.wire))
        return cutReply();
    QString status = failureWord(m_faults, tags, setFailed);
    if (status.isEmpty()) {
        const bool takes = isAcceptable(name, value) && !m_faults->strike(FaultKind::Unknown, tags);
        status = takes ? QStringLiteral("set success") : setFailed;
        if (status != setFailed)
            take(name, value, tags);
    }
    HttpReply reply = jsonReply({{QStringLiteral("status"), status}});
    spoilReply(m_faults, tags, &reply);
    holdReply(m_faults, tags, request.wire, &reply);
    return reply;
}

void KoraApi::take(const QString& name, const QString& value, const QStringList& tags)
{
    m_state->noteInChange(QStringLiteral("written: ") + name);
    if (m_state->parameter(name) != value)
        m_state->changeActivity([](BoxActivity& activity) { activity.unapplied = true; });
    const auto mistake = m_faults->strike(FaultKind::Mistake, tags);
    m_state->setParameter(name, mistake ? mistake->text : value);
}

HttpReply KoraApi::control(const HttpRequest& request)
{
    const QMap<QString, QString> fields = parseForm(request.body);
    const QString action = fields.value(QStringLiteral("action"));
    const QStringList tags = {QStringLiteral("control"), action};
    if (!waitAsFaultsWant(m_faults, tags, request.wire))
        return cutReply();
    QJsonObject object{{QStringLiteral("action"), action}};
    QString status = failureWord(m_faults, tags, failed);
    std::function<void()> afterwards;
    if (status.isEmpty()) {
        const bool done = run(action, fields, &object, &afterwards, request.wire);
        status = done ? QStringLiteral("success") : failed;
    }
    object.insert(QStringLiteral("status"), status);
    if (const auto other = m_faults->strike(FaultKind::Misnamed, tags))
        object.insert(QStringLiteral("action"), other->text);
    HttpReply reply = jsonReply(object);
    reply.afterwards = afterwards;
    spoilReply(m_faults, tags, &reply);
    holdReply(m_faults, tags, request.wire, &reply);
    return reply;
}

bool KoraApi::run(const QString& action, const QMap<QString, QString>& fields, QJsonObject* reply,
                  std::function<void()>* afterwards, HttpWire* wire)
{
    using Run = std::function<bool()>;
    const auto change = [this](auto set) {
        return Run([this, set] {
            m_state->changeActivity(set);
            return true;
        });
    };
    const auto later = [this, afterwards](void (BoxHardware::*what)()) {
        return Run([this, afterwards, what] {
            m_state->noteInChange(QStringLiteral("restarted"));
            *afterwards = [this, what] { (m_hardware->*what)(); };
            return true;
        });
    };
    const auto field = [&fields](const char* name) {
        return fields.value(QString::fromLatin1(name));
    };
    const QMap<QString, Run> actions = {
        {QStringLiteral("reboot"), later(&BoxHardware::reboot)},
        {QStringLiteral("restart"), later(&BoxHardware::restartSoftware)},
        {QStringLiteral("ota"), [&] { return startOta(afterwards); }},
        {QStringLiteral("ndienc_on"), change([](BoxActivity& a) { a.fullEncoder = true; })},
        {QStringLiteral("ndienc_off"), change([](BoxActivity& a) { a.fullEncoder = false; })},
        {QStringLiteral("hxenc_on"), change([](BoxActivity& a) { a.compressedEncoder = true; })},
        {QStringLiteral("hxenc_off"), change([](BoxActivity& a) { a.compressedEncoder = false; })},
        {QStringLiteral("hxdec_on"),
         [&] {
             const QString source = withoutQuotes(field("ndi_name"));
             m_state->changeActivity([&source](BoxActivity& a) { a.decodeSource = source; });
             return !source.isEmpty();
         }},
        {QStringLiteral("hxdec_off"), change([](BoxActivity& a) { a.decodeSource.clear(); })},
        {QStringLiteral("stream_on"), [&] { return startStream(fields, reply, wire); }},
        {QStringLiteral("stream_off"),
         [&] {
             m_hardware->stopLive();
             m_state->changeActivity([](BoxActivity& a) { a.streamTarget.clear(); });
             return true;
         }},
        {QStringLiteral("record_on"),
         [&] {
             const QString name = field("file_name");
             return isPlainFileName(name) && m_hardware->startRecording(name, wire);
         }},
        {QStringLiteral("record_off"), [&] { return m_hardware->stopRecording(wire); }},
        {QStringLiteral("record_del"), [&] { return deleteRecording(field("file_name")); }},
    };
    const auto found = actions.constFind(action);
    return found != actions.constEnd() && (*found)();
}

bool KoraApi::startStream(const QMap<QString, QString>& fields, QJsonObject* reply, HttpWire* wire)
{
    const bool listens = fields.value(QStringLiteral("srt_mode")) == QLatin1String("listener");
    const int port = fields.value(QStringLiteral("srt_port")).toInt();
    const QString target = withoutQuotes(
        fields.value(listens ? QStringLiteral("stream_id") : QStringLiteral("stream_url")));
    if (target.isEmpty() || (listens && (port < 1 || port > 65535)))
        return false;
    const QString url = m_hardware->startLive(listens ? quint16(port) : quint16(0), wire);
    if (url.isEmpty())
        return false;
    m_state->changeActivity([&target](BoxActivity& a) { a.streamTarget = target; });
    reply->insert(QStringLiteral("pull_url"), url);
    return true;
}

bool KoraApi::startOta(std::function<void()>* afterwards)
{
    m_state->noteInChange(QStringLiteral("told to change over again"));
    const QString version = m_state->uploadedVersion();
    if (version.isEmpty())
        return false;
    m_state->setUploadedVersion(QString());
    m_state->changeActivity([](BoxActivity& activity) {
        activity.changeOrderedAt = QDateTime::currentMSecsSinceEpoch();
    });
    *afterwards = [this, version] { m_hardware->changeFirmware(version); };
    return true;
}

bool KoraApi::deleteRecording(const QString& name)
{
    const Recording taken = m_state->takeRecording(name);
    if (taken.name.isEmpty())
        return false;
    m_hardware->removeFile(taken);
    return true;
}

HttpReply KoraApi::upload(const HttpRequest& request)
{
    const QStringList tags = {QStringLiteral("upload")};
    if (!waitAsFaultsWant(m_faults, tags, request.wire))
        return cutReply();
    QString status = failureWord(m_faults, tags, failed);
    QJsonObject object;
    if (status.isEmpty()) {
        const bool good = request.fileField == QLatin1String("ota_file") && request.fileSize > 0;
        status = good ? QStringLiteral("success") : failed;
        if (good) {
            const bool spoilt = bool(m_faults->strike(FaultKind::WrongMd5, tags));
            const QByteArray md5 = spoilt ? wrongMd5(request.fileMd5) : request.fileMd5;
            object.insert(QStringLiteral("file_md5"), QString::fromLatin1(md5));
            m_state->setUploadedVersion(versionOfFirmwareFile(request.fileName));
        }
    }
    object.insert(QStringLiteral("status"), status);
    HttpReply reply = jsonReply(object);
    spoilReply(m_faults, tags, &reply);
    holdReply(m_faults, tags, request.wire, &reply);
    return reply;
}

HttpReply KoraApi::media(const HttpRequest& request)
{
    const QStringList tags = {QStringLiteral("media")};
    if (!waitAsFaultsWant(m_faults, tags, request.wire))
        return cutReply();
    const QString name = QString::fromUtf8(request.path.mid(mediaPrefix.size()));
    if (!failureWord(m_faults, tags, failed).isEmpty())
        return notFound();
    for (const Recording& recording : m_state->recordings()) {
        if (recording.name == name) {
            HttpReply reply;
            reply.type = mediaType(name);
            reply.file = recording.path.isEmpty() ? sampleClip(name) : recording.path;
            spoilReply(m_faults, tags, &reply);
            return reply;
        }
    }
    return notFound();
}

} // namespace sim
