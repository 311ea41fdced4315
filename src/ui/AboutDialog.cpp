#include "ui/AboutDialog.h"

#include "runtime/Runtime.h"
#include "ui/AppIcon.h"
#include "ui/BrandFont.h"
#include "ui/PanelStyle.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>

namespace zentoro {

namespace {

QString swiftLine(const Toolchain &toolchain)
{
    QString state;
    switch (toolchain.kind()) {
    case Toolchain::Case::Ready: state = toolchain.description(); break;
    case Toolchain::Case::Checking: state = QStringLiteral("looking for it…"); break;
    case Toolchain::Case::Missing: state = QStringLiteral("not installed"); break;
    case Toolchain::Case::Installing: state = QStringLiteral("being installed"); break;
    case Toolchain::Case::Broken: state = QStringLiteral("not working (%1)").arg(toolchain.description()); break;
    }
    return QStringLiteral("Swift toolchain: ") + state;
}

QString typefaceLicence()
{
    // Reading the typeface registers the resources that hold its licence.
    BrandFont::registered();
    QFile file(QStringLiteral(":/brand/Anybody-OFL.txt"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).trimmed() : QString();
}

} // namespace

AboutDialog::AboutDialog(Runtime &runtime, QWidget *parent) : QDialog(parent), runtime_(runtime), versions_(new QLabel)
{
    setWindowTitle(QStringLiteral("About Zentoro"));
    resize(520, 560);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(20, 20, 20, 16);
    column->setSpacing(12);
    auto *head = new QHBoxLayout;
    head->setSpacing(16);
    auto *icon = new QLabel;
    icon->setPixmap(AppIcon::pixmap(64, devicePixelRatioF()));
    head->addWidget(icon, 0, Qt::AlignTop);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(4);
    auto *name = new QLabel(QStringLiteral("Zentoro"));
    name->setFont(PanelStyle::font(font(), PanelStyle::Type::Title2, QFont::Bold));
    texts->addWidget(name);
    versions_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    texts->addWidget(versions_);
    texts->addStretch(1);
    head->addLayout(texts, 1);
    column->addLayout(head);

    auto *heading = new QLabel(QStringLiteral("Licences of what Zentoro ships"));
    heading->setFont(PanelStyle::font(font(), PanelStyle::Type::Body, QFont::DemiBold));
    column->addWidget(heading);
    auto *licences = new QPlainTextEdit(notices());
    licences->setReadOnly(true);
    licences->setAccessibleName(QStringLiteral("Licences"));
    licences->setFont(PanelStyle::font(font(), PanelStyle::Type::Caption));
    heading->setBuddy(licences);
    column->addWidget(licences, 1);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    column->addWidget(buttons);

    const auto sync = [this] { versions_->setText(versions(runtime_).join(u'\n')); };
    connect(&runtime_, &Runtime::toolchainChanged, this, sync);
    sync();
}

QStringList AboutDialog::versions(const Runtime &runtime)
{
    QString qt = QStringLiteral("Qt %1").arg(QString::fromLatin1(qVersion()));
    if (qstrcmp(qVersion(), QT_VERSION_STR) != 0)
        qt += QStringLiteral(" (built with %1)").arg(QStringLiteral(QT_VERSION_STR));
    return {QStringLiteral("Version %1").arg(QStringLiteral(ZENTORO_VERSION)), qt, swiftLine(runtime.toolchain())};
}

QString AboutDialog::notices()
{
    return QStringLiteral(
               "Qt\n"
               "Zentoro uses the Qt libraries, © The Qt Company Ltd. and other contributors, under the GNU Lesser "
               "General Public License version 3 (LGPL-3.0). They are linked dynamically, so you may replace them "
               "with a build of your own. The licence: https://www.gnu.org/licenses/lgpl-3.0.html (on Debian, also "
               "/usr/share/common-licenses/LGPL-3). Qt's source code: https://download.qt.io/ or your "
               "distribution's source packages.\n\n"
               "QCoro\n"
               "Copyright 2021-2022 Daniel Vrátil. Permission is hereby granted, free of charge, to any person "
               "obtaining a copy of this software and associated documentation files (the \"Software\"), to deal in "
               "the Software without restriction, including without limitation the rights to use, copy, modify, "
               "merge, publish, distribute, sublicense, and/or sell copies of the Software, and to permit persons to "
               "whom the Software is furnished to do so, subject to the following conditions: The above copyright "
               "notice and this permission notice shall be included in all copies or substantial portions of the "
               "Software. THE SOFTWARE IS PROVIDED \"AS IS\", WITHOUT WARRANTY OF ANY KIND, EXPRESS OR IMPLIED, "
               "INCLUDING BUT NOT LIMITED TO THE WARRANTIES OF MERCHANTABILITY, FITNESS FOR A PARTICULAR PURPOSE AND "
               "NONINFRINGEMENT. IN NO EVENT SHALL THE AUTHORS OR COPYRIGHT HOLDERS BE LIABLE FOR ANY CLAIM, DAMAGES "
               "OR OTHER LIABILITY, WHETHER IN AN ACTION OF CONTRACT, TORT OR OTHERWISE, ARISING FROM, OUT OF OR IN "
               "CONNECTION WITH THE SOFTWARE OR THE USE OR OTHER DEALINGS IN THE SOFTWARE.\n\n"
               "The Anybody typeface\n"
               "The wordmark is set in Anybody, which Zentoro carries under the SIL Open Font License 1.1:\n\n") +
           typefaceLicence() + u'\n';
}

} // namespace zentoro
