#include "runtime/PluginContainerView.h"
#include "runtime/Runtime.h"
#include "runtime/Snapshot.h"

#include <QWidget>

namespace zentoro {

std::optional<QByteArray> Runtime::snapshot(double maxWidth) const
{
    if (!loadedVersion_)
        return std::nullopt;
    QList<PluginContainerView *> shown;
    for (PluginContainerView *container : containers()) {
        if (container->isVisible())
            shown.append(container);
    }
    if (shown.isEmpty())
        return std::nullopt;
    PluginContainerView *chosen = shown.first();
    for (PluginContainerView *container : shown) {
        if (container->window()->isActiveWindow()) {
            chosen = container;
            break;
        }
    }
    if (chosen->width() <= 0 || chosen->height() <= 0)
        return std::nullopt;
    return Snapshot::png(chosen, maxWidth, chosen->window()->palette().color(QPalette::Window));
}

} // namespace zentoro
