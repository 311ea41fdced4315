#include "ui/WindowLayout.h"

#include "core/Defaults.h"

#include <QMainWindow>
#include <QSplitter>

namespace zentoro::WindowLayout {

namespace {
const QString geometryKey = QStringLiteral("windowGeometry");
const QString panelWidthKey = QStringLiteral("panelWidth");
} // namespace

void save(const QMainWindow &window, const QSplitter &splitter, const QString &suite)
{
    Defaults::setSuiteValue(suite, geometryKey, window.saveGeometry());
    const QList<int> sizes = splitter.sizes();
    if (sizes.size() == 2 && sizes[1] > 0 && splitter.widget(1)->isVisibleTo(&window))
        Defaults::setSuiteValue(suite, panelWidthKey, sizes[1]);
}

void restore(QMainWindow &window, QSplitter &splitter, const QString &suite)
{
    const QByteArray geometry = Defaults::suiteValue(suite, geometryKey).toByteArray();
    if (!geometry.isEmpty())
        window.restoreGeometry(geometry);
    bool stored = false;
    const int width = Defaults::suiteValue(suite, panelWidthKey).toInt(&stored);
    QWidget *panel = splitter.widget(1);
    if (!stored || !panel)
        return;
    const int kept = std::clamp(width, panel->minimumWidth(), panel->maximumWidth());
    splitter.setSizes({window.width() - kept, kept});
}

} // namespace zentoro::WindowLayout
