#include "support/Alert.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QTimer>

namespace zentoro::test {

void answerNextAlert(AlertSeen &seen, const QString &button)
{
    QTimer::singleShot(50, [&seen, button] {
        auto *alert = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!alert)
            return;
        seen.text = alert->text();
        seen.informative = alert->informativeText();
        if (button.isEmpty()) {
            alert->accept();
            return;
        }
        for (QAbstractButton *candidate : alert->buttons()) {
            if (candidate->text() == button)
                candidate->click();
        }
    });
}

} // namespace zentoro::test
