#include "runtime/KitHostView.h"

#include "core/Log.h"
#include "runtime/KitEntryPoints.h"
#include "runtime/KitMainQueue.h"
#include "runtime/KitPainting.h"

#include <QApplication>
#include <QClipboard>
#include <QEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPaintEvent>
#include <QPainter>
#include <QPlainTextEdit>

#include <cmath>
#include <functional>

namespace zentoro {

// The C functions the kit calls, each turning the context back into the view.
struct KitHostView::Callbacks {
    static KitHostView *view(void *context) { return static_cast<KitHostView *>(context); }
    static QPainter *painter(void *context) { return view(context)->painter_; }

    static void measureText(void *, const ZentoroText *text, double maxWidth, double *width, double *height)
    {
        const QSizeF size = KitPainting::measure(*text, maxWidth);
        *width = size.width();
        *height = size.height();
    }
    static void save(void *c)
    {
        if (auto *p = painter(c))
            p->save();
    }
    static void restore(void *c)
    {
        if (auto *p = painter(c))
            p->restore();
    }
    static void concatTransform(void *c, double a, double b, double cc, double d, double tx, double ty)
    {
        if (auto *p = painter(c))
            p->setTransform(QTransform(a, b, cc, d, tx, ty), true);
    }
    static void multiplyOpacity(void *c, double opacity)
    {
        if (auto *p = painter(c))
            p->setOpacity(p->opacity() * opacity);
    }
    static void clipPath(void *c, const ZentoroPath *path)
    {
        if (auto *p = painter(c))
            p->setClipPath(KitPainting::path(*path), Qt::IntersectClip);
    }
    static void fillPath(void *c, const ZentoroPath *path, const ZentoroPaint *paint)
    {
        if (auto *p = painter(c))
            p->fillPath(KitPainting::path(*path), KitPainting::brush(*paint));
    }
    static void strokePath(void *c, const ZentoroPath *path, const ZentoroPaint *paint, const ZentoroStroke *stroke)
    {
        if (auto *p = painter(c))
            p->strokePath(KitPainting::path(*path), KitPainting::pen(*paint, *stroke));
    }
    static void shadowPath(void *c, const ZentoroPath *path, ZentoroColor color, double radius, double dx, double dy)
    {
        if (auto *p = painter(c))
            KitPainting::drawShadow(*p, KitPainting::path(*path),
                                    QColor::fromRgbF(float(color.red), float(color.green), float(color.blue),
                                                     float(color.alpha)),
                                    radius, QPointF(dx, dy));
    }
    static void drawText(void *c, const ZentoroText *text, ZentoroRect rect)
    {
        if (auto *p = painter(c))
            KitPainting::drawText(*p, *text, QRectF(rect.x, rect.y, rect.width, rect.height));
    }
    static void drawSymbol(void *c, const char *name, ZentoroRect rect, const ZentoroPaint *paint)
    {
        if (auto *p = painter(c))
            KitPainting::drawSymbol(*p, QString::fromUtf8(name), QRectF(rect.x, rect.y, rect.width, rect.height),
                                    KitPainting::brush(*paint));
    }
    static void placeTextField(void *c, int64_t identifier, ZentoroRect rect, const char *text, const char *prompt,
                               ZentoroFont font, int32_t flags)
    {
        view(c)->placeTextField(identifier, QRectF(rect.x, rect.y, rect.width, rect.height), QString::fromUtf8(text),
                                QString::fromUtf8(prompt), KitPainting::font(font), flags);
    }
    static void requestRedraw(void *c)
    {
        KitHostView *v = view(c);
        if (v->damageAsked_)
            return;
        v->damageAsked_ = true;
        QMetaObject::invokeMethod(v, &KitHostView::repaintDamage, Qt::QueuedConnection);
    }
    static void copyText(void *, const char *text) { QApplication::clipboard()->setText(QString::fromUtf8(text)); }
};

KitHostView::KitHostView(void *library, void *rootView, QWidget *parent)
    : QWidget(parent), root_(rootView), host_(std::make_unique<ZentoroHost>())
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    frames_.setSingleShot(true);
    frames_.setTimerType(Qt::PreciseTimer);
    connect(&frames_, &QTimer::timeout, this, &KitHostView::repaintDamage);
    kit_ = KitEntryPoints::find(library, error_);
    if (!kit_ || !root_) {
        if (error_.isEmpty())
            error_ = QStringLiteral("The library made no view.");
        qCWarning(logKit, "The version can't be hosted: %s", qUtf8Printable(error_));
        return;
    }
    *host_ = ZentoroHost{ZENTORO_HOST_INTERFACE_VERSION,
                         this,
                         &Callbacks::measureText,
                         &Callbacks::save,
                         &Callbacks::restore,
                         &Callbacks::concatTransform,
                         &Callbacks::multiplyOpacity,
                         &Callbacks::clipPath,
                         &Callbacks::fillPath,
                         &Callbacks::strokePath,
                         &Callbacks::shadowPath,
                         &Callbacks::drawText,
                         &Callbacks::drawSymbol,
                         &Callbacks::placeTextField,
                         &Callbacks::requestRedraw,
                         &Callbacks::copyText};
    KitMainQueue::start(kit_);
    kit_->attach(root_, host_.get());
    sendAppearance();
    if (parent) {
        parent->installEventFilter(this);
        setGeometry(parent->rect());
    }
    kit_->setSize(root_, width(), height());
}

