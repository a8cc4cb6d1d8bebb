/// A host that opens the component's dialog.
#pragma once

#include "com/Bstr.h"
#include "comTestHost.h"
#include "LoadedComponent.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <string>

namespace qel
{

/// The component with one plug-in object. Its services answer for one module, without a choice of a link that fails.
class DialogHost
{
public:
    /// `myDataFolder` ends in a separator.
    DialogHost(const std::filesystem::path& myFile, TextView myDataFolder) : myComponent(myFile)
    {
        myAnswers.ArchiveName = u"m7.dat";
        myAnswers.DataFolder = myDataFolder;
        myAnswers.Link = u"URL:http://example.org/";
        HandIn(myHelper.Get(), myRecords.Get());
    }
    DialogHost(const DialogHost&) = delete;
    DialogHost& operator=(const DialogHost&) = delete;
    ~DialogHost()
    {
        HandIn(nullptr, nullptr); // the component does not give back what it holds when it is unloaded
        myPlugin.Reset();
    }

    /// Opens the dialog on the module of a script. Returns how it ended, "True", "False" or "error NUMBER DESCRIPTION",
    /// and in the next line the script after it.
    std::string Open(const std::string& myScript)
    {
        Bstr myText(FromUtf8(myScript));
        CheckHostCall(myPlugin->put_Script(myText.Pointer()));
        int32_t myLink = 0;
        VARIANT_BOOL theAnswer = VARIANT_FALSE;
        std::string theEnd = OutcomeOf([&] { CheckHostCall(myPlugin->CallBack(&myLink, &theAnswer)); });
        theEnd = !theEnd.empty() ? theEnd : theAnswer == VARIANT_TRUE ? "True" : "False";
        Bstr theScript;
        CheckHostCall(myPlugin->get_Script(theScript.Pointer()));
        return theEnd + "\n" + ToUtf8(theScript.Value()) + "\n";
    }

    /// Shows the box about the component. Returns "shown" or the error.
    std::string About()
    {
        ComPtr<QelInfo> myInfo;
        CheckHostCall(myPlugin->QueryInterface(IID_QelInfo, reinterpret_cast<void**>(myInfo.Receive())));
        const std::string myFailure = OutcomeOf([&] { CheckHostCall(myInfo->About()); });
        return (myFailure.empty() ? "shown" : myFailure) + "\n";
    }

private:
    template <class Operation>
    static std::string OutcomeOf(Operation myOperation)
    {
        try
        {
            myOperation();
            return "";
        }
        catch (const Error& e)
        {
            return "error " + std::to_string(e.Number) + " " + ToUtf8(e.Description);
        }
    }

    void HandIn(QelBuildHelper* myBuildHelper, QelDatabase* myDatabase) const
    {
        CheckHostCall(myPlugin->putref_QelBuildHelper(&myBuildHelper));
        CheckHostCall(myPlugin->putref_QelDatabase(&myDatabase));
    }

    const LoadedComponent myComponent;
    TestHost myAnswers;
    ComPtr<ComTestBuildHelper> myHelper = MakeCounted<ComTestBuildHelper>(myAnswers);
    ComPtr<ComTestDatabase> myRecords = MakeCounted<ComTestDatabase>(myAnswers);
    ComPtr<QelPlugin> myPlugin = myComponent.Plugin();
};

} // namespace qel
