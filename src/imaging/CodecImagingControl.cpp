#include "imaging/GifPicture.h"
#include "imaging/JpegPicture.h"
#include "imaging/paletteReduction.h"
#include "imaging/resampling.h"
#include "platform/Files.h"
#include "platform/ImagingControl.h"
#include "text/dates.h"
#include "text/errors.h"

namespace qel
{
namespace
{

using namespace ImagingSettings;

constexpr int64_t LongestFile = int64_t{256} * 1024 * 1024;

/// JpegQuality on the usual scale of the codec.
constexpr int UsualJpegQuality = 85;

std::vector<uint8_t> WholeFile(InputFile& myFile)
{
    const int64_t myLength = myFile.Length();
    if (myLength > LongestFile)
    {
        Raise(ErrorNumber::InvalidPicture);
    }
    std::vector<uint8_t> theBytes(static_cast<size_t>(myLength));
    myFile.Read(std::as_writable_bytes(std::span(theBytes)));
    return theBytes;
}

std::unique_ptr<Picture> ReadPicture(std::vector<uint8_t> myFile)
{
    if (IsGif(myFile))
    {
        return ReadGif(myFile);
    }
    if (IsJpeg(myFile))
    {
        return ReadJpeg(std::move(myFile));
    }
    Raise(ErrorNumber::InvalidPicture);
}

void DemandSettings(bool myAreValid)
{
    if (!myAreValid)
    {
        Raise(ErrorNumber::InvalidArgument);
    }
}

class CodecImagingControl final : public ImagingControl
{
public:
    explicit CodecImagingControl(Files& myFilePort) : myFiles(myFilePort) {}

    void Load(TextView myFilename, int16_t myBitsPerPixel, int32_t myFirstPage, int32_t myPages) override
    {
        DemandSettings(myBitsPerPixel == LoadBitsPerPixel && myFirstPage == FirstPage && myPages == PageCount);
        std::unique_ptr<Picture> myPrevious = std::move(myPicture);
        const std::unique_ptr<InputFile> myFile = myFiles.OpenShared(myFilename);
        const std::optional<FileVersion> myVersion = myFile->Version();
        if (myPrevious && myVersion && myVersion == myLoadedVersion)
        {
            myPicture = std::move(myPrevious); // most pages of a site have the same motif
            return;
        }
        myPrevious.reset();
        myPicture = ReadPicture(WholeFile(*myFile));
        myLoadedVersion = myVersion;
    }

    float BitmapWidth() override { return static_cast<float>(Current().Width()); }
    float BitmapHeight() override { return static_cast<float>(Current().Height()); }

    void Resize(float myWidth, float myHeight, int16_t myMode) override
    {
        DemandSettings(myMode == ResizeMode);
        const Picture& mySource = Current();
        const int32_t myColumns = RoundToWhole(double{myWidth});
        const int32_t myRows = RoundToWhole(double{myHeight});
        DemandSettings(myColumns > 0 && myRows > 0 && int64_t{myColumns} * myRows <= MostPixels);
        if (myColumns != mySource.Width() || myRows != mySource.Height())
        {
            ReplacePicture(std::make_unique<PlainPicture>(
                Resample(mySource.Pixels(myColumns, myRows), myColumns, myRows), mySource.Animated()));
        }
    }

    void ReduceColors(int16_t myBitsPerPixel, int16_t myPalette, int16_t myDither, int16_t myColours) override
    {
        DemandSettings(myBitsPerPixel == ReducedBitsPerPixel && myPalette == PaletteOption &&
                       myDither == DitherOption && myColours == ColourCount);
        ReplacePicture(ReduceToPalette(CurrentPicture(), Current().Animated()));
    }

    void Save(TextView myFilename, int16_t myFormat, int16_t myBitsPerPixel, int16_t myQuality,
              bool myMultiplePages) override
    {
        const bool myIsJpeg = myFormat == JpegFormat && myBitsPerPixel == JpegBitsPerPixel && myQuality == JpegQuality;
        const bool myIsGif = myFormat == GifFormat && myBitsPerPixel == GifBitsPerPixel && myQuality == GifQuality;
        DemandSettings((myIsJpeg || myIsGif) && myMultiplePages == MultiplePages);
        const auto* const myReduced = dynamic_cast<const GifPicture*>(&Current());
        DemandSettings(myIsJpeg || myReduced != nullptr);
        const std::vector<uint8_t> myFile =
            myIsJpeg ? WriteJpeg(CurrentPicture(), UsualJpegQuality) : WriteGif(*myReduced);
        const std::unique_ptr<OutputFile> myOutput = myFiles.OpenForWriting(myFilename);
        myOutput->Write(std::as_bytes(std::span(myFile)));
        myOutput->Close();
    }

    PixelPicture CurrentPicture() override { return Current().Pixels(Current().Width(), Current().Height()); }
    bool IsAnimated() override { return Current().Animated(); }

private:
    const Picture& Current() const
    {
        if (!myPicture)
        {
            Raise(ErrorNumber::InvalidPicture);
        }
        return *myPicture;
    }

    /// Replaces the picture that was loaded.
    void ReplacePicture(std::unique_ptr<Picture> myOther)
    {
        myPicture = std::move(myOther);
        myLoadedVersion.reset();
    }

    Files& myFiles;
    std::unique_ptr<Picture> myPicture;
    std::optional<FileVersion> myLoadedVersion; ///< of the file, as long as the picture is unchanged
};

} // namespace

std::unique_ptr<ImagingControl> MakeImagingControl(Files& myFiles)
{
    return std::make_unique<CodecImagingControl>(myFiles);
}

} // namespace qel
