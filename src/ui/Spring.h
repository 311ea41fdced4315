#pragma once

namespace zentoro {

// A damped spring, as animations describe one: `response` is the period of the undamped
// oscillation in seconds, `dampingFraction` the share of critical damping (below 1 it
// overshoots). It moves `value` towards `target`, keeping its velocity when the target moves.
struct Spring {
    double response = 0.5;
    double dampingFraction = 0.42;
    double value = 0;
    double velocity = 0;
    double target = 0;

    // Moves the spring `seconds` further along its exact path.
    void advance(double seconds);
    // Close enough to the target, and slow enough, that a frame can't show a difference.
    bool isSettled() const;

    bool operator==(const Spring &) const = default;
};

} // namespace zentoro
