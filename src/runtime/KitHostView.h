#pragma once

#include <QHash>
#include <QSet>
#include <QTimer>
#include <QWidget>

#include <memory>

class QLineEdit;
class QPlainTextEdit;
class QPainter;
struct ZentoroHost;

namespace zentoro {

struct KitEntryPoints;

// Shows a hosted root view made by a version library's `zentoro_make_root_view()`: paints
// what the kit draws, measures its text, forwards the pointer and the keyboard, and hosts
// native text fields. It fills its parent and follows its size. It owns the root view and
// releases it when destroyed; the library stays loaded.
class KitHostView : public QWidget {
    Q_OBJECT
public:
    // `library` is the version's dlopen handle, through which the kit's entry points are found.
    KitHostView(void *library, void *rootView, QWidget *parent = nullptr);
    ~KitHostView() override;

    // Empty when the view is live; otherwise why the kit could not be attached.
    QString error() const { return error_; }

    // The host side of the kit's interface; public for the C callbacks only.
    struct Callbacks;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    friend struct Callbacks;
    void sendAppearance();
    void pointer(int kind, QPointF position, Qt::KeyboardModifiers modifiers, int clickCount);
    void placeTextField(qint64 identifier, const QRectF &rect, const QString &text, const QString &prompt,
                        const QFont &font, int flags);
    void afterCall();
    void repaintDamage();
    void scheduleFrame();

    std::shared_ptr<const KitEntryPoints> kit_;
    void *root_ = nullptr;
    // The display timer: runs only while something on the view moves.
    QTimer frames_;
    QString error_;
    std::unique_ptr<ZentoroHost> host_;
    QPainter *painter_ = nullptr;
    void placeEditor(qint64 identifier, const QRect &geometry, const QString &text, const QFont &font, int flags);

    QHash<qint64, QLineEdit *> fields_;
    QHash<qint64, QPlainTextEdit *> editors_;
    QSet<qint64> placed_;
    int clickCount_ = 1;
    // The secondary button's press goes on until its release.
    bool secondary_ = false;
    bool damageAsked_ = false;
};

} // namespace zentoro
