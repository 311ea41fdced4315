#pragma once

#include "agent/PlanAccess.h"
#include "chatgpt/Account.h"
#include "chatgpt/Endpoints.h"
#include "chatgpt/PlanModels.h"
#include "core/MainTask.h"

#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace zentoro {

// The signed-in ChatGPT accounts and everything done with them: sign-in in the browser, tokens
// kept fresh, sign-out, switching accounts and the plan's models. The file in the shared
// folder is the truth, since other copies of Zentoro may change it; memory is reloaded from it
// often. Everything here lives on the main thread.
class ChatGPT : public PlanAccess {
    Q_OBJECT
public:
    using Account = ChatGPTAccount;
    using Credentials = ChatGPTCredentials;
    using Tokens = ChatGPTTokens;
    using Model = PlanModel;

    struct Settings {
        // The folder all copies share, which holds "chatgpt.json".
        QString folder;
        ChatGPTEndpoints endpoints;
        // This copy's name, for the words that point to its settings.
        QString copyName;
        // The unit of the waits between attempts to revoke a token.
        std::chrono::milliseconds revokeWait{1000};
        // The port the browser's redirect comes back to, when it is free.
        quint16 callbackPort = 1455;
    };

    explicit ChatGPT(Settings settings, QObject *parent = nullptr);
    ~ChatGPT() override;
    // The process's one, over the shared folder and the configured origins.
    static ChatGPT &shared();

    // Observable state.
    const QList<Account> &accounts() const { return accounts_; }
    const std::optional<QString> &activeID() const { return activeID_; }
    bool isSigningIn() const { return isSigningIn_; }
    const std::optional<QString> &message() const { return message_; }
    const QList<Model> &models() const { return models_; }

    // The active record, if it is listed.
    std::optional<Account> account() const;
    bool isSignedIn() const;
    bool canUsePlan() const override;
    QUrl usageURL() const override { return settings_.endpoints.usageURL(); }
    const Settings &settings() const { return settings_; }
    TaskHandle signInTask() const { return signInTask_; }

    // Sets the accounts and the active one from the file.
    void reload();

    // Takes the user through the browser; returns at once. With `account` the sign-in goes back
    // into that registration; `consent` asks the user again to allow plan use. Ignored while one runs.
    void signIn(std::optional<Account> account, bool consent);
    // Ends a sign-in under way; it leaves nothing behind.
    void cancelSignIn();
    QCoro::Task<QString> accessToken(bool force) override;
    // Forgets the active account's tokens here at once and asks the service to revoke them.
    void signOut();
    // Makes `account` the active one, or signs into it when it has lost its tokens.
    void use(const Account &account);
    // Fetches the plan's models; on any failure the list stays as it was.
    QCoro::Task<> refreshModels();
    // The one-time notice that plan usage counts against the plan.
    void welcome();

    // Shows the notice; true when the user chose "Manage Usage". A dialog unless replaced.
    std::function<bool()> showWelcome;

signals:
    void accountsChanged();
    void isSigningInChanged();
    void messageChanged();
    void modelsChanged();

private:
    class Refresh;
    QCoro::Task<Account> authorize(TaskHandle task, std::optional<Account> account, bool consent);
    QCoro::Task<QString> refresh(Account account, std::optional<QString> replacing);
    void setSigningIn(bool signingIn);
    void setMessage(std::optional<QString> message);
    void setModels(QList<Model> models);

    Settings settings_;
    QList<Account> accounts_;
    std::optional<QString> activeID_;
    bool isSigningIn_ = false;
    std::optional<QString> message_;
    QList<Model> models_;
    TaskHandle signInTask_;
    std::shared_ptr<Refresh> refreshTask_;
    bool planUsable_ = false;
};

} // namespace zentoro
