// The user's class registry, as qelcom.h documents it.
#include "com/registration.h"

namespace qel
{

HRESULT RegisterClasses(std::span<const RegisteredClass> myClasses, const std::filesystem::path& myFile)
{
    for (const RegisteredClass& myClass : myClasses)
    {
        const HRESULT theResult = QelRegisterClass(*myClass.Identifier, myClass.ProgramName, myFile.c_str());
        if (FAILED(theResult))
        {
            return theResult;
        }
    }
    return S_OK;
}

HRESULT UnregisterClasses(std::span<const RegisteredClass> myClasses, const std::filesystem::path& /*myFile*/)
{
    HRESULT theResult = S_OK;
    for (const RegisteredClass& myClass : myClasses)
    {
        const HRESULT myRemoval = QelUnregisterClass(*myClass.Identifier);
        theResult = FAILED(myRemoval) ? myRemoval : theResult;
    }
    return theResult;
}

} // namespace qel
