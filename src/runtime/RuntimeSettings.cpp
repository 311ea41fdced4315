#include "runtime/Runtime.h"

#include "resources/Kit/Sources/ZentoroHostInterface/include/zentoro_host.h"

#include <dlfcn.h>

namespace zentoro {

namespace {
// Often enough that a crash loses only the last moment of what the app stored outside
// `@AppStorage`; a write with nothing changed costs microseconds.
constexpr std::chrono::seconds settingsSaveInterval{1};
} // namespace

void Runtime::saveHostedSettings() const
{
    if (!library_)
        return;
    // Found through the version library, which holds the kit it was built against.
    using Save = decltype(&zentoro_kit_save_settings);
    const auto save = reinterpret_cast<Save>(dlsym(library_, "zentoro_kit_save_settings"));
    if (save)
        save(workspace_.defaultsSuite().toUtf8().constData());
}

void Runtime::keepSavingHostedSettings()
{
    if (settingsSaver_)
        return;
    settingsSaver_ = new QTimer(this);
    connect(settingsSaver_, &QTimer::timeout, this, &Runtime::saveHostedSettings);
    settingsSaver_->start(settingsSaveInterval);
}

} // namespace zentoro
