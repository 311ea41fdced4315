#pragma once

#include <QString>
#include <QStringList>

namespace zentoro::BuildSteps {

// The compiler's output is cut to this many characters before it reaches the model.
inline constexpr qsizetype outputLimit = 12000;

// More Swift files than any app is made of: a build past it would run for hours and copy
// them all into the version.
inline constexpr qsizetype swiftFileLimit = 10000;
// The words for a folder past it.
QString tooManyFiles(qsizetype count);

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

// `arguments` as the compiler's response file ("@file"), so no number of files can overflow
// the command line: one to a line, white space, quotes and backslashes escaped. A backslash
// before a line feed joins two lines there, so an argument with a line feed can't be written
// in it; those are left in `kept`, for the command line.
QByteArray responseFile(const QStringList &arguments, QStringList &kept);

// Compiler output fit for the model: paths relative to `sources`, the entry file named
// as generated code, trimmed and cut to `outputLimit` characters.
QString clean(const QString &output, const QString &sources, const QString &entry);
// `text` trimmed and cut to `outputLimit` characters, saying so when it was cut.
QString capped(const QString &text);

} // namespace zentoro::BuildSteps
