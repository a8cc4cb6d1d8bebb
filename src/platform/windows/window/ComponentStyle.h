/// The edition of the system's controls that the component is made for.
#pragma once

#include "platform/windows/window/controlHeaders.h"

namespace qel
{

/// While an object lives, windows that the thread makes are of the edition that the component's manifest (resource 2)
/// names, whatever edition the host uses: with the system's present look, and with image lists that fit them. Objects
/// of a thread are destroyed in the reverse order of their creation.
class ComponentStyle
{
public:
    ComponentStyle();
    ComponentStyle(const ComponentStyle&) = delete;
    ComponentStyle& operator=(const ComponentStyle&) = delete;
    ~ComponentStyle();

private:
    HANDLE myContext;
    ULONG_PTR myCookie = 0;
};

} // namespace qel
