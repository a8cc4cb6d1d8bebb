/// The boundary between the component and its window module, QelPluginAnimationWindow.so, which lies beside it.
///
/// Both are made in one build. Calls and Error cross it as within one library; nothing is thrown through the toolkit.
#pragma once

#include "platform/Platform.h"
#include "platform/Windows.h"

#include <cstdint>

namespace qel
{

/// What the window module gives. It lasts as long as the process, outlives the component that has loaded it, and keeps
/// nothing of the component's between calls.
class WindowModule : public Windows, public MessageQueue
{
};

/// Changes with every change of the ports that the module implements.
inline constexpr int32_t WindowModuleVersion = 1;

/// The module's one entry point: null for a component of another version.
using WindowModuleEntry = WindowModule*(int32_t myVersion) noexcept;

inline constexpr char WindowModuleFile[] = "QelPluginAnimationWindow.so";
inline constexpr char WindowModuleEntryName[] = "QelWindowModule";

} // namespace qel
