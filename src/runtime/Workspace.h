#pragma once

#include "core/DescribedError.h"

#include <QString>
#include <QUuid>

namespace zentoro {

// Where this copy keeps its things. A copy is named by the file it was started as;
// every path of its folder is built here and nowhere else.
struct Workspace {
    // An error with one text for the user; also used for words written for the user by
    // the model service client and the sign-in.
    struct Failure : DescribedError {
        QString message;
        explicit Failure(QString message) : message(std::move(message)) {}
        QString errorDescription() const override { return message; }
    };

    QString name;
    QString root;

    // The copy's name from the program's file name: `argv0`'s file name without its
    // extension, or the AppImage's when one is running.
    static QString nameFromExecutable(const QString &argv0, const QString &appImage);
    static Workspace forName(const QString &name);
    // `$XDG_DATA_HOME/Zentoro`, shared by all copies.
    static QString support();
    // The Workspace of the running process; set up by `initShared` at start.
    static const Workspace &shared();
    static void initShared(const QString &argv0);

    QString sources() const { return root + QStringLiteral("/Sources"); }
    QString versions() const { return root + QStringLiteral("/Versions"); }
    QString build() const { return root + QStringLiteral("/Build"); }
    QString logs() const { return root + QStringLiteral("/Logs"); }
    QString data() const { return root + QStringLiteral("/Data"); }
    QString stateFile() const { return root + QStringLiteral("/state.json"); }
    // "Conversations/<UUID in upper case>.json" under root.
    QString conversation(const QUuid &id) const;
    QString version(int number) const;
    QString dylib(int number) const;
    // The hosted app's own settings suite: "dev.vantu.zentoro.app.<name>".
    QString defaultsSuite() const;

    bool operator==(const Workspace &) const = default;
};

inline constexpr auto bundleIdentifier = "dev.vantu.zentoro";

} // namespace zentoro
