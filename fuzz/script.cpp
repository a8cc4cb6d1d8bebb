/// Scripts: scanning any text ends, and settings that are read from it, written and read again are the same.
#include "fuzz.h"
#include "module/moduleScript.h"
#include "platform/Platform.h"
#include "tags/classScript.h"
#include "text/encodings.h"
#include "text/errors.h"

namespace qel
{
namespace
{

class NoMessages final : public MessageQueue
{
public:
    void ProcessPending() override {}
};

NoMessages myMessages;

void DemandWalk(TextView myText, TextView myPrefix)
{
    classScript myScanner(myMessages);
    myScanner.Prefix(myPrefix);
    myScanner.Script(myText);
    size_t myCharacters = 0;
    int32_t myLine = 1;
    for (myScanner.GetNextTag(); myScanner.TagType() != TokenType::None; myScanner.GetNextTag())
    {
        const bool myIsPlain = myScanner.TagType() == TokenType::PlainText;
        Demand(myIsPlain != myScanner.PlainText().empty(), "plain text is what a plain token has, and no other");
        Demand(myScanner.TagLine() >= myLine, "lines are counted upwards");
        myLine = myScanner.TagLine();
        myCharacters += myScanner.Tag().size() + (myIsPlain ? 0 : 1); // each tag ends in ">"
        Demand(myCharacters <= myText.size(), "no character comes twice");
        myScanner.QueryAttribute(u"name");
    }
    myScanner.GetNextTag();
    Demand(myScanner.TagType() == TokenType::None && myScanner.TagLine() == 0, "the end stays the end");
}

ModuleSettings Read(TextView myText)
{
    classScript myScanner(myMessages);
    myScanner.Prefix(u"pg.");
    myScanner.Script(myText);
    myScanner.GetNextTag();
    ModuleSettings theSettings;
    ReadScript(myScanner, theSettings);
    return theSettings;
}

void DemandSettings(TextView myText)
{
    ModuleSettings mySettings;
    try
    {
        mySettings = Read(myText);
    }
    catch (const Error& e)
    {
        Demand(e.Number == ErrorNumber::Overflow, "a script fails on a date alone");
        return;
    }
    const Text myWritten = WriteScript(mySettings);
    const ModuleSettings myAgain = Read(myWritten);
    Demand(WriteScript(myAgain) == myWritten, "what was written and read is written the same");
    Demand(myAgain.myImage == mySettings.myImage && myAgain.myImageFolder == mySettings.myImageFolder &&
               myAgain.myMIDI == mySettings.myMIDI && myAgain.myMIDIFolder == mySettings.myMIDIFolder &&
               myAgain.myFilename == mySettings.myFilename && myAgain.myLink == mySettings.myLink,
           "texts read back");
    Demand(myAgain.myImageMode == mySettings.myImageMode && myAgain.myMIDIMode == mySettings.myMIDIMode &&
               myAgain.myShowImage == mySettings.myShowImage && myAgain.myPlayMIDI == mySettings.myPlayMIDI,
           "choices read back");
    Demand(DateIsSet(myAgain.myFrom) == DateIsSet(mySettings.myFrom) &&
               DateIsSet(myAgain.myTo) == DateIsSet(mySettings.myTo),
           "a date reads back as one");
}

} // namespace
} // namespace qel

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* myBytes, size_t mySize)
{
    using namespace qel;
    const Text myText = FromUtf8(Characters(myBytes, mySize));
    DemandWalk(myText, u"pg.");
    DemandWalk(myText, u"");
    DemandSettings(myText);
    return 0;
}
