#include "ui/AgentPanel.h"

#include "agent/Agent.h"
#include "model_service/AgentConfig.h"
#include "ui/Brand.h"
#include "ui/Composer.h"
#include "ui/ConversationMenu.h"
#include "ui/EmptyState.h"
#include "ui/Icons.h"
#include "ui/LazyColumn.h"
#include "ui/PanelStyle.h"
#include "ui/RoundedBox.h"
#include "ui/SetupRows.h"
#include "ui/Shortcuts.h"
#include "ui/WorkingRow.h"

#include <QBoxLayout>
#include <QDesktopServices>
#include <QEvent>
#include <QFrame>
#include <QMenu>
#include <QPainter>

namespace zentoro {

namespace {

QToolButton *headerButton(const QString &toolTip, const QString &name)
{
    auto *button = new QToolButton;
    button->setAutoRaise(true);
    button->setToolTip(toolTip);
    button->setAccessibleName(name);
    button->setFocusPolicy(Qt::StrongFocus);
    button->setIconSize(QSize(16, 16));
    return button;
}

bool startsWith(const QList<ChatItem> &items, const QList<ChatItem> &prefix)
{
    if (items.size() < prefix.size())
        return false;
    for (qsizetype i = 0; i < prefix.size(); ++i) {
        if (!(items[i] == prefix[i]))
            return false;
    }
    return true;
}

} // namespace

AgentPanel::AgentPanel(Agent &agent, QWidget *parent) : QWidget(parent), agent_(agent)
{
    setMinimumWidth(300);
    actions_.canRetry = [this] { return agent_.canRetry(); };
    actions_.retry = [this] { agent_.retry(); };
    actions_.isExpanded = [this](const QUuid &id) { return expanded_.contains(id); };
    actions_.setExpanded = [this](const QUuid &id, bool on) {
        if (on)
            expanded_.insert(id);
        else
            expanded_.remove(id);
    };

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    auto *divider = new QFrame;
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setForegroundRole(QPalette::Mid);
    column->addWidget(divider);

    transcript_ = new LazyColumn;
    transcript_->setAccessibleName(QStringLiteral("Conversation"));
    transcript_->setFactory([this](qsizetype row) { return makeRow(row); },
                            [this](qsizetype row, int width) {
                                return TranscriptRows::estimatedHeight(shown_[row], width, fontMetrics());
                            });
    // At the head of the transcript: the way to connect while there is none, then the empty state.
    auto *head = new QWidget;
    auto *headColumn = new QVBoxLayout(head);
    headColumn->setContentsMargins(0, 0, 0, 0);
    headColumn->setSpacing(14);
    accessBox_ = new RoundedBox(10);
    accessBox_->setObjectName(QStringLiteral("access"));
    auto *accessColumn = new QVBoxLayout(accessBox_);
    accessColumn->setContentsMargins(14, 14, 14, 14);
    accessRow_ = new AgentAccessRow(agent_);
    accessColumn->addWidget(accessRow_);
    headColumn->addWidget(accessBox_);
    emptyState_ = new EmptyState;
    headColumn->addWidget(emptyState_);
    transcript_->setHeader(head);
    workingRow_ = new WorkingRow(agent_);
    transcript_->setFooter(workingRow_);
    column->addWidget(transcript_, 1);

    composer_ = new Composer;
    column->addWidget(composer_);
    planRow_ = makePlanRow();
    column->addWidget(planRow_);

    connect(emptyState_, &EmptyState::suggestionChosen, this, [this](const QString &text) {
        transcript_->scrollToBottom();
        agent_.send(text);
    });
    connect(composer_, &Composer::sendRequested, this, &AgentPanel::send);
    connect(composer_, &Composer::stopRequested, this, [this] { agent_.task().cancel(); });
    connect(composer_->field(), &QPlainTextEdit::textChanged, this, &AgentPanel::syncState);

    connect(&agent_, &Agent::itemsChanged, this, &AgentPanel::syncItems);
    for (auto signal : {&Agent::isRunningChanged, &Agent::hasAPIKeyChanged, &Agent::preferredProviderChanged,
                        &Agent::conversationsChanged, &Agent::planChanged})
        connect(&agent_, signal, this, &AgentPanel::syncState);

    syncItems();
    syncState();
}

// Under the composer while the plan pays: a reminder and the way to its usage page.
QWidget *AgentPanel::makePlanRow()
{
    auto *row = new QLabel(QStringLiteral("Using ChatGPT plan&nbsp;&nbsp;<a href=\"usage\">Manage usage</a>"));
    row->setObjectName(QStringLiteral("planRow"));
    row->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    PanelStyle::setTextColor(row, PanelStyle::secondary(palette()));
    row->setAlignment(Qt::AlignCenter);
    row->setContentsMargins(0, 0, 0, 8);
    row->setTextInteractionFlags(Qt::LinksAccessibleByMouse);
    connect(row, &QLabel::linkActivated, this, [this] {
        if (agent_.plan())
            QDesktopServices::openUrl(agent_.plan()->usageURL());
    });
    return row;
}

QWidget *AgentPanel::makeHeader()
{
    auto *header = new QWidget;
    auto *row = new QHBoxLayout(header);
    row->setContentsMargins(14, 10, 14, 10);
    row->setSpacing(8);

    glyph_ = new QLabel;
    glyph_->setFixedSize(Brand::stretchGlyphSize);
    glyph_->setAccessibleName(QStringLiteral("Zentoro"));
    row->addWidget(glyph_);
    auto *title = new QLabel(QStringLiteral("Agent"));
    title->setFont(PanelStyle::font(font(), PanelStyle::Type::Body, QFont::DemiBold));
    row->addWidget(title);
    model_ = new QLabel(AgentConfig::model());
    model_->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    model_->setAccessibleName(QStringLiteral("Model"));
    PanelStyle::setTextRole(model_, PanelStyle::Role::Secondary);
    row->addWidget(model_);
    row->addStretch(1);

    conversations_ = headerButton(QStringLiteral("Conversations"), QStringLiteral("Conversations"));
    auto *menu = new QMenu(conversations_);
    conversations_->setMenu(menu);
    conversations_->setPopupMode(QToolButton::InstantPopup);
    conversations_->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; width: 0; }"));
    connect(menu, &QMenu::aboutToShow, this, [this, menu] {
        ConversationMenu::fill(menu, agent_.conversations(), agent_.conversationID(), QDateTime::currentDateTime(),
                               [this](const QUuid &id) { agent_.openConversation(id); });
    });
    row->addWidget(conversations_);

