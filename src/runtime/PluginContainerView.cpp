#include "runtime/PluginContainerView.h"

#include "runtime/KitHostView.h"
#include "runtime/Runtime.h"

#include <QVBoxLayout>

namespace zentoro {

PluginContainerView::PluginContainerView(Runtime *runtime, QWidget *parent) : QWidget(parent), runtime_(runtime)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    runtime->addContainer(this);
    // Queued, so the new code's views are made after `load` has returned.
    connect(
        runtime, &Runtime::generationChanged, this,
        [this] {
            if (runtime_)
                showGeneration(runtime_->generation());
        },
        Qt::QueuedConnection);
    showGeneration(runtime->generation());
}

void PluginContainerView::showGeneration(int generation)
{
    if (shownGeneration_ == generation)
        return;
    shownGeneration_ = generation;
    // The factory hands over one reference to a fresh root view; the host view owns it.
    QWidget *next = nullptr;
    if (runtime_ && runtime_->factory()) {
        if (void *root = runtime_->factory()())
            next = new KitHostView(runtime_->library(), root, this);
    }
    delete content_;
    content_ = next;
    // A new generation is drawn even when it brings no view: that frame starts its proving time.
    update();
    if (!content_)
        return;
    content_->installEventFilter(this);
    layout()->addWidget(content_);
}

void PluginContainerView::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    drawn();
}

bool PluginContainerView::eventFilter(QObject *watched, QEvent *event)
{
    // The hosted view paints over all of the container, which then gets no paint of its own.
    if (watched == content_ && event->type() == QEvent::Paint)
        drawn();
    return QWidget::eventFilter(watched, event);
}

void PluginContainerView::drawn()
{
    if (drawnGeneration_ == shownGeneration_)
        return;
    drawnGeneration_ = shownGeneration_;
    // Told after this frame is painted: a version that dies painting it is still unproved.
    const int generation = shownGeneration_;
    QMetaObject::invokeMethod(
        this,
        [this, generation] {
            if (runtime_)
                runtime_->versionDrawn(generation);
        },
        Qt::QueuedConnection);
}

} // namespace zentoro
