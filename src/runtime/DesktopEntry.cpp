#include "runtime/DesktopEntry.h"

#include "runtime/Workspace.h"

#include <QCryptographicHash>
#include <QStandardPaths>

namespace zentoro::DesktopEntry {

namespace {

// A string value: backslash and control characters escaped, a leading space kept.
QString escaped(const QString &value)
{
    QString result;
    for (const QChar c : value) {
        if (c == u'\\')
            result += QStringLiteral("\\\\");
        else if (c == u'\n')
            result += QStringLiteral("\\n");
        else if (c == u'\t')
            result += QStringLiteral("\\t");
        else if (c == u'\r')
            result += QStringLiteral("\\r");
        else
            result += c;
    }
    if (result.startsWith(u' '))
        result.replace(0, 1, QStringLiteral("\\s"));
    return result;
}

} // namespace

QString execArgument(const QString &argument)
{
    QString quoted = QStringLiteral("\"");
    for (const QChar c : argument) {
        if (c == u'"' || c == u'`' || c == u'$' || c == u'\\')
            quoted += u'\\';
        quoted += c;
    }
    quoted += u'"';
    // A launcher reads the string escapes first, then the quoting, then the field codes.
    return escaped(quoted).replace(u'%', QStringLiteral("%%"));
}

QString text(const Entry &entry)
{
    const QString exec = execArgument(entry.program);
    return QStringLiteral("[Desktop Entry]\n"
                          "Type=Application\n"
                          "Name=%1\n"
                          "Comment=Made with Zentoro\n"
                          "Exec=%2\n"
                          "Icon=%3\n"
                          "Terminal=false\n"
                          "Categories=Utility;\n"
                          "StartupNotify=true\n"
                          "Actions=safe-mode;\n"
                          "\n"
                          "[Desktop Action safe-mode]\n"
                          "Name=Start in Safe Mode\n"
                          "Exec=%2 --safe-mode\n")
        .arg(escaped(entry.name), exec, escaped(entry.icon));
}

QString idForCopy(const QString &name)
{
    QString letters;
    for (const QChar c : name)
        letters += (c.unicode() < 0x80 && c.isLetterOrNumber()) ? c : u'_';
    // Each part of the id is a D-Bus name element, which may not start with a digit.
    if (letters.isEmpty() || letters.front().isDigit())
        letters.prepend(u'_');
    const QByteArray digest = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256).toHex().left(8);
    return QString::fromLatin1(bundleIdentifier) + QStringLiteral(".app.") + letters + u'_' +
           QString::fromLatin1(digest);
}

QString desktopFileNameFor(const QString &name)
{
    const QString id = idForCopy(name);
    if (!QStandardPaths::locate(QStandardPaths::ApplicationsLocation, id + QStringLiteral(".desktop")).isEmpty())
        return id;
    return QString::fromLatin1(bundleIdentifier);
}

QString userFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::ApplicationsLocation);
}

} // namespace zentoro::DesktopEntry
