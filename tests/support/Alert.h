#pragma once

#include <QString>

namespace zentoro::test {

// What the next modal alert said, once answered.
struct AlertSeen {
    QString text;
    QString informative;
};

// Clicks the button labelled `button` on the next modal alert (none when empty: it is
// accepted); the alert's words are kept in `seen`, which must outlive the alert.
void answerNextAlert(AlertSeen &seen, const QString &button = {});

} // namespace zentoro::test
