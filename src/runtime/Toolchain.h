#pragma once

#include <QString>

#include <QCoroTask>

#include <variant>

namespace zentoro {

// Whether a working Swift compiler exists, where it is and what it is called.
class Toolchain {
public:
    struct Compiler {
        QString swiftc;       // absolute path of the compiler
        QString sdk;          // the sysroot handed to the compiler as "-sdk"
        QString version;      // for display, such as "Swift 6.3.1"
        QString developerDir; // the toolchain's root, the folder above "usr/bin"
        bool operator==(const Compiler &) const = default;
    };

    enum class Case { Broken, Ready, Checking, Missing, Installing };

    static Toolchain broken(QString text) { return Toolchain(Broken{std::move(text)}); }
    static Toolchain ready(Compiler compiler) { return Toolchain(std::move(compiler)); }
    static Toolchain checking() { return Toolchain(Checking{}); }
    static Toolchain missing() { return Toolchain(Missing{}); }
    static Toolchain installing() { return Toolchain(Installing{}); }

    Toolchain() : value_(Checking{}) {}
    Case kind() const { return static_cast<Case>(value_.index()); }
    bool isReady() const { return kind() == Case::Ready; }
    // The compiler when ready, otherwise null.
    const Compiler *compiler() const { return std::get_if<Compiler>(&value_); }
    // One line for the user and for the model.
    QString description() const;

    bool operator==(const Toolchain &) const = default;

    // Looks for `swiftc` on PATH and then in the usual install folders, and asks it for
    // its version. Gives `broken`, `ready` or `missing`.
    static QCoro::Task<Toolchain> detect();
    // Where `detect` will find `swiftc`, without running anything; empty when it finds none.
    static QString locate();
    // Tells one compiler file from another without running it: the file it leads to, its
    // size and its time of change. Empty when there is no such file.
    static QString fingerprint(const QString &swiftc);
    // Starts an installation without waiting for it: swiftly where it is installed,
    // otherwise the Swift install page in the browser. True when something was started.
    static QCoro::Task<bool> startInstall();

    // "Swift 6.3.1" from "Swift version 6.3.1 (swift-6.3.1-RELEASE)".
    static QString versionText(const QString &versionOutput);
    // The text of a failed command for the user.
    static QString explain(const QString &output);
    // The last non-empty line, trimmed of blanks.
    static QString lastLine(const QString &text);

private:
    struct Broken {
        QString text;
        bool operator==(const Broken &) const = default;
    };
    struct Checking {
        bool operator==(const Checking &) const = default;
    };
    struct Missing {
        bool operator==(const Missing &) const = default;
    };
    struct Installing {
        bool operator==(const Installing &) const = default;
    };
    template <typename T>
    explicit Toolchain(T value) : value_(std::move(value))
    {
    }

    std::variant<Broken, Compiler, Checking, Missing, Installing> value_;
};

} // namespace zentoro
