#include "ui/Composer.h"

#include "ui/Icons.h"
#include "ui/PanelStyle.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QTextBlock>
#include <QTextLayout>

namespace zentoro {

namespace {

constexpr int buttonIconSize = 22;

QToolButton *roundButton(const QString &toolTip, const QString &name)
{
    auto *button = new QToolButton;
    button->setAutoRaise(true);
    button->setToolTip(toolTip);
    button->setAccessibleName(name);
    button->setIconSize(QSize(buttonIconSize, buttonIconSize));
    button->setFocusPolicy(Qt::StrongFocus);
    button->setStyleSheet(QStringLiteral("QToolButton { border: none; padding: 0; }"));
    return button;
}

} // namespace

ComposerField::ComposerField(QWidget *parent) : QPlainTextEdit(parent)
{
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setTabChangesFocus(true);
    setLineWrapMode(QPlainTextEdit::WidgetWidth);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(QStringLiteral("Message"));
    viewport()->setAutoFillBackground(false);
    setStyleSheet(QStringLiteral("QPlainTextEdit { background: transparent; }"));
    document()->setDocumentMargin(0);
    setViewportMargins(0, 3, 0, 3);
    connect(this, &QPlainTextEdit::textChanged, this, &ComposerField::fitHeight);
    fitHeight();
}

int ComposerField::visibleLines() const
{
    int lines = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        lines += block.layout() && block.layout()->lineCount() > 0 ? block.layout()->lineCount() : 1;
    return std::clamp(lines, minimumLines, maximumLines);
}

int ComposerField::heightFor(int lines) const
{
    return lines * fontMetrics().lineSpacing() + 6 + 2 * frameWidth() + 2;
}

QSize ComposerField::sizeHint() const
{
    return QSize(200, heightFor(visibleLines()));
}

QSize ComposerField::minimumSizeHint() const
{
    return QSize(60, heightFor(minimumLines));
}

void ComposerField::fitHeight()
{
    // Past eight lines the field stops growing and scrolls.
    int lines = 0;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next())
        lines += block.layout() && block.layout()->lineCount() > 0 ? block.layout()->lineCount() : 1;
    setVerticalScrollBarPolicy(lines > maximumLines ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
    const int height = heightFor(visibleLines());
    if (height != this->height()) {
        setFixedHeight(height);
        ensureCursorVisible();
    }
}

void ComposerField::resizeEvent(QResizeEvent *event)
{
    QPlainTextEdit::resizeEvent(event);
    // Lines wrap anew at the new width.
    QMetaObject::invokeMethod(this, &ComposerField::fitHeight, Qt::QueuedConnection);
}

void ComposerField::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (isReturn && !(event->modifiers() & Qt::ShiftModifier)) {
        emit returnPressed();
        event->accept();
        return;
    }
    if (isReturn) {
        insertPlainText(QStringLiteral("\n"));
        event->accept();
        return;
    }
    QPlainTextEdit::keyPressEvent(event);
}

Composer::Composer(QWidget *parent)
    : QWidget(parent), field_(new ComposerField),
      send_(roundButton(QStringLiteral("Send (Return)"), QStringLiteral("Send"))),
      stop_(roundButton(QStringLiteral("Stop"), QStringLiteral("Stop")))
{
    auto *outer = new QHBoxLayout(this);
    outer->setContentsMargins(12 + 8, 12 + 8, 12 + 8, 12 + 8);
    outer->setSpacing(8);
    outer->addWidget(field_, 1, Qt::AlignVCenter);
    outer->addWidget(send_, 0, Qt::AlignBottom);
    outer->addWidget(stop_, 0, Qt::AlignBottom);
    stop_->hide();
    setFocusProxy(field_);
    updateIcons();
    connect(field_, &ComposerField::returnPressed, this, &Composer::sendRequested);
    connect(send_, &QToolButton::clicked, this, &Composer::sendRequested);
    connect(stop_, &QToolButton::clicked, this, &Composer::stopRequested);
}

void Composer::setRunning(bool running)
{
    // Whether focus sat on the button that goes away: it moves to the one that comes.
    const bool buttonHadFocus = send_->hasFocus() || stop_->hasFocus();
    send_->setVisible(!running);
    stop_->setVisible(running);
    if (buttonHadFocus)
        (running ? stop_ : send_)->setFocus();
}

void Composer::setCanSend(bool canSend)
{
    send_->setEnabled(canSend);
}

void Composer::setPlaceholder(const QString &text)
{
    field_->setPlaceholderText(text);
}

void Composer::updateIcons()
{
    const QPalette &p = palette();
    send_->setIcon(Icons::icon(QStringLiteral("arrow.up.circle.fill"), PanelStyle::tint(p), buttonIconSize,
                               PanelStyle::tertiary(p)));
    stop_->setIcon(Icons::icon(QStringLiteral("stop.circle.fill"), PanelStyle::tint(p), buttonIconSize));
}

void Composer::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        updateIcons();
    QWidget::changeEvent(event);
}

void Composer::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor line = palette().color(QPalette::WindowText);
    line.setAlphaF(0.5f * 0.35f);
    painter.setPen(QPen(line, 1));
    QColor fill = palette().color(QPalette::Base);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(rect()).adjusted(12.5, 12.5, -12.5, -12.5), 12, 12);
}

} // namespace zentoro
