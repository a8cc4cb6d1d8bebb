/// What the logic needs of the system, in one record that is handed in.
#pragma once

#include "platform/Files.h"
#include "platform/ImagingControl.h"
#include "platform/Windows.h"
#include "text/text.h"

#include <cstdint>
#include <memory>
#include <string>

namespace qel
{

/// The queue of window messages of the calling thread.
class MessageQueue
{
public:
    virtual ~MessageQueue() = default;

    /// Lets what is pending run, once, and returns. Does nothing while the process has no windows. No error.
    virtual void ProcessPending() = 0;
};

/// The viewer of help files.
class HelpViewer
{
public:
    virtual ~HelpViewer() = default;

    /// Shows the topic of a context number, without waiting for the reader. A missing help or topic has no effect.
    /// No error.
    virtual void ShowContext(TextView myHelpFile, int32_t myContext) = 0;
};

/// The ports that the logic works on. What they refer to outlives every user of the record.
struct Platform
{
    Files& files;
    MessageQueue& messages;
    HelpViewer& help;
    /// Makes an imaging control that reads through `files`.
    std::unique_ptr<ImagingControl> (*makeImagingControl)(Files& myFiles);
    /// The folder of the component, absolute, "\" between folders, without a closing one unless it is the root.
    Text componentFolder;
    Windows& windows;
};

/// This system's own ports, for one thread.
class SystemPlatform
{
public:
    virtual ~SystemPlatform() = default;

    /// The ports; they live as long as this object.
    virtual const Platform& Ports() const = 0;

    /// The component's own file, absolute, as the system names it.
    virtual std::string ComponentFile() const = 0;
};

/// Makes the ports of this system. Nothing is read from the disk but where the component lies.
std::unique_ptr<SystemPlatform> MakeSystemPlatform();

} // namespace qel
