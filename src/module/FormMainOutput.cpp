#include "archive/classArchive.h"
#include "module/FormMain.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"
#include "text/errors.h"

#include <algorithm>
#include <map>
#include <utility>

namespace qel
{
namespace
{

/// What ResolveLink answers for a record that is not there or leads nowhere.
constexpr TextView UnresolvedLink = u"ERROR";

/// The last characters of a file's name, as many as an ending has.
TextView ExtensionOf(TextView myName)
{
    return myName.substr(myName.size() - std::min(myName.size(), ExtensionLength));
}

/// A template of the page with its line ends turned into the page's.
const Text& PageTemplate(int32_t myTemplate)
{
    static const auto theTemplates = []
    {
        std::map<int32_t, Text> theResult;
        for (const int32_t myNumber : {900, 910, 920, 1000, 1010})
        {
            theResult.emplace(myNumber, ReplaceAll(LoadResString(myNumber), u"\n", LineEnd));
        }
        return theResult;
    }();
    return theTemplates.at(myTemplate);
}

void Fill(Text& theText, TextView myPlaceholder, TextView myValue)
{
    theText = ReplaceAll(theText, myPlaceholder, myValue);
}

} // namespace

Text FormMain::Output()
{
    if (mySettings.myImage.empty())
    {
        myError = LoadResString(720);
        return {};
    }
    try
    {
        if (std::optional<Text> theResult = PageText())
        {
            return *std::move(theResult);
        }
        myError = LoadResString(730);
    }
    catch (...)
    {
        const Error myFailure = ErrorInHand();
        const Text myReason = NumberText(int64_t{myFailure.Number}) + u": " + myFailure.Description;
        myError = ReplaceAll(LoadResString(710), u"%1", myReason);
    }
    return Text(LoadResString(700));
}

/// The script element; nothing when the link cannot be resolved. The host is asked in the order in which the pieces are
/// written.
std::optional<Text> FormMain::PageText()
{
    ClearTempFolder();
    UnPackModule(); // an archive that is missing or damaged shows up when one of its files is copied
    Text theResult = MakeScriptTag().append(LineEnd);
    theResult.append(FilledTemplate(900)).append(LineEnd);
    if (DateIsSet(mySettings.myFrom))
    {
        theResult.append(PeriodText(910, mySettings.myFrom)).append(LineEnd);
    }
    if (DateIsSet(mySettings.myTo))
    {
        theResult.append(PeriodText(920, CheckedDate(mySettings.myTo + 1))).append(LineEnd);
    }
    if (mySettings.myShowImage)
    {
        const std::optional<Text> myImageText = ImageText();
        if (!myImageText)
        {
            return std::nullopt;
        }
        theResult.append(*myImageText).append(LineEnd);
    }
    if (mySettings.myPlayMIDI)
    {
        theResult.append(TuneText()).append(LineEnd);
    }
    theResult.append(MakeClosingTag(u"script")).append(LineEnd);
    return theResult;
}

bool FormMain::UnPackModule()
{
    if (mySettings.myFilename.empty())
    {
        return true;
    }
    classArchive myArchive(myPorts.files);
    myArchive.BaseFolder(myTempFolder);
    myArchive.ArchiveFilename(Records().DataFolder() + mySettings.myFilename);
    return myArchive.UnPackArchive();
}

Text FormMain::PeriodText(int32_t myTemplate, Date myDay)
{
    Text theResult = FilledTemplate(myTemplate);
    const CalendarDay myCalendarDay = DayOfDate(myDay);
    Fill(theResult, u"%2", NumberText(int64_t{myCalendarDay.Year}));
    Fill(theResult, u"%3", NumberText(int64_t{myCalendarDay.Month} - 1)); // the page counts months from 0
    Fill(theResult, u"%4", NumberText(int64_t{myCalendarDay.Day}));
    return theResult;
}

/// The floating picture; nothing when its link cannot be resolved.
std::optional<Text> FormMain::ImageText()
{
    Text theResult = FilledTemplate(1000);
    const Text mySource = SourcePath(mySettings.myImageFolder, mySettings.myImage);
    const Text myTarget = TargetName(ImagePrefix, mySettings.myImage);
    ImagingControl& myLeadIn = myFormLead.LeadIn();
    LoadPicture(myLeadIn, mySource);

    Text myLinkStart;
    Text myLinkEnd;
    if (!mySettings.myLink.empty())
    {
        const Text myAddress = ResolveLink(Text(mySettings.myLink));
        if (myAddress == UnresolvedLink)
        {
            return std::nullopt;
        }
        myLinkStart = MakeAnchor(myAddress, {}, {}, {});
        myLinkEnd = MakeClosingTag(u"a");
    }
    // Each placeholder is filled over the whole text, what came in before included.
    Fill(theResult, u"%2", myLinkStart);
    Fill(theResult, u"%7", myLinkEnd);
    Fill(theResult, u"%4", NumberText(myLeadIn.BitmapWidth()));
    Fill(theResult, u"%5", NumberText(myLeadIn.BitmapHeight()));
    myPorts.files.Copy(mySource, Helper().ImageFolder() + myTarget);
    Fill(theResult, u"%3", Helper().ImageURL() + myTarget);
    return theResult;
}

Text FormMain::TuneText()
{
    const Text mySource = SourcePath(mySettings.myMIDIFolder, mySettings.myMIDI);
    const Text myTarget = TargetName(TunePrefix, mySettings.myMIDI);
    myPorts.files.Copy(mySource, Helper().MediaFolder() + myTarget);
    Text theResult = FilledTemplate(1010);
    Fill(theResult, u"%2", Helper().MediaURL() + myTarget);
    return theResult;
}

/// The address that a link text leads to: the text itself, or that of a record, whose file is staged first if it has
/// one. Empty for a text that is no link and for a kind of record that has no address.
Text FormMain::ResolveLink(const Text& myLinkText)
{
    if (myLinkText.starts_with(u"URL:"))
    {
        return Text(myLinkText.substr(4));
    }
    if (!myLinkText.starts_with(u"UID:"))
    {
        return {};
    }
    Records().SeekUID(TextView(myLinkText).substr(4));
    if (Records().AtEnd())
    {
        return Text(UnresolvedLink);
    }
    switch (Records().RecordType())
    {
    case 0:
        return Text(UnresolvedLink);
    case 1:
    case 2:
    case 3:
    case 6:
        return Records().RecordURL();
    case 4:
        return StageRecord(&BuildHelper::ImageFolder, &BuildHelper::ImageURL);
    case 5:
        return StageRecord(&BuildHelper::FileFolder, &BuildHelper::FileURL);
    default:
        return {};
    }
}

/// Copies the current record's file into a folder of the build, unless it is there, and gives its address there. A file
/// that cannot be copied has the address all the same.
Text FormMain::StageRecord(Text (BuildHelper::*myFolder)(), Text (BuildHelper::*myURL)())
{
    Text mySource = Records().DataFolder();
    mySource += Records().RecordFilename();
    Text myTarget = (Helper().*myFolder)();
    myTarget += Records().RecordFilename();
    CopyFileOnce(myPorts.files, mySource, myTarget);
    const Text myAddress = (Helper().*myURL)();
    return ConcatUrl(myAddress, Records().RecordFilename());
}

/// A template with its instance number filled in, which is asked anew for each.
Text FormMain::FilledTemplate(int32_t myTemplate)
{
    return ReplaceAll(PageTemplate(myTemplate), u"%1", NumberText(int64_t{Helper().InstanceNumber()}));
}

Text FormMain::SourcePath(TextView myFolder, TextView myName) const
{
    if (myFolder == UserMarker)
    {
        return JoinTexts({myTempFolder, myName});
    }
    return JoinTexts({myLocalConstants.myDesignsFolder, myFolder, u"\\", myName});
}

Text FormMain::TargetName(TextView myPrefix, TextView myName) const
{
    const Text myExtension(ExtensionOf(myName)); // a host that writes a script in the next call takes `myName` away
    return JoinTexts({myPrefix, Helper().UniqueName(), myExtension});
}

BuildHelper& FormMain::Helper() const
{
    if (!myBuildHelper)
    {
        Raise(ErrorNumber::ObjectNotSet);
    }
    return *myBuildHelper;
}

Database& FormMain::Records() const
{
    if (!myDatabase)
    {
        Raise(ErrorNumber::ObjectNotSet);
    }
    return *myDatabase;
}

} // namespace qel
