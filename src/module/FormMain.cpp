#include "module/FormMain.h"

#include "module/handedIn.h"
#include "module/moduleArchive.h"
#include "module/moduleScript.h"
#include "module/PageWriter.h"
#include "resources/stringTable.h"
#include "tags/classScript.h"
#include "text/errors.h"
#include "text/succeeds.h"

#include <utility>

namespace qel
{
namespace
{

/// A file name without its ending, which is removed by its length only.
TextView WithoutExtension(TextView myName)
{
    if (myName.size() < ExtensionLength)
    {
        Raise(ErrorNumber::InvalidArgument);
    }
    return myName.substr(0, myName.size() - ExtensionLength);
}

/// The sentence about the picture or the tune, chosen from three by their numbers in the string table.
Text PartText(bool myIsOn, TextView myFolder, TextView myName, int32_t myLibraryText, int32_t myOwnText,
              int32_t myOffText)
{
    if (!myIsOn)
    {
        return Text(LoadResString(myOffText));
    }
    if (myFolder == UserMarker)
    {
        return Text(LoadResString(myOwnText));
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
    // If this fails, the folder exists already, or the error appears when the folder is used.
    Succeeds([&] { myPorts.files.MakeFolder(myTempFolder); });
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
        myError = LoadResString(StringId::NoImageChosen);
    }
}

Text FormMain::TextSettings() const
{
    if (mySettings.myImage.empty())
    {
        return Text(LoadResString(StringId::SummaryNoImage));
    }
    Text theResult = PartText(mySettings.myShowImage, mySettings.myImageFolder, mySettings.myImage,
                              StringId::SummaryLibraryImage, StringId::SummaryOwnImage, StringId::SummaryImageOff);
    theResult += PartText(mySettings.myPlayMIDI, mySettings.myMIDIFolder, mySettings.myMIDI,
                          StringId::SummaryLibraryMIDI, StringId::SummaryOwnMIDI, StringId::SummaryMIDIOff);
    if (DateIsSet(mySettings.myFrom) || DateIsSet(mySettings.myTo))
    {
        theResult += LoadResString(StringId::SummaryPeriod);
    }
    return theResult;
}

Text FormMain::Output()
{
    if (mySettings.myImage.empty())
    {
        myError = LoadResString(StringId::NoImageChosen);
        return {};
    }
    try
    {
        ClearTempFolder();
        PageWriter myWriter(myPorts, myLocalConstants, myFormLead, myTempFolder, mySettings, myBuildHelper, myDatabase);
        if (std::optional<Text> theResult = myWriter.PageText())
        {
            return *std::move(theResult);
        }
        myError = LoadResString(StringId::LinkIsBroken);
    }
    catch (...)
    {
        const Error myFailure = CurrentError();
        const Text myReason = NumberText(int64_t{myFailure.Number}) + u": " + myFailure.Description;
        myError = ReplaceAll(LoadResString(StringId::OutputFailure), u"%1", myReason);
    }
    return Text(LoadResString(StringId::OutputFailed));
}

bool FormMain::UnPackModule()
{
    return qel::UnPackModule(myPorts.files, myDatabase, mySettings.myFilename, myTempFolder);
}

std::shared_ptr<BuildHelper> FormMain::Helper() const
{
    return HandedIn(myBuildHelper);
}

std::shared_ptr<Database> FormMain::Records() const
{
    return HandedIn(myDatabase);
}

} // namespace qel
