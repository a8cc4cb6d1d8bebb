#include "platform/linux/window/MultimediaService.h"

#include "text/errors.h"

#include <exception>
#include <memory>
#include <utility>

namespace qel
{
namespace
{

constexpr int64_t LongestTune = int64_t{16} * 1024 * 1024;

/// Removes a prefix from a text, if it is there.
bool Take(TextView& theText, TextView myPart)
{
    if (!theText.starts_with(myPart))
    {
        return false;
    }
    theText.remove_prefix(myPart.size());
    return true;
}

Tune ReadTune(Files& myFiles, TextView myFilename)
{
    const std::unique_ptr<InputFile> myFile = myFiles.OpenShared(myFilename);
    if (myFile->Length() > LongestTune)
    {
        Raise(ErrorNumber::OutOfMemory);
    }
    auto theBytes = std::make_shared<std::vector<std::byte>>(static_cast<size_t>(myFile->Length()));
    myFile->Read(*theBytes);
    return theBytes;
}

} // namespace

void MultimediaService::Send(TextView myCommand)
{
    try
    {
        TextView myRest = TrimBlanks(myCommand);
        if (Take(myRest, u"open "))
        {
            Open(myRest);
        }
        else if (Take(myRest, u"play ") && IsOpen(myRest))
        {
            myPlayer.Play(myDevice->Content);
        }
        else if (Take(myRest, u"stop ") && IsOpen(myRest))
        {
            myPlayer.Stop();
        }
        else if (Take(myRest, u"close ") && IsOpen(myRest))
        {
            myPlayer.Stop();
            myDevice.reset();
        }
    }
    catch (const Error&) // NOLINT(bugprone-empty-catch): the file cannot be read
    {
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch): no memory, or no thread could be started
    {
    }
}

void MultimediaService::Open(TextView myArguments)
{
    constexpr TextView Middle = u"\" type sequencer alias ";
    const size_t myEnd = myArguments.rfind(Middle);
    if (!myDevice && myEnd != TextView::npos && myEnd > 0 && myArguments.front() == u'"')
    {
        Tune myTune = ReadTune(myFiles, myArguments.substr(1, myEnd - 1));
        myDevice = Device{Text(myArguments.substr(myEnd + Middle.size())), std::move(myTune)};
    }
}

} // namespace qel
