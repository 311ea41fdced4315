#include "ui/ChatGPTSignIn.h"

#include "chatgpt/ChatGPT.h"
#include "ui/PanelStyle.h"
#include "ui/Spinner.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace zentoro {

ChatGPTSignIn::ChatGPTSignIn(ChatGPT &chatgpt, QWidget *parent)
    : QWidget(parent), chatgpt_(chatgpt), waiting_(new QWidget), notAllowed_(new QLabel), action_(new QPushButton),
      cancel_(new QPushButton(QStringLiteral("Cancel"))), message_(new QLabel)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);

    auto *waitingRow = new QHBoxLayout(waiting_);
    waitingRow->setContentsMargins(0, 0, 0, 0);
    waitingRow->addWidget(new Spinner);
    auto *waitingText = new QLabel(QStringLiteral("Finish signing in in your browser…"));
    waitingText->setFont(PanelStyle::font(font(), PanelStyle::Type::Callout));
    PanelStyle::setTextColor(waitingText, PanelStyle::secondary(palette()));
    waitingRow->addWidget(waitingText);
    cancel_->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    waitingRow->addWidget(cancel_);
    waitingRow->addStretch(1);
    column->addWidget(waiting_);

    notAllowed_->setFont(PanelStyle::font(font(), PanelStyle::Type::Callout));
    notAllowed_->setWordWrap(true);
    column->addWidget(notAllowed_);
    action_->setDefault(true);
    column->addWidget(action_, 0, Qt::AlignLeft);

    message_->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    PanelStyle::setTextColor(message_, PanelStyle::red(palette()));
    message_->setWordWrap(true);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    column->addWidget(message_);

    connect(cancel_, &QPushButton::clicked, this, [this] { chatgpt_.cancelSignIn(); });
    connect(action_, &QPushButton::clicked, this, [this] {
        const std::optional<ChatGPTAccount> account = chatgpt_.account();
        const bool allowing = account && account->canAct(QDateTime::currentDateTimeUtc()) && !account->allowsPlan();
        chatgpt_.signIn(account, allowing);
    });
    for (auto signal : {&ChatGPT::accountsChanged, &ChatGPT::isSigningInChanged, &ChatGPT::messageChanged})
        connect(&chatgpt_, signal, this, &ChatGPTSignIn::sync);
    sync();
}

QString ChatGPTSignIn::text() const
{
    QStringList lines;
    if (!waiting_->isHidden())
        lines.append(waiting_->findChild<QLabel *>()->text());
    if (!notAllowed_->isHidden())
        lines.append(notAllowed_->text());
    if (!action_->isHidden())
        lines.append(action_->text());
    if (!message_->isHidden())
        lines.append(message_->text());
    return lines.join(u'\n');
}

void ChatGPTSignIn::sync()
{
    const std::optional<ChatGPTAccount> account = chatgpt_.account();
    const bool signingIn = chatgpt_.isSigningIn();
    const bool allowing = !signingIn && account && account->canAct(QDateTime::currentDateTimeUtc()) &&
                          !account->allowsPlan();
    waiting_->setVisible(signingIn);
    notAllowed_->setVisible(allowing);
    if (allowing)
        notAllowed_->setText(QStringLiteral("%1 is signed in, but Zentoro isn't allowed to use its ChatGPT plan.")
                                 .arg(account->label()));
    action_->setVisible(!signingIn);
    const QString action = allowing ? QStringLiteral("Allow Plan Use…") : QStringLiteral("Continue with ChatGPT");
    action_->setText(action);
    action_->setAccessibleName(action);
    message_->setVisible(chatgpt_.message().has_value());
    message_->setText(chatgpt_.message().value_or(QString()));
}

} // namespace zentoro
