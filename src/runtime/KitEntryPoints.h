#pragma once

#include "resources/Kit/Sources/ZentoroHostInterface/include/zentoro_host.h"

#include <QString>

#include <memory>

namespace zentoro {

// The kit's C entry points as found through one version library.
struct KitEntryPoints {
    decltype(&zentoro_kit_interface_version) interfaceVersion = nullptr;
    decltype(&zentoro_view_attach) attach = nullptr;
    decltype(&zentoro_view_release) release = nullptr;
    decltype(&zentoro_view_set_size) setSize = nullptr;
    decltype(&zentoro_view_set_appearance) setAppearance = nullptr;
    decltype(&zentoro_view_update) update = nullptr;
    decltype(&zentoro_view_render) render = nullptr;
    decltype(&zentoro_view_next_frame) nextFrame = nullptr;
    decltype(&zentoro_view_pointer) pointer = nullptr;
    decltype(&zentoro_view_scroll) scroll = nullptr;
    decltype(&zentoro_view_key) key = nullptr;
    decltype(&zentoro_view_text_changed) textChanged = nullptr;
    decltype(&zentoro_view_text_submitted) textSubmitted = nullptr;
    decltype(&zentoro_view_text_focus) textFocus = nullptr;
    decltype(&zentoro_kit_main_queue_fd) mainQueueFd = nullptr;
    decltype(&zentoro_kit_service_main) serviceMain = nullptr;

    // Looks every entry point up with dlsym on `library`; a missing one or another
    // interface version is an error.
    static std::shared_ptr<const KitEntryPoints> find(void *library, QString &error);
};

} // namespace zentoro