KitHostView::~KitHostView()
{
    if (kit_ && root_)
        kit_->release(root_);
}

bool KitHostView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize && !parentWidget()->layout())
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void KitHostView::sendAppearance()
{
    if (!kit_)
        return;
    const QColor accent = palette().color(QPalette::Highlight);
    const ZentoroColor color{accent.redF(), accent.greenF(), accent.blueF(), 1};
    const bool dark = palette().color(QPalette::Window).lightness() < 128;
    kit_->setAppearance(root_, dark ? 1 : 0, &color);
}

void KitHostView::afterCall()
{
    KitMainQueue::service();
    scheduleFrame();
}

// Animations get frames at the kit's pace while they run; a hidden view or one where nothing
// moves gets none, so an idle app costs no processor time.
void KitHostView::scheduleFrame()
{
    const double next = kit_ ? kit_->nextFrame(root_) : -1;
    if (next < 0 || !isVisible()) {
        frames_.stop();
        return;
    }
    if (!frames_.isActive())
        frames_.start(int(std::ceil(next * 1000)));
}

// Repaints only what the kit says changed: on a state change that is often a small part of
// a large view, and the rest of the window keeps its pixels.
void KitHostView::repaintDamage()
{
    damageAsked_ = false;
    if (!kit_)
        return;
    ZentoroRect damaged{};
    const int damage = kit_->update(root_, &damaged);
    if (damage == ZENTORO_DAMAGE_WHOLE)
        update();
    else if (damage == ZENTORO_DAMAGE_RECT)
        update(QRectF(damaged.x, damaged.y, damaged.width, damaged.height).toAlignedRect());
    afterCall();
}

void KitHostView::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QRect area = event->rect();
    painter.fillRect(area, palette().color(QPalette::Window));
    if (!kit_)
        return;
    // Changes since the last update may reach beyond what this paint covers.
    ZentoroRect damaged{};
    const int damage = kit_->update(root_, &damaged);
    if (damage == ZENTORO_DAMAGE_WHOLE && area != rect())
        update();
    else if (damage == ZENTORO_DAMAGE_RECT &&
             !area.contains(QRectF(damaged.x, damaged.y, damaged.width, damaged.height).toAlignedRect()))
        update(QRectF(damaged.x, damaged.y, damaged.width, damaged.height).toAlignedRect());
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter_ = &painter;
    placed_.clear();
    const ZentoroRect clip{double(area.x()), double(area.y()), double(area.width()), double(area.height())};
    kit_->render(root_, &clip);
    painter_ = nullptr;
    const auto removeUnplaced = [this](auto &widgets) {
        for (auto it = widgets.begin(); it != widgets.end();) {
            if (placed_.contains(it.key())) {
                ++it;
            } else {
                it.value()->deleteLater();
                it = widgets.erase(it);
            }
        }
    };
    removeUnplaced(fields_);
    removeUnplaced(editors_);
    afterCall();
}

