/// The list of texts that scripts and hosts can create: classStringSort with its interface.
#pragma once

#include "com/CountedObject.h"
#include "com/interfaceTables.h"
#include "com/QelHelperInterfaces.h"
#include "plugin/LivingObject.h"
#include "utilities/classStringSort.h"

namespace qel
{

/// QelHelperInterfaces.h documents the members. An object is called on the thread that made it.
class StringSortObject final : public CountedObject<QelStringSort, ISupportErrorInfo>
{
public:
    HRESULT InterfaceSupportsErrorInfo(const IID* myInterface) override;

    HRESULT Clear() override;
    HRESULT AddValue(BSTR* myString) override;
    HRESULT get_Value(int32_t* myIndex, BSTR* theValue) override;
    HRESULT get_ValueCount(int32_t* theCount) override;
    HRESULT Sort() override;

private:
    classStringSort mySort;
    LivingObject myLife;
};

} // namespace qel
