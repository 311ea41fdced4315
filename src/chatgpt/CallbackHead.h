#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <optional>

// What the sign-in's loopback listener answers to one request head, the browser's redirect.
namespace zentoro::CallbackHead {

struct Answer {
    // The whole HTTP response, head and page.
    QByteArray response;
    // The redirect's query parameters; absent for a request that isn't the callback, which
    // leaves the sign-in waiting.
    std::optional<QMap<QString, QString>> parameters;

    bool operator==(const Answer &) const = default;
};

// `head` is the request up to its blank line, as text; `origin` the listener's, such as
// "http://127.0.0.1:1455". Only `GET /auth/callback` is the callback; anything else is not found.
Answer answer(const QString &head, const QString &origin);

// The small page the browser shows; neither text is escaped.
QByteArray page(const QString &title, const QString &text);
QByteArray response(const QByteArray &status, const QByteArray &body);

} // namespace zentoro::CallbackHead
