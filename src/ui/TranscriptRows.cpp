#include "ui/TranscriptRows.h"

#include "ui/Icons.h"
#include "ui/InlineMarkdown.h"
#include "ui/PanelStyle.h"

#include <QApplication>
#include <QBoxLayout>
#include <QDesktopServices>
#include <QImageReader>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QTextDocument>
#include <QVariantAnimation>

namespace zentoro {

namespace {

using PanelStyle::Type;

constexpr auto selectable = Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard;

// Keeps to the width of its content, and wraps by height for width.
QSizePolicy huggingPolicy()
{
    QSizePolicy policy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    return policy;
}

// A label of transcript text that shows a focus ring while Tab has brought it the focus, as
// its text is selectable from the keyboard and so takes the focus.
class TextLabel : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QLabel::paintEvent(event);
        if (!hasFocus())
            return;
        QPainter painter(this);
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect();
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
};

// A wrapping label that asks for the width of its text on one line, so that a layout lets
// short text hug its content and wraps long text at the room there is.
class NaturalLabel : public TextLabel {
public:
    using TextLabel::TextLabel;

    QSize sizeHint() const override
    {
        const QMargins margins = contentsMargins();
        const QRect bounds = fontMetrics().boundingRect(QRect(0, 0, 100000, 100000), Qt::TextExpandTabs, text());
        return QSize(bounds.width() + margins.left() + margins.right() + 2,
                     QLabel::heightForWidth(bounds.width() + margins.left() + margins.right() + 2));
    }
};

// The user's words, white on the tint colour in a rounded box. The tint is darkened where white
// would not read on it, and selected text shows inverted, white behind the tint's colour.
class Bubble : public NaturalLabel {
public:
    explicit Bubble(const QString &text) : NaturalLabel(text)
    {
        setTextFormat(Qt::PlainText);
        setWordWrap(true);
        setTextInteractionFlags(selectable);
        setContentsMargins(12, 8, 12, 8);
        setSizePolicy(huggingPolicy());
        setAccessibleName(text);
        recolour();
    }

protected:
    void changeEvent(QEvent *event) override
    {
        if (event->type() == QEvent::PaletteChange || event->type() == QEvent::ParentChange)
            recolour();
        NaturalLabel::changeEvent(event);
    }
    void paintEvent(QPaintEvent *event) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill_);
        painter.drawRoundedRect(QRectF(rect()), 14, 14);
        painter.end();
        NaturalLabel::paintEvent(event);
    }

private:
    void recolour()
    {
        const QPalette base = parentWidget() ? parentWidget()->palette() : QApplication::palette(this);
        fill_ = PanelStyle::bubbleFill(base);
        QPalette palette = this->palette();
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            palette.setColor(group, QPalette::WindowText, Qt::white);
            palette.setColor(group, QPalette::Text, Qt::white);
            palette.setColor(group, QPalette::Highlight, Qt::white);
            palette.setColor(group, QPalette::HighlightedText, fill_);
        }
        if (!(palette == this->palette()))
            setPalette(palette);
    }

    QColor fill_;
};

// A symbol drawn in a colour of the palette at the time it is drawn.
class SymbolLabel : public QWidget {
public:
    SymbolLabel(const QString &symbol, PanelStyle::Role role, int size) : symbol_(symbol), role_(role)
    {
        setFixedSize(size, size);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.drawPixmap(rect(),
                           Icons::pixmap(symbol_, width(), PanelStyle::color(palette(), role_), devicePixelRatioF()));
    }

private:
    QString symbol_;
    PanelStyle::Role role_;
};

QWidget *symbolLabel(const QString &symbol, PanelStyle::Role role, int size)
{
    return new SymbolLabel(symbol, role, size);
}

QWidget *userRow(const ChatItem &item)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addSpacing(40);
    layout->addStretch(1);
    layout->addWidget(new Bubble(item.text), 0, Qt::AlignVCenter);
    return row;
}

