#include "chatgpt/ChatGPT.h"

#include "chatgpt/CredentialStore.h"
#include "chatgpt/Http.h"
#include "chatgpt/IDToken.h"
#include "chatgpt/OAuthCallbackServer.h"
#include "chatgpt/SignInRequest.h"
#include "chatgpt/TokenEndpoint.h"
#include "core/Defaults.h"
#include "core/Failure.h"
#include "core/Log.h"
#include "core/SupportFolder.h"
#include "model_service/Failures.h"

#include <QApplication>
#include <QDesktopServices>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScopeGuard>

#include <QCoroSignal>

namespace zentoro {

namespace {

const QString welcomeShownKey = QStringLiteral("chatgptWelcomeShown");

// A refresh refused with one of these means the sign-in is over.
bool endsSignIn(const QString &code)
{
    static const QStringList codes{
        QStringLiteral("invalid_grant"),
        QStringLiteral("invalid_refresh_token"),
        QStringLiteral("token_expired"),
        QStringLiteral("refresh_token_expired"),
        QStringLiteral("refresh_token_invalidated"),
        QStringLiteral("refresh_token_reused"),
    };
    return codes.contains(code);
}

bool isCancellation(std::exception_ptr error)
{
    try {
        std::rethrow_exception(error);
    } catch (const NetworkError &network) {
        return network.isCancelled();
    } catch (...) {
        return false;
    }
}

QDateTime now()
{
    return QDateTime::currentDateTimeUtc();
}

bool showWelcomeDialog()
{
    QMessageBox box(QMessageBox::Information, QStringLiteral("You're using your ChatGPT plan"),
                    QStringLiteral("You're using your ChatGPT plan"), QMessageBox::NoButton,
                    QApplication::activeWindow());
    box.setInformativeText(
        QStringLiteral("Eligible usage in Zentoro uses your ChatGPT plan. Manage usage in your ChatGPT settings."));
    QPushButton *gotIt = box.addButton(QStringLiteral("Got It"), QMessageBox::AcceptRole);
    QPushButton *manage = box.addButton(QStringLiteral("Manage Usage"), QMessageBox::ActionRole);
    box.setDefaultButton(gotIt);
    box.exec();
    return box.clickedButton() == manage;
}

void bringToFront()
{
    for (QWidget *window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowType() == Qt::Window) {
            window->raise();
            window->activateWindow();
            return;
        }
    }
}

} // namespace

// The one refresh under way in this process; every caller waits for its outcome.
class ChatGPT::Refresh : public QObject {
    Q_OBJECT
public:
    bool done = false;
    QString token;
    std::exception_ptr error;

    QCoro::Task<QString> outcome()
    {
        if (!done)
            co_await qCoro(this, &Refresh::finished);
        if (error)
            std::rethrow_exception(error);
        // A copy: GCC 12 moves a member named in co_return, and every waiter needs the token.
        co_return QString(token);
    }

signals:
    void finished();
};

ChatGPT::ChatGPT(Settings settings, QObject *parent)
    : PlanAccess(parent), settings_(std::move(settings)), models_(PlanModels::cached())
{
    showWelcome = showWelcomeDialog;
    reload();
    // Another copy may have signed in, refreshed or signed out meanwhile.
    if (auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        connect(application, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
            if (state == Qt::ApplicationActive)
                reload();
        });
    }
}

ChatGPT::~ChatGPT()
{
    signInTask_.cancel();
}

ChatGPT &ChatGPT::shared()
{
    static QPointer<ChatGPT> instance;
    if (!instance) {
        instance = new ChatGPT(Settings{supportFolder(), ChatGPTEndpoints::standard(),
                                        QGuiApplication::applicationDisplayName()},
                               QCoreApplication::instance());
    }
    return *instance;
}

std::optional<ChatGPT::Account> ChatGPT::account() const
{
    if (!activeID_)
        return std::nullopt;
    for (const Account &account : accounts_) {
        if (account.clientID == *activeID_)
            return account;
    }
    return std::nullopt;
}

bool ChatGPT::isSignedIn() const
{
    const std::optional<Account> active = account();
    return active && active->canAct(now());
}

