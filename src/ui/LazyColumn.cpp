#include "ui/LazyColumn.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>

namespace zentoro {

namespace {

// Rows built beyond each edge of the visible part, so that a small scroll shows no gap.
constexpr qsizetype overscan = 2;
// Passes of measuring newly built rows before the layout is taken as it stands.
constexpr int measurePasses = 4;

} // namespace

void LazyColumn::retire(QWidget *widget)
{
    // Focus inside a row that goes stays with the column rather than jumping to another row.
    if (widget->isAncestorOf(QApplication::focusWidget()))
        setFocus(Qt::OtherFocusReason);
    widget->hide();
    widget->deleteLater();
}

LazyColumn::LazyColumn(QWidget *parent) : QAbstractScrollArea(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAutoFillBackground(false);
    verticalScrollBar()->setSingleStep(24);
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) { revealFocus(now); });
}

void LazyColumn::setFactory(Factory factory, Estimate estimate)
{
    factory_ = std::move(factory);
    estimate_ = std::move(estimate);
}

void LazyColumn::setHeader(QWidget *header)
{
    delete header_;
    header_ = header;
    if (header_)
        header_->setParent(viewport());
    scheduleLayout();
}

void LazyColumn::setFooter(QWidget *footer)
{
    delete footer_;
    footer_ = footer;
    if (footer_)
        footer_->setParent(viewport());
    scheduleLayout();
}

void LazyColumn::reset(qsizetype count)
{
    for (auto &[row, widget] : built_)
        retire(widget);
    built_.clear();
    heights_.assign(size_t(count), 0);
    measured_.assign(size_t(count), false);
    estimatedWidth_ = -1;
    stickToBottom_ = true;
    scheduleLayout();
}

void LazyColumn::append(qsizetype count)
{
    // New rows are followed from near the bottom too: a reader a little way up is still
    // watching the conversation, one far up is reading an earlier part of it.
    if (isNearBottom())
        stickToBottom_ = true;
    const int width = rowWidth();
    for (qsizetype i = 0; i < count; ++i) {
        const qsizetype row = qsizetype(heights_.size());
        heights_.push_back(estimate_ && width > 0 ? estimate_(row, width) : 0);
        measured_.push_back(false);
    }
    scheduleLayout();
}

void LazyColumn::rebuild(qsizetype row)
{
    if (auto found = built_.find(row); found != built_.end()) {
        retire(found->second);
        built_.erase(found);
    }
    if (row >= 0 && row < count())
        measured_[size_t(row)] = false;
    scheduleLayout();
}

QWidget *LazyColumn::rowWidget(qsizetype row) const
{
    auto found = built_.find(row);
    return found == built_.end() ? nullptr : found->second;
}

bool LazyColumn::isAtBottom() const
{
    return verticalScrollBar()->value() >= verticalScrollBar()->maximum();
}

bool LazyColumn::isNearBottom() const
{
    const QScrollBar *bar = verticalScrollBar();
    return bar->maximum() - bar->value() <= std::max(nearBottom, viewport()->height() / 4);
}

void LazyColumn::scrollToBottom()
{
    stickToBottom_ = true;
    layoutRows();
}

void LazyColumn::layoutNow()
{
    layoutRows();
}

int LazyColumn::rowWidth() const
{
    return viewport()->width() - 2 * margins_;
}

int LazyColumn::measure(QWidget *widget) const
{
    const int width = rowWidth();
    const int height = widget->hasHeightForWidth() ? widget->heightForWidth(width) : widget->sizeHint().height();
    return std::max({height, widget->minimumHeight(), 0});
}

int LazyColumn::fixedHeight(QWidget *widget) const
{
    return widget && !widget->isHidden() ? measure(widget) : 0;
}

void LazyColumn::scheduleLayout()
{
    if (layoutPending_)
        return;
    layoutPending_ = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (layoutPending_)
                layoutRows();
        },
        Qt::QueuedConnection);
}

void LazyColumn::computeOffsets()
{
    offsets_.resize(heights_.size());
    int y = margins_;
    if (headerHeight_ > 0)
        y += headerHeight_ + spacing_;
    for (size_t i = 0; i < heights_.size(); ++i) {
        offsets_[i] = y;
        y += heights_[i] + spacing_;
    }
    const int footer = fixedHeight(footer_);
    if (footer > 0)
        y += footer;
    else if (!heights_.empty() || headerHeight_ > 0)
        y -= spacing_;
    contentHeight_ = y + margins_;
}

qsizetype LazyColumn::rowAt(int y) const
{
    if (offsets_.empty())
        return 0;
    auto after = std::upper_bound(offsets_.begin(), offsets_.end(), y);
    return std::max<qsizetype>(0, qsizetype(after - offsets_.begin()) - 1);
}

