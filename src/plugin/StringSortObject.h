/// The list of texts that scripts and hosts can create: classStringSort with its interface.
#pragma once

#include "com/CountedObject.h"
#include "com/interfaceTables.h"
#include "com/QelHelperInterfaces.h"
#include "platform/LivingObject.h"
#include "utilities/classStringSort.h"

namespace qel
{

/// QelHelperInterfaces.h documents the members. An object is called on the thread that made it.
class StringSortObject final : public CountedObject<QelStringSort, ISupportErrorInfo>
{
public:
    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID myInterface) override;

    STDMETHODIMP Clear() override;
    STDMETHODIMP AddValue(BSTR* myString) override;
    STDMETHODIMP get_Value(int32_t* myIndex, BSTR* theValue) override;
    STDMETHODIMP get_ValueCount(int32_t* theCount) override;
    STDMETHODIMP Sort() override;

private:
    classStringSort mySort;
    LivingObject myLife;
};

} // namespace qel
