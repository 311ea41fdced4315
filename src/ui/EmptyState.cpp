#include "ui/EmptyState.h"

#include "ui/PanelStyle.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace zentoro {

namespace {

constexpr int horizontalPadding = 10;
constexpr int verticalPadding = 7;

} // namespace

SuggestionButton::SuggestionButton(const QString &text, QWidget *parent) : QAbstractButton(parent)
{
    setText(text);
    setAccessibleName(text);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
}

QSize SuggestionButton::sizeHint() const
{
    return QSize(fontMetrics().horizontalAdvance(text()) + 2 * horizontalPadding, heightForWidth(300));
}

int SuggestionButton::heightForWidth(int width) const
{
    const QRect room(0, 0, std::max(width - 2 * horizontalPadding, 10), 100000);
    return fontMetrics().boundingRect(room, Qt::TextWordWrap, text()).height() + 2 * verticalPadding;
}

void SuggestionButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor wash = PanelStyle::tint(palette());
    wash.setAlphaF(isDown() ? 0.18f : underMouse() && isEnabled() ? 0.12f : 0.08f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(wash);
    painter.drawRoundedRect(QRectF(rect()), 8, 8);
    painter.setPen(isEnabled() ? palette().color(QPalette::WindowText) : PanelStyle::tertiary(palette()));
    const QRect text = rect().adjusted(horizontalPadding, verticalPadding, -horizontalPadding, -verticalPadding);
    painter.drawText(text, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignVCenter, this->text());
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        option.rect = rect().adjusted(1, 1, -1, -1);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

const QStringList &EmptyState::suggestions()
{
    static const QStringList texts{
        QStringLiteral("Turn this into a to-do list"),
        QStringLiteral("Make a pomodoro timer with a big circular progress ring"),
        QStringLiteral("Show the current time in five cities around the world"),
        QStringLiteral("Make it a drawing canvas with a few colors"),
    };
    return texts;
}

EmptyState::EmptyState(QWidget *parent) : QWidget(parent)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 6, 0, 0);
    column->setSpacing(10);

    auto *title = new QLabel(QStringLiteral("What should this app become?"));
    title->setFont(PanelStyle::font(font(), PanelStyle::Type::Title3, QFont::DemiBold));
    title->setWordWrap(true);
    column->addWidget(title);

    auto *about = new QLabel(QStringLiteral("Describe a change. The agent edits the app's Swift code, builds it, and "
                                            "swaps the new version into the window on the left."));
    about->setWordWrap(true);
    PanelStyle::setTextRole(about, PanelStyle::Role::Secondary);
    column->addWidget(about);

    for (const QString &text : suggestions()) {
        auto *button = new SuggestionButton(text);
        connect(button, &SuggestionButton::clicked, this, [this, text] { emit suggestionChosen(text); });
        column->addWidget(button);
        buttons_.append(button);
    }
}

void EmptyState::setSuggestionsEnabled(bool enabled)
{
    for (SuggestionButton *button : buttons_)
        button->setEnabled(enabled);
}

} // namespace zentoro
