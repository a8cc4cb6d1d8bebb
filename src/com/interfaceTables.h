/// The identifiers of the interfaces of QelHelperInterfaces.h by their C++ types. MembersOf returns their tables of
/// members.
#pragma once

#include "com/ComPtr.h"
#include "com/QelHelperInterfaces.h"

namespace qel
{

template <>
inline constexpr const IID* InterfaceId<QelPlugin> = &IID_QelPlugin;
template <>
inline constexpr const IID* InterfaceId<QelInfo> = &IID_QelInfo;
template <>
inline constexpr const IID* InterfaceId<QelBuildHelper> = &IID_QelBuildHelper;
template <>
inline constexpr const IID* InterfaceId<QelDatabase> = &IID_QelDatabase;
template <>
inline constexpr const IID* InterfaceId<QelThumbnails> = &IID_QelThumbnails;
template <>
inline constexpr const IID* InterfaceId<QelTopic> = &IID_QelTopic;
template <>
inline constexpr const IID* InterfaceId<QelPluginAnimationMain> = &IID_QelPluginAnimationMain;
template <>
inline constexpr const IID* InterfaceId<QelStringSort> = &IID_QelStringSort;

} // namespace qel
