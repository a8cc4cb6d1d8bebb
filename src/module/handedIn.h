/// The host's services as fields: empty until the host hands one in.
#pragma once

#include "text/errors.h"

#include <memory>

namespace qel
{

/// The service of a field. A copy of the result keeps the service alive while it is called, since the host may replace
/// the field inside that call. Error 91: the host has not handed the service in.
template <class Service>
const std::shared_ptr<Service>& HandedIn(const std::shared_ptr<Service>& myService)
{
    if (!myService)
    {
        Raise(ErrorNumber::ObjectNotSet);
    }
    return myService;
}

} // namespace qel
