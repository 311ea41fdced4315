#include "core/DescribedError.h"

namespace zentoro {

const char *DescribedError::what() const noexcept
{
    what_ = errorDescription().toUtf8();
    return what_.constData();
}

QString describe(std::exception_ptr error)
{
    try {
        std::rethrow_exception(error);
    } catch (const DescribedError &described) {
        return described.errorDescription();
    } catch (const std::exception &other) {
        return QString::fromUtf8(other.what());
    } catch (...) {
        return QStringLiteral("Something went wrong.");
    }
}

} // namespace zentoro
