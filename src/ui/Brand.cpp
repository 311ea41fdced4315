#include "ui/Brand.h"

#include "ui/BrandFont.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPainter>
#include <QTextBoundaryFinder>

#include <cmath>

namespace zentoro::Brand {

QStringList StretchedText::letters(const QString &text)
{
    QStringList letters;
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    while (finder.toNextBoundary() != -1) {
        letters.append(text.mid(start, finder.position() - start));
        start = finder.position();
    }
    return letters;
}

double StretchedText::letterWidth(qsizetype index, qsizetype count, double pull)
{
    const double t = double(index) / double(std::max<qsizetype>(count, 2) - 1);
    return 60 + (40 + 50 * pull) * std::pow(t, 1.4);
}

QPainterPath StretchedText::outline(const QString &text, double size, double pull)
{
    const QStringList parts = letters(text);
    // Neighbouring letters may overlap, and so may the contours within a variable font's
    // glyph: under the even-odd rule each overlap would show as a hole in the letter.
    QPainterPath word;
    word.setFillRule(Qt::WindingFill);
    double x = 0;
    for (qsizetype i = 0; i < parts.size(); ++i) {
        const BrandFont::Font font = BrandFont::anybody(size, letterWidth(i, parts.size(), pull), weight);
        word.addPath(font.outline(parts[i]).translated(x, 0));
        x += font.advance(parts[i]);
    }
    return word;
}

QPainterPath stretchGlyphPath(const QSizeF &size)
{
    const double k = std::min(size.width() / 600, size.height() / 560);
    QTransform transform;
    transform.translate(size.width() / 2, size.height() / 2);
    transform.scale(k, k);
    transform.translate(-512, -511);

    QPainterPath path;
    path.moveTo(288, 250);
    path.lineTo(620, 250);
    path.quadTo(676, 250, 676, 306);
    path.lineTo(676, 350);
    path.cubicTo(680, 480, 700, 620, 792, 772);
    path.cubicTo(640, 720, 440, 642, 288, 640);
    path.quadTo(232, 640, 232, 584);
    path.lineTo(232, 306);
    path.quadTo(232, 250, 288, 250);
    path.closeSubpath();
    path.moveTo(232, 370);
    path.lineTo(680, 370);
    return transform.map(path);
}

QIcon stretchGlyph(const QColor &color)
{
    QIcon icon;
    for (const double ratio : {1.0, 2.0}) {
        QPixmap pixmap(stretchGlyphSize * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::NoBrush);
        painter.drawPath(stretchGlyphPath(stretchGlyphSize));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

namespace {

// Assistive technology reads the wordmark as one heading named by its text.
QAccessibleInterface *wordmarkAccessible(const QString &className, QObject *object)
{
    if (className != QLatin1String(StretchWordmark::staticMetaObject.className()) || !object->isWidgetType())
        return nullptr;
    return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Heading);
}

} // namespace

StretchWordmark::StretchWordmark(QString text, double size, QWidget *parent)
    : QWidget(parent), text_(std::move(text)), size_(size)
{
    static const bool installed = [] {
        QAccessible::installFactory(wordmarkAccessible);
        return true;
    }();
    Q_UNUSED(installed);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName(text_);
}

void StretchWordmark::setText(const QString &text)
{
    if (text == text_)
        return;
    text_ = text;
    setAccessibleName(text_);
    updateGeometry();
    update();
}

QSizeF StretchWordmark::naturalSize() const
{
    // Room for the word pulled out, so that hovering neither cuts it nor moves it off centre.
    const BrandFont::Font font = BrandFont::anybody(size_, 100, StretchedText::weight);
    const QRectF bounds = StretchedText::outline(text_, size_, 1).boundingRect();
    return {std::max(bounds.right(), 0.0), font.ascent() + font.descent()};
}

QSize StretchWordmark::sizeHint() const
{
    return naturalSize().toSize() + QSize(2, 2);
}

QSize StretchWordmark::minimumSizeHint() const
{
    const QSizeF natural = naturalSize();
    return QSize(qCeil(natural.width() * minimumScale) + 2, qCeil(natural.height()) + 2);
}

double StretchWordmark::drawnScale() const
{
    const double natural = naturalSize().width();
    if (natural <= 0 || natural <= width())
        return 1;
    return std::max(minimumScale, width() / natural);
}

void StretchWordmark::setPulled(bool pulled)
{
    spring_.target = pulled ? 1 : 0;
    clock_.restart();
    if (!frames_.isActive())
        frames_.start(16, Qt::PreciseTimer, this);
}

void StretchWordmark::enterEvent(QEnterEvent *event)
{
    setPulled(true);
    QWidget::enterEvent(event);
}

void StretchWordmark::leaveEvent(QEvent *event)
{
    setPulled(false);
    QWidget::leaveEvent(event);
}

void StretchWordmark::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != frames_.timerId())
        return QWidget::timerEvent(event);
    spring_.advance(clock_.restart() / 1000.0);
    if (spring_.isSettled()) {
        spring_.value = spring_.target;
        spring_.velocity = 0;
        frames_.stop();
    }
    update();
}

void StretchWordmark::paintEvent(QPaintEvent *)
{
    const BrandFont::Font font = BrandFont::anybody(size_, 100, StretchedText::weight);
    const double scale = drawnScale();
    QPainterPath word = StretchedText::outline(text_, size_, spring_.value);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipRect(rect());
    const double wordWidth = word.boundingRect().right() * scale;
    const double x = (width() - wordWidth) / 2;
    painter.translate(x, (height() - (font.ascent() + font.descent()) * scale) / 2 + font.ascent() * scale);
    painter.scale(scale, scale);
    painter.fillPath(word, palette().color(QPalette::WindowText));
}

} // namespace zentoro::Brand
