#pragma once

#include <QDialog>

class QLabel;

namespace zentoro {

class Runtime;

// "About Zentoro": the program's version, the Qt and Swift toolchain versions it runs with,
// and the licence notices of what it ships.
class AboutDialog : public QDialog {
    Q_OBJECT
public:
    explicit AboutDialog(Runtime &runtime, QWidget *parent = nullptr);

    // One line each: the program, Qt, the Swift toolchain.
    static QStringList versions(const Runtime &runtime);
    // The notices of the Anybody typeface, Qt and QCoro, with the typeface's licence in full.
    static QString notices();

private:
    Runtime &runtime_;
    QLabel *versions_;
};

} // namespace zentoro
