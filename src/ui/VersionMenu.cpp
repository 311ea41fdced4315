#include "ui/VersionMenu.h"

#include "core/MainTask.h"
#include "core/Text.h"
#include "runtime/Runtime.h"
#include "ui/Icons.h"
#include "ui/Shortcuts.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QLocale>
#include <QMenu>
#include <QMessageBox>
#include <QProcess>
#include <QUrl>

namespace zentoro {

namespace VersionMenu {

namespace {

constexpr qsizetype summaryLimit = 60;
constexpr qsizetype summaryKept = 57;

QIcon menuIcon(const QMenu *menu, const QString &symbol)
{
    return Icons::icon(symbol, menu->palette().color(QPalette::Text));
}

} // namespace

QString title(const VersionRecord &record)
{
    QString summary = record.summary;
    if (Text::characterCount(summary) > summaryLimit)
        summary = Text::firstCharacters(summary, summaryKept) + QStringLiteral("…");
    const QString time = QLocale().toString(record.date.toLocalTime().time(), QLocale::ShortFormat);
    return QStringLiteral("%1. %2 (%3)").arg(record.number).arg(summary, time);
}

QString label(const Runtime &runtime)
{
    if (const std::optional<int> loaded = runtime.loadedVersion())
        return QStringLiteral("Version %1").arg(*loaded);
    return runtime.safeMode() ? QStringLiteral("Safe Mode") : QStringLiteral("No Version");
}

void addVersions(QMenu *menu, Runtime &runtime)
{
    const QList<VersionRecord> &versions = runtime.state().versions;
    for (auto record = versions.crbegin(); record != versions.crend(); ++record) {
        QAction *action = menu->addAction(Shortcuts::menuText(title(*record)));
        if (runtime.loadedVersion() == record->number)
            action->setIcon(menuIcon(menu, QStringLiteral("checkmark")));
        else if (record->crashed)
            action->setIcon(menuIcon(menu, QStringLiteral("exclamationmark.triangle")));
        const int number = record->number;
        QObject::connect(action, &QAction::triggered, &runtime, [&runtime, number] { runtime.revert(number); });
    }
}

void fill(QMenu *menu, Runtime &runtime, QWidget *dialogParent)
{
    menu->clear();
    if (runtime.state().versions.isEmpty())
        menu->addAction(QStringLiteral("No versions yet"))->setEnabled(false);
    addVersions(menu, runtime);
    menu->addSeparator();
    QObject::connect(menu->addAction(QStringLiteral("Show Source Folder")), &QAction::triggered, &runtime,
                     [&runtime] { FileManager::reveal(runtime.workspace().sources()); });
    QObject::connect(menu->addAction(QStringLiteral("Reset to Original App…")), &QAction::triggered, &runtime,
                     [&runtime, dialogParent] { Reset::confirm(dialogParent, runtime); });
}

} // namespace VersionMenu

namespace Reset {

bool ask(QWidget *parent)
{
    QMessageBox alert(parent);
    alert.setIcon(QMessageBox::Warning);
    alert.setText(QStringLiteral("Reset to the original app?"));
    alert.setInformativeText(QStringLiteral("The source folder goes back to the starter app. Every version you've "
                                            "built stays in the version history."));
    QPushButton *reset = alert.addButton(QStringLiteral("Reset"), QMessageBox::AcceptRole);
    alert.addButton(QStringLiteral("Cancel"), QMessageBox::RejectRole);
    alert.setDefaultButton(reset);
    alert.exec();
    return alert.clickedButton() == reset;
}

void confirm(QWidget *parent, Runtime &runtime)
{
    if (!ask(parent))
        return;
    QPointer<Runtime> target(&runtime);
    startTask([target](TaskHandle) -> QCoro::Task<> {
        if (target)
            co_await target->resetToOriginal();
    });
}

} // namespace Reset

namespace FileManager {

namespace {

void openFolder(const QString &path)
{
    const QFileInfo item(path);
    QDesktopServices::openUrl(QUrl::fromLocalFile(item.isDir() ? path : item.absolutePath()));
}

} // namespace

QStringList showItemsCall(const QString &path)
{
    // dbus-send splits an array at commas, and a URL keeps them: "Timer, v2" would be two items.
    const QString url = QUrl::fromLocalFile(path).toString(QUrl::FullyEncoded).replace(u',', QStringLiteral("%2C"));
    return {QStringLiteral("--session"),
            QStringLiteral("--print-reply"),
            QStringLiteral("--reply-timeout=5000"),
            QStringLiteral("--dest=org.freedesktop.FileManager1"),
            QStringLiteral("--type=method_call"),
            QStringLiteral("/org/freedesktop/FileManager1"),
            QStringLiteral("org.freedesktop.FileManager1.ShowItems"),
            QStringLiteral("array:string:") + url,
            QStringLiteral("string:")};
}

void reveal(const QString &path)
{
    // The file manager's D-Bus interface selects the item in its folder; without a file
    // manager that offers it, the folder opens in whatever handles folders. The window goes
    // on meanwhile: a file manager that starts slowly must not hold it up.
    auto *call = new QProcess;
    QObject::connect(call, &QProcess::finished, call, [call, path](int code, QProcess::ExitStatus status) {
        if (status != QProcess::NormalExit || code != 0)
            openFolder(path);
        call->deleteLater();
    });
    QObject::connect(call, &QProcess::errorOccurred, call, [call, path](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return;
        openFolder(path);
        call->deleteLater();
    });
    call->start(QStringLiteral("dbus-send"), showItemsCall(path));
}

} // namespace FileManager

} // namespace zentoro
