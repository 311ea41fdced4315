#pragma once

#include <QString>
#include <QStringList>

namespace zentoro::BuildSteps {

// The compiler's output is cut to this many characters before it reaches the model.
inline constexpr qsizetype outputLimit = 12000;

// `text` as a Swift string literal, quotes included.
QString swiftLiteral(const QString &text);

// "ZentoroEntry.swift": the copy's name and settings suite for the hosted code, and the
// exported factory that hands the host the root view of `AppRoot`.
QString entryFile(const QString &copyName, const QString &defaultsSuite);

// The processor part of the target triple is the one this program was built for, since
// the library is loaded into this very process.
QString targetTriple();

struct CompileInputs {
    QString module;       // "ZentoroApp<n>"
    QString output;       // the library to write
    QString moduleCache;  // shared by every build of the copy
    QString sdk;          // the sysroot
    QStringList kitFlags; // include, library and rpath flags of the hosted UI kit
    QStringList files;    // the entry file first, then the sources in their order
};
QStringList compilerArguments(const CompileInputs &inputs);

// Compiler output fit for the model: paths relative to `sources`, the entry file named
// as generated code, trimmed and cut to `outputLimit` characters.
QString clean(const QString &output, const QString &sources, const QString &entry);
// `text` trimmed and cut to `outputLimit` characters, saying so when it was cut.
QString capped(const QString &text);

} // namespace zentoro::BuildSteps
