#include "ui/SetupRows.h"

#include "agent/Agent.h"
#include "chatgpt/ChatGPT.h"
#include "model_service/AgentConfig.h"
#include "runtime/Runtime.h"
#include "ui/ChatGPTSignIn.h"
#include "ui/Icons.h"
#include "ui/PanelStyle.h"
#include "ui/Spinner.h"

#include <QDesktopServices>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace zentoro {

namespace {

constexpr int iconBoxWidth = 28;

QLabel *secondaryLabel(QWidget *owner, PanelStyle::Type type)
{
    auto *label = new QLabel;
    label->setFont(PanelStyle::font(owner->font(), type));
    PanelStyle::setTextRole(label, PanelStyle::Role::Secondary);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QLabel *titleLabel(QWidget *owner)
{
    auto *label = new QLabel;
    label->setFont(PanelStyle::font(owner->font(), PanelStyle::Type::Body, PanelStyle::medium(owner->font())));
    label->setWordWrap(true);
    return label;
}

// A link in the tint colour. Rich text takes a link's colour from the markup rather than from
// the label's palette, so the markup is written anew when the palette changes.
class TintLink : public QLabel {
public:
    TintLink(const QString &url, const QString &text) : url_(url), text_(text)
    {
        setOpenExternalLinks(true);
        setTextInteractionFlags(Qt::TextBrowserInteraction);
        setAccessibleName(text);
        write();
    }

protected:
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::PaletteChange)
            write();
        QLabel::changeEvent(event);
    }

private:
    void write()
    {
        setText(QStringLiteral("<a href=\"%1\" style=\"color: %2\">%3</a>")
                    .arg(url_.toHtmlEscaped(), PanelStyle::tint(palette()).name(), text_.toHtmlEscaped()));
    }

    QString url_;
    QString text_;
};
// The accounts behind the agent's plan; the process's own when the plan is another kind.
ChatGPT &signedInAccounts(Agent &agent)
{
    if (auto *accounts = qobject_cast<ChatGPT *>(agent.plan()))
        return *accounts;
    return ChatGPT::shared();
}

bool isBlank(const QString &text)
{
    for (const QChar c : text) {
        if (c != u' ' && c != u'\t')
            return false;
    }
    return true;
}

} // namespace

ToolchainRow::ToolchainRow(Runtime &runtime, QWidget *parent)
    : QWidget(parent), runtime_(runtime), icon_(new QStackedWidget), symbol_(new QLabel), title_(titleLabel(this)),
      detail_(secondaryLabel(this, PanelStyle::Type::Callout)), action_(new QPushButton)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    icon_->setFixedWidth(iconBoxWidth);
    symbol_->setAlignment(Qt::AlignCenter);
    icon_->addWidget(symbol_);
    auto *spinner = new Spinner;
    icon_->addWidget(spinner);
    icon_->setFixedHeight(22);
    row->addWidget(icon_, 0, Qt::AlignTop);

    auto *column = new QVBoxLayout;
    column->setSpacing(2);
    column->addWidget(title_);
    column->addWidget(detail_);
    auto *buttonRow = new QHBoxLayout;
    buttonRow->setContentsMargins(0, 4, 0, 0);
    buttonRow->addWidget(action_);
    buttonRow->addStretch();
    column->addLayout(buttonRow);
    row->addLayout(column, 1);

    connect(action_, &QPushButton::clicked, this, [this] {
        if (runtime_.toolchain().kind() == Toolchain::Case::Missing) {
            runtime_.installToolchain();
            return;
        }
        QPointer<Runtime> target(&runtime_);
        startTask([target](TaskHandle) -> QCoro::Task<> {
            if (target)
                co_await target->checkToolchain();
        });
    });
    connect(&runtime_, &Runtime::toolchainChanged, this, &ToolchainRow::sync);
    sync();
}

void ToolchainRow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        sync();
    QWidget::changeEvent(event);
}

