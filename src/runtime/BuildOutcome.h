#pragma once

#include <QString>

#include <variant>

namespace zentoro {

// The result of one build: a new running version, or words for the model and the user.
struct BuildOutcome {
    struct Success {
        int version;
        double seconds;   // from just before the compiler started until the load was done
        QString warnings; // the cleaned compiler output; empty when it said nothing
        bool operator==(const Success &) const = default;
    };
    struct Failure {
        QString text;
        bool operator==(const Failure &) const = default;
    };

    std::variant<Success, Failure> value;

    const Success *success() const { return std::get_if<Success>(&value); }
    const Failure *failure() const { return std::get_if<Failure>(&value); }
    bool operator==(const BuildOutcome &) const = default;
};

} // namespace zentoro