void KitHostView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (kit_)
        kit_->setSize(root_, width(), height());
}

void KitHostView::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        sendAppearance();
        update();
    }
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::FontChange) {
        KitPainting::forgetTextLayouts();
        sendAppearance();
        update();
    }
}

namespace {

// Tells a hosted text field's focus changes to the kit.
class FocusWatcher : public QObject {
public:
    FocusWatcher(QObject *parent, std::function<void(bool)> changed) : QObject(parent), changed_(std::move(changed)) {}

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
            changed_(event->type() == QEvent::FocusIn);
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void(bool)> changed_;
};

int modifierBits(Qt::KeyboardModifiers modifiers)
{
    return (modifiers & Qt::ShiftModifier ? ZENTORO_MODIFIER_SHIFT : 0) |
           (modifiers & Qt::ControlModifier ? ZENTORO_MODIFIER_CONTROL : 0) |
           (modifiers & Qt::AltModifier ? ZENTORO_MODIFIER_ALT : 0) |
           (modifiers & Qt::MetaModifier ? ZENTORO_MODIFIER_META : 0);
}
} // namespace

void KitHostView::pointer(int kind, QPointF position, Qt::KeyboardModifiers modifiers, int clickCount)
{
    if (!kit_)
        return;
    const int bits = modifierBits(modifiers) | (secondary_ ? ZENTORO_POINTER_SECONDARY : 0);
    kit_->pointer(root_, kind, position.x(), position.y(), bits, clickCount);
    afterCall();
}

void KitHostView::mousePressEvent(QMouseEvent *event)
{
    clickCount_ = 1;
    secondary_ = event->button() == Qt::RightButton;
    pointer(ZENTORO_POINTER_DOWN, event->position(), event->modifiers(), clickCount_);
}

void KitHostView::mouseDoubleClickEvent(QMouseEvent *event)
{
    clickCount_ = 2;
    pointer(ZENTORO_POINTER_DOWN, event->position(), event->modifiers(), clickCount_);
}

void KitHostView::mouseMoveEvent(QMouseEvent *event)
{
    pointer(ZENTORO_POINTER_MOVE, event->position(), event->modifiers(), clickCount_);
}

void KitHostView::mouseReleaseEvent(QMouseEvent *event)
{
    pointer(ZENTORO_POINTER_UP, event->position(), event->modifiers(), clickCount_);
    secondary_ = false;
}

void KitHostView::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    pointer(ZENTORO_POINTER_LEAVE, {}, {}, 0);
}

void KitHostView::wheelEvent(QWheelEvent *event)
{
    if (!kit_)
        return;
    // Pixel deltas from touchpads as they are; wheel notches as three lines of 16 pixels.
    QPointF delta = event->pixelDelta().isNull() ? QPointF(event->angleDelta()) / 120.0 * 48.0
                                                 : QPointF(event->pixelDelta());
    const QPointF position = event->position();
    if (kit_->scroll(root_, position.x(), position.y(), -delta.x(), -delta.y()))
        event->accept();
    else
        event->ignore();
    afterCall();
}

void KitHostView::keyPressEvent(QKeyEvent *event)
{
    if (!kit_)
        return;
    int code = ZENTORO_KEY_OTHER;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: code = ZENTORO_KEY_RETURN; break;
    case Qt::Key_Escape: code = ZENTORO_KEY_ESCAPE; break;
    case Qt::Key_Tab: code = ZENTORO_KEY_TAB; break;
    case Qt::Key_Backspace: code = ZENTORO_KEY_BACKSPACE; break;
    case Qt::Key_Delete: code = ZENTORO_KEY_DELETE; break;
    case Qt::Key_Left: code = ZENTORO_KEY_LEFT; break;
    case Qt::Key_Right: code = ZENTORO_KEY_RIGHT; break;
    case Qt::Key_Up: code = ZENTORO_KEY_UP; break;
    case Qt::Key_Down: code = ZENTORO_KEY_DOWN; break;
    case Qt::Key_Space: code = ZENTORO_KEY_SPACE; break;
    }
    // With Control held, text() is a control character; the shortcut wants the key's letter.
    QString text = event->text();
    if ((event->modifiers() & Qt::ControlModifier) && event->key() >= Qt::Key_A && event->key() <= Qt::Key_Z)
        text = QChar(u'a' + (event->key() - Qt::Key_A));
    const bool used = kit_->key(root_, code, text.toUtf8().constData(), modifierBits(event->modifiers()));
    afterCall();
    if (!used)
        QWidget::keyPressEvent(event);
}

