/// Makes a picture smaller, as the component does with a picture that an author imports, so that the results of two
/// systems can be compared.
///
/// Usage: shrink PICTURE FOLDER. Writes it at half its size as a JPEG and as a GIF, and the pixels of both.
#include "platform/ImagingControl.h"
#include "platform/shared/SystemFiles.h"
#include "text/encodings.h"

#include <fstream>
#include <string>

int main(int /*myCount*/, char** myArguments)
{
    using namespace qel;
    using namespace qel::ImagingSettings;
    SystemFiles myFiles;
    const auto myControl = MakeImagingControl(myFiles);
    for (const bool myIsGif : {false, true})
    {
        const std::string myName = std::string(myArguments[2]) + (myIsGif ? "/drawing" : "/photo");
        const Text myPicture = FromUtf8(myName + (myIsGif ? ".gif" : ".jpg"));
        myControl->Load(FromUtf8(myArguments[1]), LoadBitsPerPixel, FirstPage, PageCount);
        myControl->Resize(myControl->BitmapWidth() / 2, myControl->BitmapHeight() / 2, ResizeMode);
        if (myIsGif)
        {
            myControl->ReduceColors(ReducedBitsPerPixel, PaletteOption, DitherOption, ColourCount);
        }
        myControl->Save(myPicture, myIsGif ? GifFormat : JpegFormat, myIsGif ? GifBitsPerPixel : JpegBitsPerPixel,
                        myIsGif ? GifQuality : JpegQuality, MultiplePages);
        myControl->Load(myPicture, LoadBitsPerPixel, FirstPage, PageCount);
        const PixelPicture myPixels = myControl->CurrentPicture();
        std::ofstream(myName + ".pixels", std::ios::binary)
            .write(reinterpret_cast<const char*>(myPixels.Pixels.data()),
                   static_cast<std::streamsize>(myPixels.Pixels.size()));
    }
}
