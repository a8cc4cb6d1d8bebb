#include "module/PageWriter.h"

#include "module/handedIn.h"
#include "module/moduleArchive.h"
#include "resources/stringTable.h"
#include "tags/pluginFunctions.h"

#include <algorithm>

namespace qel
{
namespace
{

/// What ResolveLink returns for a record that does not exist or leads nowhere.
constexpr TextView UnresolvedLink = u"ERROR";

/// The last characters of a file name, as many as the length of an ending.
TextView ExtensionOf(TextView myName)
{
    return myName.substr(myName.size() - std::min(myName.size(), ExtensionLength));
}

void Fill(Text& theText, TextView myPlaceholder, TextView myValue)
{
    theText = ReplaceAll(theText, myPlaceholder, myValue);
}

} // namespace

PageWriter::PageWriter(const Platform& myPlatform, const localConstants& myConstants, FormLead& myLead,
                       const Text& myTemporaryFolder, const ModuleSettings& myModule,
                       const std::shared_ptr<BuildHelper>& myHelper, const std::shared_ptr<Database>& myRecords)
    : myPorts(myPlatform), myLocalConstants(myConstants), myFormLead(myLead), myTempFolder(myTemporaryFolder),
      mySettings(myModule), myBuildHelper(myHelper), myDatabase(myRecords)
{
}

std::optional<Text> PageWriter::PageText()
{
    // A missing or damaged archive causes an error when one of its files is copied.
    UnPackModule(myPorts.files, myDatabase, mySettings.myFilename, myTempFolder);
    Text theResult = MakeScriptTag().append(LineEnd);
    theResult.append(FilledTemplate(StringId::PageStart)).append(LineEnd);
    if (DateIsSet(mySettings.myFrom))
    {
        theResult.append(PeriodText(StringId::PageFrom, mySettings.myFrom)).append(LineEnd);
    }
    if (DateIsSet(mySettings.myTo))
    {
        theResult.append(PeriodText(StringId::PageTo, CheckedDate(mySettings.myTo + 1))).append(LineEnd);
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

Text PageWriter::PeriodText(int32_t myTemplate, Date myDay)
{
    Text theResult = FilledTemplate(myTemplate);
    const CalendarDay myCalendarDay = DayOfDate(myDay);
    Fill(theResult, u"%2", NumberText(int64_t{myCalendarDay.Year}));
    Fill(theResult, u"%3", NumberText(int64_t{myCalendarDay.Month} - 1)); // the page counts months from 0
    Fill(theResult, u"%4", NumberText(int64_t{myCalendarDay.Day}));
    return theResult;
}

/// The floating picture. Nothing: its link leads nowhere.
std::optional<Text> PageWriter::ImageText()
{
    Text theResult = FilledTemplate(StringId::PageImage);
    const Text mySource = SourcePath(mySettings.myImageFolder, mySettings.myImage);
    const Text myTarget = TargetName(ImagePrefix, mySettings.myImage);
    ImagingControl& myLeadIn = myFormLead.LeadIn();
    LoadPicture(myLeadIn, mySource);
    const Text myWidth = NumberText(myLeadIn.BitmapWidth()); // before the host can load another picture
    const Text myHeight = NumberText(myLeadIn.BitmapHeight());

    Text myLinkStart;
    Text myLinkEnd;
    if (!mySettings.myLink.empty())
    {
        const Text myAddress = ResolveLink(mySettings.myLink);
        if (myAddress == UnresolvedLink)
        {
            return std::nullopt;
        }
        myLinkStart = MakeAnchor(myAddress, {}, {}, {});
        myLinkEnd = MakeClosingTag(u"a");
    }
    // Each placeholder is replaced in the whole text, also in what was filled in before it.
    Fill(theResult, u"%2", myLinkStart);
    Fill(theResult, u"%7", myLinkEnd);
    Fill(theResult, u"%4", myWidth);
    Fill(theResult, u"%5", myHeight);
    myPorts.files.Copy(mySource, Helper().ImageFolder() + myTarget);
    Fill(theResult, u"%3", Helper().ImageURL() + myTarget);
    return theResult;
}

Text PageWriter::TuneText()
{
    const Text mySource = SourcePath(mySettings.myMIDIFolder, mySettings.myMIDI);
    const Text myTarget = TargetName(TunePrefix, mySettings.myMIDI);
    myPorts.files.Copy(mySource, Helper().MediaFolder() + myTarget);
    Text theResult = FilledTemplate(StringId::PageMIDI);
    Fill(theResult, u"%2", Helper().MediaURL() + myTarget);
    return theResult;
}

/// The address that a link text leads to: the one in the text, or that of a record, whose file is copied for the page
/// first if it has one. Empty for a text that is no link and for a kind of record without an address.
Text PageWriter::ResolveLink(const Text& myLinkText)
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

/// Copies the current record's file into a folder of the build, unless it is there already. Returns its address there,
/// also when it cannot be copied.
Text PageWriter::StageRecord(Text (BuildHelper::*myFolder)(), Text (BuildHelper::*myURL)())
{
    Text mySource = Records().DataFolder();
    mySource += Records().RecordFilename();
    Text myTarget = (Helper().*myFolder)();
    myTarget += Records().RecordFilename();
    CopyFileOnce(myPorts.files, mySource, myTarget);
    const Text myAddress = (Helper().*myURL)();
    return ConcatUrl(myAddress, Records().RecordFilename());
}

/// A template with the line ends of the page and the instance number, for which the host is asked each time.
Text PageWriter::FilledTemplate(int32_t myTemplate)
{
    const Text myText = ReplaceAll(LoadResString(myTemplate), u"\n", LineEnd);
    return ReplaceAll(myText, u"%1", NumberText(int64_t{Helper().InstanceNumber()}));
}

Text PageWriter::SourcePath(TextView myFolder, TextView myName) const
{
    if (myFolder == UserMarker)
    {
        return JoinTexts({myTempFolder, myName});
    }
    return JoinTexts({myLocalConstants.myDesignsFolder, myFolder, u"\\", myName});
}

Text PageWriter::TargetName(TextView myPrefix, TextView myName)
{
    return JoinTexts({myPrefix, Helper().UniqueName(), ExtensionOf(myName)});
}

BuildHelper& PageWriter::Helper() const
{
    return *HandedIn(myBuildHelper);
}

Database& PageWriter::Records() const
{
    return *HandedIn(myDatabase);
}

} // namespace qel