void KitHostView::placeTextField(qint64 identifier, const QRectF &rect, const QString &text, const QString &prompt,
                                 const QFont &font, int flags)
{
    placed_.insert(identifier);
    if (flags & ZENTORO_FIELD_MULTILINE) {
        placeEditor(identifier, rect.toAlignedRect(), text, font, flags);
        return;
    }
    QLineEdit *field = fields_.value(identifier);
    if (!field) {
        field = new QLineEdit(this);
        fields_.insert(identifier, field);
        field->setText(text);
        connect(field, &QLineEdit::textEdited, this, [this, identifier](const QString &now) {
            kit_->textChanged(root_, identifier, now.toUtf8().constData());
            afterCall();
        });
        connect(field, &QLineEdit::returnPressed, this, [this, identifier] {
            kit_->textSubmitted(root_, identifier);
            afterCall();
        });
        field->installEventFilter(new FocusWatcher(field, [this, identifier](bool focused) {
            kit_->textFocus(root_, identifier, focused ? 1 : 0);
            afterCall();
        }));
        field->show();
    }
    const QRect geometry = rect.toAlignedRect();
    if (field->geometry() != geometry)
        field->setGeometry(geometry);
    if (field->text() != text)
        field->setText(text);
    if (field->placeholderText() != prompt)
        field->setPlaceholderText(prompt);
    if (field->font() != font)
        field->setFont(font);
    field->setEchoMode(flags & ZENTORO_FIELD_SECURE ? QLineEdit::Password : QLineEdit::Normal);
    field->setFrame(!(flags & ZENTORO_FIELD_PLAIN));
    field->setEnabled(!(flags & ZENTORO_FIELD_DISABLED));
    if ((flags & ZENTORO_FIELD_FOCUS) && !field->hasFocus())
        field->setFocus(Qt::OtherFocusReason);
}

void KitHostView::placeEditor(qint64 identifier, const QRect &geometry, const QString &text, const QFont &font,
                              int flags)
{
    QPlainTextEdit *editor = editors_.value(identifier);
    if (!editor) {
        editor = new QPlainTextEdit(this);
        editors_.insert(identifier, editor);
        editor->setPlainText(text);
        connect(editor, &QPlainTextEdit::textChanged, this, [this, identifier, editor] {
            kit_->textChanged(root_, identifier, editor->toPlainText().toUtf8().constData());
            afterCall();
        });
        editor->installEventFilter(new FocusWatcher(editor, [this, identifier](bool focused) {
            kit_->textFocus(root_, identifier, focused ? 1 : 0);
            afterCall();
        }));
        editor->show();
    }
    if (editor->geometry() != geometry)
        editor->setGeometry(geometry);
    if (editor->toPlainText() != text) {
        // Setting the text moves the cursor to the start; keep it where it was when it still fits.
        const int cursor = editor->textCursor().position();
        const QSignalBlocker quiet(editor);
        editor->setPlainText(text);
        QTextCursor moved = editor->textCursor();
        moved.setPosition(std::min(cursor, int(text.size())));
        editor->setTextCursor(moved);
    }
    if (editor->font() != font)
        editor->setFont(font);
    editor->setFrameShape(flags & ZENTORO_FIELD_PLAIN ? QFrame::NoFrame : QFrame::StyledPanel);
    editor->setEnabled(!(flags & ZENTORO_FIELD_DISABLED));
    if ((flags & ZENTORO_FIELD_FOCUS) && !editor->hasFocus())
        editor->setFocus(Qt::OtherFocusReason);
}

} // namespace zentoro
