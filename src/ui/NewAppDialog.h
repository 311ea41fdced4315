#pragma once

#include "runtime/NewCopy.h"

#include <QDialog>

class QLabel;
class QLineEdit;
class QPushButton;

namespace zentoro {

// "New App…": asks for a name, says at once why a name can't be used, and on "Create" makes
// the copy (a link and its own entry in the applications menu) and starts it.
class NewAppDialog : public QDialog {
    Q_OBJECT
public:
    NewAppDialog(NewCopy::Places places, QWidget *parent = nullptr);

    // The dialog for the program this process was started as, shown without blocking.
    static void open(QWidget *parent);

    QLineEdit *nameField() const { return name_; }
    QLabel *message() const { return message_; }
    QPushButton *createButton() const { return create_; }

private:
    void sync();
    void create();
    void showMessage(const QString &text, bool problem);

    NewCopy::Places places_;
    QLineEdit *name_;
    QLabel *message_;
    QPushButton *create_;
};

} // namespace zentoro
