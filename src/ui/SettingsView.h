#pragma once

#include <QWidget>

#include <functional>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QMenu;
class QPushButton;
class QToolButton;

namespace zentoro {

class Agent;
class FormGroup;
class Runtime;
class ToolchainRow;

// The settings window: how the agent reaches the model service, the Swift compiler, and this
// copy of the app. It follows the agent and the runtime while it is open; what it changes is
// read by the next request.
class SettingsView : public QWidget {
    Q_OBJECT
public:
    static constexpr int formWidth = 520;

    struct ModelChoice {
        QString name;
        QString id;
        bool operator==(const ModelChoice &) const = default;
    };

    SettingsView(Runtime &runtime, Agent &agent, QWidget *parent = nullptr);

    // The places of the ChatGPT rows in "Agent": `accountRows` (the account and the consent to
    // use its plan) at the head, `planRows` (the choice of provider and the plan's line) under
    // the key's message. Either may be null.
    void setChatGPTRows(QWidget *accountRows, QWidget *planRows);
    // The plan's models; the model menu offers them while requests use the plan.
    std::function<QList<ModelChoice>()> planModels;

    // Saves `key` for every copy, or removes the saved one when absent, and says how it went.
    void setKey(const std::optional<QString> &key);
    // The line under the key's field: the last key action's outcome, or where the key comes from.
    QString keyNote() const;
    // What the model menu offers now.
    QList<ModelChoice> modelChoices() const;
    // Saves the typed model service address, or removes the saved one when blank.
    void saveOrigin();
    // The line under that field: which address requests go to, and why.
    QString originNote() const;

    FormGroup *agentGroup() const { return agentGroup_; }
    FormGroup *appGroup() const { return appGroup_; }
    QLineEdit *keyField() const { return key_; }
    QPushButton *saveKeyButton() const { return saveKey_; }
    QPushButton *removeKeyButton() const { return removeKey_; }
    QLineEdit *modelField() const { return model_; }
    QToolButton *modelMenuButton() const { return modelMenu_; }
    QComboBox *effortPicker() const { return effort_; }
    QLineEdit *originField() const { return origin_; }
    QPushButton *saveOriginButton() const { return saveOrigin_; }
    ToolchainRow *toolchainRow() const { return toolchain_; }
    QPushButton *checkAgainButton() const { return checkAgain_; }
    QLabel *versionsBuilt() const { return versions_; }

signals:
    // The "model" setting changed here.
    void modelChanged();

private:
    QWidget *makeKeyRow();
    QWidget *makeModelRow();
    QWidget *makeOriginRow();
    void makeDeveloperTools(FormGroup *group);
    void makeAppGroup(FormGroup *group);
    void fillModelMenu(QMenu *menu);
    void chooseModel(const QString &id);
    void syncKey();
    void syncOrigin();
    void syncToolchain();
    void syncVersions();

    Runtime &runtime_;
    Agent &agent_;
    FormGroup *agentGroup_;
    FormGroup *toolsGroup_;
    FormGroup *appGroup_;
    QWidget *keyRow_ = nullptr;
    QLineEdit *key_ = nullptr;
    QPushButton *saveKey_ = nullptr;
    QPushButton *removeKey_ = nullptr;
    QLabel *keyNote_ = nullptr;
    std::optional<QString> keyMessage_;
    QLineEdit *model_ = nullptr;
    QToolButton *modelMenu_ = nullptr;
    QComboBox *effort_ = nullptr;
    QLineEdit *origin_ = nullptr;
    QPushButton *saveOrigin_ = nullptr;
    QLabel *originNote_ = nullptr;
    std::optional<QString> originMessage_;
    ToolchainRow *toolchain_ = nullptr;
    QPushButton *checkAgain_ = nullptr;
    QLabel *versions_ = nullptr;
};

} // namespace zentoro
