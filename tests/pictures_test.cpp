#include "platform/ImagingControl.h"

#include "ErrorOf.h"
#include "platform/linux/GifFile.h"
#include "platform/linux/LinuxFiles.h"
#include "TemporaryFolder.h"
#include "text/errors.h"

#include <algorithm>
#include <gif_lib.h>
#include <gtest/gtest.h>
#include <turbojpeg.h>

using namespace qel;

namespace
{

using FileBytes = std::vector<uint8_t>;

/// What a GIF for a test is made of. Its images have 16 colours and lie at 2, 1.
struct GifPlan
{
    int ScreenWidth = 20;
    int ScreenHeight = 20;
    int Width = 9;
    int Height = 8;
    bool Interlaced = false;
    int Images = 1;
    bool HasScreenColours = true;
    bool HasImageColours = false;
    int Transparent = NO_TRANSPARENT_COLOR;
};

uint8_t PlannedIndex(int myRow, int myColumn)
{
    return static_cast<uint8_t>((3 * myRow + myColumn) % 16);
}

void PutRows(GifFileType* myGif, const GifPlan& myPlan)
{
    constexpr int Straight[][2] = {{0, 1}};
    constexpr int Interlaced[][2] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    for (const auto& [myFirst, myStep] : myPlan.Interlaced ? std::span<const int[2]>(Interlaced) : Straight)
    {
        for (int i = myFirst; i < myPlan.Height; i += myStep)
        {
            for (int j = 0; j < myPlan.Width; ++j)
            {
                EGifPutPixel(myGif, PlannedIndex(i, j));
            }
        }
    }
}

FileBytes MakeGif(const GifPlan& myPlan)
{
    FileBytes theFile;
    const auto myAppend = [](GifFileType* myGif, const GifByteType* myBytes, int myCount)
    {
        auto& myTarget = *static_cast<FileBytes*>(myGif->UserData);
        myTarget.insert(myTarget.end(), myBytes, myBytes + myCount);
        return myCount;
    };
    GifColorType myGreys[16] = {};
    GifColorType myGreens[16] = {};
    myGreys[15] = {15, 15, 15};
    myGreens[15] = {0, 200, 0};
    const ColorMapObject myScreenColours = {16, 4, false, myGreys};
    const ColorMapObject myImageColours = {16, 4, false, myGreens};
    GifFileType* const myGif = EGifOpen(&theFile, myAppend, nullptr);
    EGifSetGifVersion(myGif, true);
    EGifPutScreenDesc(myGif, myPlan.ScreenWidth, myPlan.ScreenHeight, 4, 0,
                      myPlan.HasScreenColours ? &myScreenColours : nullptr);
    for (int i = 0; i < myPlan.Images; ++i)
    {
        GifByteType myBlock[4];
        const GraphicsControlBlock myControl = {DISPOSE_DO_NOT, false, 10, i == 0 ? myPlan.Transparent : 5};
        const auto myLength = static_cast<int>(EGifGCBToExtension(&myControl, myBlock));
        EGifPutExtension(myGif, GRAPHICS_EXT_FUNC_CODE, myLength, myBlock);
        EGifPutImageDesc(myGif, 2, 1, myPlan.Width, myPlan.Height, myPlan.Interlaced,
                         myPlan.HasImageColours ? &myImageColours : nullptr);
        PutRows(myGif, myPlan);
    }
    EGifCloseFile(myGif, nullptr);
    return theFile;
}

FileBytes MakeJpeg(int myWidth, int myHeight, int myFormat = TJPF_RGB, int mySubsampling = TJSAMP_420, int myFlags = 0)
{
    FileBytes myPixels(static_cast<size_t>(myWidth * myHeight * tjPixelSize[myFormat]));
    std::generate(myPixels.begin(), myPixels.end(), [i = 0]() mutable { return static_cast<uint8_t>(i += 37); });
    const tjhandle myEncoder = tjInitCompress();
    unsigned char* myBuffer = nullptr;
    unsigned long mySize = 0;
    tjCompress2(myEncoder, myPixels.data(), myWidth, 0, myHeight, myFormat, &myBuffer, &mySize, mySubsampling, 85,
                myFlags);
    FileBytes theFile(myBuffer, myBuffer + mySize);
    tjFree(myBuffer);
    tjDestroy(myEncoder);
    return theFile;
}

/// Where the record of a JPEG begins that holds its height, width and sampling, at 5, 7 and 11.
size_t FrameOf(const FileBytes& myJpeg)
{
    constexpr uint8_t Start[] = {0xFF, 0xC0};
    return static_cast<size_t>(std::search(myJpeg.begin(), myJpeg.end(), Start, Start + 2) - myJpeg.begin());
}

class PicturesTest : public testing::Test
{
protected:
    /// The number of the error of loading these bytes, or 0. The name says nothing about the content.
    int32_t Load(const FileBytes& myFile)
    {
        myFolder.Write("picture.bmp", {reinterpret_cast<const char*>(myFile.data()), myFile.size()});
        return ErrorOf([&] { myControl->Load(myName, 24, 1, 1); });
    }

