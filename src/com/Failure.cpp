#include "com/Failure.h"

#include <array>
#include <charconv>
#include <new>

namespace qel
{
namespace
{

constexpr uint32_t ErrorResult = 0x800A0000U;

/// Leaves the failure in the thread's error information, or nothing there if memory is out.
void LeaveErrorInfo(const char16_t* myDescription) noexcept
{
    SetErrorInfo(0, nullptr);
    ComPtr<ICreateErrorInfo> myInfo;
    if (SUCCEEDED(CreateErrorInfo(myInfo.Receive())) && SUCCEEDED(myInfo->SetSource(ErrorSource)) &&
        SUCCEEDED(myInfo->SetDescription(myDescription)))
    {
        SetErrorInfo(0, myInfo.Query<IErrorInfo>().Get());
    }
}

HRESULT ReportNumber(int32_t myNumber, const char16_t* myDescription) noexcept
{
    LeaveErrorInfo(myDescription);
    if (myNumber < 0)
    {
        return myNumber;
    }
    const int32_t theNumber = myNumber <= 0xFFFF ? myNumber : ErrorNumber::InvalidArgument;
    return QEL_RESULT(ErrorResult | static_cast<uint32_t>(theNumber));
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

HRESULT ReportFailure() noexcept
{
    try
    {
        throw;
    }
    catch (const Error& myError)
    {
        return ReportNumber(myError.Number, myError.Description.c_str());
    }
    catch (const std::bad_alloc&)
    {
        return ReportNumber(ErrorNumber::OutOfMemory, ErrorDescription(ErrorNumber::OutOfMemory).data());
    }
    catch (...)
    {
        return ReportNumber(ErrorNumber::InvalidArgument, ErrorDescription(ErrorNumber::InvalidArgument).data());
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
