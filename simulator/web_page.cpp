// SPDX-License-Identifier: MIT
#include "simulator/web_page.h"

namespace sim
{
namespace
{
const QByteArray dashboardPath = QByteArrayLiteral("/cgi-bin/set-dashboard.cgi");

/// What an operator can do here: change the name, read more in a new window, fetch the log, log in.
QString controls()
{
    return QStringLiteral(
        "<form action=\"/cgi-bin/set-dashboard.cgi\"><p><label>Name "
        "<input name=\"name\" maxlength=\"32\"></label> <button>Save</button></p></form>\n"
        "<p><button id=\"alert\" onclick=\"alert('Input signal lost')\">Test alarm</button></p>\n"
        "<p><a id=\"more\" href=\"/cgi-bin/about.cgi\" target=\"_blank\">About</a> &middot; "
        "<a id=\"log\" href=\"/cgi-bin/log.cgi\">Download log</a> &middot; "
        "<a id=\"login\" href=\"/cgi-bin/login.cgi\">Administration</a></p>\n"
        "<script>document.cookie = 'session=1; max-age=86400; path=/';</script>\n");
}

QByteArray smallPage(const QByteArray& title)
{
    return "<!DOCTYPE html>\n<html><head><title>" + title +
           "</title><style>body{font-family:sans-serif;background:#1d2126;color:#e6e6e6}</style>"
           "</head><body><h1>" +
           title + "</h1></body></html>\n";
}

/// A log under a name that no careful program would save it under.
HttpReply logReply()
{
    HttpReply reply;
    reply.type = "application/octet-stream";
    reply.headers = {{"Content-Disposition", "attachment; filename=\"..\\..\\box:log?.txt\""}};
    reply.body = QByteArray("2026-01-01 00:00:00 start\n").repeated(200);
    return reply;
}

/// Nobody is let in.
HttpReply loginReply()
{
    HttpReply reply;
    reply.type = "text/html; charset=utf-8";
    reply.status = 401;
    reply.headers = {{"WWW-Authenticate", "Basic realm=\"Administration\""}};
    reply.body = smallPage("401 Unauthorized");
    return reply;
}
} // namespace

QByteArray dashboardPage(const QStringList& models, const QString& address, int number)
{
    const auto row = [](const QString& caption, const QString& value) {
        return QStringLiteral("<tr><th>%1</th><td>%2</td></tr>\n").arg(caption, value);
    };
    QString rows;
    for (const QString& model : models)
        rows += row(QStringLiteral("Model"), model);
    rows += row(QStringLiteral("Name"),
                QStringLiteral("%1-%2").arg(models.value(0).toLower()).arg(number));
    rows += row(QStringLiteral("Address"), address);
    rows += row(QStringLiteral("Firmware"), QStringLiteral("2.4.%1").arg(number % 10));
    rows += row(QStringLiteral("Input"), QStringLiteral("1920x1080p50"));
    rows += row(QStringLiteral("Bit rate"), QStringLiteral("%1 Mbit/s").arg(8 + number % 12));
    rows += row(QStringLiteral("Temperature"), QStringLiteral("%1 &deg;C").arg(41 + number % 9));
    return QStringLiteral(
               "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>Dashboard</title>\n"
               "<style>body{font-family:sans-serif;background:#1d2126;color:#e6e6e6;margin:2em}"
               "table{border-collapse:collapse}th,td{text-align:left;padding:.4em 1.5em .4em 0;"
               "border-bottom:1px solid #3a4048}th{color:#93a1b0;font-weight:normal}"
               "a{color:#74cbd9}</style>\n"
               "</head><body><h1>Dashboard</h1>\n<table>\n%1</table>\n%2</body></html>\n")
        .arg(rows, controls())
        .toUtf8();
}

HttpReply webReply(const HttpRequest& request, const QByteArray& dashboard)
{
    HttpReply reply;
    reply.type = "text/html; charset=utf-8";
    if (request.path == dashboardPath) {
        reply.body = dashboard;
    } else if (request.path == "/cgi-bin/about.cgi") {
        reply.body = smallPage("About this box");
    } else if (request.path == "/cgi-bin/log.cgi") {
        return logReply();
    } else if (request.path == "/cgi-bin/login.cgi") {
        return loginReply();
    } else if (request.path == "/") {
        reply.location = dashboardPath;
    } else {
        reply.status = 404;
        reply.body = "<html><body><h1>404 Not Found</h1></body></html>";
    }
    return reply;
}

} // namespace sim
