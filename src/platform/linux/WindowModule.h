/// The boundary between the component and its window module, QelPluginAnimationWindow.so, which is in the same folder.
///
/// Both come from one build. Calls and Error cross the boundary as within one library; nothing is thrown through the
/// toolkit.
#pragma once

#include "dialog/ports/FormMainWindow.h"
#include "platform/MessageBox.h"
#include "platform/MessageQueue.h"
#include "platform/Sound.h"

#include <cstdint>

namespace qel
{

/// What the window module provides. It exists until the process ends, outlives the component that has loaded it, and
/// keeps no pointer into the component between calls.
class WindowModule : public FormMainWindowMaker, public MessageBox, public Sound, public MessageQueue
{
};

/// Changes with every change of the ports that the module implements.
inline constexpr int32_t WindowModuleVersion = 2;

/// The module's one entry point: null for a component of another version.
using WindowModuleEntry = WindowModule*(int32_t myVersion) noexcept;

inline constexpr char WindowModuleFile[] = "QelPluginAnimationWindow.so";
inline constexpr char WindowModuleEntryName[] = "QelWindowModule";

} // namespace qel
