#include "agent/Instructions.h"

#include "agent/Agent.h"
#include "agent/FileTools.h"
#include "runtime/Runtime.h"
#include "runtime/Workspace.h"

#include <cstdlib>

namespace zentoro {

namespace Instructions {

namespace {

#include "KitList.inc"

QString counted(qint64 count, const QString &unit)
{
    return QStringLiteral("%1 %2%3").arg(count).arg(unit, count == 1 ? QString() : QStringLiteral("s"));
}

// A past or future amount of one unit, with the named forms for one ("yesterday").
QString relative(qint64 count, bool past, const QString &unit, const QString &lastOne, const QString &nextOne)
{
    if (count == 1)
        return past ? lastOne : nextOne;
    return past ? counted(count, unit) + QStringLiteral(" ago") : QStringLiteral("in ") + counted(count, unit);
}

QString running(const RuntimeState &state, std::optional<int> loadedVersion, const QDateTime &now)
{
    const VersionRecord *record = loadedVersion ? state.record(*loadedVersion) : nullptr;
    if (!record)
        return QStringLiteral("nothing (the window shows Zentoro's setup screen)");
    return QStringLiteral("version %1, built %2 for \"%3\"")
        .arg(QString::number(record->number), relativeAge(record->date, now), record->summary);
}

QString sourceFiles(const Workspace &workspace)
{
    // Text that isn't UTF-8 has no lines here.
    const QStringList described = FileTools::described(workspace, 0);
    return described.isEmpty() ? QStringLiteral("none") : described.join(QStringLiteral(", "));
}

} // namespace

QString kitList()
{
    return QString::fromUtf8(embeddedText, embeddedTextSize).trimmed();
}

QString instructions(const QString &name, const QString &dataFolder)
{
    QStringList lines{
        QStringLiteral("You are the engineer inside Zentoro, a Linux desktop app that rewrites itself. The user chats "
                       "with you in a side panel. Next to it, the main window shows the app itself, which is compiled "
                       "from Swift files that you can read and change. The user may ask for anything from a small "
                       "tweak to a completely different app; you make it real while they watch."),
        QString(),
        QStringLiteral("This copy of Zentoro is named \"%1\" after its program file; users duplicate and rename "
                       "Zentoro to keep several apps, each with its own sources, versions, data and conversations. "
                       "Unless the user says otherwise, \"%1\" is the app's name.")
            .arg(name),
        QString(),
        QStringLiteral("# How Zentoro runs the app"),
        QStringLiteral("- The sources are Swift files in one module, compiled with swiftc into a shared library (Swift "
                       "5 language mode, Linux) that Zentoro loads into its window."),
        QStringLiteral("- The entry point is `struct AppRoot: View` with no arguments; it fills the window's content "
                       "area. Never write `@main`, an `App` type or main.swift: Zentoro provides those."),
        QStringLiteral("- `import SwiftUI` gives Zentoro's own SwiftUI for Linux, which covers the common part of "
                       "SwiftUI (listed below); Foundation and Observation work as usual. AppKit, UIKit, Charts, "
                       "MapKit, AVFoundation, SwiftData and other Apple-only frameworks don't exist here. There are no "
                       "Swift packages, asset catalogs or bundled resources; use SF Symbols names, shapes, gradients "
                       "and code-drawn graphics."),
        QStringLiteral("- The app can use the network. Keep data in @AppStorage, in `UserDefaults.app` (outside "
                       "views), or in files under %1. Both are this copy's own. Don't use `UserDefaults.standard`: "
                       "every copy of Zentoro shares it.")
            .arg(dataFolder),
        QStringLiteral("- The app runs with the user's own permissions. There are no privacy prompts on Linux, and "
                       "camera, microphone, location and similar services aren't available to it."),
        QStringLiteral("- The toolbar, the menus and this chat belong to Zentoro. You can't change them."),
        QString(),
        QStringLiteral("# How to work"),
        QStringLiteral("1. Unless the request is trivial, read the relevant files before changing them."),
        QStringLiteral("2. Change files with edit_file (focused edits) or write_file (new files, rewrites). As the app "
                       "grows, split it into several files by feature."),
        QStringLiteral("3. Call build. If it fails, fix the errors and build again until it succeeds. A successful "
                       "build becomes a new version and replaces the running UI at once: @State resets, but "
                       "UserDefaults and files persist."),
        QStringLiteral("4. When appearance or layout matters, call screenshot and check the result. Fix what looks "
                       "wrong."),
        QStringLiteral("5. Finish with a short reply (one to three sentences) that says what changed. Don't paste code "
                       "unless asked."),
        QString(),
        QStringLiteral("# Notes"),
        QStringLiteral("- Prefer modern SwiftUI that the list below supports (NavigationStack, @Observable, "
                       "LazyVGrid, Canvas). The window starts around 800×600 and can be resized; layouts should "
                       "adapt."),
        QStringLiteral("- Keep the user's existing features and data unless they ask otherwise. Ask a short question "
                       "only if the request is truly ambiguous; otherwise make a reasonable choice and build it."),
        QStringLiteral("- A crash takes all of Zentoro down with it. Avoid force unwraps, fatalError and unbounded "
                       "loops, and don't block the main thread. If a version crashes while starting, Zentoro falls "
                       "back to the previous one and tells you."),
        QStringLiteral("- print() output, Swift fatal error messages and crash backtraces go to a log; read_log shows "
                       "it (which: \"crash\" for the most recent run that crashed)."),
        QStringLiteral("- restart_app relaunches the whole process. Builds already hot-load, so only restart when the "
                       "user asks, or to get rid of state left over from older versions (timers, global singletons, "
                       "windows you opened)."),
        QStringLiteral("- Each message from the user comes with a note on Zentoro's state at that moment: the running "
                       "version, the source files, the date."),
    };
    const QString kit = kitList();
    if (!kit.isEmpty())
        lines << QString() << QStringLiteral("# What Zentoro's SwiftUI supports") << kit;
    return lines.join(u'\n');
}

QString context(const RuntimeState &state, std::optional<int> loadedVersion, const QString &compiler,
                const Workspace &workspace, const QDateTime &now, const QLocale &locale)
{
    return QStringList{
        QStringLiteral("Zentoro right now:"),
        QStringLiteral("- Running: %1.").arg(running(state, loadedVersion, now)),
        QStringLiteral("- Versions built so far: %1.").arg(state.versions.size()),
        QStringLiteral("- Compiler: %1.").arg(compiler),
        QStringLiteral("- Files in the source folder: %1.").arg(sourceFiles(workspace)),
        QStringLiteral("- Today is %1.").arg(fullDate(now.toLocalTime().date(), locale)),
    }
        .join(u'\n');
}

QString context(const Runtime &runtime)
{
    return context(runtime.state(), runtime.loadedVersion(), runtime.toolchainDescription(), runtime.workspace(),
                   QDateTime::currentDateTime(), QLocale::system());
}

QString relativeAge(const QDateTime &date, const QDateTime &now)
{
    const qint64 seconds = date.secsTo(now);
    const bool past = seconds >= 0;
    const qint64 elapsed = std::llabs(seconds);
    const qint64 days = elapsed / 86400;
    if (elapsed < 1)
        return QStringLiteral("now");
    if (elapsed < 60)
        return relative(elapsed, past, QStringLiteral("second"), QStringLiteral("1 second ago"),
                        QStringLiteral("in 1 second"));
    if (elapsed < 3600)
        return relative(elapsed / 60, past, QStringLiteral("minute"), QStringLiteral("1 minute ago"),
                        QStringLiteral("in 1 minute"));
    if (days < 1)
        return relative(elapsed / 3600, past, QStringLiteral("hour"), QStringLiteral("1 hour ago"),
                        QStringLiteral("in 1 hour"));
    if (days < 7)
        return relative(days, past, QStringLiteral("day"), QStringLiteral("yesterday"), QStringLiteral("tomorrow"));
    if (days < 30)
        return relative(days / 7, past, QStringLiteral("week"), QStringLiteral("last week"),
                        QStringLiteral("next week"));
    if (days < 365)
        return relative(days / 30, past, QStringLiteral("month"), QStringLiteral("last month"),
                        QStringLiteral("next month"));
    return relative(days / 365, past, QStringLiteral("year"), QStringLiteral("last year"), QStringLiteral("next year"));
}

QString fullDate(const QDate &date, const QLocale &locale)
{
    return locale.toString(date, QLocale::LongFormat);
}

} // namespace Instructions

} // namespace zentoro
