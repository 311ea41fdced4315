#pragma once

#include "runtime/Banner.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace zentoro {

class Agent;
class Runtime;

// The strip above the hosted app that tells of the runtime's latest trouble: a failed build,
// a crash, a version that didn't load. It can hand the trouble to the agent, or go away.
class BannerView : public QWidget {
    Q_OBJECT
public:
    BannerView(Runtime &runtime, Agent &agent, QWidget *parent = nullptr);

    // What the agent is told when asked to fix `banner`.
    static QString fixRequest(const Banner &banner);

    QLabel *titleLabel() const { return title_; }
    QLabel *detailLabel() const { return detail_; }
    QPushButton *fixButton() const { return fix_; }
    QPushButton *dismissButton() const { return dismiss_; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void updateIcon();
    void sync();

    Runtime &runtime_;
    Agent &agent_;
    QLabel *icon_;
    QLabel *title_;
    QLabel *detail_;
    QPushButton *fix_;
    QPushButton *dismiss_;
};

} // namespace zentoro
