/// Page texts: whatever the settings of a module are, a browser's parser finds exactly one script element of ours in
/// the page, and the rest of the page is as it is without it. What is never escaped is fixed: the link, and what the
/// host answers.
#include "fuzz.h"
#include "module/FormMain.h"
#include "platform/shared/SystemPlatform.h"
#include "TestHost.h"
#include "text/encodings.h"
#include "text/errors.h"

#include <algorithm>
#include <cstring>
#include <gumbo.h>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace qel
{
namespace
{

/// Files of which every name exists, as a picture. So a setting may have any text, also one that no file system allows.
class AnyFiles final : public Files
{
public:
    std::unique_ptr<InputFile> OpenForReading(TextView /*f*/) override { return std::make_unique<PictureFile>(); }
    std::unique_ptr<InputFile> OpenShared(TextView /*f*/) override { return std::make_unique<PictureFile>(); }
    std::unique_ptr<OutputFile> OpenForWriting(TextView /*f*/) override { Raise(ErrorNumber::PermissionDenied); }
    Entry Look(TextView /*f*/) override { return {EntryKind::File, 1, {}}; }
    Entry LookExactly(TextView f) override { return Look(f); }
    void Copy(TextView /*f*/, TextView t) override { Targets.emplace_back(t); }
    bool Delete(TextView /*f*/) override { return true; }
    void MakeFolder(TextView /*f*/) override {}
    bool IsFolder(TextView /*f*/) override { return false; }
    bool IsLink(TextView /*f*/) override { return false; }
    std::vector<Text> List(TextView /*f*/, Listing /*l*/) override { return {}; }
    void DemandOwnFolder(TextView /*f*/) override {}
    Text TemporaryPath() override { return u"t\\"; }

    std::vector<Text> Targets; ///< of copies, in their order

private:
    class PictureFile final : public InputFile
    {
    public:
        int64_t Length() override { return static_cast<int64_t>(SmallestPicture.size()); }
        std::optional<FileVersion> Version() override { return std::nullopt; }
        int64_t Position() override { return static_cast<int64_t>(SmallestPicture.size() - myRest.size()); }
        void Read(std::span<std::byte> myBuffer) override
        {
            const std::string_view myPart = myRest.substr(0, myBuffer.size());
            Skip(static_cast<int64_t>(myBuffer.size()));
            std::memcpy(myBuffer.data(), myPart.data(), myPart.size());
        }
        void Skip(int64_t myCount) override
        {
            if (myCount < 0 || static_cast<uint64_t>(myCount) > myRest.size())
            {
                Raise(ErrorNumber::InputPastEnd);
            }
            myRest.remove_prefix(static_cast<size_t>(myCount));
        }

    private:
        std::string_view myRest = SmallestPicture;
    };
};

/// A page that a parser has read.
class ParsedPage
{
public:
    /// The module's part of the page goes into an element of its own.
    explicit ParsedPage(std::string_view myPart)
        : mySource(
              std::string("<!DOCTYPE html><title>t</title><body class=c><p>one<div id=here>")
                  .append(myPart)
                  .append("</div><p>two <b>three</b><script>var x = '</p>';</script><!-- four --><table><tr><td>"
                          "<a href=\"five\" title='six'>seven</a></table><img src=eight><textarea>nine</textarea>")),
          myOutput(gumbo_parse_with_options(&kGumboDefaultOptions, mySource.data(), mySource.size()))
    {
        Append(*myOutput->document);
        Demand(myHere != nullptr, "the element around the text is there");
    }
    ParsedPage(const ParsedPage&) = delete;
    ParsedPage& operator=(const ParsedPage&) = delete;
    ~ParsedPage() { gumbo_destroy_output(&kGumboDefaultOptions, myOutput); }

    /// The whole page but for the content of that element.
    const std::string& Outline() const { return myOutline; }

    const GumboElement& Here() const { return *myHere; }

private:
    void Append(const GumboNode& myNode)
    {
        const auto myKind = std::to_string(myNode.type);
        if (myNode.type == GUMBO_NODE_DOCUMENT)
        {
            AppendAll(myNode.v.document.children);
        }
        else if (myNode.type != GUMBO_NODE_ELEMENT && myNode.type != GUMBO_NODE_TEMPLATE)
        {
            myOutline += myKind + ":" + myNode.v.text.text + "\n";
        }
        else
        {
            AppendElement(myNode.v.element, myKind);
        }
    }

    void AppendElement(const GumboElement& myElement, const std::string& myKind)
    {
        myOutline += myKind + ":<" + gumbo_normalized_tagname(myElement.tag);
        for (const GumboAttribute* myAttribute : Entries<GumboAttribute>(myElement.attributes))
        {
            myOutline += std::string(" ") + myAttribute->name + "=" + myAttribute->value;
        }
        const GumboAttribute* const myId = gumbo_get_attribute(&myElement.attributes, "id");
        if (myHere == nullptr && myId != nullptr && std::string_view(myId->value) == "here")
        {
            myHere = &myElement;
        }
        else
        {
            AppendAll(myElement.children);
        }
        myOutline += ">\n";
    }

    void AppendAll(const GumboVector& myNodes)
    {
        for (const GumboNode* myNode : Entries<GumboNode>(myNodes))
        {
            Append(*myNode);
        }
    }

public:
    template <class Node>
    static std::span<Node* const> Entries(const GumboVector& myNodes)
    {
        return {reinterpret_cast<Node* const*>(myNodes.data), myNodes.length};
    }

private:
    const std::string mySource; ///< the tree points into it
    GumboOutput* const myOutput;
    std::string myOutline;
    const GumboElement* myHere = nullptr;
};

std::span<GumboNode* const> Children(const GumboElement& myElement)
{
    return ParsedPage::Entries<GumboNode>(myElement.children);
}

std::string AttributeOf(const GumboElement& myElement, const char* myName)
{
    const GumboAttribute* const myAttribute = gumbo_get_attribute(&myElement.attributes, myName);
    return myAttribute == nullptr ? "" : myAttribute->value;
}

/// The only element among the children of one, where no other child but blank text is allowed.
const GumboElement& OnlyElement(const GumboElement& myParent, GumboTag myTag)
{
    const GumboElement* theElement = nullptr;
    for (const GumboNode* myChild : Children(myParent))
    {
        const bool isElement = myChild->type == GUMBO_NODE_ELEMENT && myChild->v.element.tag == myTag;
        Demand((isElement && theElement == nullptr) || myChild->type == GUMBO_NODE_WHITESPACE, "there is one element");
        theElement = isElement ? &myChild->v.element : theElement;
    }
    Demand(theElement != nullptr, "there is an element");
    return *theElement;
}

/// The number of characters; CR LF is one, as it is to a parser.
size_t CharacterCount(std::string_view myText)
{
    size_t theCount = 0;
    for (size_t i = 0; i < myText.size(); ++i)
    {
        theCount += (myText[i] & 0xC0) != 0x80 && !myText.substr(i).starts_with("\r\n") ? 1 : 0;
    }
    return theCount;
}

constexpr std::string_view ScriptStart = "<script type=\"text/javascript\">";
constexpr std::string_view ScriptEnd = "</script>\r\n";

const std::string& EmptyOutline()
{
    static const std::string theOutline = ParsedPage("").Outline();
    return theOutline;
}

void DemandOneScript(const std::string& myPart)
{
    Demand(myPart.starts_with(ScriptStart) && myPart.ends_with(ScriptEnd), "the text is a script element");
    const ParsedPage myPage(myPart);
    Demand(myPage.Outline() == EmptyOutline(), "the rest of the page is as it was");
    const GumboElement& myScript = OnlyElement(myPage.Here(), GUMBO_TAG_SCRIPT);
    Demand(myScript.attributes.length == 1 && AttributeOf(myScript, "type") == "text/javascript", "it is a script");
    const std::string_view myCode(myPart.data() + ScriptStart.size(),
                                  myPart.size() - ScriptStart.size() - ScriptEnd.size());
    Demand(myScript.children.length == 1 &&
               CharacterCount(myCode) == CharacterCount(Children(myScript)[0]->v.text.text),
           "the script has all of the text");
}

/// True when the part of a name that gets into the page has no character with a meaning in JavaScript or HTML, and none
/// that a parser replaces.
bool HasPlainEnding(TextView myName)
{
    const TextView myEnding = myName.substr(myName.size() - std::min<size_t>(myName.size(), 4));
    return std::ranges::all_of(myEnding,
                               [](char16_t c) {
                                   return ((c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c < 0x2028)) &&
                                          TextView(u"\"'\\<>&").find(c) == TextView::npos;
                               });
}

/// What the script writes into the page, one text for each time.
std::vector<std::string> Written(std::string_view myPart)
{
    constexpr std::string_view Start = "document.write('";
    std::vector<std::string> theTexts;
    for (size_t i = myPart.find(Start); i != std::string_view::npos; i = myPart.find(Start, i))
    {
        i += Start.size();
        const std::string_view myLine = myPart.substr(i, myPart.find('\r', i) - i);
        const size_t myEnd = myLine.find_first_of("'\\\n");
        Demand(myEnd != std::string_view::npos && myLine.substr(myEnd).starts_with("');"), "a string ends in its line");
        theTexts.emplace_back(myLine.substr(0, myEnd));
    }
    return theTexts;
}

/// What the script writes is one element, which addresses the file that was copied.
void DemandWritten(const std::string& myWritten, const GumboTag myTag, const std::string& myFile)
{
    const ParsedPage myPage(myWritten);
    Demand(myPage.Outline() == EmptyOutline(), "what is written leaves the rest of the page as it was");
    const GumboElement* theElement = &OnlyElement(myPage.Here(), myTag);
    if (myTag == GUMBO_TAG_DIV)
    {
        const bool hasLink = myWritten.find("<a ") != std::string::npos;
        theElement = hasLink ? &OnlyElement(*theElement, GUMBO_TAG_A) : theElement;
        theElement = &OnlyElement(*theElement, GUMBO_TAG_IMG);
        Demand(AttributeOf(*theElement, "width") == "1" && AttributeOf(*theElement, "height") == "1",
               "it has its size");
    }
    Demand(AttributeOf(*theElement, "src") == myFile, "the address is that of the copied file");
}

/// The module in hand, with a host whose folders and addresses are the same text.
struct Module
{
    AnyFiles Files;
    const std::unique_ptr<SystemPlatform> System = MakeSystemPlatform();
    const Platform Ports{Files,
                         System->Ports().messages,
                         System->Ports().help,
                         System->Ports().messageBox,
                         System->Ports().sound,
                         MakeImagingControl,
                         u"c"};
    const localConstants Constants{u"d\\", u"h"};
    FormLead Lead{Ports};
    FormMain Form{Ports, Constants, Lead};
    TestHost Host;

    Module()
    {
        Host.MediaFolder = Host.MediaURL;
        Host.ImageFolder = Host.ImageURL;
        Host.FileFolder = Host.FileURL;
        Host.RecordType = 4;
        Host.RecordFilename = u"foto.jpg";
        const auto myServices = std::make_shared<TestHostServices>(Host);
        Form.myBuildHelper = myServices;
        Form.myDatabase = myServices;
    }
};

void DemandPage(Module& theModule)
{
    const ModuleSettings mySettings = theModule.Form.Settings();
    theModule.Files.Targets.clear();
    const Text myText = theModule.Form.Output();
    if (myText.empty() || myText == u"[Error de plug-in]")
    {
        Demand(!theModule.Form.ErrorText().empty(), "a failure has a reason");
        return;
    }
    const std::string myPart = ToUtf8(myText);
    DemandOneScript(myPart);
    if (!HasPlainEnding(mySettings.myImage) || !HasPlainEnding(mySettings.myMIDI))
    {
        return;
    }
    const std::vector<std::string> myTexts = Written(myPart);
    const size_t myCount = (mySettings.myShowImage ? 1 : 0) + (mySettings.myPlayMIDI ? 1 : 0);
    Demand(myTexts.size() == myCount && theModule.Files.Targets.size() == myCount, "each part is written once");
    Demand(myCount < 2 || theModule.Files.Targets[0] != theModule.Files.Targets[1], "each part has a file of its own");
    for (size_t i = 0; i < myCount; ++i)
    {
        const bool isImage = mySettings.myShowImage && i == 0;
        DemandWritten(myTexts[i], isImage ? GUMBO_TAG_DIV : GUMBO_TAG_EMBED, ToUtf8(theModule.Files.Targets[i]));
    }
}

/// A date of the period, in its range; none if there are not enough bytes.
Date TakenDate(std::string_view& theBytes)
{
    double theDate = 0;
    if (theBytes.size() >= sizeof(theDate))
    {
        std::memcpy(&theDate, theBytes.data(), sizeof(theDate));
        theBytes.remove_prefix(sizeof(theDate));
    }
    return theDate > -657434 && theDate < 2958466 ? theDate : 0;
}

/// Settings in the order of the record, the texts ended by a zero.
void SetSettings(ModuleSettings& theSettings, uint8_t mySwitches, std::string_view myBytes)
{
    theSettings = {};
    theSettings.myShowImage = (mySwitches & 1U) != 0;
    theSettings.myPlayMIDI = (mySwitches & 2U) != 0;
    theSettings.myFrom = TakenDate(myBytes);
    theSettings.myTo = TakenDate(myBytes);
    for (Text ModuleSettings::*myField :
         {&ModuleSettings::myImage, &ModuleSettings::myImageFolder, &ModuleSettings::myMIDI,
          &ModuleSettings::myMIDIFolder, &ModuleSettings::myFilename})
    {
        const size_t myEnd = std::min(myBytes.find('\0'), myBytes.size());
        theSettings.*myField = FromUtf8(myBytes.substr(0, myEnd));
        myBytes.remove_prefix(std::min(myEnd + 1, myBytes.size()));
    }
}

} // namespace
} // namespace qel

/// The first byte decides whether the rest is a script or settings, which parts are on, and which link is set.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize)
{
    using namespace qel;
    static Module theModule;
    if (mySize == 0)
    {
        return 0;
    }
    const std::string_view myRest = Characters(myBytes + 1, mySize - 1);
    ModuleSettings& theSettings = theModule.Form.Settings();
    if ((myBytes[0] & 0x10U) != 0)
    {
        SetSettings(theSettings, myBytes[0], myRest);
    }
    else
    {
        try
        {
            theModule.Form.Script(FromUtf8(myRest));
        }
        catch (const Error&)
        {
            // A date is out of range; what the script holds before it is in force.
        }
    }
    constexpr const char16_t* Links[] = {u"", u"URL:page.html", u"UID:7", u"URL:page.html"};
    theSettings.myLink = Links[(myBytes[0] >> 2U) & 3U];
    DemandPage(theModule);
    return 0;
}
