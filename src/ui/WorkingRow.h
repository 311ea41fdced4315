#pragma once

#include <QBasicTimer>
#include <QDateTime>
#include <QLabel>
#include <QWidget>

#include <optional>

namespace zentoro {

class Agent;

// The row under the transcript while a run goes on: what the agent is doing and for how long.
class WorkingRow : public QWidget {
    Q_OBJECT
public:
    explicit WorkingRow(Agent &agent, QWidget *parent = nullptr);

    // Whole seconds since `startedAt`, rounded towards zero, as "75s".
    static QString secondsText(const QDateTime &startedAt, const QDateTime &now);

    QString activityText() const { return activity_->text(); }
    QString elapsedText() const { return elapsed_->isHidden() ? QString() : elapsed_->text(); }
    void refresh();

protected:
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    Agent &agent_;
    QLabel *activity_;
    QLabel *elapsed_;
    QBasicTimer ticks_;
};

} // namespace zentoro
