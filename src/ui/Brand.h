#pragma once

#include "ui/Spring.h"

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QIcon>
#include <QPainterPath>
#include <QStringList>
#include <QWidget>

namespace zentoro::Brand {

// The wordmark's stretch: each letter set wider than the one before, most of the growth
// at the end of the word, further still as `pull` goes from 0 to 1.
namespace StretchedText {

inline constexpr double weight = 850;

// The letters of `text` as a person counts them.
QStringList letters(const QString &text);
// The font width of the letter at `index` of `count`, before clamping to the axis.
double letterWidth(qsizetype index, qsizetype count, double pull);
// The word's outline, baseline at y = 0, starting at x = 0.
QPainterPath outline(const QString &text, double size, double pull);

} // namespace StretchedText

// The glyph of the toolbar and the panel's header: a rounded box with a rule across its upper
// part and its lower right corner drawn out into a point, stroked 1.5 wide at any size.
QPainterPath stretchGlyphPath(const QSizeF &size);
inline constexpr QSize stretchGlyphSize{18, 16};
// The glyph in `color`, at the standard size and at the screen's pixel ratio.
QIcon stretchGlyph(const QColor &color);

// The spring that pulls the wordmark out on hover.
inline constexpr double pullResponse = 0.5;
inline constexpr double pullDamping = 0.42;
// The wordmark shrinks to no less than this share of its size when room is short.
inline constexpr double minimumScale = 0.4;

// `text` in the stretched brand type at `size`, pulled further out while the pointer rests
// on it. For assistive technology it is one heading whose name is `text`.
class StretchWordmark : public QWidget {
    Q_OBJECT
public:
    StretchWordmark(QString text, double size, QWidget *parent = nullptr);

    QString text() const { return text_; }
    void setText(const QString &text);
    bool isPulled() const { return spring_.target == 1; }
    double pull() const { return spring_.value; }
    // The scale the word is drawn at in the present width: 1, or less down to `minimumScale`.
    double drawnScale() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

private:
    void setPulled(bool pulled);
    QSizeF naturalSize() const;

    QString text_;
    double size_;
    Spring spring_{pullResponse, pullDamping};
    QBasicTimer frames_;
    QElapsedTimer clock_;
};

} // namespace zentoro::Brand
