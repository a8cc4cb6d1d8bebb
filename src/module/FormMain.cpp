#include "module/FormMain.h"

#include "module/ModuleScript.h"
#include "resources/stringTable.h"
#include "tags/classScript.h"
#include "text/errors.h"

#include <utility>

namespace qel
{
namespace
{

/// A file's name without its ending, whatever that is, by length alone.
TextView WithoutExtension(TextView myName)
{
    if (myName.size() < ExtensionLength)
    {
        Raise(ErrorNumber::InvalidArgument);
    }
    return myName.substr(0, myName.size() - ExtensionLength);
}

/// The sentence about the picture or the tune.
Text PartText(bool myIsOn, TextView myFolder, TextView myName, int32_t myLibraryText, int32_t myUserText,
              int32_t myOffText)
{
    if (!myIsOn)
    {
        return Text(LoadResString(myOffText));
    }
    if (myFolder == UserMarker)
    {
        return Text(LoadResString(myUserText));
    }
    return ReplaceAll(LoadResString(myLibraryText), u"%1", WithoutExtension(myName));
}

} // namespace

FormMain::FormMain(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead)
    : myPorts(myPlatform), myLocalConstants(myConstants), myFormLead(myLead)
{
    myTempPath = myPorts.files.TemporaryPath();
    if (myTempPath.empty())
    {
        myTempPath = myPorts.componentFolder;
    }
    if (!myTempPath.ends_with(u'\\'))
    {
        myTempPath += u'\\';
    }
    myTempFolder = myTempPath + u"qelpluginanimtemp\\";
    myTempMIDI = JoinTexts({myTempPath, TunePrefix, TuneExtension});
    try
    {
        myPorts.files.MakeFolder(myTempFolder);
    }
    catch (const Error&)
    {
        // It is there already, or whoever needs it will meet the failure.
    }
}

void FormMain::ResetSettings()
{
    myError.clear();
    Text myLink = std::move(mySettings.myLink);
    mySettings = ModuleSettings();
    mySettings.myLink = std::move(myLink);
    mySettings.myShowImage = true;
    mySettings.myPlayMIDI = true;
}

void FormMain::ClearTempFolder()
{
    myPorts.files.DemandOwnFolder(myTempFolder);
    for (const Text& myName : myPorts.files.List(myTempFolder + u"*.*", Listing::PlainFiles))
    {
        myPorts.files.Delete(myTempFolder + myName);
    }
}

Text FormMain::Script() const
{
    return WriteScript(mySettings);
}

void FormMain::Script(TextView myScript)
{
    classScript myScanner(myPorts.messages);
    myScanner.Prefix(u"pg.");
    myScanner.Script(myScript);
    myScanner.GetNextTag();
    ResetSettings();
    if (!ReadScript(myScanner, mySettings))
    {
        myError = LoadResString(720);
    }
}

Text FormMain::TextSettings() const
{
    if (mySettings.myImage.empty())
    {
        return Text(LoadResString(500));
    }
    Text theResult = PartText(mySettings.myShowImage, mySettings.myImageFolder, mySettings.myImage, 510, 511, 512);
    theResult += PartText(mySettings.myPlayMIDI, mySettings.myMIDIFolder, mySettings.myMIDI, 520, 521, 522);
    if (DateIsSet(mySettings.myFrom) || DateIsSet(mySettings.myTo))
    {
        theResult += LoadResString(530);
    }
    return theResult;
}

} // namespace qel
