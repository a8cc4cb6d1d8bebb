#include "com/failure.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

namespace qel
{
namespace
{

constexpr uint32_t ErrorResult = 0x800A0000U;

struct Refusal
{
    HRESULT Result;
    const char16_t* Description;
};

constexpr Refusal Refusals[] = {
    {E_POINTER, u"Falta un puntero"},
    {E_NOINTERFACE, u"El objeto no tiene esa interfaz"},
    {E_ACCESSDENIED, u"No se puede escribir en el registro de clases"},
    {E_OUTOFMEMORY, u"Memoria insuficiente"},
    {CLASS_E_NOAGGREGATION, u"La clase no admite agregación"},
    {CLASS_E_CLASSNOTAVAILABLE, u"El componente no tiene esa clase"},
    {REGDB_E_CLASSNOTREG, u"La clase no está registrada"},
    {CO_E_CLASSSTRING, u"No hay ninguna clase registrada con ese nombre"},
    {DISP_E_UNKNOWNINTERFACE, u"El argumento reservado debe ser el identificador nulo"},
    {DISP_E_MEMBERNOTFOUND, u"El objeto no tiene ese miembro, o no se llama de esa manera"},
    {DISP_E_TYPEMISMATCH, u"Los tipos no coinciden"},
    {DISP_E_UNKNOWNNAME, u"Nombre desconocido"},
    {DISP_E_NONAMEDARGS, u"El miembro no admite argumentos con nombre"},
    {DISP_E_BADVARTYPE, u"Tipo de valor desconocido"},
    {DISP_E_OVERFLOW, u"Desbordamiento"},
    {DISP_E_BADINDEX, u"No hay descripciones de tipos"},
    {DISP_E_BADPARAMCOUNT, u"El número de argumentos no es correcto"},
    {DISP_E_PARAMNOTOPTIONAL, u"Falta el nombre del valor que se asigna"},
};

HRESULT ReportNumber(int32_t myNumber, const char16_t* myDescription) noexcept
{
    if (myNumber < 0)
    {
        return ReportFailure(myNumber, myDescription);
    }
    const int32_t theNumber = myNumber <= 0xFFFF ? myNumber : ErrorNumber::InvalidArgument;
    return ReportFailure(QEL_RESULT(ErrorResult | static_cast<uint32_t>(theNumber)), myDescription);
}

Text TakeDescription()
{
    ComPtr<IErrorInfo> myInfo;
    Bstr myDescription;
    if (GetErrorInfo(0, myInfo.Receive()) == S_OK)
    {
        myInfo->GetDescription(myDescription.Pointer());
    }
    return myDescription.Value();
}

Text DescriptionOfResult(HRESULT myResult)
{
    std::array<char, 8> myDigits{};
    char* const myEnd =
        std::to_chars(myDigits.data(), myDigits.data() + myDigits.size(), static_cast<uint32_t>(myResult), 16).ptr;
    return Text(u"Una llamada al programa anfitrión ha fallado (0x") + Text(myDigits.data(), myEnd) + u")";
}

} // namespace

HRESULT ReportFailure(HRESULT myResult, const char16_t* myDescription) noexcept
{
    SetErrorInfo(0, nullptr);
    ComPtr<ICreateErrorInfo> myInfo;
    if (SUCCEEDED(CreateErrorInfo(myInfo.Receive())) && SUCCEEDED(myInfo->SetSource(InputText(ErrorSource))) &&
        SUCCEEDED(myInfo->SetDescription(InputText(myDescription))))
    {
        SetErrorInfo(0, myInfo.Query<IErrorInfo>().Get());
    }
    return myResult;
}

HRESULT Refuse(HRESULT myResult) noexcept
{
    const auto* const myRefusal = std::ranges::find(Refusals, myResult, &Refusal::Result);
    return ReportFailure(myResult, myRefusal != std::end(Refusals)
                                       ? myRefusal->Description
                                       : ErrorDescription(ErrorNumber::InvalidArgument).data());
}

HRESULT ReportFailure() noexcept
{
    try
    {
        const Error myError = CurrentError();
        return ReportNumber(myError.Number, myError.Description.c_str());
    }
    catch (...) // there is no memory for a copy of the description
    {
        return ReportNumber(ErrorNumber::OutOfMemory, ErrorDescription(ErrorNumber::OutOfMemory).data());
    }
}

void CheckHostCall(HRESULT myResult)
{
    if (SUCCEEDED(myResult))
    {
        return;
    }
    const auto myBits = static_cast<uint32_t>(myResult);
    const bool hasNumber = (myBits & 0xFFFF0000U) == ErrorResult;
    const int32_t theNumber = hasNumber ? static_cast<int32_t>(myBits & 0xFFFFU) : myResult;
    Text theDescription = TakeDescription();
    if (theDescription.empty())
    {
        theDescription = hasNumber ? Text(ErrorDescription(theNumber)) : DescriptionOfResult(myResult);
    }
    throw Error{theNumber, std::move(theDescription)};
}

} // namespace qel
