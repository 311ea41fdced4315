#pragma once

#include <QByteArray>
#include <QString>

#include <exception>

namespace zentoro {

// An error whose description is finished words for the user.
class DescribedError : public std::exception {
public:
    virtual QString errorDescription() const = 0;
    const char *what() const noexcept override;

private:
    mutable QByteArray what_;
};

// The user-facing words of any exception: its description when it has one.
QString describe(std::exception_ptr error);

} // namespace zentoro
