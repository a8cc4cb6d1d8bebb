#include "check/ServedPlugin.h"

#include "common/paths.h"
#include "text/encodings.h"

#include <array>

namespace qel::host
{

namespace fs = std::filesystem;

std::string FourBytes(size_t myNumber)
{
    std::string theBytes;
    for (int i = 0; i < 4; ++i)
    {
        theBytes += static_cast<char>(myNumber >> (8 * i) & 0xFF);
    }
    return theBytes;
}

std::string ArchiveOf(const std::vector<ArchivedFile>& myFiles)
{
    std::string theBytes = "qelarchive1.0";
    for (const auto& [myName, myContent] : myFiles)
    {
        theBytes.append(FourBytes(myName.size())).append(myName).append(FourBytes(myContent.size())).append(myContent);
    }
    return theBytes + FourBytes(0);
}

void HostState::Note(const char* myName)
{
    Calls.emplace_back(myName);
    if (Calls.size() == FailingCall)
    {
        throw Reason;
    }
}

STDMETHODIMP CheckedDatabase::SeekUID(BSTR* myUID, int32_t* myFirst, int32_t* mySecond)
{
    const bool isRight = myFirst != nullptr && mySecond != nullptr && *myFirst == 0 && *mySecond == 0;
    return Accept(myUID,
                  [&](const Text& myText) {
                      myState.Note(isRight && myText == myState.ExpectedUID ? "SeekUID" : "SeekUID of something else");
                  });
}

ServedPlugin::ServedPlugin(const OpenedComponent& myComponent, const CheckContext& myContext)
    : Helper(MakeCounted<CheckedHelper>(State)), Database(MakeCounted<CheckedDatabase>(State)),
      Plugin(myComponent.Plugin())
{
    const fs::path& myRoot = myContext.Folder;
    State.Root = FromUtf8(TextOf(myRoot)) + u"/";
    for (const char* myFolder : {"media", "images", "files", "data"})
    {
        fs::create_directory(myRoot / myFolder);
    }
    WriteFile(myRoot / "data/archivo.dat",
              ArchiveOf({{"\\qelspr.gif", std::string(PictureBytes())}, {"\\qelmid.mid", std::string(TuneBytes)}}));
    WriteFile(myRoot / "data/nota.pdf", "paper");
    QelBuildHelper* myHelper = Helper.Get();
    QelDatabase* myDatabase = Database.Get();
    ExpectResult("QelBuildHelper", S_OK, Plugin->putref_QelBuildHelper(&myHelper));
    ExpectResult("QelDatabase", S_OK, Plugin->putref_QelDatabase(&myDatabase));
}

ServedPlugin::~ServedPlugin()
{
    QelBuildHelper* myNoHelper = nullptr;
    QelDatabase* myNoDatabase = nullptr;
    Plugin->putref_QelBuildHelper(&myNoHelper);
    Plugin->putref_QelDatabase(&myNoDatabase);
}

Text ServedPlugin::Output(TextView myScript) const
{
    ExpectResult("writing Script", S_OK, Write(*Plugin.Get(), myScript));
    return Read(*Plugin.Get(), &QelPlugin::get_Output);
}

namespace
{

constexpr auto SmallGif = std::to_array<unsigned char>(
    {0x47, 0x49, 0x46, 0x38, 0x39, 0x61, 0x03, 0x00, 0x02, 0x00, 0x80, 0x00, 0x00, 0x00, 0x00, 0x00, 0xff, 0xff, 0xff,
     0x2c, 0x00, 0x00, 0x00, 0x00, 0x03, 0x00, 0x02, 0x00, 0x00, 0x02, 0x05, 0x04, 0x41, 0x10, 0x04, 0x51, 0x00, 0x3b});

} // namespace

std::string_view PictureBytes()
{
    return {reinterpret_cast<const char*>(SmallGif.data()), SmallGif.size()};
}

} // namespace qel::host