QWidget *assistantRow(const ChatItem &item)
{
    auto *label = new TextLabel(InlineMarkdown::html(item.text));
    label->setTextFormat(Qt::RichText);
    label->setWordWrap(true);
    label->setTextInteractionFlags(selectable | Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    label->setOpenExternalLinks(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    label->setAccessibleName(item.text);
    return label;
}

QWidget *eventRow(const ChatItem &item)
{
    auto *row = new QWidget;
    const QFont caption = PanelStyle::font(row->font(), Type::Caption);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(5);
    layout->addStretch(1);
    layout->addWidget(symbolLabel(item.symbol.value_or(QStringLiteral("info.circle")), PanelStyle::Role::Secondary,
                                  QFontMetrics(caption).height()),
                      0, Qt::AlignTop);
    auto *label = new NaturalLabel(item.text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setFont(caption);
    label->setSizePolicy(huggingPolicy());
    label->setTextInteractionFlags(selectable);
    PanelStyle::setTextRole(label, PanelStyle::Role::Secondary);
    layout->addWidget(label);
    layout->addStretch(1);
    return row;
}

QPushButton *smallButton(const QString &text)
{
    auto *button = new QPushButton(text);
    button->setAccessibleName(text);
    button->setFont(PanelStyle::font(button->font(), Type::Caption));
    button->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    return button;
}

QWidget *errorRow(const ChatItem &item, bool isLast, const RowActions &actions)
{
    auto *row = new QWidget;
    auto *column = new QVBoxLayout(row);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);

    auto *line = new QHBoxLayout;
    line->setSpacing(6);
    line->addWidget(symbolLabel(QStringLiteral("exclamationmark.octagon.fill"), PanelStyle::Role::Red,
                                row->fontMetrics().height()),
                    0, Qt::AlignTop);
    auto *text = new TextLabel(item.text);
    text->setTextFormat(Qt::PlainText);
    text->setWordWrap(true);
    text->setTextInteractionFlags(selectable);
    PanelStyle::setTextRole(text, PanelStyle::Role::Red);
    line->addWidget(text, 1);
    column->addLayout(line);

    const bool offersRetry = isLast && actions.canRetry && actions.canRetry();
    if (item.link || offersRetry) {
        auto *controls = new QHBoxLayout;
        controls->setSpacing(8);
        if (item.link) {
            QPushButton *open = smallButton(item.link->title);
            const QUrl url = item.link->url;
            QObject::connect(open, &QPushButton::clicked, open, [url] { QDesktopServices::openUrl(url); });
            controls->addWidget(open);
        }
        if (offersRetry) {
            QPushButton *retry = smallButton(QStringLiteral("Try Again"));
            retry->setObjectName(QStringLiteral("retry"));
            QObject::connect(retry, &QPushButton::clicked, retry, [retry = actions.retry] { retry(); });
            controls->addWidget(retry);
        }
        controls->addStretch(1);
        column->addLayout(controls);
    }
    return row;
}

// The details of a tool row: monospaced, selectable, scrolling past a fixed height. The box
// answers the height for a width itself, so that the row's layout asks it and not a layout
// of its own; while it opens or closes, its height follows `reveal`.
class DetailBox : public QFrame {
public:
    static constexpr int padding = 8;

    explicit DetailBox(const QString &text) : text_(text), view_(new QPlainTextEdit(text, this))
    {
        QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
        view_->setReadOnly(true);
        view_->setTextInteractionFlags(selectable);
        view_->setFrameShape(QFrame::NoFrame);
        view_->setFont(PanelStyle::monospaced(font(), Type::Caption));
        view_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        view_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        view_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
        view_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        view_->viewport()->setAutoFillBackground(false);
        view_->setAutoFillBackground(false);
        view_->document()->setDocumentMargin(padding);
        view_->setAccessibleName(QStringLiteral("Details"));
        view_->installEventFilter(this);
    }

    QPlainTextEdit *view() const { return view_; }
    // How far the box is open, from 0 to 1.
    void setReveal(double reveal)
    {
        reveal_ = reveal;
        updateGeometry();
    }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override
    {
        return qRound(std::min(fullHeight(width), TranscriptRows::detailMaximumHeight) * reveal_);
    }
    QSize sizeHint() const override { return QSize(200, heightForWidth(width() > 0 ? width() : 300)); }
    QSize minimumSizeHint() const override { return QSize(0, 0); }

protected:
    void resizeEvent(QResizeEvent *) override
    {
        // While it opens the text stands at its full height and the box uncovers it.
        const int full = std::min(fullHeight(width()), TranscriptRows::detailMaximumHeight);
        view_->setGeometry(0, 0, width(), std::max(full, height()));
    }
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        QColor fill = palette().color(QPalette::WindowText);
        fill.setAlphaF(0.06f);
        painter.setBrush(fill);
        painter.drawRoundedRect(QRectF(rect()), 6, 6);
        if (view_->hasFocus()) {
            painter.setPen(QPen(PanelStyle::tint(palette()), 2));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 6, 6);
        }
    }
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            update();
        return QFrame::eventFilter(object, event);
    }

