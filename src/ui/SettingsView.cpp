#include "ui/SettingsView.h"

#include "agent/Agent.h"
#include "core/DescribedError.h"
#include "core/MainTask.h"
#include "model_service/AgentConfig.h"
#include "model_service/ServiceOrigin.h"
#include "runtime/Runtime.h"
#include "ui/GroupedForm.h"
#include "ui/Icons.h"
#include "ui/PanelStyle.h"
#include "ui/SetupRows.h"
#include "ui/VersionMenu.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QShortcut>
#include <QToolButton>

namespace zentoro {

namespace {

bool isBlank(const QString &text)
{
    for (const QChar c : text) {
        if (c != u' ' && c != u'\t')
            return false;
    }
    return true;
}

QLabel *noteLabel(QWidget *owner)
{
    auto *label = new QLabel;
    label->setFont(PanelStyle::font(owner->font(), PanelStyle::Type::Caption));
    PanelStyle::setTextColor(label, PanelStyle::secondary(owner->palette()));
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QVBoxLayout *column(QWidget *owner, int spacing = 6)
{
    auto *layout = new QVBoxLayout(owner);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

QString effortLabel(const QString &effort)
{
    if (effort.isEmpty())
        return QStringLiteral("Model default");
    return effort.left(1).toUpper() + effort.mid(1);
}

QString withoutClosingSlashes(QString text)
{
    while (text.endsWith(u'/'))
        text.chop(1);
    return text;
}

} // namespace

SettingsView::SettingsView(Runtime &runtime, Agent &agent, QWidget *parent)
    : QWidget(parent, Qt::Window), runtime_(runtime), agent_(agent),
      agentGroup_(new FormGroup(QStringLiteral("Agent"))),
      toolsGroup_(new FormGroup(QStringLiteral("Developer tools"))), appGroup_(new FormGroup(QStringLiteral("The app")))
{
    setWindowTitle(QStringLiteral("Settings"));
    setAccessibleName(QStringLiteral("Settings"));
    setFixedWidth(formWidth);

    QWidget *keyControls = makeKeyRow();
    keyRow_ = agentGroup_->addRow(QStringLiteral("API key"), keyControls, key_);
    QWidget *modelControls = makeModelRow();
    agentGroup_->addRow(QStringLiteral("Model"), modelControls, model_);
    effort_ = new QComboBox;
    effort_->setAccessibleName(QStringLiteral("Reasoning effort"));
    for (const QString &value : AgentConfig::reasoningEfforts())
        effort_->addItem(effortLabel(value), value);
    const QString effort = AgentConfig::reasoningEffort();
    if (effort_->findData(effort) < 0)
        effort_->addItem(effort, effort);
    effort_->setCurrentIndex(effort_->findData(effort));
    connect(effort_, &QComboBox::currentIndexChanged, this,
            [this] { AgentConfig::setReasoningEffort(effort_->currentData().toString()); });
    agentGroup_->addRow(QStringLiteral("Reasoning effort"), effort_);
    QWidget *originControls = makeOriginRow();
    agentGroup_->addRow(QStringLiteral("Model service"), originControls, origin_);
    makeDeveloperTools(toolsGroup_);
    makeAppGroup(appGroup_);

    auto *content = new QWidget;
    auto *groups = new QVBoxLayout(content);
    groups->setContentsMargins(20, 18, 20, 20);
    groups->setSpacing(20);
    for (FormGroup *group : {agentGroup_, toolsGroup_, appGroup_})
        groups->addWidget(group);
    groups->addStretch(1);
    auto *scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    // Tab goes through the rows; the area scrolls to the row that has the focus.
    scroll->setFocusPolicy(Qt::NoFocus);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    scroll->viewport()->setBackgroundRole(QPalette::Window);
    column(this, 0)->addWidget(scroll);
    resize(formWidth, std::min(content->sizeHint().height(), 760));

    auto *escape = new QShortcut(QKeySequence::Cancel, this);
    connect(escape, &QShortcut::activated, this, &QWidget::close);

    for (auto signal : {&Agent::hasAPIKeyChanged, &Agent::preferredProviderChanged})
        connect(&agent_, signal, this, &SettingsView::syncKey);
    connect(&runtime_, &Runtime::toolchainChanged, this, &SettingsView::syncToolchain);
    connect(&runtime_, &Runtime::stateChanged, this, &SettingsView::syncVersions);
    syncKey();
    syncOrigin();
    syncToolchain();
    syncVersions();
}

QWidget *SettingsView::makeKeyRow()
{
    auto *field = new QWidget;
    QVBoxLayout *lines = column(field);
    auto *controls = new QHBoxLayout;
    controls->setSpacing(6);
    key_ = new QLineEdit;
    key_->setEchoMode(QLineEdit::Password);
    key_->setAccessibleName(QStringLiteral("API key"));
    saveKey_ = new QPushButton(QStringLiteral("Save"));
    saveKey_->setAccessibleName(QStringLiteral("Save the API key"));
    saveKey_->setEnabled(false);
    removeKey_ = new QPushButton(QStringLiteral("Remove"));
    removeKey_->setAccessibleName(QStringLiteral("Remove the saved API key"));
    controls->addWidget(key_, 1);
    controls->addWidget(saveKey_);
    controls->addWidget(removeKey_);
    lines->addLayout(controls);
    keyNote_ = noteLabel(this);
    lines->addWidget(keyNote_);

    const auto saveTyped = [this] {
        if (!isBlank(key_->text()))
            setKey(key_->text());
    };
    connect(key_, &QLineEdit::textChanged, this, [this] { saveKey_->setEnabled(!isBlank(key_->text())); });
    connect(key_, &QLineEdit::returnPressed, this, saveTyped);
    connect(saveKey_, &QPushButton::clicked, this, saveTyped);
    connect(removeKey_, &QPushButton::clicked, this, [this] { setKey(std::nullopt); });
    return field;
}

QWidget *SettingsView::makeModelRow()
{
    auto *field = new QWidget;
    auto *line = new QHBoxLayout(field);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    model_ = new QLineEdit(AgentConfig::model());
    model_->setPlaceholderText(QStringLiteral("Model"));
    model_->setAccessibleName(QStringLiteral("Model"));
    connect(model_, &QLineEdit::textEdited, this, [this](const QString &text) {
        AgentConfig::setModel(text);
        emit modelChanged();
    });
    modelMenu_ = new QToolButton;
    modelMenu_->setAutoRaise(true);
    modelMenu_->setFocusPolicy(Qt::StrongFocus);
    modelMenu_->setIcon(Icons::icon(QStringLiteral("chevron.down"), palette().color(QPalette::ButtonText), 12));
    modelMenu_->setToolTip(QStringLiteral("Models"));
    modelMenu_->setAccessibleName(QStringLiteral("Models"));
    modelMenu_->setPopupMode(QToolButton::InstantPopup);
    modelMenu_->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; width: 0; }"));
    auto *menu = new QMenu(modelMenu_);
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fillModelMenu(menu); });
    modelMenu_->setMenu(menu);
    line->addWidget(model_, 1);
    line->addWidget(modelMenu_);
    return field;
}