QString ToolchainRow::title() const
{
    return title_->text();
}

QString ToolchainRow::detail() const
{
    return detail_->isHidden() ? QString() : detail_->text();
}

void ToolchainRow::sync()
{
    const Toolchain &toolchain = runtime_.toolchain();
    const QString name = runtime_.workspace().name;
    const QPalette p = palette();
    QString title;
    QString detail;
    QString action;
    QString symbol;
    QColor symbolColor = p.color(QPalette::Text);
    PanelStyle::Type detailType = PanelStyle::Type::Callout;
    switch (toolchain.kind()) {
    case Toolchain::Case::Checking: title = QStringLiteral("Looking for the Swift compiler…"); break;
    case Toolchain::Case::Ready:
        title = QStringLiteral("Swift compiler ready");
        detail = toolchain.compiler()->version;
        detailType = PanelStyle::Type::Caption;
        symbol = QStringLiteral("checkmark.circle.fill");
        symbolColor = PanelStyle::green(p);
        break;
    case Toolchain::Case::Missing:
        title = QStringLiteral("Install the Swift toolchain");
        detail = QStringLiteral("%1 compiles itself with the Swift compiler in the free Swift toolchain for Linux "
                                "(about a 1 GB download).")
                     .arg(name);
        action = QStringLiteral("Install…");
        symbol = QStringLiteral("arrow.down.circle");
        break;
    case Toolchain::Case::Installing:
        title = QStringLiteral("Installing the Swift toolchain…");
        detail = QStringLiteral("Follow the installer. %1 carries on when it's done.").arg(name);
        break;
    case Toolchain::Case::Broken:
        title = QStringLiteral("The Swift compiler isn't working");
        detail = toolchain.description();
        action = QStringLiteral("Check Again");
        symbol = QStringLiteral("exclamationmark.triangle.fill");
        symbolColor = PanelStyle::orange(p);
        break;
    }
    title_->setText(title);
    detail_->setText(detail);
    detail_->setFont(PanelStyle::font(font(), detailType));
    detail_->setVisible(!detail.isEmpty());
    action_->setText(action);
    action_->setAccessibleName(action);
    action_->setVisible(!action.isEmpty());
    if (symbol.isEmpty()) {
        icon_->setCurrentIndex(1);
    } else {
        symbol_->setPixmap(Icons::pixmap(symbol, 20, symbolColor, devicePixelRatioF()));
        icon_->setCurrentIndex(0);
    }
}

