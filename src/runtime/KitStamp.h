#pragma once

#include <QString>

#include <optional>

namespace zentoro {

// What a version's library was built against, kept beside it: the kit's identity (which
// names the compiler's version too) and the compiler file it came from. A version whose
// stamp doesn't match the kit of this process is built again from its own sources before it
// runs, for a process can hold only one Swift runtime.
struct KitStamp {
    QString kit;      // Kit::identity
    QString compiler; // Toolchain::fingerprint of the compiler that built it

    bool operator==(const KitStamp &) const = default;

    // None when the file is missing or unreadable: a version built before stamps, or by an
    // older Zentoro.
    static std::optional<KitStamp> read(const QString &path);
    // Whole or not at all; the system's words on failure.
    std::optional<QString> write(const QString &path) const;
};

} // namespace zentoro
