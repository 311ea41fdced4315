#pragma once

#include <QPointer>
#include <QWidget>

namespace zentoro {

class Runtime;

// The slot in the window where the loaded version's root view lives. Each new
// generation of the runtime replaces the view by a fresh one from the new factory; the
// view fills the container and follows its size.
class PluginContainerView : public QWidget {
    Q_OBJECT
public:
    explicit PluginContainerView(Runtime *runtime, QWidget *parent = nullptr);

    // The generation whose view is shown; -1 before the first, which no generation equals.
    int shownGeneration() const { return shownGeneration_; }
    // The hosted root view, owned by this container; null when there is none.
    QWidget *content() const { return content_; }

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showGeneration(int generation);
    // Tells the runtime, after this frame, that the shown generation reached the screen.
    void drawn();

    QPointer<Runtime> runtime_;
    int shownGeneration_ = -1;
    // The generation whose first frame has been told to the runtime.
    int drawnGeneration_ = -1;
    QPointer<QWidget> content_;
};

} // namespace zentoro