private:
    // The text's height at `width` as the view lays it out, margins included.
    int fullHeight(int width) const
    {
        // Beyond so many lines the box scrolls at its maximum height, whatever the width.
        const int lines = int(text_.count(u'\n')) + 1;
        if (lines * QFontMetrics(view_->font()).lineSpacing() > TranscriptRows::detailMaximumHeight)
            return TranscriptRows::detailMaximumHeight;
        if (width != measuredWidth_) {
            QTextDocument document;
            document.setDefaultFont(view_->font());
            QTextOption option = document.defaultTextOption();
            option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
            document.setDefaultTextOption(option);
            document.setDocumentMargin(padding);
            document.setPlainText(text_);
            document.setTextWidth(std::max(width, 2 * padding + 10));
            measuredHeight_ = qCeil(document.size().height());
            if (measuredHeight_ > TranscriptRows::detailMaximumHeight) {
                // Scrolling: the bar takes its share of the width.
                document.setTextWidth(
                    std::max(width - view_->verticalScrollBar()->sizeHint().width(), 2 * padding + 10));
                measuredHeight_ = qCeil(document.size().height());
            }
            measuredWidth_ = width;
        }
        return measuredHeight_;
    }

    QString text_;
    QPlainTextEdit *view_;
    double reveal_ = 1;
    mutable int measuredWidth_ = -1;
    mutable int measuredHeight_ = 0;
};

// A screenshot under a tool row: scaled to fit, indented, in a rounded frame.
class Screenshot : public QWidget {
public:
    static constexpr int indent = 24;

