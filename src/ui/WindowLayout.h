#pragma once

#include <QString>

class QMainWindow;
class QSplitter;

// The window's size and place and the agent panel's width, kept in the copy's own settings so
// that each app opens as it was left.
namespace zentoro::WindowLayout {

// The panel's width is kept only while the panel is open: `panel` is the splitter's second part.
void save(const QMainWindow &window, const QSplitter &splitter, const QString &suite);
// Leaves the window as it is where nothing was kept.
void restore(QMainWindow &window, QSplitter &splitter, const QString &suite);

} // namespace zentoro::WindowLayout
