#include "model_service/AgentConfig.h"

#include "core/AtomicFile.h"
#include "core/Defaults.h"
#include "core/Failure.h"
#include "core/SupportFolder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

namespace zentoro::AgentConfig {

namespace {

std::optional<QString> nonEmpty(const QString &text)
{
    if (text.isEmpty())
        return std::nullopt;
    return text;
}

QString trimBlanksAndTabs(const QString &text)
{
    qsizetype start = 0;
    qsizetype end = text.size();
    while (start < end && (text[start] == u' ' || text[start] == u'\t'))
        ++start;
    while (end > start && (text[end - 1] == u' ' || text[end - 1] == u'\t'))
        --end;
    return text.mid(start, end - start);
}

} // namespace

QString keyPath()
{
    return supportFolder() + QStringLiteral("/openai-key");
}

std::optional<QString> savedKey()
{
    QFile file(keyPath());
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(file.readAll());
    if (decoder.hasError())
        return std::nullopt;
    return nonEmpty(text.trimmed());
}

std::optional<QString> environmentKey()
{
    return nonEmpty(qEnvironmentVariable("OPENAI_API_KEY").trimmed());
}

std::optional<QString> effectiveKey()
{
    if (auto saved = savedKey())
        return saved;
    return environmentKey();
}

void saveAPIKey(const std::optional<QString> &key)
{
    const QString path = keyPath();
    QFile::remove(path);
    if (!key)
        return;
    const QString trimmed = key->trimmed();
    if (trimmed.isEmpty())
        return;
    const QString folder = QFileInfo(path).absolutePath();
    if (!QDir().mkpath(folder))
        throw Failure(QStringLiteral("Couldn't create the folder %1.").arg(folder));
    if (AtomicFile::write(path, trimmed.toUtf8(), 0600))
        throw Failure(QStringLiteral("Couldn't save the key to %1.").arg(path));
}

QString model()
{
    const QString configured = trimBlanksAndTabs(Defaults::string(QStringLiteral("model")).value_or(QString()));
    return configured.isEmpty() ? QString::fromLatin1(defaultModel) : configured;
}

void setModel(const QString &model)
{
    Defaults::setValue(QStringLiteral("model"), model);
}

QStringList apiKeyModels()
{
    return {QString::fromLatin1(defaultModel), QStringLiteral("gpt-6-astra"), QStringLiteral("gpt-6-luna"),
            QStringLiteral("gpt-5.5")};
}

QString reasoningEffort()
{
    return Defaults::string(QStringLiteral("reasoningEffort")).value_or(QString());
}

void setReasoningEffort(const QString &effort)
{
    Defaults::setValue(QStringLiteral("reasoningEffort"), effort);
}

QStringList reasoningEfforts()
{
    return {QString(), QStringLiteral("low"), QStringLiteral("medium"), QStringLiteral("high")};
}

} // namespace zentoro::AgentConfig