    explicit Screenshot(QImage image) : image_(std::move(image))
    {
        setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
        setAccessibleName(QStringLiteral("Screenshot"));
    }

    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override { return target(width).height(); }
    QSize sizeHint() const override { return QSize(200, heightForWidth(300)); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const QRectF frame = target(width());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        QPainterPath clip;
        clip.addRoundedRect(frame, 6, 6);
        painter.setClipPath(clip);
        painter.drawImage(frame, image_);
        painter.setClipping(false);
        QColor line = palette().color(QPalette::WindowText);
        line.setAlphaF(0.5f * 0.4f);
        painter.setPen(QPen(line, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    }

private:
    QRect target(int width) const
    {
        const QSizeF natural = QSizeF(image_.size()) / std::max(1.0, image_.devicePixelRatio());
        QSizeF room(std::max(width - indent, 1), TranscriptRows::imageMaximumHeight);
        const QSizeF fitted = natural.scaled(room, Qt::KeepAspectRatio).boundedTo(natural);
        return QRect(indent, 0, qRound(fitted.width()), qRound(fitted.height()));
    }

    QImage image_;
};

// Reads a screenshot no larger than a row can show, so that many of them stay cheap.
QImage readScreenshot(const QString &path)
{
    QImageReader reader(path);
    const QSize size = reader.size();
    if (!size.isValid())
        return {};
    // Screenshots are taken at the screen's pixel ratio: keep up to twice the shown height.
    const int limit = TranscriptRows::imageMaximumHeight * 2;
    if (size.height() > limit)
        reader.setScaledSize(size.scaled(QSize(size.width(), limit), Qt::KeepAspectRatio));
    QImage image = reader.read();
    if (!image.isNull() && size.height() > limit / 2)
        image.setDevicePixelRatio(2);
    return image;
}

} // namespace

ToolHead::ToolHead(const ChatItem &item, QWidget *parent)
    : QAbstractButton(parent), symbol_(item.symbol.value_or(QStringLiteral("wrench"))), failed_(item.failed),
      hasDetail_(item.detail.has_value())
{
    setText(item.text);
    setFont(PanelStyle::font(font(), Type::Callout));
    setCheckable(true);
    setEnabled(hasDetail_);
    setFocusPolicy(hasDetail_ ? Qt::StrongFocus : Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(hasDetail_ ? Qt::PointingHandCursor : Qt::ArrowCursor);
    setAccessibleName(item.text);
    if (hasDetail_)
        setAccessibleDescription(QStringLiteral("Shows or hides the details"));
}

QSize ToolHead::sizeHint() const
{
    return QSize(fontMetrics().horizontalAdvance(text()) + 18 + 6 + 20, heightForWidth(300));
}

int ToolHead::heightForWidth(int width) const
{
    return fontMetrics().boundingRect(textRect(width), Qt::TextWordWrap, text()).height() + 4;
}

QRect ToolHead::textRect(int width) const
{
    const int chevron = hasDetail_ ? 16 : 0;
    return QRect(18 + 6, 2, std::max(width - 24 - chevron, 10), 100000);
}

void ToolHead::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette &p = palette();
    const QColor iconColor = failed_ ? PanelStyle::red(p) : PanelStyle::tint(p);
    const QColor textColor = failed_ ? PanelStyle::red(p) : PanelStyle::secondary(p);
    const int line = fontMetrics().height();
    const int iconSize = std::min(16, line);
    painter.drawPixmap(QRect((18 - iconSize) / 2, 2 + (line - iconSize) / 2, iconSize, iconSize),
                       Icons::pixmap(symbol_, iconSize, iconColor, devicePixelRatioF()));

    painter.setPen(textColor);
    const QRect text = textRect(width());
    const QRect drawn = fontMetrics().boundingRect(text, Qt::TextWordWrap, this->text());
    painter.drawText(text, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, this->text());

    if (hasDetail_) {
        const int size = 10;
        const QPointF centre(std::min(drawn.right() + 6 + size / 2.0, width() - size / 2.0 - 2), 2 + line / 2.0);
        painter.save();
        painter.translate(centre);
        painter.rotate(90 * turn_);
        painter.drawPixmap(QRectF(-size / 2.0, -size / 2.0, size, size),
                           Icons::pixmap(QStringLiteral("chevron.right"), size, PanelStyle::tertiary(p),
                                         devicePixelRatioF()),
                           QRectF());
        painter.restore();
    }
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = drawn.adjusted(-2, -1, 2, 1).united(QRect(0, 1, 18, line));
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void ToolHead::setTurn(double turn)
{
    turn_ = turn;
    update();
}

ToolRow::ToolRow(const ChatItem &item, bool expanded, std::function<void(bool)> onExpanded, QWidget *parent)
    : QWidget(parent), item_(item), head_(new ToolHead(item)), opening_(new QVariantAnimation(this)),
      onExpanded_(std::move(onExpanded))
{
    opening_->setDuration(openingDuration);
    opening_->setEasingCurve(QEasingCurve::OutCubic);
    connect(opening_, &QVariantAnimation::valueChanged, this, [this](const QVariant &value) {
        const double reveal = value.toDouble();
        head_->setTurn(reveal);
        if (auto *box = static_cast<DetailBox *>(detailBox_.data()))
            box->setReveal(reveal);
    });
    connect(opening_, &QVariantAnimation::finished, this, [this] {
        // A closed box leaves the view tree once it has closed.
        if (!detailView_ && detailBox_) {
            layout()->removeWidget(detailBox_);
            detailBox_->hide();
            detailBox_->deleteLater();
        }
    });
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    layout->addWidget(head_);
    if (item.imagePath) {
        QImage image = readScreenshot(*item.imagePath);
        if (!image.isNull()) {
            layout->addWidget(new Screenshot(std::move(image)));
            hasImage_ = true;
        }
    }
    connect(head_, &ToolHead::toggled, this, [this](bool on) {
        setExpanded(on);
        if (onExpanded_)
            onExpanded_(on);
    });
    if (expanded && item.detail) {
        // Rebuilt after scrolling out of sight: open as it was, without the animation.
        head_->setChecked(true);
        opening_->stop();
        head_->setTurn(1);
        static_cast<DetailBox *>(detailBox_.data())->setReveal(1);
    }
}

void ToolRow::setExpanded(bool expanded)
{
    if (expanded == isExpanded() || !item_.detail)
        return;
    const double from = opening_->state() == QAbstractAnimation::Running ? opening_->currentValue().toDouble()
                                                                         : (expanded ? 0.0 : 1.0);
    opening_->stop();
    if (expanded) {
        if (!detailBox_) {
            auto *box = new DetailBox(*item_.detail);
            box->setReveal(from);
            detailBox_ = box;
            static_cast<QVBoxLayout *>(layout())->insertWidget(1, box);
            box->show();
        }
        detailView_ = static_cast<DetailBox *>(detailBox_.data())->view();
    } else {
        detailView_ = nullptr;
    }
    opening_->setStartValue(from);
    opening_->setEndValue(expanded ? 1.0 : 0.0);
    opening_->start();
}

QWidget *TranscriptRows::make(const ChatItem &item, bool isLast, const RowActions &actions)
{
    switch (item.kind) {
    case ChatItem::Kind::User: return userRow(item);
    case ChatItem::Kind::Assistant: return assistantRow(item);
    case ChatItem::Kind::Tool: {
        const QUuid id = item.id;
        const bool expanded = actions.isExpanded && actions.isExpanded(id);
        auto setExpanded = actions.setExpanded;
        return new ToolRow(item, expanded, [id, setExpanded](bool on) {
            if (setExpanded)
                setExpanded(id, on);
        });
    }
    case ChatItem::Kind::Event: return eventRow(item);
    case ChatItem::Kind::Error: return errorRow(item, isLast, actions);
    }
    return new QWidget;
}

int TranscriptRows::estimatedHeight(const ChatItem &item, int width, const QFontMetrics &metrics)
{
    const int line = metrics.lineSpacing();
    const auto lines = [&](const QString &text, int room) {
        const int perLine = std::max(1, room / std::max(1, metrics.averageCharWidth()));
        return int(text.count(u'\n')) + 1 + int(text.size()) / perLine;
    };
    switch (item.kind) {
    case ChatItem::Kind::User: return lines(item.text, width - 64) * line + 16;
    case ChatItem::Kind::Assistant: return lines(item.text, width) * line;
    case ChatItem::Kind::Tool: return line + 4 + (item.imagePath ? TranscriptRows::imageMaximumHeight / 2 + 6 : 0);
    case ChatItem::Kind::Event: return line;
    case ChatItem::Kind::Error: return lines(item.text, width - 24) * line + (item.link ? line + 16 : 0);
    }
    return line;
}

} // namespace zentoro
