/// The adapters of the system that the component was built for, for one thread.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/Platform.h"

#include <filesystem>
#include <memory>

namespace qel
{

/// An object is used on the thread that made it.
class SystemPlatform
{
public:
    virtual ~SystemPlatform() = default;

    /// The ports. They live as long as this object.
    virtual const Platform& Ports() const = 0;

    /// The maker of the dialog's window. It lives as long as this object.
    virtual FormMainWindowMaker& FormWindows() = 0;

    /// The component's own file as it was loaded: absolute, links not resolved.
    virtual std::filesystem::path ComponentFile() const = 0;
};

/// Makes the adapters. The only thing that it looks up on disk is the location of the component.
std::unique_ptr<SystemPlatform> MakeSystemPlatform();

} // namespace qel