bool ChatGPT::canUsePlan() const
{
    const std::optional<Account> active = account();
    return active && active->canAct(now()) && active->allowsPlan();
}

void ChatGPT::reload()
{
    const std::optional<Credentials> file = CredentialStore::read(settings_.folder);
    QList<Account> accounts = file ? file->accounts : QList<Account>();
    std::optional<QString> active = file ? file->active : std::nullopt;
    if (accounts != accounts_ || active != activeID_) {
        accounts_ = std::move(accounts);
        activeID_ = std::move(active);
        emit accountsChanged();
    }
    const bool usable = canUsePlan();
    if (usable != planUsable_) {
        planUsable_ = usable;
        emit changed();
    }
}

void ChatGPT::setSigningIn(bool signingIn)
{
    if (isSigningIn_ == signingIn)
        return;
    isSigningIn_ = signingIn;
    emit isSigningInChanged();
}

void ChatGPT::setMessage(std::optional<QString> message)
{
    if (message_ == message)
        return;
    message_ = std::move(message);
    emit messageChanged();
}

void ChatGPT::setModels(QList<Model> models)
{
    if (models_ == models)
        return;
    models_ = std::move(models);
    emit modelsChanged();
}

// MARK: - Sign-in

void ChatGPT::signIn(std::optional<Account> account, bool consent)
{
    if (isSigningIn_)
        return;
    setSigningIn(true);
    setMessage(std::nullopt);
    QPointer<ChatGPT> self(this);
    signInTask_ = startTask([self, account, consent](TaskHandle task) -> QCoro::Task<> {
        std::optional<Account> signedIn;
        std::exception_ptr failure;
        try {
            signedIn = co_await self->authorize(task, account, consent);
        } catch (...) {
            failure = std::current_exception();
        }
        if (!self)
            co_return;
        self->setSigningIn(false);
        self->signInTask_ = TaskHandle();
        if (failure) {
            if (task.isCancelled() || isCancellation(failure)) {
                self->setMessage(std::nullopt);
            } else {
                qCInfo(logChatGPT, "The sign-in failed: %s", qUtf8Printable(describe(failure)));
                self->setMessage(describe(failure));
            }
            co_return;
        }
        if (!signedIn->allowsPlan()) {
            self->setMessage(
                QStringLiteral("Signed in, but Zentoro doesn't have permission to use your ChatGPT plan."));
            co_return;
        }
        if (self->onPlanReady)
            self->onPlanReady();
        startTask([self](TaskHandle) -> QCoro::Task<> {
            if (self)
                co_await self->refreshModels();
        });
        self->welcome();
    });
}

void ChatGPT::cancelSignIn()
{
    signInTask_.cancel();
}

