#pragma once

#include "agent/ChatItem.h"

#include <QAbstractButton>
#include <QFontMetrics>
#include <QPointer>
#include <QWidget>

#include <functional>

class QPlainTextEdit;
class QVariantAnimation;

namespace zentoro {

// What rows ask of the panel: the retry of the last run, and the expanded state of tool rows,
// which the panel keeps so that it outlasts a row scrolled out of sight and built again.
struct RowActions {
    std::function<bool()> canRetry;
    std::function<void()> retry;
    std::function<bool(const QUuid &id)> isExpanded;
    std::function<void(const QUuid &id, bool expanded)> setExpanded;
};

namespace TranscriptRows {

// The widget of one transcript row, by the item's kind.
QWidget *make(const ChatItem &item, bool isLast, const RowActions &actions);
// A cheap guess of a row's height at `width`, used until the row is built.
int estimatedHeight(const ChatItem &item, int width, const QFontMetrics &metrics);

// Tool rows show at most this much of their detail before it scrolls, and images at most this high.
inline constexpr int detailMaximumHeight = 220;
inline constexpr int imageMaximumHeight = 140;

} // namespace TranscriptRows

// The head of a tool row: its symbol, its text and, when it has details, a chevron that turns
// while they show. Pressing it shows or hides the details.
class ToolHead : public QAbstractButton {
    Q_OBJECT
public:
    ToolHead(const ChatItem &item, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    bool hasChevron() const { return hasDetail_; }
    // How far the chevron has turned towards open, from 0 to 1.
    void setTurn(double turn);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRect textRect(int width) const;

    QString symbol_;
    bool failed_;
    bool hasDetail_;
    double turn_ = 0;
};

// A tool row: the head, the details while expanded, and the screenshot when there is one.
class ToolRow : public QWidget {
    Q_OBJECT
public:
    ToolRow(const ChatItem &item, bool expanded, std::function<void(bool)> onExpanded, QWidget *parent = nullptr);

    // How long the details take to open or close.
    static constexpr int openingDuration = 180;

    bool isExpanded() const { return detailView_ != nullptr; }
    ToolHead *head() const { return head_; }
    QPlainTextEdit *detailView() const { return detailView_; }
    bool showsImage() const { return hasImage_; }

private:
    void setExpanded(bool expanded);

    ChatItem item_;
    ToolHead *head_;
    QPlainTextEdit *detailView_ = nullptr;
    // The box of the details, also while it closes.
    QPointer<QWidget> detailBox_;
    QVariantAnimation *opening_;
    bool hasImage_ = false;
    std::function<void(bool)> onExpanded_;
};

} // namespace zentoro
