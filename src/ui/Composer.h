#pragma once

#include <QPlainTextEdit>
#include <QToolButton>
#include <QWidget>

namespace zentoro {

// The text field of the composer: no frame of its own, growing from one to eight lines as the
// text needs. Return asks to send; Shift+Return starts a new line.
class ComposerField : public QPlainTextEdit {
    Q_OBJECT
public:
    static constexpr int minimumLines = 1;
    static constexpr int maximumLines = 8;

    explicit ComposerField(QWidget *parent = nullptr);

    int visibleLines() const;
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void returnPressed();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void fitHeight();
    int heightFor(int lines) const;
};

// The box at the foot of the panel: the field, and the send button or, during a run, the stop button.
class Composer : public QWidget {
    Q_OBJECT
public:
    explicit Composer(QWidget *parent = nullptr);

    ComposerField *field() const { return field_; }
    QToolButton *sendButton() const { return send_; }
    QToolButton *stopButton() const { return stop_; }
    void setRunning(bool running);
    void setCanSend(bool canSend);
    void setPlaceholder(const QString &text);

signals:
    void sendRequested();
    void stopRequested();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void updateIcons();

    ComposerField *field_;
    QToolButton *send_;
    QToolButton *stop_;
};

} // namespace zentoro
