/// A host without a window, the same on each system: it packs an archive, makes pictures smaller, and builds a site of
/// twenty modules, so that the results of two systems can be compared.
///
/// Usage: site_host COMPONENT IMPORTS PHOTO OUTPUT
/// IMPORTS is a folder with the files of the archive. OUTPUT contains the folders data (with the files of the records),
/// images, media, files, pages and shrunk, and takes what is made. Exits with 0, or prints what is wrong.
#include "archive/classArchive.h"
#include "com/Bstr.h"
#include "comTestHost.h"
#include "Library.h"
#include "platform/ImagingControl.h"
#include "platform/shared/systemFiles.h"
#include "text/encodings.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

namespace qel
{

const char16_t* const ErrorSource = u"site_host";

namespace
{

namespace fs = std::filesystem;

/// A module, and what the database answers about its link.
struct Module
{
    TextView Params;
    TextView Link = {};
    int32_t RecordType = 0;
    bool IsUnknown = false; ///< the database finds no record
    TextView RecordFilename = {};
};

constexpr TextView Balloon = u"<pg.param name=image value=Globo.gif><pg.param name=imagefolder value=Fiestas>";
constexpr TextView NoTune = u"<pg.param name=playmidi value=0>";
constexpr TextView Imports = u"<pg.param name=image value=qelspr.gif><pg.param name=imagefolder value=(USER)>"
                             u"<pg.param name=midi value=qelmid.mid><pg.param name=midifolder value=(USER)>";

/// Each module has the balloon without a tune, unless its params say otherwise.
const Module Modules[] = {
    {u"<pg.param name=playmidi value=1><pg.param name=midi value=Vals.mid><pg.param name=midifolder value=Fiestas>"},
    // periods
    {u"<pg.param name=from value=38353><pg.param name=to value=38717>", u"UID:2", 2},
    {u"<pg.param name=from value=38383><pg.param name=showimage value=0>"},
    {u"<pg.param name=to value=2>", u"UID:3", 3},
    // accents and upper-case names
    {u"<pg.param name=image value=\"B\u00FAho.gif\"><pg.param name=imagefolder value=Animales>", u"UID:7", 7},
    {u"<pg.param name=image value=GLOBO.GIF><pg.param name=imagefolder value=FIESTAS>", u"otro"},
    {u"<pg.param name=image value=\"PING\u00DCINO.GIF\"><pg.param name=imagefolder value=animales>"},
    {u"<pg.param name=playmidi value=1><pg.param name=midi value=\"\u00D3rbita.mid\">"
     u"<pg.param name=midifolder value=\"Cielo y espacio\">"},
    // links
    {u"", u"URL:http://example.org/a&amp;b?c=%33\u00F1"},
    {u"", u"UID:1", 1},
    {u"", u"UID:6", 6},
    {u"", u"UID:4", 4, false, u"Fotograf\u00EDa.JPG"},
    {u"", u"UID:5", 5, false, u"PROGRAMA.txt"},
    {u"", u"UID:5", 5, false, u"no hay.txt"},
    {u"", u"UID:0", 0},
    {u"", u"UID:9", 1, true},
    // the archive
    {u"<pg.file filename=\"archivo \u00F1.dat\"><pg.param name=playmidi value=1>"},
    // what is missing
    {u"<pg.file filename=falta.dat><pg.param name=playmidi value=1>"},
    {u"<pg.param name=image value=falta.gif>"},
    {u"<pg.param name=playmidi value=1><pg.param name=midi value=falta.mid><pg.param name=midifolder value=Fiestas>"},
};

/// A path as the logic writes it; that of a folder ends in "\".
Text Logical(const fs::path& myPath)
{
    Text theText = myPath.u16string();
    std::ranges::replace(theText, u'/', u'\\');
    return theText;
}

/// The path of a folder as the host hands it in.
Text FolderText(const fs::path& myFolder)
{
    return myFolder.u16string() + u"/";
}

void WriteFile(const fs::path& myPath, const void* myBytes, size_t myCount)
{
    std::ofstream(myPath, std::ios::binary)
        .write(static_cast<const char*>(myBytes), static_cast<std::streamsize>(myCount));
}

Text Read(QelPlugin& myPlugin, HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(BSTR*))
{
    Bstr theText;
    CheckHostCall((myPlugin.*myMember)(theText.Pointer()));
    return theText.Value();
}

void Pack(Files& myFiles, const fs::path& myImports, const fs::path& myArchive)
{
    classArchive myPacker(myFiles);
    myPacker.BaseFolder(Logical(myImports));
    myPacker.ArchiveFilename(Logical(myArchive));
    if (!myPacker.PackArchive())
    {
        Raise(myPacker.FailureNumber());
    }
}

/// Writes the picture at half its size as a JPEG and as a GIF, and the pixels of both.
void Shrink(Files& myFiles, const fs::path& myPhoto, const fs::path& myFolder)
{
    using namespace ImagingSettings;
    const auto myControl = MakeImagingControl(myFiles);
    for (const fs::path& myPicture : {myFolder / "photo.jpg", myFolder / "drawing.gif"})
    {
        const bool myIsGif = myPicture.extension() == ".gif";
        myControl->Load(Logical(myPhoto), LoadBitsPerPixel, FirstPage, PageCount);
        myControl->Resize(myControl->BitmapWidth() / 2, myControl->BitmapHeight() / 2, ResizeMode);
        if (myIsGif)
        {
            myControl->ReduceColors(ReducedBitsPerPixel, PaletteOption, DitherOption, ColourCount);
        }
        myControl->Save(Logical(myPicture), myIsGif ? GifFormat : JpegFormat,
                        myIsGif ? GifBitsPerPixel : JpegBitsPerPixel, myIsGif ? GifQuality : JpegQuality,
                        MultiplePages);
        myControl->Load(Logical(myPicture), LoadBitsPerPixel, FirstPage, PageCount);
        const PixelPicture myPixels = myControl->CurrentPicture();
        WriteFile(fs::path(myPicture).replace_extension(".pixels"), myPixels.Pixels.data(), myPixels.Pixels.size());
    }
}

/// Builds one module and writes what the component says about it.
void Build(QelPlugin& myPlugin, TestHost& theHost, int32_t myNumber, const Module& myModule, const fs::path& myPages)
{
    theHost.InstanceNumber = myNumber;
    theHost.UniqueName = NumberText(int64_t{myNumber});
    theHost.RecordType = myModule.RecordType;
    theHost.RecordFilename = myModule.RecordFilename;
    theHost.AtEnd = myModule.IsUnknown;
    const bool myIsImported = myModule.Params.starts_with(u"<pg.file");
    Bstr myScript(JoinTexts({u"<pg.plugin version=1.0>", myIsImported ? Imports : Balloon, NoTune, myModule.Params,
                             u"<pg.param name=link value=\"", myModule.Link, u"\">"}));
    CheckHostCall(myPlugin.put_Script(myScript.Pointer()));
    std::string theText;
    for (const auto& myMember :
         {&QelPlugin::get_Output, &QelPlugin::get_ErrorText, &QelPlugin::get_TextSettings, &QelPlugin::get_Script})
    {
        theText += ToUtf8(Read(myPlugin, myMember)) + "\n";
    }
    WriteFile(myPages / (std::to_string(myNumber) + ".txt"), theText.data(), theText.size());
}

void BuildSite(const Library& myComponent, const fs::path& myOutput)
{
    const auto myClassObject = myComponent.EntryPoint<DllGetClassObjectFunction>("DllGetClassObject");
    ComPtr<IClassFactory> myFactory;
    CheckHostCall(myClassObject(CLSID_Main, IID_IClassFactory, reinterpret_cast<void**>(myFactory.Receive())));
    ComPtr<QelPlugin> myPlugin;
    CheckHostCall(myFactory->CreateInstance(nullptr, IID_QelPlugin, reinterpret_cast<void**>(myPlugin.Receive())));

    TestHost myHost;
    myHost.ImageFolder = FolderText(myOutput / "images");
    myHost.MediaFolder = FolderText(myOutput / "media");
    myHost.FileFolder = FolderText(myOutput / "files");
    myHost.DataFolder = FolderText(myOutput / "data");
    myHost.RecordURL = u"p\u00E1gina.html?a=1&b=%20";
    const auto myHelper = MakeCounted<ComTestBuildHelper>(myHost);
    const auto myDatabase = MakeCounted<ComTestDatabase>(myHost);
    const auto Serve = [&](QelBuildHelper* theHelper, QelDatabase* theDatabase)
    {
        CheckHostCall(myPlugin->putref_QelBuildHelper(&theHelper));
        CheckHostCall(myPlugin->putref_QelDatabase(&theDatabase));
    };
    Serve(myHelper.Get(), myDatabase.Get());
    for (int32_t myNumber = 1; const Module& myModule : Modules)
    {
        Build(*myPlugin.Get(), myHost, myNumber++, myModule, myOutput / "pages");
    }
    Serve(nullptr, nullptr);
}

} // namespace
} // namespace qel

int main(int myCount, char** myArguments)
{
    using namespace qel;
    try
    {
        const std::vector<fs::path> myPaths(myArguments + 1, myArguments + myCount);
        const Library myComponent(myPaths.at(0).string());
        if (!myComponent.IsLoaded())
        {
            throw std::runtime_error("the component cannot be loaded");
        }
        const fs::path& myOutput = myPaths.at(3);
        const auto myFiles = MakeSystemFiles();
        Pack(*myFiles, myPaths.at(1), myOutput / "data" / fs::path(u"archivo \u00F1.dat"));
        Shrink(*myFiles, myPaths.at(2), myOutput / "shrunk");
        BuildSite(myComponent, myOutput);
        return EXIT_SUCCESS;
    }
    catch (const Error& e)
    {
        std::cerr << "error " << e.Number << ": " << ToUtf8(e.Description) << "\n";
    }
    catch (const std::exception& e)
    {
        std::cerr << e.what() << "\n";
    }
    return EXIT_FAILURE;
}
