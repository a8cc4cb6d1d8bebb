/// What the logic needs of the system, passed in as one record.
#pragma once

#include "platform/Files.h"
#include "platform/HelpViewer.h"
#include "platform/ImagingControl.h"
#include "platform/MessageBox.h"
#include "platform/MessageQueue.h"
#include "platform/Sound.h"
#include "text/text.h"

#include <memory>

namespace qel
{

/// The ports that the logic uses. They outlive every user of the record.
struct Platform
{
    Files& files;
    MessageQueue& messages;
    HelpViewer& help;
    MessageBox& messageBox;
    Sound& sound;
    /// Makes an imaging control that reads and writes through the given files, which must outlive it.
    std::unique_ptr<ImagingControl> (*makeImagingControl)(Files& myFiles);
    /// The folder of the component, absolute and without links, "\" between folders, without a closing one unless it is
    /// the root.
    Text componentFolder;
};

} // namespace qel