    void ExpectSize(const FileBytes& myFile, int myWidth, int myHeight)
    {
        ASSERT_EQ(Load(myFile), 0);
        EXPECT_EQ(myControl->BitmapWidth(), static_cast<float>(myWidth));
        EXPECT_EQ(myControl->BitmapHeight(), static_cast<float>(myHeight));
    }

    TemporaryFolder myFolder;
    Text myName = myFolder.Logical(u"picture.bmp");
    LinuxFiles myFiles;
    std::unique_ptr<ImagingControl> myControl = MakeImagingControl(myFiles);
};

TEST_F(PicturesTest, AGifIsAsLargeAsItsScreen)
{
    ExpectSize(MakeGif({.ScreenWidth = 350, .ScreenHeight = 250, .Width = 350, .Height = 250}), 350, 250);
    ExpectSize(MakeGif({.ScreenWidth = 40, .ScreenHeight = 30}), 40, 30);
    ExpectSize(MakeGif({.ScreenWidth = 4, .ScreenHeight = 3}), 4, 3);
    ExpectSize(MakeGif({.ScreenWidth = 0, .ScreenHeight = 0}), 9, 8);
    ExpectSize(MakeGif({.ScreenWidth = 0, .ScreenHeight = 30}), 9, 8);
}

TEST_F(PicturesTest, TheFirstImageOfAGifIsDecodedAsTheFileHasIt)
{
    for (const GifPlan& myPlan : {GifPlan{.Width = 37, .Height = 29},
                                  {.Width = 37, .Height = 29, .Interlaced = true, .Transparent = 7},
                                  {.Height = 3, .Interlaced = true, .Images = 3},
                                  {.HasScreenColours = false, .HasImageColours = true},
                                  {.Images = 2, .HasImageColours = true}})
    {
        const auto myPicture = ReadGif(MakeGif(myPlan));
        const GifImage& myImage = myPicture->FirstImage();
        EXPECT_EQ(myPicture->Animated(), myPlan.Images > 1);
        EXPECT_EQ((std::array{myImage.Left, myImage.Top, myImage.Width, myImage.Height, myImage.TransparentIndex}),
                  (std::array{2, 1, myPlan.Width, myPlan.Height, myPlan.Transparent}));
        EXPECT_EQ(myImage.Palette[15].Green, myPlan.HasImageColours ? 200 : 15);
        for (int i = 0; i < myPlan.Width * myPlan.Height; ++i)
        {
            ASSERT_EQ(myImage.Indices[static_cast<size_t>(i)], PlannedIndex(i / myPlan.Width, i % myPlan.Width)) << i;
        }
    }
}

TEST_F(PicturesTest, AJpegOfAnyKindHasItsSize)
{
    ExpectSize(MakeJpeg(350, 262), 350, 262);
    ExpectSize(MakeJpeg(1, 1), 1, 1);
    ExpectSize(MakeJpeg(17, 9, TJPF_RGB, TJSAMP_444, TJFLAG_PROGRESSIVE), 17, 9);
    ExpectSize(MakeJpeg(17, 9, TJPF_GRAY, TJSAMP_GRAY), 17, 9);
    ExpectSize(MakeJpeg(17, 9, TJPF_CMYK, TJSAMP_444), 17, 9);
    FileBytes myUnusual = MakeJpeg(48, 16, TJPF_RGB, TJSAMP_444);
    myUnusual[FrameOf(myUnusual) + 11] = 0x31; // three columns of brightness for one of colour
    ExpectSize(myUnusual, 48, 16);
}

TEST_F(PicturesTest, ATruncatedFileIsNoPictureWhereItCannotBeShown)
{
    for (const int myImages : {1, 3})
    {
        // Behind an image, and behind the control block of the next, it reads as a GIF that lacks its last byte alone.
        FileBytes myGif = MakeGif({.Interlaced = true, .Images = myImages});
        int myLoaded = 0;
        while (!myGif.empty())
        {
            myGif.pop_back();
            const int32_t myError = Load(myGif);
            ASSERT_TRUE(myError == 0 || myError == ErrorNumber::InvalidPicture) << myError;
            myLoaded += myError == 0 ? 1 : 0;
        }
        EXPECT_EQ(myLoaded, 2 * myImages - 1);
    }
    for (FileBytes myJpeg : {MakeJpeg(40, 30), MakeJpeg(40, 30, TJPF_CMYK, TJSAMP_444, TJFLAG_PROGRESSIVE)})
    {
        myJpeg.resize(myJpeg.size() * 3 / 4);
        ExpectSize(myJpeg, 40, 30); // as far as it goes
        while (!myJpeg.empty())
        {
            myJpeg.pop_back();
            const int32_t myError = Load(myJpeg);
            ASSERT_TRUE(myError == 0 || myError == ErrorNumber::InvalidPicture) << myError;
        }
    }
}

TEST_F(PicturesTest, WhatIsNoPictureOrTooLargeIsRefused)
{
    const FileBytes myGif = MakeGif({});
    const FileBytes myJpeg = MakeJpeg(40, 30);
    const size_t myScreen = 6;
    const size_t myImage = 13 + 16 * 3 + 8 + 5; // behind the colours, the control block and the image's place
    const size_t myFrame = FrameOf(myJpeg) + 5;
    const auto myWith = [](FileBytes myFile, size_t myStart, size_t myCount, uint8_t myByte)
    {
        std::fill_n(myFile.begin() + static_cast<ptrdiff_t>(myStart), myCount, myByte);
        return myFile;
    };
    const auto myText = [](std::string_view myContent)
    {
        return FileBytes(myContent.begin(), myContent.end());
    };
    for (const FileBytes& myFile :
         {FileBytes(), myText("GIF"), myText("GIF88a and so on"), myText("BM, a bitmap"), myText("\xFF\xD8\xFF"),
          myWith(myGif, myScreen, 4, 0xFF), myWith(myGif, myImage, 4, 0xFF), myWith(myGif, myImage, 2, 0),
          MakeGif({.HasScreenColours = false}), MakeGif({.Images = 0}), myWith(myJpeg, myFrame, 4, 0xFF),
          myWith(myJpeg, myFrame + 2, 2, 0)})
    {
        ExpectSize(myJpeg, 40, 30);
        EXPECT_EQ(Load(myFile), ErrorNumber::InvalidPicture);
        EXPECT_EQ(ErrorOf([&] { myControl->BitmapWidth(); }), ErrorNumber::InvalidPicture); // the old one is gone
    }
}

TEST_F(PicturesTest, LoadReportsWhatTheFilesReport)
{
    EXPECT_EQ(ErrorOf([&] { myControl->BitmapHeight(); }), ErrorNumber::InvalidPicture);
    EXPECT_EQ(ErrorOf([&] { myControl->Load(myName, 24, 1, 1); }), ErrorNumber::FileNotFound);
    ExpectSize(MakeJpeg(4, 4), 4, 4);
    EXPECT_EQ(ErrorOf([&] { myControl->Load(myName, 8, 1, 1); }), ErrorNumber::InvalidArgument);
    const auto myHolder = myFiles.OpenForReading(myName);
    EXPECT_EQ(ErrorOf([&] { myControl->Load(myName, 24, 1, 1); }), ErrorNumber::PermissionDenied);
}

} // namespace