AgentAccessRow::AgentAccessRow(Agent &agent, QWidget *parent)
    : QWidget(parent), agent_(agent), chatgpt_(signedInAccounts(agent)), symbol_(new QLabel), title_(titleLabel(this)),
      detail_(secondaryLabel(this, PanelStyle::Type::Caption)), entry_(new QWidget), key_(new QLineEdit),
      save_(new QPushButton(QStringLiteral("Save"))), error_(new QLabel)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    symbol_->setFixedWidth(iconBoxWidth);
    symbol_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    row->addWidget(symbol_, 0, Qt::AlignTop);

    auto *column = new QVBoxLayout;
    column->setSpacing(4);
    column->addWidget(title_);
    column->addWidget(detail_);

    auto *entry = new QVBoxLayout(entry_);
    entry->setContentsMargins(0, 0, 0, 0);
    entry->setSpacing(6);
    QLabel *explanation = secondaryLabel(this, PanelStyle::Type::Callout);
    explanation->setText(QStringLiteral(
        "It runs on OpenAI's models: use your ChatGPT plan, or an API key billed to your OpenAI account."));
    entry->addWidget(explanation);
    signIn_ = new ChatGPTSignIn(chatgpt_);
    entry->addWidget(signIn_);
    auto *prompt = new QLabel(QStringLiteral("Or paste an API key:"));
    prompt->setFont(PanelStyle::font(font(), PanelStyle::Type::Callout));
    entry->addWidget(prompt);
    auto *fieldRow = new QHBoxLayout;
    key_->setEchoMode(QLineEdit::Password);
    key_->setPlaceholderText(QStringLiteral("sk-…"));
    key_->setAccessibleName(QStringLiteral("OpenAI API key"));
    save_->setAccessibleName(QStringLiteral("Save the API key"));
    prompt->setBuddy(key_);
    fieldRow->addWidget(key_, 1);
    fieldRow->addWidget(save_);
    entry->addLayout(fieldRow);
    auto *link = new TintLink(QStringLiteral("https://platform.openai.com/api-keys"),
                              QStringLiteral("API keys on the OpenAI platform"));
    link->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    entry->addWidget(link);
    error_->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    PanelStyle::setTextRole(error_, PanelStyle::Role::Red);
    error_->setWordWrap(true);
    error_->hide();
    entry->addWidget(error_);
    column->addWidget(entry_);
    row->addLayout(column, 1);

    connect(key_, &QLineEdit::textChanged, this, [this] { save_->setEnabled(!isBlank(key_->text())); });
    connect(key_, &QLineEdit::returnPressed, this, &AgentAccessRow::save);
    connect(save_, &QPushButton::clicked, this, &AgentAccessRow::save);
    connect(&agent_, &Agent::hasAPIKeyChanged, this, &AgentAccessRow::sync);
    connect(&agent_, &Agent::preferredProviderChanged, this, &AgentAccessRow::sync);
    connect(&agent_, &Agent::planChanged, this, &AgentAccessRow::sync);
    connect(&chatgpt_, &ChatGPT::accountsChanged, this, &AgentAccessRow::sync);
    detail_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse);
    connect(detail_, &QLabel::linkActivated, this, [this] { QDesktopServices::openUrl(chatgpt_.usageURL()); });
    save_->setEnabled(false);
    sync();
}

void AgentAccessRow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        sync();
    QWidget::changeEvent(event);
}

QString AgentAccessRow::title() const
{
    return title_->text();
}

QString AgentAccessRow::detail() const
{
    return detail_->isHidden() ? QString() : detail_->text();
}

QString AgentAccessRow::error() const
{
    return error_->isHidden() ? QString() : error_->text();
}

void AgentAccessRow::save()
{
    if (isBlank(key_->text()))
        return;
    try {
        AgentConfig::saveAPIKey(key_->text());
    } catch (...) {
        error_->setText(describe(std::current_exception()));
        error_->show();
        agent_.setHasAPIKey(AgentConfig::effectiveKey().has_value());
        return;
    }
    key_->clear();
    error_->hide();
    agent_.setHasAPIKey(AgentConfig::effectiveKey().has_value());
}

void AgentAccessRow::sync()
{
    const std::optional<Provider> provider = agent_.provider();
    const QPalette p = palette();
    symbol_->setPixmap(
        provider ? Icons::pixmap(QStringLiteral("checkmark.circle.fill"), 20, PanelStyle::green(p), devicePixelRatioF())
                 : Icons::pixmap(QStringLiteral("key"), 20, p.color(QPalette::Text), devicePixelRatioF()));
    entry_->setVisible(!provider);
    detail_->setVisible(provider.has_value());
    if (!provider) {
        title_->setText(QStringLiteral("Connect the agent"));
    } else if (*provider == Provider::APIKey) {
        title_->setText(QStringLiteral("OpenAI API key added"));
        detail_->setText(AgentConfig::savedKey() ? QStringLiteral("Saved for every copy of Zentoro.")
                                                 : QStringLiteral("From the OPENAI_API_KEY environment variable."));
    } else {
        title_->setText(QStringLiteral("Using your ChatGPT plan"));
        const std::optional<ChatGPTAccount> account = chatgpt_.account();
        detail_->setText(QStringLiteral("%1  <a href=\"usage\">Manage usage</a>")
                             .arg((account ? account->label() : QString()).toHtmlEscaped()));
    }
}

} // namespace zentoro
