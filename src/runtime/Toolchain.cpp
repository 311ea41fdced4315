#include "runtime/Toolchain.h"

#include "core/Defaults.h"
#include "runtime/Shell.h"

#include <QDateTime>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

namespace zentoro {

namespace {

// Where the Swift toolchain lands when it isn't on PATH: the tarball's usual place,
// swiftly's proxies, and the distribution packages.
QStringList installFolders()
{
    return {QStringLiteral("/opt/swift/usr/bin"), QDir::homePath() + QStringLiteral("/.local/share/swiftly/bin"),
            QStringLiteral("/usr/share/swift/usr/bin")};
}

QString findOnPathOrIn(const QString &program, const QStringList &folders)
{
    const QString onPath = QStandardPaths::findExecutable(program);
    return onPath.isEmpty() ? QStandardPaths::findExecutable(program, folders) : onPath;
}

QCoro::Task<QString> toolchainRoot(const QString &swiftc)
{
    const QString canonical = QFileInfo(swiftc).canonicalFilePath();
    const QString folder = QFileInfo(canonical.isEmpty() ? swiftc : canonical).absolutePath();
    static const QString usrBin = QStringLiteral("/usr/bin");
    if (folder.endsWith(usrBin)) {
        const QString root = folder.chopped(usrBin.size());
        co_return root.isEmpty() ? QStringLiteral("/") : root;
    }
    // swiftly's proxies live outside any toolchain: swiftly knows which one is in use.
    const QString swiftly = QFileInfo(swiftc).absolutePath() + QStringLiteral("/swiftly");
    if (QFileInfo(swiftly).isExecutable()) {
        const QStringList arguments{QStringLiteral("use"), QStringLiteral("--print-location")};
        const Shell::Result result = co_await Shell::run(swiftly, arguments);
        const QString location = Toolchain::lastLine(result.output);
        if (result.status == 0 && !location.isEmpty())
            co_return location;
    }
    co_return QFileInfo(folder).absolutePath();
}

} // namespace

QString Toolchain::description() const
{
    switch (kind()) {
    case Case::Broken: return std::get<Broken>(value_).text;
    case Case::Ready: return compiler()->version + QStringLiteral(" at ") + compiler()->developerDir;
    case Case::Checking: return QStringLiteral("checking for the Swift compiler");
    case Case::Missing: return QStringLiteral("the Swift toolchain isn't installed");
    case Case::Installing: return QStringLiteral("the Swift toolchain is being installed");
    }
    return {};
}

QString Toolchain::locate()
{
    if (Defaults::flag(QStringLiteral("ZentoroSimulateMissingTools")))
        return {};
    const QString swiftc = findOnPathOrIn(QStringLiteral("swiftc"), installFolders());
    return swiftc.isEmpty() ? QString() : QFileInfo(swiftc).absoluteFilePath();
}

QString Toolchain::fingerprint(const QString &swiftc)
{
    const QFileInfo file(QFileInfo(swiftc).canonicalFilePath());
    if (swiftc.isEmpty() || !file.isFile())
        return {};
    return QStringLiteral("%1 %2 %3")
        .arg(file.filePath())
        .arg(file.size())
        .arg(file.lastModified().toMSecsSinceEpoch());
}

QCoro::Task<Toolchain> Toolchain::detect()
{
    const QString absolute = locate();
    if (absolute.isEmpty())
        co_return missing();
    const QStringList arguments{QStringLiteral("--version")};
    const Shell::Result version = co_await Shell::run(absolute, arguments);
    if (version.status != 0)
        co_return broken(explain(version.output));
    const QString root = co_await toolchainRoot(absolute);
    co_return ready(Compiler{absolute, QStringLiteral("/"), versionText(version.output), root});
}

QCoro::Task<bool> Toolchain::startInstall()
{
    const QString swiftly = findOnPathOrIn(QStringLiteral("swiftly"),
                                           {QDir::homePath() + QStringLiteral("/.local/share/swiftly/bin")});
    if (!swiftly.isEmpty()) {
        const QStringList arguments{QStringLiteral("install"), QStringLiteral("--use"), QStringLiteral("--assume-yes"),
                                    QStringLiteral("latest")};
        co_return QProcess::startDetached(swiftly, arguments);
    }
    const QUrl page(QStringLiteral("https://www.swift.org/install/linux/"));
    co_return QDesktopServices::openUrl(page);
}

QString Toolchain::versionText(const QString &versionOutput)
{
    const QStringList lines = versionOutput.split(QRegularExpression(QStringLiteral("[\r\n]")), Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        if (!line.contains(QStringLiteral("Swift version")))
            continue;
        const QStringList pieces = line.split(QRegularExpression(QStringLiteral("\\s")), Qt::SkipEmptyParts);
        const qsizetype at = pieces.indexOf(QStringLiteral("version"));
        if (at >= 0 && at + 1 < pieces.size())
            return QStringLiteral("Swift ") + pieces[at + 1];
        return line;
    }
    return QStringLiteral("Swift");
}

QString Toolchain::explain(const QString &output)
{
    const QString trimmed = output.trimmed();
    return trimmed.isEmpty() ? QStringLiteral("swiftc failed.") : trimmed;
}

QString Toolchain::lastLine(const QString &text)
{
    const QStringList lines = text.split(QRegularExpression(QStringLiteral("[\r\n]")), Qt::SkipEmptyParts);
    if (lines.isEmpty())
        return {};
    QString line = lines.last();
    while (!line.isEmpty() && (line.front() == u' ' || line.front() == u'\t'))
        line.remove(0, 1);
    while (!line.isEmpty() && (line.back() == u' ' || line.back() == u'\t'))
        line.chop(1);
    return line;
}

} // namespace zentoro
