#include "ui/NewAppDialog.h"

#include "core/Failure.h"
#include "runtime/Relaunch.h"
#include "ui/AppIcon.h"
#include "ui/PanelStyle.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace zentoro {

namespace {

QString shortened(const QString &path)
{
    const QString home = QDir::homePath();
    return path.startsWith(home + u'/') ? u'~' + path.mid(home.size()) : path;
}

} // namespace

NewAppDialog::NewAppDialog(NewCopy::Places places, QWidget *parent)
    : QDialog(parent), places_(std::move(places)), name_(new QLineEdit), message_(new QLabel),
      create_(new QPushButton(QStringLiteral("Create")))
{
    setWindowTitle(QStringLiteral("New App"));
    setMinimumWidth(460);

    auto *icon = new QLabel;
    icon->setPixmap(AppIcon::pixmap(48, devicePixelRatioF()));
    icon->setAlignment(Qt::AlignTop);
    auto *title = new QLabel(QStringLiteral("New App"));
    title->setFont(PanelStyle::font(font(), PanelStyle::Type::Title3, QFont::DemiBold));
    auto *about = new QLabel(QStringLiteral("A new app starts as the starter app, with its own sources, versions, "
                                            "conversations and settings. Name it as it should appear in your "
                                            "applications menu."));
    about->setWordWrap(true);

    name_->setPlaceholderText(QStringLiteral("Kitchen Timer"));
    name_->setAccessibleName(QStringLiteral("Name"));
    message_->setWordWrap(true);
    message_->setFont(PanelStyle::font(font(), PanelStyle::Type::Callout));
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *label = new QLabel(QStringLiteral("&Name:"));
    label->setBuddy(name_);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    buttons->addButton(create_, QDialogButtonBox::AcceptRole);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(create_, &QPushButton::clicked, this, &NewAppDialog::create);
    connect(name_, &QLineEdit::textChanged, this, &NewAppDialog::sync);

    auto *text = new QVBoxLayout;
    text->addWidget(title);
    text->addWidget(about);
    text->setSpacing(6);
    text->addSpacing(8);
    text->addWidget(label);
    text->addWidget(name_);
    text->addWidget(message_);
    auto *top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(icon);
    top->addLayout(text, 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addStretch();
    layout->addWidget(buttons);
    // Once it is in the dialog, so that the dialog keeps it as the button Return presses.
    create_->setDefault(true);
    sync();
}

void NewAppDialog::open(QWidget *parent)
{
    auto *dialog = new NewAppDialog(NewCopy::forProgram(Relaunch::executable(), AppIcon::forDesktopEntry()), parent);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void NewAppDialog::sync()
{
    const QString name = name_->text().trimmed();
    const auto refusal = NewCopy::refusal(name, places_);
    create_->setEnabled(!refusal);
    if (name.isEmpty())
        showMessage(QStringLiteral("It will be a link in %1 with its own entry in the applications menu.")
                        .arg(shortened(places_.linkFolder)),
                    false);
    else if (refusal)
        showMessage(*refusal, true);
    else
        showMessage(QStringLiteral("It will open as “%1”.").arg(shortened(NewCopy::copyAt(name, places_).link)), false);
}

void NewAppDialog::create()
{
    try {
        const NewCopy::Copy copy = NewCopy::make(name_->text().trimmed(), places_);
        if (const auto error = NewCopy::start(copy)) {
            showMessage(*error, true);
            create_->setEnabled(false);
            return;
        }
        accept();
    } catch (const Failure &failure) {
        showMessage(failure.message, true);
    }
}

void NewAppDialog::showMessage(const QString &text, bool problem)
{
    message_->setText(text);
    PanelStyle::setTextColor(message_, problem ? PanelStyle::red(palette()) : PanelStyle::secondary(palette()));
}

} // namespace zentoro
