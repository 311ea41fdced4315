#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>

#include <optional>

namespace zentoro {

// One built version; its identity is its number.
struct VersionRecord {
    int number = 0;
    QDateTime date; // when the build finished, in whole seconds
    QString summary;
    bool crashed = false; // took the process down while starting; never cleared

    bool operator==(const VersionRecord &) const = default;
};

// The version store, kept in "state.json" under the copy's root so that the next start
// can tell what went wrong.
struct RuntimeState {
    QList<VersionRecord> versions; // oldest first
    std::optional<int> current;    // what the next start runs; none is an empty window
    std::optional<int> lastGood;   // the latest version that survived its start
    std::optional<int> loading;    // the version in its first seconds after a load
    int nextNumber = 1;

    bool operator==(const RuntimeState &) const = default;

    const VersionRecord *record(int number) const;
    // Sets `crashed` on the record with that number, if there is one.
    void markCrashed(int number);

    // Pretty-printed JSON with sorted keys and ISO 8601 dates in UTC.
    QByteArray encode() const;
    // None when a required key is missing, a value has the wrong type or a date can't
    // be read: the file counts as absent.
    static std::optional<RuntimeState> decode(const QByteArray &bytes);

    // An unreadable or undecodable file gives the default state.
    static RuntimeState read(const QString &path);
    // `read` at start: a file that is there but unreadable or undecodable is first moved aside
    // to "<path>.unreadable", replacing an earlier one, so the next save doesn't write over
    // what someone may still want to rescue.
    static RuntimeState readKeepingUnreadable(const QString &path);
    // Whole or not at all; the next write tries again after a failure, whose words this returns.
    std::optional<QString> write(const QString &path) const;
};

} // namespace zentoro
