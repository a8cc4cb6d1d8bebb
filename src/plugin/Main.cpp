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

HRESULT Main::InterfaceSupportsErrorInfo(const IID* myInterface)
{
    if (myInterface == nullptr)
    {
        return E_POINTER;
    }
    const bool mySupports = SameId(*myInterface, IID_QelPlugin) || SameId(*myInterface, IID_QelInfo) ||
                            SameId(*myInterface, IID_QelPluginAnimationMain);
    return mySupports ? S_OK : S_FALSE;
}

HRESULT Main::putref_QelThumbnails(QelThumbnails** myThumbnails)
{
    return Accept(myThumbnails, [](QelThumbnails* /*myService*/) {});
}

HRESULT Main::putref_QelDatabase(QelDatabase** myDatabase)
{
    return KeepService<ComDatabase>(&FormMain::myDatabase, myDatabase);
}

HRESULT Main::putref_QelTopic(QelTopic** myTopic)
{
    return Accept(myTopic, [](QelTopic* /*myService*/) {});
}

HRESULT Main::putref_QelBuildHelper(QelBuildHelper** myBuildHelper)
{
    return KeepService<ComBuildHelper>(&FormMain::myBuildHelper, myBuildHelper);
}

HRESULT Main::get_InitialScript(BSTR* theScript)
{
    return Answer(theScript, InitialScript);
}

HRESULT Main::get_Output(BSTR* theText)
{
    return Answer(theText, [] { return Form().Output(); });
}

HRESULT Main::get_TextFunction(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::Function); });
}

HRESULT Main::get_TextRequirementsServer(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::RequirementsServer); });
}

HRESULT Main::get_TextRequirementsClient(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::RequirementsClient); });
}

HRESULT Main::get_TextSettings(BSTR* theText)
{
    return Answer(theText, [] { return Form().TextSettings(); });
}

HRESULT Main::get_TextConfig(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::Config); });
}

HRESULT Main::get_IsConfigurable(VARIANT_BOOL* theAnswer)
{
    return Answer(theAnswer, [] { return true; });
}

HRESULT Main::get_Description(BSTR* theText)
{
    return Answer(theText, [] { return LoadResString(StringId::Description); });
}

HRESULT Main::get_PreviewImageFilename(BSTR* theName)
{
    return Answer(theName, [] { return JoinTexts({ComponentVersion.ProjectName, u"Preview.bmp"}); });
}

HRESULT Main::get_LogoFilename(BSTR* theName)
{
    return Answer(theName, [] { return JoinTexts({ComponentVersion.ProjectName, u"Logo.bmp"}); });
}

HRESULT Main::CallBack(int32_t* myLink, VARIANT_BOOL* theAnswer)
{
    return AnswerTo(myLink, theAnswer,
                    [](int32_t myNumber) { return myNumber == 0 && Apartment::OfThisThread().ShowDialog(); });
}

HRESULT Main::put_Script(BSTR* myScript)
{
    return Accept(myScript, [](TextView myText) { Form().Script(myText); });
}

HRESULT Main::get_Script(BSTR* theScript)
{
    return Answer(theScript, [] { return Form().Script(); });
}

HRESULT Main::get_ErrorText(BSTR* theText)
{
    return Answer(theText, [] { return Form().ErrorText(); });
}

HRESULT Main::ShowHelp(int32_t* myID)
{
    return Accept(myID,
                  [](int32_t myTopic)
                  {
                      const Apartment& myApartment = Apartment::OfThisThread();
                      ShowHelpTopic(myApartment.Ports().help, myApartment.myConstants.myHelpFile, myTopic);
                  });
}

HRESULT Main::get_RequiresPHP(VARIANT_BOOL* theAnswer)
{
    return Answer(theAnswer, [] { return false; });
}

HRESULT Main::About()
{
    return Guarded([] { Apartment::OfThisThread().Ports().messageBox.MsgBox(AboutText(), InformationStyle); });
}

HRESULT Main::get_Version(BSTR* theText)
{
    return Answer(theText, VersionText);
}

} // namespace qel
