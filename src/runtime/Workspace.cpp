#include "runtime/Workspace.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace zentoro {

namespace {
Workspace &sharedStorage()
{
    static Workspace workspace;
    return workspace;
}
} // namespace

QString Workspace::nameFromExecutable(const QString &argv0, const QString &appImage)
{
    const QString path = appImage.isEmpty() ? argv0 : appImage;
    QString name = QFileInfo(path).fileName();
    const qsizetype dot = name.lastIndexOf(u'.');
    if (dot > 0)
        name.truncate(dot);
    return name.isEmpty() ? QStringLiteral("Zentoro") : name;
}

Workspace Workspace::forName(const QString &name)
{
    return Workspace{name, support() + QStringLiteral("/Apps/") + name};
}

QString Workspace::support()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/Zentoro");
}

const Workspace &Workspace::shared()
{
    return sharedStorage();
}

void Workspace::initShared(const QString &argv0)
{
    sharedStorage() = forName(nameFromExecutable(argv0, qEnvironmentVariable("APPIMAGE")));
}

} // namespace zentoro

namespace zentoro {

QString Workspace::conversation(const QUuid &id) const
{
    return root + QStringLiteral("/Conversations/") + id.toString(QUuid::WithoutBraces).toUpper() +
           QStringLiteral(".json");
}

QString Workspace::version(int number) const
{
    return versions() + u'/' + QString::number(number);
}

QString Workspace::dylib(int number) const
{
    return version(number) + QStringLiteral("/libZentoroApp") + QString::number(number) + QStringLiteral(".so");
}

QString Workspace::defaultsSuite() const
{
    return QString::fromLatin1(bundleIdentifier) + QStringLiteral(".app.") + name;
}

} // namespace zentoro