QCoro::Task<ChatGPT::Account> ChatGPT::authorize(TaskHandle task, std::optional<Account> account, bool consent)
{
    const QString hostID = CredentialStore::update(settings_.folder, [](Credentials &) {}).hostID;
    const std::unique_ptr<OAuthCallbackServer> server = OAuthCallbackServer::start(settings_.callbackPort);
    const auto stop = qScopeGuard([&server] { server->stop(); });

    SignInRequest::Values values;
    values.redirectURI = QStringLiteral("http://127.0.0.1:%1/auth/callback").arg(server->port());
    values.state = SignInRequest::random(32);
    values.nonce = SignInRequest::random(32);
    values.verifier = SignInRequest::random(48);
    values.hostID = hostID;
    values.resource = settings_.endpoints.resource();
    QUrl url = settings_.endpoints.authorizeURL();
    url.setQuery(SignInRequest::query(values, account, consent), QUrl::StrictMode);
    qCInfo(logChatGPT, "ChatGPT: opening the sign-in page (callback on port %d)", int(server->port()));
    QDesktopServices::openUrl(url);

    const OAuthCallbackServer::Parameters redirect = co_await server->callback(task);
    bringToFront();
    const QString clientID = SignInRequest::checkRedirect(redirect, values.state, account);

    QMap<QString, QString> exchange;
    exchange.insert(QStringLiteral("grant_type"), QStringLiteral("authorization_code"));
    exchange.insert(QStringLiteral("client_id"), clientID);
    exchange.insert(QStringLiteral("code"), redirect.value(QStringLiteral("code")));
    exchange.insert(QStringLiteral("code_verifier"), values.verifier);
    exchange.insert(QStringLiteral("redirect_uri"), values.redirectURI);
    exchange.insert(QStringLiteral("resource"), values.resource);
    ChatGPTTokens tokens;
    try {
        tokens = co_await TokenEndpoint::request(task, settings_.endpoints.tokenURL(), exchange);
    } catch (const OAuthError &error) {
        if (error.code == u"invalid_grant")
            throw Failure(QStringLiteral("The sign-in expired before Zentoro could finish it. Try again."));
        throw;
    }
    if (!tokens.idToken)
        throw Failure(QStringLiteral("ChatGPT didn't say who signed in. Try again."));

    const Http::Reply keys = co_await Http::send(task, QNetworkRequest(settings_.endpoints.jwksURL()), "GET");
    JSON jwks;
    try {
        jwks = JSON::decode(keys.body);
    } catch (const JSON::Error &) {
        throw IDToken::Invalid(QStringLiteral("no signing keys"));
    }
    const IDToken::Claims claims = IDToken::verify(*tokens.idToken, jwks, settings_.endpoints.issuer(), clientID,
                                                   values.nonce, now());
    if (account && claims.subject != account->subject)
        throw Failure(QStringLiteral("That's a different ChatGPT account than %1. To use it, choose Add Another "
                                     "Account.")
                          .arg(account->label()));
    if (task.isCancelled())
        throw NetworkError(QNetworkReply::OperationCanceledError, QStringLiteral("The sign-in was cancelled."));

    Account record;
    if (account) {
        record = *account;
    } else {
        record.clientID = clientID;
        record.subject = claims.subject;
    }
    if (claims.email)
        record.email = claims.email;
    record.idToken = tokens.idToken;
    record.apply(tokens, now());
    CredentialStore::update(settings_.folder, [&record](Credentials &credentials) {
        credentials.accounts.removeIf([&record](const Account &other) { return other.clientID == record.clientID; });
        credentials.accounts.append(record);
        credentials.active = record.clientID;
    });
    reload();
    co_return record;
}

// MARK: - Tokens

QCoro::Task<QString> ChatGPT::accessToken(bool force)
{
    reload();
    const std::optional<Account> active = account();
    if (!active || !active->canAct(now()))
        throw Failure(QStringLiteral("Sign in with ChatGPT first in Settings (Ctrl+,)."));
    if (!active->allowsPlan())
        throw Failure(QStringLiteral("Zentoro doesn't have permission to use your ChatGPT plan. Allow it in "
                                     "Settings, or use an API key."));
    if (!force && active->hasAccessTokenBeyondMargin(now()))
        co_return *active->accessToken;
    std::shared_ptr<Refresh> running = refreshTask_;
    if (!running) {
        running = std::make_shared<Refresh>();
        refreshTask_ = running;
        QPointer<ChatGPT> self(this);
        startTask([self, running, active](TaskHandle) -> QCoro::Task<> {
            try {
                if (!self)
                    throw NetworkError(QNetworkReply::OperationCanceledError,
                                       QStringLiteral("The sign-in was closed."));
                running->token = co_await self->refresh(*active, active->accessToken);
            } catch (...) {
                running->error = std::current_exception();
            }
            running->done = true;
            if (self && self->refreshTask_ == running)
                self->refreshTask_.reset();
            emit running->finished();
        });
    }
    co_return co_await running->outcome();
}

