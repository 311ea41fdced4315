#include "runtime/KitEntryPoints.h"

#include <dlfcn.h>

namespace zentoro {

std::shared_ptr<const KitEntryPoints> KitEntryPoints::find(void *library, QString &error)
{
    auto kit = std::make_shared<KitEntryPoints>();
    bool complete = true;
    const auto look = [&](auto &slot, const char *name) {
        slot = reinterpret_cast<std::remove_reference_t<decltype(slot)>>(dlsym(library, name));
        if (!slot) {
            complete = false;
            if (error.isEmpty())
                error = QStringLiteral("The library has no %1; it was not built against Zentoro's UI kit.")
                            .arg(QString::fromLatin1(name));
        }
    };
    look(kit->interfaceVersion, "zentoro_kit_interface_version");
    look(kit->attach, "zentoro_view_attach");
    look(kit->release, "zentoro_view_release");
    look(kit->setSize, "zentoro_view_set_size");
    look(kit->setAppearance, "zentoro_view_set_appearance");
    look(kit->update, "zentoro_view_update");
    look(kit->render, "zentoro_view_render");
    look(kit->nextFrame, "zentoro_view_next_frame");
    look(kit->pointer, "zentoro_view_pointer");
    look(kit->scroll, "zentoro_view_scroll");
    look(kit->key, "zentoro_view_key");
    look(kit->textChanged, "zentoro_view_text_changed");
    look(kit->textSubmitted, "zentoro_view_text_submitted");
    look(kit->textFocus, "zentoro_view_text_focus");
    look(kit->mainQueueFd, "zentoro_kit_main_queue_fd");
    look(kit->serviceMain, "zentoro_kit_service_main");
    if (!complete)
        return nullptr;
    if (kit->interfaceVersion() != ZENTORO_HOST_INTERFACE_VERSION) {
        error = QStringLiteral("The library uses UI kit interface %1; this Zentoro speaks %2.")
                    .arg(kit->interfaceVersion())
                    .arg(ZENTORO_HOST_INTERFACE_VERSION);
        return nullptr;
    }
    return kit;
}

} // namespace zentoro