void LazyColumn::layoutRows()
{
    if (inLayout_) {
        scheduleLayout();
        return;
    }
    const QScopedValueRollback guard(inLayout_, true);
    layoutPending_ = false;
    const int width = rowWidth();
    if (width <= 0)
        return;
    if (estimatedWidth_ != width) {
        for (size_t i = 0; i < heights_.size(); ++i) {
            if (!built_.contains(qsizetype(i)) && estimate_)
                heights_[i] = estimate_(qsizetype(i), width);
            measured_[i] = false;
        }
        estimatedWidth_ = width;
    }
    headerHeight_ = fixedHeight(header_);

    // The row at the top keeps its place while rows above it are measured.
    const int viewHeight = viewport()->height();
    const qsizetype anchor = rowAt(verticalScrollBar()->value());
    const int anchorDelta = anchor < qsizetype(offsets_.size())
                                ? offsets_[size_t(anchor)] - verticalScrollBar()->value()
                                : 0;

    int scroll = 0;
    qsizetype first = 0;
    qsizetype last = -1;
    for (int pass = 0; pass < measurePasses; ++pass) {
        computeOffsets();
        const int maximum = std::max(0, contentHeight_ - viewHeight);
        if (stickToBottom_ || anchor >= count())
            scroll = maximum;
        else
            scroll = std::clamp(offsets_[size_t(anchor)] - anchorDelta, 0, maximum);
        if (heights_.empty())
            break;
        first = std::max<qsizetype>(0, rowAt(scroll) - overscan);
        last = std::min<qsizetype>(count() - 1, rowAt(scroll + viewHeight) + overscan);
        bool changed = false;
        bool builtNew = false;
        for (qsizetype row = first; row <= last; ++row) {
            QWidget *&widget = built_[row];
            if (!widget) {
                widget = factory_(row);
                widget->setParent(viewport());
                measured_[size_t(row)] = false;
                builtNew = true;
            }
            if (!measured_[size_t(row)]) {
                const int height = measure(widget);
                measured_[size_t(row)] = true;
                if (height != heights_[size_t(row)]) {
                    heights_[size_t(row)] = height;
                    changed = true;
                }
            }
        }
        if (builtNew)
            orderTabs();
        if (!changed)
            break;
    }

    for (auto it = built_.begin(); it != built_.end();) {
        if (it->first < first || it->first > last) {
            retire(it->second);
            it = built_.erase(it);
        } else {
            ++it;
        }
    }

    if (header_)
        header_->setGeometry(margins_, margins_ - scroll, width, headerHeight_);
    for (auto &[row, widget] : built_) {
        widget->setGeometry(margins_, offsets_[size_t(row)] - scroll, width, heights_[size_t(row)]);
        widget->show();
    }
    if (footer_ && !footer_->isHidden()) {
        const int footerHeight = fixedHeight(footer_);
        footer_->setGeometry(margins_, contentHeight_ - margins_ - footerHeight - scroll, width, footerHeight);
    }

    settingScroll_ = true;
    QScrollBar *bar = verticalScrollBar();
    bar->setRange(0, std::max(0, contentHeight_ - viewHeight));
    bar->setPageStep(viewHeight);
    bar->setValue(scroll);
    settingScroll_ = false;
}

bool LazyColumn::viewportEvent(QEvent *event)
{
    switch (event->type()) {
    case QEvent::Resize: layoutRows(); break;
    case QEvent::LayoutRequest:
        // A row, the header or the footer changed its size, and may have gained a control,
        // such as opened details, that has to take its place in the tab order.
        for (auto &[row, widget] : built_)
            measured_[size_t(row)] = false;
        orderTabs();
        scheduleLayout();
        break;
    default: break;
    }
    return QAbstractScrollArea::viewportEvent(event);
}

void LazyColumn::paintEvent(QPaintEvent *)
{
    // The column takes the focus to scroll by keys, and shows that it has it.
    if (!hasFocus())
        return;
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRoundedRect(QRectF(viewport()->rect()).adjusted(2, 2, -2, -2), 6, 6);
}

void LazyColumn::focusInEvent(QFocusEvent *event)
{
    viewport()->update();
    QAbstractScrollArea::focusInEvent(event);
}

void LazyColumn::focusOutEvent(QFocusEvent *event)
{
    viewport()->update();
    QAbstractScrollArea::focusOutEvent(event);
}

void LazyColumn::scrollContentsBy(int, int)
{
    if (settingScroll_)
        return;
    stickToBottom_ = isAtBottom();
    layoutRows();
}

void LazyColumn::revealFocus(QWidget *focused)
{
    if (inLayout_)
        return;
    QWidget *child = focused;
    while (child && child->parentWidget() != viewport())
        child = child->parentWidget();
    if (!child)
        return;
    const int top = child->geometry().top();
    const int viewHeight = viewport()->height();
    const QPoint inChild = focused->mapTo(child, QPoint(0, 0));
    const int focusTop = top + inChild.y();
    const int focusBottom = focusTop + focused->height();
    QScrollBar *bar = verticalScrollBar();
    int target = bar->value();
    if (focusTop < 0)
        target += focusTop;
    else if (focusBottom > viewHeight)
        target += std::min(focusBottom - viewHeight, focusTop);
    if (target != bar->value())
        bar->setValue(target);
}

void LazyColumn::orderTabs()
{
    // A row built late would join the end of the window's tab chain, after the composer:
    // Tab goes from the column through the header, the rows in their order and the footer.
    // Only widgets that take the focus can be ordered.
    QWidget *previous = this;
    const auto follow = [&previous](QWidget *block) {
        if (!block)
            return;
        QList<QWidget *> widgets = block->findChildren<QWidget *>();
        widgets.prepend(block);
        for (QWidget *widget : widgets) {
            if (widget->focusPolicy() & Qt::TabFocus) {
                QWidget::setTabOrder(previous, widget);
                previous = widget;
            }
        }
    };
    follow(header_);
    for (const auto &[row, widget] : built_)
        follow(widget);
    follow(footer_);
}

} // namespace zentoro
