#include "ui/Spring.h"

#include <cmath>
#include <numbers>

namespace zentoro {

void Spring::advance(double seconds)
{
    const double omega = 2 * std::numbers::pi / response;
    const double zeta = dampingFraction;
    const double offset = value - target;
    const double decay = std::exp(-zeta * omega * seconds);
    if (zeta < 1) {
        const double damped = omega * std::sqrt(1 - zeta * zeta);
        const double a = offset;
        const double b = (velocity + zeta * omega * offset) / damped;
        const double c = std::cos(damped * seconds);
        const double s = std::sin(damped * seconds);
        value = target + decay * (a * c + b * s);
        velocity = decay * ((b * damped - zeta * omega * a) * c - (a * damped + zeta * omega * b) * s);
    } else {
        // Critically damped (or more, treated as critical): no oscillation.
        const double a = offset;
        const double b = velocity + omega * offset;
        value = target + decay * (a + b * seconds);
        velocity = decay * (b - omega * (a + b * seconds));
    }
}

bool Spring::isSettled() const
{
    return std::abs(value - target) < 1e-3 && std::abs(velocity) < 1e-2;
}

} // namespace zentoro
