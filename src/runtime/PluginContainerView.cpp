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
    connect(runtime, &Runtime::generationChanged, this, [this] {
        if (runtime_)
            showGeneration(runtime_->generation());
    }, Qt::QueuedConnection);
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
    if (!content_)
        return;
    layout()->addWidget(content_);
}

} // namespace zentoro
