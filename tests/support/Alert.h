#pragma once

#include <QString>
#include <QStringList>

namespace zentoro::test {

// What the next modal alert said and offered, once answered.
struct AlertSeen {
    QString text;
    QString informative;
    QStringList buttons;
};

// Clicks the button labelled `button` on the next modal alert (none when empty: it is
// accepted); the alert's words are kept in `seen`, which must outlive the alert.
void answerNextAlert(AlertSeen &seen, const QString &button = {});

} // namespace zentoro::test
