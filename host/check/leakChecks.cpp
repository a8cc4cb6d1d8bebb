// Checks of what is left behind.
#include "check/pageCases.h"
#include "com/Bstr.h"
#include "text/encodings.h"

namespace qel::host
{

namespace
{

void TextLeaks(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    const auto myPlugin = myComponent.Plugin();
    const auto myInfo = myPlugin.Query<QelInfo>();
    for (const auto& [myName, myMember] : TextMembers)
    {
        ExpectNoGrowth("reading " + ToUtf8(myName), [&, myRead = myMember] { Read(*myPlugin.Get(), myRead); });
    }
    ExpectNoGrowth(
        "reading InitialScript late-bound",
        [&]
        {
            DISPPARAMS myNone{};
            VARIANT theText{};
            ExpectResult("Invoke", S_OK,
                         myPlugin->Invoke(5, GUID_NULL, 0, DISPATCH_PROPERTYGET, &myNone, &theText, nullptr, nullptr));
            VariantClear(&theText);
        });
    ExpectNoGrowth("reading Version",
                   [&]
                   {
                       Bstr theText;
                       myInfo->get_Version(theText.Pointer());
                   });
    ExpectNoGrowth("writing a script", [&] { Write(*myPlugin.Get(), FullScript); });
    ExpectNoGrowth("writing a script that fails",
                   [&] { Write(*myPlugin.Get(), Text(FullScript) + Param(u"to", u"1e9")); });
}

void ObjectLeaks(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ExpectNoGrowth("creating and releasing objects",
                   [&]
                   {
                       const auto myPlugin = myComponent.Plugin();
                       myPlugin.Query<QelInfo>();
                       Bstr myText(u"a");
                       const auto mySort = myComponent.Create<QelStringSort>(CLSID_classStringSort);
                       mySort->AddValue(myText.Pointer());
                       mySort->Sort();
                   });
    ExpectResult("DllCanUnloadNow after it", S_OK, myComponent.CanUnloadNow());
}

void PageLeaks(const CheckContext& myContext)
{
    const OpenedComponent myComponent(myContext);
    ServedPlugin myServed(myComponent, myContext);
    for (const size_t myFailing : {size_t{0}, static_cast<size_t>(CallCount(CallOrder(LongestCase())))})
    {
        ExpectNoGrowth(myFailing == 0 ? "writing a page" : "writing a page that fails",
                       [&]
                       {
                           myServed.State.Calls.clear();
                           myServed.State.FailingCall = myFailing;
                           myServed.State.Reason = {2000, u"fallo"};
                           myServed.Output(FullScript);
                       });
    }
}

constexpr Check LeakCheckList[] = {
    {"leaks.texts", "Reading and writing texts keeps no memory", TextLeaks},
    {"leaks.objects", "Creating and releasing objects keeps no memory", ObjectLeaks},
    {"leaks.pages", "Writing pages, also ones that fail, keeps no memory and no text of the host", PageLeaks},
};

} // namespace

std::span<const Check> LeakChecks()
{
    return LeakCheckList;
}

} // namespace qel::host
