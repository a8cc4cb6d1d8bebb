#include "plugin/Apartment.h"

#include "com/comHostServices.h"
#include "dialog/FormMainDialog.h"
#include "text/errors.h"
#include "text/ScopeGuard.h"

#include <mutex>
#include <vector>

namespace qel
{
namespace
{

/// All apartments, so that their memory is freed with the component. The apartment of a thread that has ended stays
/// until then.
struct ApartmentList
{
    std::mutex Lock;
    std::vector<std::unique_ptr<Apartment>> Entries;
};

ApartmentList& Apartments()
{
    static ApartmentList theList;
    return theList;
}

/// Drops a host's object without a call into the host, which may already be unloaded. Only Main sets these services.
template <class Adapter, class Port>
void Abandon(Port* myService)
{
    if (myService)
    {
        static_cast<Adapter*>(myService)->Abandon();
    }
}

} // namespace

Apartment& Apartment::OfThisThread()
{
    // A plain pointer: a thread variable with a destructor would pin the component in the process.
    thread_local Apartment* myApartment = nullptr;
    if (!myApartment)
    {
        auto myNew = std::make_unique<Apartment>();
        ApartmentList& myList = Apartments();
        const std::lock_guard myGuard(myList.Lock);
        myApartment = myList.Entries.emplace_back(std::move(myNew)).get();
    }
    return *myApartment;
}

Apartment::Apartment() : mySystem(MakeSystemPlatform()), myFormLead(Ports()) {}

Apartment::~Apartment()
{
    if (myFormMain)
    {
        Abandon<ComBuildHelper>(myFormMain->myBuildHelper.get());
        Abandon<ComDatabase>(myFormMain->myDatabase.get());
    }
}

FormMain& Apartment::Form()
{
    if (!myFormMain)
    {
        myFormMain = std::make_unique<FormMain>(Ports(), myConstants, myFormLead);
    }
    return *myFormMain;
}

bool Apartment::ShowDialog()
{
    FormMain& theForm = Form();
    if (myDialogIsOpen)
    {
        throw Error{ErrorNumber::InvalidArgument, u"El cuadro de diálogo ya está abierto"};
    }
    FormMainWindowMaker& myMaker = mySystem->FormWindows();
    myMaker.DemandDisplay();
    myDialogIsOpen = true;
    const ScopeGuard myClosing([&] { myDialogIsOpen = false; });
    const std::unique_ptr<FormMainWindow> myWindow = myMaker.MakeFormMain();
    FormMainDialog(Ports(), myConstants, myFormLead, theForm, *myWindow).Show();
    return theForm.ExitButton == FormMain::Confirmed;
}

} // namespace qel
