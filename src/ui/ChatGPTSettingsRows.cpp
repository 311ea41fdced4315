#include "ui/ChatGPTSettingsRows.h"

#include "agent/Agent.h"
#include "chatgpt/ChatGPT.h"
#include "ui/GroupedForm.h"
#include "ui/Icons.h"
#include "ui/PanelStyle.h"
#include "ui/Spinner.h"

#include <QButtonGroup>
#include <QDesktopServices>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace zentoro {

namespace {

QPushButton *segment(const QString &text)
{
    auto *button = new QPushButton(text);
    button->setCheckable(true);
    button->setAccessibleName(text);
    return button;
}

QLabel *usageLink(const QString &text, QWidget *owner, ChatGPT &chatgpt)
{
    auto *label = new QLabel(text + QStringLiteral("&nbsp;&nbsp;<a href=\"usage\">Manage usage</a>"));
    label->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    QObject::connect(label, &QLabel::linkActivated, owner,
                     [&chatgpt] { QDesktopServices::openUrl(chatgpt.usageURL()); });
    return label;
}

} // namespace

ChatGPTSettingsRows::ChatGPTSettingsRows(ChatGPT &chatgpt, Agent &agent, QWidget *parent)
    : QWidget(parent), chatgpt_(chatgpt), agent_(agent), waiting_(new QWidget), label_(new QLabel),
      accountButton_(new QPushButton), cancel_(new QPushButton(QStringLiteral("Cancel"))), accounts_(new QToolButton),
      accountsMenu_(new QMenu(this)), notAllowed_(new QWidget),
      allow_(new QPushButton(QStringLiteral("Allow Plan Use…"))), picker_(new QWidget),
      planChoice_(segment(QStringLiteral("ChatGPT plan"))), keyChoice_(segment(QStringLiteral("API key"))),
      planNote_(usageLink(QStringLiteral("Requests use your ChatGPT plan."), this, chatgpt))
{
    auto *form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);

    auto *controls = new QHBoxLayout;
    auto *waitingRow = new QHBoxLayout(waiting_);
    waitingRow->setContentsMargins(0, 0, 0, 0);
    waitingRow->addWidget(new Spinner);
    waitingRow->addWidget(new QLabel(QStringLiteral("Waiting for your browser…")));
    cancel_->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    waitingRow->addWidget(cancel_);
    controls->addWidget(waiting_);
    controls->addWidget(label_);
    controls->addWidget(accountButton_);
    accounts_->setAutoRaise(true);
    accounts_->setToolTip(QStringLiteral("Other ChatGPT accounts"));
    accounts_->setAccessibleName(QStringLiteral("Other ChatGPT accounts"));
    accounts_->setIcon(Icons::icon(QStringLiteral("person.2"), palette().color(QPalette::WindowText), 16));
    accounts_->setMenu(accountsMenu_);
    accounts_->setPopupMode(QToolButton::InstantPopup);
    accounts_->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; width: 0; }"));
    controls->addWidget(accounts_);
    controls->addStretch(1);
    form->addRow(QStringLiteral("ChatGPT"), controls);
    // Level with the settings form's own label column.
    form->setHorizontalSpacing(12);
    form->labelForField(controls)->setFixedWidth(FormGroup::labelWidth);

    auto *notAllowedRow = new QHBoxLayout(notAllowed_);
    notAllowedRow->setContentsMargins(0, 0, 0, 0);
    auto *notAllowedText = new QLabel(QStringLiteral("Zentoro isn't allowed to use this account's ChatGPT plan."));
    notAllowedText->setWordWrap(true);
    notAllowedRow->addWidget(notAllowedText, 1);
    notAllowedRow->addWidget(allow_);
    form->addRow(notAllowed_);

    auto *segments = new QHBoxLayout(picker_);
    segments->setContentsMargins(0, 0, 0, 0);
    segments->setSpacing(0);
    auto *group = new QButtonGroup(picker_);
    for (QPushButton *choice : {planChoice_, keyChoice_}) {
        group->addButton(choice);
        segments->addWidget(choice);
    }
    segments->addStretch(1);
    form->addRow(picker_);
    form->addRow(planNote_);

    connect(cancel_, &QPushButton::clicked, this, [this] { chatgpt_.cancelSignIn(); });
    connect(accountButton_, &QPushButton::clicked, this, [this] {
        if (chatgpt_.isSignedIn())
            chatgpt_.signOut();
        else
            chatgpt_.signIn(std::nullopt, false);
    });
    connect(allow_, &QPushButton::clicked, this, [this] { chatgpt_.signIn(chatgpt_.account(), true); });
    connect(accountsMenu_, &QMenu::aboutToShow, this, &ChatGPTSettingsRows::fillAccountsMenu);
    connect(planChoice_, &QPushButton::clicked, this, [this] { agent_.setPreferredProvider(Provider::ChatGPT); });
    connect(keyChoice_, &QPushButton::clicked, this, [this] { agent_.setPreferredProvider(Provider::APIKey); });
    for (auto signal : {&ChatGPT::accountsChanged, &ChatGPT::isSigningInChanged})
        connect(&chatgpt_, signal, this, &ChatGPTSettingsRows::sync);
    for (auto signal : {&Agent::hasAPIKeyChanged, &Agent::preferredProviderChanged, &Agent::planChanged})
        connect(&agent_, signal, this, &ChatGPTSettingsRows::sync);
    fillAccountsMenu();
    sync();
}