QCoro::Task<QString> ChatGPT::refresh(Account account, std::optional<QString> replacing)
{
    const int lock = co_await CredentialStore::lock(settings_.folder);
    const auto release = qScopeGuard([lock] { CredentialStore::unlock(lock); });
    std::optional<Credentials> file = CredentialStore::read(settings_.folder);
    Account *record = file ? file->account(account.clientID) : nullptr;
    if (!record || !record->refreshToken) {
        reload();
        throw Failure(QStringLiteral("Sign in with ChatGPT again in Settings (Ctrl+,)."));
    }
    if (record->accessToken && record->accessToken != replacing && record->hasAccessTokenBeyondMargin(now())) {
        qCDebug(logChatGPT, "Another copy has refreshed the token already.");
        reload();
        co_return *record->accessToken;
    }
    qCDebug(logChatGPT, "Refreshing the plan's access token.");
    QMap<QString, QString> parameters;
    parameters.insert(QStringLiteral("grant_type"), QStringLiteral("refresh_token"));
    parameters.insert(QStringLiteral("client_id"), record->clientID);
    parameters.insert(QStringLiteral("refresh_token"), *record->refreshToken);
    parameters.insert(QStringLiteral("resource"), settings_.endpoints.resource());
    ChatGPTTokens tokens;
    try {
        tokens = co_await TokenEndpoint::request(TaskHandle(), settings_.endpoints.tokenURL(), parameters);
    } catch (const OAuthError &error) {
        if (!endsSignIn(error.code))
            throw;
        record->clearTokens();
        try {
            CredentialStore::write(settings_.folder, *file);
        } catch (...) {
        }
        reload();
        throw Failure(
            QStringLiteral("Your ChatGPT sign-in has ended. Sign in again in Settings (Continue with ChatGPT)."));
    }
    record->apply(tokens, now());
    CredentialStore::write(settings_.folder, *file);
    reload();
    co_return *record->accessToken;
}

// MARK: - Accounts

void ChatGPT::signOut()
{
    const std::optional<Account> active = account();
    if (!active)
        return;
    const std::optional<QString> refreshToken = active->refreshToken;
    try {
        CredentialStore::update(settings_.folder, [&active](Credentials &credentials) {
            if (Account *record = credentials.account(active->clientID))
                record->clearTokens();
        });
    } catch (...) {
    }
    reload();
    setMessage(std::nullopt);
    if (!refreshToken)
        return;
    QPointer<ChatGPT> self(this);
    startTask([self, token = *refreshToken, clientID = active->clientID](TaskHandle) -> QCoro::Task<> {
        if (!self)
            co_return;
        const bool confirmed = co_await TokenEndpoint::revoke(self->settings_.endpoints.revokeURL(), token, clientID,
                                                              self->settings_.revokeWait);
        if (self && !confirmed)
            self->setMessage(QStringLiteral("Signed out on this computer, but OpenAI didn't confirm it. You can "
                                            "disconnect Zentoro in ChatGPT's settings."));
    });
}

void ChatGPT::use(const Account &account)
{
    if (!account.canAct(now())) {
        signIn(account, false);
        return;
    }
    try {
        CredentialStore::update(settings_.folder,
                                [&account](Credentials &credentials) { credentials.active = account.clientID; });
    } catch (...) {
    }
    reload();
    QPointer<ChatGPT> self(this);
    startTask([self](TaskHandle) -> QCoro::Task<> {
        if (self)
            co_await self->refreshModels();
    });
}

// MARK: - Plan models and welcome

QCoro::Task<> ChatGPT::refreshModels()
{
    if (!canUsePlan())
        co_return;
    QString token;
    try {
        token = co_await accessToken(false);
    } catch (...) {
        co_return;
    }
    QNetworkRequest request(settings_.endpoints.modelsURL());
    request.setRawHeader("Authorization", "Bearer " + token.toUtf8());
    QPointer<ChatGPT> self(this);
    Http::Reply reply;
    try {
        reply = co_await Http::send(TaskHandle(), request, "GET");
    } catch (...) {
        co_return;
    }
    if (!self || reply.status != 200)
        co_return;
    const std::optional<QList<Model>> models = PlanModels::parse(reply.body);
    if (!models || models->isEmpty())
        co_return;
    setModels(*models);
    PlanModels::store(*models);
}

void ChatGPT::welcome()
{
    if (Defaults::flag(welcomeShownKey))
        return;
    Defaults::setValue(welcomeShownKey, true);
    if (showWelcome && showWelcome())
        QDesktopServices::openUrl(usageURL());
}

} // namespace zentoro

#include "ChatGPT.moc"
