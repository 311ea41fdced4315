#include "core/Defaults.h"

#include <QCoreApplication>
#include <QSettings>
#include <QStandardPaths>

namespace zentoro::Defaults {

namespace {

std::optional<QString> argument(const QString &key)
{
    const QStringList arguments = QCoreApplication::arguments();
    const QString flag = u'-' + key;
    for (qsizetype i = 1; i + 1 < arguments.size(); ++i) {
        if (arguments[i] == flag)
            return arguments[i + 1];
    }
    return std::nullopt;
}

} // namespace

QString path(const QString &suite)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                           QStringLiteral("/Zentoro/");
    return folder + (suite.isEmpty() ? QStringLiteral("Zentoro") : suite) + QStringLiteral(".ini");
}

QVariant value(const QString &key)
{
    if (auto overridden = argument(key))
        return *overridden;
    return QSettings(path(), QSettings::IniFormat).value(key);
}

std::optional<QString> string(const QString &key)
{
    const QVariant stored = value(key);
    if (!stored.isValid())
        return std::nullopt;
    return stored.toString();
}

bool flag(const QString &key)
{
    const QVariant stored = value(key);
    if (stored.typeId() == QMetaType::Bool)
        return stored.toBool();
    const QString text = stored.toString().trimmed().toLower();
    return text == u"yes" || text == u"true" || text == u"1";
}

void setValue(const QString &key, const QVariant &value)
{
    QSettings(path(), QSettings::IniFormat).setValue(key, value);
}

void remove(const QString &key)
{
    QSettings(path(), QSettings::IniFormat).remove(key);
}

QVariant suiteValue(const QString &suite, const QString &key)
{
    return QSettings(path(suite), QSettings::IniFormat).value(key);
}

void setSuiteValue(const QString &suite, const QString &key, const QVariant &value)
{
    QSettings(path(suite), QSettings::IniFormat).setValue(key, value);
}

} // namespace zentoro::Defaults