QWidget *SettingsView::makeOriginRow()
{
    auto *field = new QWidget;
    QVBoxLayout *lines = column(field);
    auto *controls = new QHBoxLayout;
    controls->setSpacing(6);
    origin_ = new QLineEdit(ServiceOrigin::saved().value_or(QString()));
    origin_->setPlaceholderText(QString::fromLatin1(ServiceOrigin::standard));
    origin_->setAccessibleName(QStringLiteral("Model service address"));
    origin_->setToolTip(QStringLiteral("A server that speaks OpenAI's Responses interface, such as a model server on "
                                       "this computer. Saved for every copy."));
    saveOrigin_ = new QPushButton(QStringLiteral("Save"));
    saveOrigin_->setAccessibleName(QStringLiteral("Save the model service address"));
    controls->addWidget(origin_, 1);
    controls->addWidget(saveOrigin_);
    lines->addLayout(controls);
    originNote_ = noteLabel(this);
    lines->addWidget(originNote_);

    connect(origin_, &QLineEdit::textChanged, this, &SettingsView::syncOrigin);
    connect(origin_, &QLineEdit::returnPressed, this, &SettingsView::saveOrigin);
    connect(saveOrigin_, &QPushButton::clicked, this, &SettingsView::saveOrigin);
    return field;
}

void SettingsView::makeDeveloperTools(FormGroup *group)
{
    auto *row = new QWidget;
    QVBoxLayout *lines = column(row);
    lines->setContentsMargins(0, 10, 0, 10);
    toolchain_ = new ToolchainRow(runtime_);
    lines->addWidget(toolchain_);
    checkAgain_ = new QPushButton(QStringLiteral("Check Again"));
    checkAgain_->setAccessibleName(QStringLiteral("Check again for the Swift compiler"));
    lines->addWidget(checkAgain_, 0, Qt::AlignRight);
    group->insertRow(row);

    connect(checkAgain_, &QPushButton::clicked, this, [this] {
        QPointer<Runtime> target(&runtime_);
        startTask([target](TaskHandle) -> QCoro::Task<> {
            if (target)
                co_await target->checkToolchain();
        });
    });
}

void SettingsView::makeAppGroup(FormGroup *group)
{
    auto *reveal = new QPushButton(QStringLiteral("Show in File Manager"));
    reveal->setAccessibleName(QStringLiteral("Show the source folder in the file manager"));
    connect(reveal, &QPushButton::clicked, this, [this] { FileManager::reveal(runtime_.workspace().sources()); });
    group->addRow(QStringLiteral("Source folder"), reveal);

    versions_ = new QLabel;
    versions_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    group->addRow(QStringLiteral("Versions built"), versions_);

    auto *reset = new QPushButton(QStringLiteral("Reset to Original App…"));
    reset->setAccessibleName(QStringLiteral("Reset to Original App…"));
    connect(reset, &QPushButton::clicked, this, [this] { Reset::confirm(this, runtime_); });
    group->addRow(QStringLiteral("Start over"), reset);

    group->setFootnote(QStringLiteral("Hold Alt while opening %1, or start it with --safe-mode, to start in safe mode, "
                                      "without loading the app's code.")
                           .arg(runtime_.workspace().name));
}

