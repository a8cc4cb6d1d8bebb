#include "plugin/Main.h"

#include "com/comHostServices.h"
#include "com/failure.h"
#include "module/moduleScript.h"
#include "plugin/Apartment.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/errors.h"

#include <memory>
#include <utility>

namespace qel
{
namespace
{

FormMain& Form()
{
    return Apartment::OfThisThread().Form();
}

/// Keeps a service of the host as the port that the logic calls; null releases the present one.
template <class Adapter, class Port, class Service>
HRESULT KeepService(std::shared_ptr<Port> FormMain::*myField, Service** myService) noexcept
{
    return Accept(myService, [&](Service* myObject)
                  { Form().*myField = myObject ? std::make_shared<Adapter>(myObject) : nullptr; });
}

/// Such as 1.0.19.
Text VersionText()
{
    return NumberText(int64_t{ComponentVersion.Major}) + u"." + NumberText(int64_t{ComponentVersion.Minor}) + u"." +
           NumberText(int64_t{ComponentVersion.Revision});
}

/// The text of the box about the component.
Text AboutText()
{
    constexpr TextView EmptyLine = u"\r\n\r\n";
    return Text(ComponentVersion.Title)
        .append(u" ")
        .append(VersionText())
        .append(EmptyLine)
        .append(ComponentVersion.FileDescription)
        .append(EmptyLine)
        .append(ComponentVersion.Copyright);
}

} // namespace

Main::Main()
{
    Apartment& myApartment = Apartment::OfThisThread();
    const Text& myFolder = myApartment.Ports().componentFolder;
    const TextView mySeparator = myFolder.ends_with(u'\\') ? u"" : u"\\";
    Text myHelpFile = JoinTexts({myFolder, u"\\", ComponentVersion.ProjectName, u".chm"});
    Text myDesignsFolder = JoinTexts({myFolder, mySeparator, ComponentVersion.ProjectName, u"Designs\\"});
    // Other objects of the thread use both settings: no allocation may fail after the first one is set.
    myApartment.myConstants.myHelpFile = std::move(myHelpFile);
    myApartment.myConstants.myDesignsFolder = std::move(myDesignsFolder);
}

STDMETHODIMP Main::InterfaceSupportsErrorInfo(REFIID myInterface)
{
    const bool mySupports = SameId(myInterface, IID_QelPlugin) || SameId(myInterface, IID_QelInfo) ||
                            SameId(myInterface, IID_QelPluginAnimationMain);
    return mySupports ? S_OK : S_FALSE;
}

STDMETHODIMP Main::putref_QelThumbnails(QelThumbnails** myThumbnails)
{
    return Accept(myThumbnails, [](QelThumbnails* /*myService*/) {});
}

STDMETHODIMP Main::putref_QelDatabase(QelDatabase** myDatabase)
{
    return KeepService<ComDatabase>(&FormMain::myDatabase, myDatabase);
}

STDMETHODIMP Main::putref_QelTopic(QelTopic** myTopic)
{
    return Accept(myTopic, [](QelTopic* /*myService*/) {});
}

STDMETHODIMP Main::putref_QelBuildHelper(QelBuildHelper** myBuildHelper)
{
    return KeepService<ComBuildHelper>(&FormMain::myBuildHelper, myBuildHelper);
}

STDMETHODIMP Main::get_InitialScript(BSTR* theScript)
{
    return Answer(theScript, InitialScript);
}

STDMETHODIMP Main::get_Output(BSTR* theText)
{
    return Answer(theText, [] { return Form().Output(); });
}

STDMETHODIMP Main::get_TextFunction(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::Function); });
}

STDMETHODIMP Main::get_TextRequirementsServer(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::RequirementsServer); });
}

STDMETHODIMP Main::get_TextRequirementsClient(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::RequirementsClient); });
}

STDMETHODIMP Main::get_TextSettings(BSTR* theText)
{
    return Answer(theText, [] { return Form().TextSettings(); });
}

STDMETHODIMP Main::get_TextConfig(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::Config); });
}

STDMETHODIMP Main::get_IsConfigurable(VARIANT_BOOL* theAnswer)
{
    return Answer(theAnswer, [] { return true; });
}

STDMETHODIMP Main::get_Description(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::Description); });
}

STDMETHODIMP Main::get_PreviewImageFilename(BSTR* theName)
{
    return Answer(theName, [] { return JoinTexts({ComponentVersion.ProjectName, u"Preview.bmp"}); });
}

STDMETHODIMP Main::get_LogoFilename(BSTR* theName)
{
    return Answer(theName, [] { return JoinTexts({ComponentVersion.ProjectName, u"Logo.bmp"}); });
}

STDMETHODIMP Main::CallBack(int32_t* myLink, VARIANT_BOOL* theAnswer)
{
    return AnswerTo(myLink, theAnswer,
                    [](int32_t myNumber) { return myNumber == 0 && Apartment::OfThisThread().ShowDialog(); });
}

STDMETHODIMP Main::put_Script(BSTR* myScript)
{
    return Accept(myScript, [](TextView myText) { Form().Script(myText); });
}

STDMETHODIMP Main::get_Script(BSTR* theScript)
{
    return Answer(theScript, [] { return Form().Script(); });
}

STDMETHODIMP Main::get_ErrorText(BSTR* theText)
{
    return Answer(theText, [] { return Form().ErrorText(); });
}

STDMETHODIMP Main::ShowHelp(int32_t* myID)
{
    return Accept(myID,
                  [](int32_t myTopic)
                  {
                      const Apartment& myApartment = Apartment::OfThisThread();
                      ShowHelpTopic(myApartment.Ports().help, myApartment.myConstants.myHelpFile, myTopic);
                  });
}

STDMETHODIMP Main::get_RequiresPHP(VARIANT_BOOL* theAnswer)
{
    return Answer(theAnswer, [] { return false; });
}

STDMETHODIMP Main::About()
{
    return Guarded([] { Apartment::OfThisThread().Ports().messageBox.MsgBox(AboutText(), InformationStyle); });
}

STDMETHODIMP Main::get_Version(BSTR* theText)
{
    return Answer(theText, VersionText);
}

} // namespace qel
