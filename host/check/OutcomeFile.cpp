#include "check/OutcomeFile.h"

#include <cstdlib>
#include <utility>

namespace qel::host
{

namespace
{

std::string Escaped(const std::string& myText)
{
    std::string theText;
    for (const char myCharacter : myText)
    {
        theText += myCharacter == '\n' ? "\\n" : myCharacter == '\\' ? "\\\\" : std::string(1, myCharacter);
    }
    return theText;
}

std::string Unescaped(const std::string& myText)
{
    std::string theText;
    for (size_t i = 0; i < myText.size(); ++i)
    {
        const bool isEscape = myText[i] == '\\' && i + 1 < myText.size();
        i += isEscape ? 1 : 0;
        theText += isEscape && myText[i] == 'n' ? '\n' : myText[i];
    }
    return theText;
}

} // namespace

OutcomeFile::OutcomeFile(std::filesystem::path theName) : myName(std::move(theName)), myStream(myName, std::ios::binary)
{
}

void OutcomeFile::NoteStep(const std::string& myStep)
{
    const std::scoped_lock myGuard(myLock);
    myStream.seekp(0);
    // What an older, longer step leaves after the line end is not read.
    myStream << "step " + Escaped(myStep) + "\n" << std::flush;
}

void OutcomeFile::Write(const Outcome& myOutcome)
{
    const std::scoped_lock myGuard(myLock);
    myStream.close();
    myStream.open(myName, std::ios::binary);
    myStream << "expected " + Escaped(myOutcome.Expected) + "\ngot " + Escaped(myOutcome.Got) + "\nresult " +
                    std::to_string(static_cast<int>(myOutcome.Result)) + "\n"
             << std::flush;
}

OutcomeContent ReadOutcomeFile(const std::filesystem::path& myName)
{
    OutcomeContent theContent;
    Outcome myOutcome;
    std::ifstream myStream(myName, std::ios::binary);
    for (std::string myLine; !theContent.Result && std::getline(myStream, myLine);)
    {
        const size_t myBlank = myLine.find(' ');
        const std::string myWord = myLine.substr(0, myBlank);
        const std::string myText = myBlank == std::string::npos ? "" : Unescaped(myLine.substr(myBlank + 1));
        if (myWord == "step")
        {
            theContent.LastStep = myText;
            break;
        }
        if (myWord == "result")
        {
            myOutcome.Result = static_cast<CheckResult>(std::atoi(myText.c_str()));
            theContent.Result = myOutcome;
        }
        else
        {
            (myWord == "expected" ? myOutcome.Expected : myOutcome.Got) = myText;
        }
    }
    return theContent;
}

} // namespace qel::host