QString ChatGPTSettingsRows::accountText() const
{
    if (!waiting_->isHidden())
        return QStringLiteral("Waiting for your browser…");
    return label_->isHidden() ? QString() : label_->text();
}

void ChatGPTSettingsRows::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    QPointer<ChatGPT> chatgpt(&chatgpt_);
    startTask([chatgpt](TaskHandle) -> QCoro::Task<> {
        if (chatgpt)
            co_await chatgpt->refreshModels();
    });
}

void ChatGPTSettingsRows::fillAccountsMenu()
{
    accountsMenu_->clear();
    const std::optional<QString> active = chatgpt_.activeID();
    for (const ChatGPTAccount &account : chatgpt_.accounts()) {
        if (account.clientID == active)
            continue;
        accountsMenu_->addAction(QStringLiteral("Use %1").arg(account.label()), this,
                                 [this, account] { chatgpt_.use(account); });
    }
    accountsMenu_->addAction(QStringLiteral("Add Another Account…"), this,
                             [this] { chatgpt_.signIn(std::nullopt, false); });
}

void ChatGPTSettingsRows::sync()
{
    // A record stays active after its sign-out; the controls offer a sign-in for it then.
    const std::optional<ChatGPTAccount> account = chatgpt_.isSignedIn() ? chatgpt_.account() : std::nullopt;
    const bool signingIn = chatgpt_.isSigningIn();
    waiting_->setVisible(signingIn);
    label_->setVisible(!signingIn && account);
    label_->setText(account ? account->label() : QString());
    accountButton_->setVisible(!signingIn);
    const QString action = account ? QStringLiteral("Sign Out") : QStringLiteral("Continue with ChatGPT");
    accountButton_->setText(action);
    accountButton_->setAccessibleName(action);
    accounts_->setVisible(!signingIn && (account || !chatgpt_.accounts().isEmpty()));
    notAllowed_->setVisible(chatgpt_.isSignedIn() && !chatgpt_.canUsePlan());
    allow_->setEnabled(!signingIn);
    picker_->setVisible(chatgpt_.canUsePlan() && agent_.hasAPIKey());
    const Provider shown = agent_.provider().value_or(Provider::ChatGPT);
    planChoice_->setChecked(shown == Provider::ChatGPT);
    keyChoice_->setChecked(shown == Provider::APIKey);
    planNote_->setVisible(agent_.provider() == Provider::ChatGPT);
}

} // namespace zentoro
