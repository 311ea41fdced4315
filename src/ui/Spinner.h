#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace zentoro {

// A small spinning indicator of work going on.
class Spinner : public QWidget {
    Q_OBJECT
public:
    explicit Spinner(QWidget *parent = nullptr);
    QSize sizeHint() const override { return QSize(14, 14); }

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QBasicTimer timer_;
    int step_ = 0;
};

} // namespace zentoro