void SettingsView::setChatGPTRows(QWidget *accountRows, QWidget *planRows)
{
    // The same room above and below as the form's own rows.
    for (QWidget *rows : {accountRows, planRows})
        if (rows)
            rows->setContentsMargins(0, 9, 0, 9);
    if (planRows)
        agentGroup_->insertRow(planRows, agentGroup_->indexOf(keyRow_) + 1);
    if (accountRows)
        agentGroup_->insertRow(accountRows, 0);
}

void SettingsView::setKey(const std::optional<QString> &key)
{
    try {
        AgentConfig::saveAPIKey(key);
        key_->clear();
        keyMessage_ = key ? QStringLiteral("Saved.") : QStringLiteral("Removed.");
    } catch (...) {
        keyMessage_ = describe(std::current_exception());
    }
    agent_.setHasAPIKey(AgentConfig::effectiveKey().has_value());
    syncKey();
}

QString SettingsView::keyNote() const
{
    return keyNote_->isHidden() ? QString() : keyNote_->text();
}

void SettingsView::syncKey()
{
    const bool saved = AgentConfig::savedKey().has_value();
    key_->setPlaceholderText(agent_.hasAPIKey() ? QStringLiteral("Paste to replace") : QStringLiteral("sk-…"));
    removeKey_->setVisible(saved);
    QString note;
    if (keyMessage_)
        note = *keyMessage_;
    else if (!saved && AgentConfig::environmentKey())
        note = QStringLiteral("Using OPENAI_API_KEY from the environment.");
    keyNote_->setText(note);
    keyNote_->setVisible(!note.isEmpty());
}

QList<SettingsView::ModelChoice> SettingsView::modelChoices() const
{
    if (agent_.provider() == Provider::ChatGPT && planModels) {
        QList<ModelChoice> plan = planModels();
        if (!plan.isEmpty())
            return plan;
    }
    QList<ModelChoice> fixed;
    for (const QString &id : AgentConfig::apiKeyModels())
        fixed.append({id, id});
    return fixed;
}

void SettingsView::fillModelMenu(QMenu *menu)
{
    menu->clear();
    const QString current = model_->text().trimmed();
    for (const ModelChoice &choice : modelChoices()) {
        QAction *action = menu->addAction(choice.name);
        action->setCheckable(true);
        action->setChecked(choice.id == current);
        connect(action, &QAction::triggered, this, [this, id = choice.id] { chooseModel(id); });
    }
}

void SettingsView::chooseModel(const QString &id)
{
    model_->setText(id);
    AgentConfig::setModel(id);
    emit modelChanged();
}

void SettingsView::saveOrigin()
{
    const QString typed = origin_->text();
    try {
        ServiceOrigin::save(typed);
        originMessage_ = isBlank(typed) ? QStringLiteral("Removed.") : QStringLiteral("Saved.");
        origin_->setText(ServiceOrigin::saved().value_or(QString()));
    } catch (...) {
        originMessage_ = describe(std::current_exception());
    }
    syncOrigin();
}

QString SettingsView::originNote() const
{
    return originNote_->text();
}

void SettingsView::syncOrigin()
{
    const std::optional<QString> environment = ServiceOrigin::environment();
    const std::optional<QString> saved = ServiceOrigin::saved();
    QString sentence;
    if (environment && saved)
        sentence = QStringLiteral("This run uses %1 from ZENTORO_API_BASE; the address saved here applies when that "
                                  "isn't set.")
                       .arg(*environment);
    else if (environment)
        sentence = QStringLiteral("This run uses %1 from ZENTORO_API_BASE.").arg(*environment);
    else
        sentence = QStringLiteral("Requests go to %1.").arg(ServiceOrigin::inUse());
    originNote_->setText(originMessage_ ? *originMessage_ + u' ' + sentence : sentence);
    saveOrigin_->setEnabled(withoutClosingSlashes(origin_->text().trimmed()) != saved.value_or(QString()));
}

void SettingsView::syncToolchain()
{
    const Toolchain::Case kind = runtime_.toolchain().kind();
    // A compiler that isn't working has "Check Again" in its own row.
    checkAgain_->setVisible(kind != Toolchain::Case::Ready && kind != Toolchain::Case::Broken);
    checkAgain_->setEnabled(kind != Toolchain::Case::Checking);
}

void SettingsView::syncVersions()
{
    versions_->setText(QString::number(runtime_.state().versions.size()));
}

} // namespace zentoro
