// "New App…" as a person uses it: the dialog tells why a name can't be used while it is typed,
// and "Create" makes the copy and starts it under its name.
#include "ui/NewAppDialog.h"
#include "runtime/DesktopEntry.h"

#include "support/RecordingProgram.h"

#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

using namespace zentoro;

TEST(NewAppDialogTest, RefusesAsYouTypeAndCreatesAndStartsTheCopy)
{
    QTemporaryDir folder;
    const QString program = folder.path() + QStringLiteral("/zentoro");
    const QString log = folder.path() + QStringLiteral("/started.log");
    test::writeRecordingProgram(program, log);
    NewAppDialog dialog(NewCopy::forProgram(program, QStringLiteral("dev.vantu.zentoro")));
    dialog.show();

    EXPECT_FALSE(dialog.createButton()->isEnabled());
    QTest::keyClicks(dialog.nameField(), QStringLiteral("Kitchen/Timer"));
    EXPECT_FALSE(dialog.createButton()->isEnabled());
    EXPECT_EQ(dialog.message()->text(), QStringLiteral("A name can't contain “/”. Choose a name without it."));

    dialog.nameField()->setText(QStringLiteral(" Café Ölçer "));
    ASSERT_TRUE(dialog.createButton()->isEnabled());
    const QString link = folder.path() + QStringLiteral("/Café Ölçer");
    EXPECT_EQ(dialog.message()->text(), QStringLiteral("It will open as “%1”.").arg(link));
    QTest::keyClick(dialog.nameField(), Qt::Key_Return);

    EXPECT_EQ(dialog.result(), QDialog::Accepted) << dialog.message()->text().toStdString();
    EXPECT_EQ(QFileInfo(link).symLinkTarget(), program);
    EXPECT_TRUE(test::waitForLine(log, link));
    QFile::remove(DesktopEntry::userFolder() + u'/' + DesktopEntry::idForCopy(QStringLiteral("Café Ölçer")) +
                  QStringLiteral(".desktop"));
}
