#include "chatgpt/CallbackHead.h"

#include <QUrl>
#include <QUrlQuery>

namespace zentoro::CallbackHead {

namespace {

Answer notFound()
{
    return Answer{response("404 Not Found", page(QStringLiteral("Not found"), QString())), std::nullopt};
}

} // namespace

QByteArray page(const QString &title, const QString &text)
{
    return "<!doctype html><html><head><meta charset=\"utf-8\"><title>" + title.toUtf8() +
           "</title>\n<style>body{font:16px "
           "-apple-system,system-ui,sans-serif;display:grid;place-items:center;height:90vh;margin:0;color:#333}\n@"
           "media(prefers-color-scheme:dark){body{background:#1e1e1e;color:#ddd}}h1{font-size:22px;margin:0 0 "
           "8px}div{text-align:center}</style>\n</head><body><div><h1>" +
           title.toUtf8() + "</h1><p>" + text.toUtf8() + "</p></div></body></html>";
}

QByteArray response(const QByteArray &status, const QByteArray &body)
{
    return "HTTP/1.1 " + status +
           "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Length: " + QByteArray::number(body.size()) +
           "\r\nConnection: close\r\nCache-Control: no-store\r\n\r\n" + body;
}

Answer answer(const QString &head, const QString &origin)
{
    const qsizetype lineEnd = head.indexOf(QStringLiteral("\r\n"));
    const QString firstLine = lineEnd < 0 ? head : head.left(lineEnd);
    const QStringList pieces = firstLine.split(u' ', Qt::SkipEmptyParts);
    if (pieces.size() < 2 || pieces[0] != u"GET")
        return notFound();
    const QUrl url(origin + pieces[1], QUrl::StrictMode);
    if (!url.isValid() || url.path() != u"/auth/callback")
        return notFound();

    QMap<QString, QString> parameters;
    for (const auto &[name, value] : QUrlQuery(url).queryItems(QUrl::FullyDecoded))
        parameters.insert(name, value);
    const bool refused = parameters.contains(QStringLiteral("error"));
    const QString title = refused ? QStringLiteral("Sign-in canceled") : QStringLiteral("Back to Zentoro");
    const QString text = refused ? QStringLiteral("You can close this tab.")
                                 : QStringLiteral("You can close this tab and return to Zentoro.");
    return Answer{response("200 OK", page(title, text)), parameters};
}

} // namespace zentoro::CallbackHead
