#pragma once

#include "core/MainTask.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <QTcpServer>

#include <QCoroTask>

#include <exception>
#include <memory>
#include <optional>

namespace zentoro {

// A very small HTTP server on 127.0.0.1 that lives for one sign-in: it takes the browser's
// redirect, answers with a small page and hands the redirect's query to the waiting sign-in.
// Each connection gets one request head; the first redirect's outcome stands.
class OAuthCallbackServer : public QObject {
    Q_OBJECT
public:
    using Parameters = QMap<QString, QString>;
    static constexpr qsizetype headLimit = 65'536;
    static constexpr qsizetype deliveryLimit = 16'384;
    // A connection that hasn't sent its whole head by then is closed, so one left open by a
    // browser (or anybody on this computer) holds nothing for long.
    static constexpr int headMilliseconds = 30'000;

    // Listens at `preferredPort`, else at any free port. Raises NetworkError with the
    // system's words when no port can be had.
    static std::unique_ptr<OAuthCallbackServer> start(quint16 preferredPort);
    ~OAuthCallbackServer() override;

    quint16 port() const { return port_; }
    // The redirect's query parameters, once one has come; at once if one came already.
    // Raises NetworkError with OperationCanceledError when `task` is cancelled or the server stopped.
    QCoro::Task<Parameters> callback(TaskHandle task);
    // Stops listening and ends any wait; safe more than once.
    void stop();

signals:
    void finished();

private:
    OAuthCallbackServer() = default;
    void accept();
    void finish(Parameters parameters);
    void finishWith(std::exception_ptr error);

    QTcpServer server_;
    quint16 port_ = 0;
    bool done_ = false;
    Parameters parameters_;
    std::exception_ptr error_;
};

} // namespace zentoro
