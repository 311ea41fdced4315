#pragma once

#include <QAbstractScrollArea>
#include <QPointer>

#include <functional>
#include <map>
#include <vector>

namespace zentoro {

// A vertical column of many rows in a scroll area, of which only the rows near the visible
// part exist as widgets: a long transcript costs what a screenful costs. Rows not yet built
// take an estimated height until they are. A header and a footer widget stand before and
// after the rows. The column keeps to its bottom while it is scrolled to the bottom, also
// when content grows, follows new rows from near the bottom, and otherwise keeps the row at
// its top in place.
class LazyColumn : public QAbstractScrollArea {
    Q_OBJECT
public:
    using Factory = std::function<QWidget *(qsizetype row)>;
    using Estimate = std::function<int(qsizetype row, int width)>;

    explicit LazyColumn(QWidget *parent = nullptr);

    void setMargins(int margins) { margins_ = margins; }
    void setSpacing(int spacing) { spacing_ = spacing; }
    void setFactory(Factory factory, Estimate estimate);
    // The column owns both; either may be null.
    void setHeader(QWidget *header);
    void setFooter(QWidget *footer);

    // All rows are new: drops every built row and scrolls to the bottom.
    void reset(qsizetype count);
    // Rows were added at the end.
    void append(qsizetype count);
    // The row's content changed: it is built anew when next shown.
    void rebuild(qsizetype row);

    qsizetype count() const { return qsizetype(heights_.size()); }
    // The widget of a row, if it exists now.
    QWidget *rowWidget(qsizetype row) const;
    qsizetype builtCount() const { return qsizetype(built_.size()); }
    bool isAtBottom() const;
    // Within a short way of the bottom, where new rows are still followed.
    bool isNearBottom() const;
    static constexpr int nearBottom = 48;
    void scrollToBottom();
    // Lays the rows out now rather than at the next turn of the event loop.
    void layoutNow();

protected:
    bool viewportEvent(QEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    int rowWidth() const;
    int measure(QWidget *widget) const;
    int fixedHeight(QWidget *widget) const;
    void scheduleLayout();
    void layoutRows();
    // The top of each row in content coordinates, and the content's whole height.
    void computeOffsets();
    qsizetype rowAt(int y) const;
    void revealFocus(QWidget *focused);
    void retire(QWidget *widget);
    void orderTabs();

    Factory factory_;
    Estimate estimate_;
    QPointer<QWidget> header_;
    QPointer<QWidget> footer_;
    int margins_ = 14;
    int spacing_ = 12;
    std::vector<int> heights_;
    std::vector<bool> measured_;
    std::vector<int> offsets_;
    int contentHeight_ = 0;
    int headerHeight_ = 0;
    int estimatedWidth_ = -1;
    std::map<qsizetype, QWidget *> built_;
    bool stickToBottom_ = true;
    bool layoutPending_ = false;
    bool settingScroll_ = false;
    bool inLayout_ = false;
};

} // namespace zentoro
