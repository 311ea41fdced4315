#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace zentoro::Defaults {

// The program's own settings, shared by all copies: an INI file under
// `$XDG_CONFIG_HOME/Zentoro/`. A pair on the command line such as
// `-ZentoroSafeMode YES` overrides a key for this run only.
QVariant value(const QString &key);
std::optional<QString> string(const QString &key);
bool flag(const QString &key);
void setValue(const QString &key, const QVariant &value);
void remove(const QString &key);

// A copy's own suite (`Workspace::defaultsSuite`), an INI file in the same folder.
QVariant suiteValue(const QString &suite, const QString &key);
void setSuiteValue(const QString &suite, const QString &key, const QVariant &value);

// The path of the INI file behind `suite`; the standard store when `suite` is empty.
QString path(const QString &suite = {});

} // namespace zentoro::Defaults
