#include "ui/GroupedForm.h"

#include "ui/PanelStyle.h"

#include <QBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>

namespace zentoro {

class FormGroup::Box : public QWidget {
public:
    explicit Box(QWidget *parent = nullptr) : QWidget(parent) {}

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QPalette p = palette();
        const bool dark = PanelStyle::isDark(p);
        QPainterPath shape;
        shape.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        QColor fill = p.color(QPalette::Base);
        if (dark)
            fill = p.color(QPalette::Window).lighter(125);
        painter.fillPath(shape, fill);
        QColor line = p.color(QPalette::WindowText);
        line.setAlphaF(dark ? 0.18f : 0.12f);
        painter.setPen(QPen(line, 1));
        painter.drawPath(shape);

        // A hairline above every shown row but the first, inset like the rows' text.
        bool first = true;
        for (int index = 0; index < layout()->count(); ++index) {
            QWidget *row = layout()->itemAt(index)->widget();
            if (!row || row->isHidden())
                continue;
            if (!first) {
                const qreal y = row->geometry().top() - 0.5;
                painter.drawLine(QPointF(12, y), QPointF(width() - 12, y));
            }
            first = false;
        }
    }
};

FormGroup::FormGroup(const QString &title, QWidget *parent)
    : QWidget(parent), box_(new Box), rows_(new QVBoxLayout(box_)), footnote_(new QLabel)
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    auto *heading = new QLabel(title);
    heading->setFont(PanelStyle::font(font(), PanelStyle::Type::Body, QFont::DemiBold));
    heading->setContentsMargins(4, 0, 0, 0);
    heading->setAccessibleName(title);
    column->addWidget(heading);
    rows_->setContentsMargins(12, 0, 12, 0);
    rows_->setSpacing(1);
    column->addWidget(box_);
    footnote_->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    PanelStyle::setTextColor(footnote_, PanelStyle::secondary(palette()));
    footnote_->setWordWrap(true);
    footnote_->setContentsMargins(4, 0, 4, 0);
    footnote_->hide();
    column->addWidget(footnote_);
}

QWidget *FormGroup::addRow(const QString &label, QWidget *field, QWidget *buddy)
{
    auto *row = new QWidget;
    auto *line = new QHBoxLayout(row);
    line->setContentsMargins(0, 9, 0, 9);
    line->setSpacing(12);
    auto *name = new QLabel(label);
    name->setFixedWidth(labelWidth);
    name->setBuddy(buddy ? buddy : field);
    // Level with the first line of the controls, also when notes stand under them.
    name->setMinimumHeight(name->buddy()->sizeHint().height());
    name->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    line->addWidget(name, 0, Qt::AlignTop);
    // A field that can grow takes the room; buttons and values stand at the right edge.
    if (field->sizePolicy().horizontalPolicy() & QSizePolicy::ExpandFlag || field->layout())
        line->addWidget(field, 1);
    else
        line->addWidget(field, 1, Qt::AlignRight | Qt::AlignVCenter);
    insertRow(row);
    return row;
}

void FormGroup::insertRow(QWidget *row, int index)
{
    rows_->insertWidget(index, row);
}

int FormGroup::indexOf(QWidget *row) const
{
    return rows_->indexOf(row);
}

void FormGroup::setFootnote(const QString &text)
{
    footnote_->setText(text);
    footnote_->setVisible(!text.isEmpty());
}

} // namespace zentoro