    newConversation_ = headerButton(Shortcuts::withShortcut(QStringLiteral("New conversation"),
                                                            Shortcuts::newConversation()) +
                                        QStringLiteral(". This one stays under Conversations."),
                                    QStringLiteral("New conversation"));
    connect(newConversation_, &QToolButton::clicked, this, [this] { agent_.newConversation(); });
    row->addWidget(newConversation_);

    settings_ = headerButton(QStringLiteral("Settings"), QStringLiteral("Settings"));
    connect(settings_, &QToolButton::clicked, this, &AgentPanel::settingsRequested);
    row->addWidget(settings_);
    updateHeaderIcons();
    return header;
}

void AgentPanel::updateHeaderIcons()
{
    const QPalette &p = palette();
    glyph_->setPixmap(Brand::stretchGlyph(PanelStyle::tint(p)).pixmap(Brand::stretchGlyphSize, devicePixelRatioF()));
    const QColor normal = p.color(QPalette::WindowText);
    const QColor disabled = PanelStyle::tertiary(p);
    conversations_->setIcon(Icons::icon(QStringLiteral("clock.arrow.circlepath"), normal, 16, disabled));
    newConversation_->setIcon(Icons::icon(QStringLiteral("square.and.pencil"), normal, 16, disabled));
    settings_->setIcon(Icons::icon(QStringLiteral("gearshape"), normal, 16, disabled));
}

void AgentPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange && glyph_)
        updateHeaderIcons();
    QWidget::changeEvent(event);
}

QWidget *AgentPanel::makeRow(qsizetype row)
{
    return TranscriptRows::make(shown_[row], row == shown_.size() - 1, actions_);
}

void AgentPanel::syncItems()
{
    const QList<ChatItem> &items = agent_.items();
    const qsizetype before = shown_.size();
    if (before > 0 && startsWith(items, shown_)) {
        const qsizetype added = items.size() - before;
        shown_ = items;
        if (added > 0) {
            // The former last row is no longer last: an error row loses its "Try Again".
            if (shown_[before - 1].kind == ChatItem::Kind::Error)
                transcript_->rebuild(before - 1);
            transcript_->append(added);
        }
    } else {
        shown_ = items;
        transcript_->reset(shown_.size());
    }
    emptyState_->setVisible(shown_.isEmpty());
    syncState();
}

bool AgentPanel::canSend() const
{
    return agent_.provider().has_value() && !agent_.isRunning() && !draft().trimmed().isEmpty();
}

QString AgentPanel::draft() const
{
    return composer_->field()->toPlainText();
}

void AgentPanel::send()
{
    if (!canSend())
        return;
    const QString text = draft();
    composer_->field()->clear();
    // Whatever the user was reading, their own words and the work they start come into view.
    transcript_->scrollToBottom();
    agent_.send(text);
}

void AgentPanel::syncState()
{
    const bool hasProvider = agent_.provider().has_value();
    const bool running = agent_.isRunning();
    composer_->setPlaceholder(hasProvider ? QStringLiteral("Describe a change…")
                                          : QStringLiteral("Connect the agent to start"));
    composer_->setRunning(running);
    composer_->setCanSend(canSend());
    emptyState_->setSuggestionsEnabled(hasProvider && !running);
    if (accessBox_->isHidden() == hasProvider) {
        accessBox_->setVisible(!hasProvider);
        transcript_->layoutNow();
    } else {
        accessBox_->setVisible(!hasProvider);
    }
    workingRow_->setVisible(running);
    planRow_->setVisible(agent_.provider() == Provider::ChatGPT);
    newConversation_->setEnabled(!shown_.isEmpty());
    conversations_->setEnabled(!agent_.conversations().isEmpty());
    // Whether the last row offers "Try Again" follows the run's state.
    if (!shown_.isEmpty() && shown_.last().kind == ChatItem::Kind::Error) {
        QWidget *last = transcript_->rowWidget(shown_.size() - 1);
        const bool offers = last && last->findChild<QPushButton *>(QStringLiteral("retry"));
        if (!last || offers != agent_.canRetry())
            transcript_->rebuild(shown_.size() - 1);
    }
}

void AgentPanel::syncModel()
{
    model_->setText(AgentConfig::model());
}

void AgentPanel::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    syncModel();
    composer_->field()->setFocus();
}

void AgentPanel::paintEvent(QPaintEvent *)
{
    // The edge against the app's side, which on the setup screen has the same background.
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, 0, 0, height());
}

} // namespace zentoro
