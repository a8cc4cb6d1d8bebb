/// Pictures: reading, resizing, reducing and saving GIF and JPEG files.
#include "platform/ImagingControl.h"

#include "errorOf.h"
#include "imaging/GifPicture.h"
#include "imaging/JpegPicture.h"
#include "imaging/paletteReduction.h"
#include "imaging/resampling.h"
#include "platform/shared/SystemFiles.h"
#include "TemporaryFolder.h"
#include "text/errors.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <random>

using namespace qel;

namespace
{

using FileBytes = std::vector<uint8_t>;

constexpr size_t Tiff = 2 + 4 + 6; // where the EXIF record of a turned JPEG has its own header

/// A file of tests/data/pictures. All of them were written by giflib and libjpeg-turbo; the images of the GIFs have 16
/// colours and lie at 2, 1.
FileBytes Picture(const std::string& myName)
{
    std::ifstream myFile(QEL_TEST_DATA "/pictures/" + myName, std::ios::binary);
    return {std::istreambuf_iterator<char>(myFile), {}};
}

/// The file with other bytes at a place.
FileBytes With(FileBytes theFile, size_t myPlace, std::initializer_list<uint8_t> myBytes)
{
    std::ranges::copy(myBytes, theFile.begin() + static_cast<ptrdiff_t>(myPlace));
    return theFile;
}

/// The GIF with a screen of another size.
FileBytes WithScreen(FileBytes myGif, int myWidth, int myHeight)
{
    const auto Low = [](int n)
    {
        return static_cast<uint8_t>(n);
    };
    return With(std::move(myGif), 6, {Low(myWidth), Low(myWidth >> 8), Low(myHeight), Low(myHeight >> 8)});
}

/// Where the record of a JPEG begins that holds its height, width and sampling, at 5, 7 and 11.
size_t FrameOf(const FileBytes& myJpeg, uint8_t myMarker = 0xC0)
{
    const uint8_t myStart[] = {0xFF, myMarker};
    return static_cast<size_t>(std::search(myJpeg.begin(), myJpeg.end(), myStart, myStart + 2) - myJpeg.begin());
}

/// A JPEG of 32 by 16 pixels whose quarters are red, green (above), blue and white (below), with an EXIF record that
/// names an orientation, 6 at first, with the bytes of numbers in either order.
FileBytes Turned(bool myIsLittleEndian, uint8_t myOrientation)
{
    return With(Picture(myIsLittleEndian ? "turned-little-endian.jpg" : "turned-big-endian.jpg"),
                Tiff + (myIsLittleEndian ? 30 : 31), {myOrientation});
}

class Imaging : public testing::Test
{
protected:
    static FileBytes AsFile(std::string_view myContent) { return {myContent.begin(), myContent.end()}; }

    /// The number of the error of loading these bytes, or 0. The name says nothing about the content.
    int32_t Load(const FileBytes& myFile)
    {
        myFolder.Write("picture.bmp", {reinterpret_cast<const char*>(myFile.data()), myFile.size()});
        return Load();
    }
    /// The same of the file as it is.
    int32_t Load()
    {
        return ErrorOf([&] { myControl->Load(myName, 24, 1, 1); });
    }

    void ExpectSize(const FileBytes& myFile, int myWidth, int myHeight)
    {
        ASSERT_EQ(Load(myFile), 0);
        EXPECT_EQ(myControl->BitmapWidth(), static_cast<float>(myWidth));
        EXPECT_EQ(myControl->BitmapHeight(), static_cast<float>(myHeight));
    }

    /// Loads the file as it is, and looks at its picture.
    void ExpectWidth(float myWidth)
    {
        EXPECT_EQ(Load(), 0);
        EXPECT_EQ(myControl->BitmapWidth(), myWidth);
    }

    /// Saves the current picture as a JPEG or a GIF, and gives the file.
    FileBytes SavedJpeg()
    {
        myControl->Save(myFolder.Logical(u"out"), ImagingSettings::JpegFormat, 24, 20, false);
        return AsFile(myFolder.Read("out"));
    }
    FileBytes SavedGif()
    {
        myControl->ReduceColors(8, 2, 0, 0);
        myControl->Save(myFolder.Logical(u"out"), ImagingSettings::GifFormat, 8, 0, false);
        return AsFile(myFolder.Read("out"));
    }

    /// The colours of the four corners of the current picture by their first letters, such as "rg/bw".
    std::string Corners()
    {
        const PixelPicture myPicture = myControl->CurrentPicture();
        std::string theResult;
        for (const auto& [x, y] : {std::pair(0, 0), std::pair(1, 0), std::pair(0, 1), std::pair(1, 1)})
        {
            const int myPixel = y * (myPicture.Height - 1) * myPicture.Width + x * (myPicture.Width - 1);
            const uint8_t* const myColour = &myPicture.Pixels[static_cast<size_t>(myPixel) * 4];
            const int myBits = (myColour[0] > 128) + 2 * (myColour[1] > 128) + 4 * (myColour[2] > 128);
            theResult += y == 1 && x == 0 ? "/" : "";
            theResult += "-rg?b??w"[myBits];
        }
        return theResult;
    }

    TemporaryFolder myFolder;
    Text myName = myFolder.Logical(u"picture.bmp");
    SystemFiles myFiles;
    std::unique_ptr<ImagingControl> myControl = MakeImagingControl(myFiles);
};

TEST_F(Imaging, Load_SizeIsTheScreenOfAGifAndTheFrameOfAJpeg)
{
    ExpectSize(WithScreen(Picture("plain.gif"), 4, 3), 4, 3);
    ExpectSize(WithScreen(Picture("plain.gif"), 0, 30), 9, 8);
    ExpectSize(Picture("progressive.jpg"), 40, 30);
    ExpectSize(Picture("grey.jpg"), 17, 9);
    ExpectSize(Picture("inks.jpg"), 40, 30);
    const FileBytes myPhoto = Picture("full-colour.jpg");
    ExpectSize(With(myPhoto, FrameOf(myPhoto) + 11, {0x31}), 48, 16); // three columns of brightness for one of colour
}

TEST_F(Imaging, ReadGif_FirstImage)
{
    const struct
    {
        const char* Name;
        int Width = 9, Height = 8, Transparent = GifImage::NotTransparent;
        bool IsAnimated = false;
        uint8_t Green = 15; ///< of the last colour
    } Cases[] = {{.Name = "plain.gif"},
                 {.Name = "interlaced.gif", .Width = 17, .Height = 13, .Transparent = 7},
                 {.Name = "three-images.gif", .Height = 3, .IsAnimated = true},
                 {.Name = "image-colours.gif", .Green = 200},
                 {.Name = "two-images.gif", .IsAnimated = true, .Green = 200}};
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(myCase.Name);
        const auto myPicture = ReadGif(Picture(myCase.Name));
        const GifImage& myImage = myPicture->FirstImage();
        EXPECT_EQ(myPicture->Animated(), myCase.IsAnimated);
        EXPECT_EQ(myImage.Left, 2);
        EXPECT_EQ(myImage.Top, 1);
        EXPECT_EQ(myImage.Width, myCase.Width);
        EXPECT_EQ(myImage.Height, myCase.Height);
        EXPECT_EQ(myImage.TransparentIndex, myCase.Transparent);
        EXPECT_EQ(myImage.Palette[15].Green, myCase.Green);
        for (int i = 0; i < myCase.Width * myCase.Height; ++i)
        {
            const int myIndex = (3 * (i / myCase.Width) + i % myCase.Width) % 16;
            ASSERT_EQ(myImage.Indices[static_cast<size_t>(i)], myIndex) << i;
        }
    }
}

TEST_F(Imaging, Load_Truncated)
{
    const auto myLoaded = [&](FileBytes myFile)
    {
        int theCount = 0;
        while (!myFile.empty())
        {
            myFile.pop_back();
            const int32_t myError = Load(myFile);
            EXPECT_TRUE(myError == 0 || myError == ErrorNumber::InvalidPicture) << myError;
            theCount += myError == 0 ? 1 : 0;
        }
        return theCount;
    };
    // Cut after an image, or after the control block of the next, it reads as a GIF without its last byte.
    EXPECT_EQ(myLoaded(Picture("interlaced.gif")), 1);
    EXPECT_EQ(myLoaded(Picture("three-images.gif")), 5);
    for (FileBytes myJpeg : {Picture("photo.jpg"), Picture("inks.jpg")})
    {
        myJpeg.resize(myJpeg.size() * 3 / 4);
        ExpectSize(myJpeg, 40, 30); // as far as it goes
        myLoaded(myJpeg);
    }
}

TEST_F(Imaging, Load_NoPictureOrTooLarge_IsRefused)
{
    const FileBytes myGif = Picture("plain.gif");
    const FileBytes myJpeg = Picture("photo.jpg");
    constexpr size_t Colours = 13;
    constexpr size_t FirstBlock = Colours + 16 * 3;
    constexpr size_t ImageSize = FirstBlock + 8 + 5; // after the control block and the image's place
    const size_t myFrame = FrameOf(myJpeg) + 5;
    FileBytes myColourless = With(myGif, 10, {0});
    myColourless.erase(myColourless.begin() + Colours, myColourless.begin() + FirstBlock);
    FileBytes myEmpty = With(myGif, FirstBlock, {';'});
    myEmpty.resize(FirstBlock + 1);
    for (const FileBytes& myFile :
         {FileBytes(), AsFile("GIF"), AsFile("GIF88a and so on"), AsFile("BM, a bitmap"), AsFile("\xFF\xD8\xFF"),
          With(myGif, 5, {'b'}), With(myGif, 6, {255, 255, 255, 255}), With(myGif, ImageSize, {255, 255, 255, 255}),
          With(myGif, ImageSize, {0, 0}), myColourless, myEmpty, With(myJpeg, myFrame, {64, 64, 64, 64}),
          With(myJpeg, myFrame + 2, {0, 0})})
    {
        ExpectSize(myJpeg, 40, 30);
        EXPECT_EQ(Load(myFile), ErrorNumber::InvalidPicture);
        EXPECT_EQ(ErrorOf([&] { myControl->BitmapWidth(); }), ErrorNumber::InvalidPicture); // the old one is gone
    }
    ExpectSize(myJpeg, 40, 30);
    std::filesystem::resize_file(myFolder.Native("picture.bmp"), (256U << 20U) + 1); // by bytes after its end
    EXPECT_EQ(Load(), ErrorNumber::InvalidPicture);
}

/// A picture of smooth colours, the left of it transparent and fading in.
PixelPicture Gradient(int myWidth, int myHeight, int myFade)
{
    PixelPicture thePicture{myWidth, myHeight, {}};
    for (int y = 0; y < myHeight; ++y)
    {
        for (int x = 0; x < myWidth; ++x)
        {
            const int myPixel[] = {255 * x / myWidth, 255 * y / myHeight, 255 - 255 * x / myWidth,
                                   myFade == 0 ? 255 : std::min(255, 255 * x / myFade)};
            thePicture.Pixels.insert(thePicture.Pixels.end(), std::begin(myPixel), std::end(myPixel));
        }
    }
    return thePicture;
}

/// The likeness of two pictures of one size in decibels, where both are opaque.
double Likeness(const PixelPicture& myFirst, const PixelPicture& mySecond)
{
    double mySum = 0;
    double myCount = 0;
    EXPECT_EQ(myFirst.Pixels.size(), mySecond.Pixels.size());
    for (size_t i = 0; i < myFirst.Pixels.size(); ++i)
    {
        if (myFirst.Pixels[i | 3] == 255 && mySecond.Pixels[i | 3] == 255 && i % 4 != 3)
        {
            mySum += std::pow(myFirst.Pixels[i] - mySecond.Pixels[i], 2);
            ++myCount;
        }
    }
    return 10 * std::log10(255 * 255 * myCount / mySum);
}

TEST_F(Imaging, Resize_GifKeepsTransparencyColoursAndAnimation)
{
    const auto mySource = ReduceToPalette(Gradient(400, 300, 200), false);
    FileBytes myFile = WriteGif(*mySource);
    EXPECT_EQ(myFile[10], 0xF7) << "256 colours of eight bits a channel";
    const size_t myImages = 13 + 256 * 3; // after the colours: a second image like the first
    const FileBytes myImage(myFile.begin() + myImages, myFile.end());
    myFile.pop_back();
    myFile.insert(myFile.end(), myImage.begin(), myImage.end());
    ExpectSize(myFile, 400, 300);
    myControl->Resize(199.5F, 150.5F, 4);
    EXPECT_EQ(myControl->BitmapWidth(), 200.0F);
    EXPECT_EQ(myControl->BitmapHeight(), 150.0F);
    EXPECT_TRUE(myControl->IsAnimated());
    const PixelPicture myShrunk = myControl->CurrentPicture();
    EXPECT_GT(Likeness(myShrunk, Gradient(200, 150, 100)), 33);
    const FileBytes myOutput = SavedGif();
    EXPECT_TRUE(myControl->IsAnimated());
    ExpectSize(myOutput, 200, 150);
    EXPECT_FALSE(myControl->IsAnimated());
    const PixelPicture mySaved = myControl->CurrentPicture();
    EXPECT_GT(Likeness(myShrunk, mySaved), 33);
    for (size_t i = 3; i < mySaved.Pixels.size(); i += 4)
    {
        ASSERT_EQ(mySaved.Pixels[i], myShrunk.Pixels[i] < 128 ? 0 : 255);
    }
}

TEST_F(Imaging, Resample_TransparentPixelsGiveNoColour)
{
    // Red and opaque from the first pixel on, then black and transparent: no edge may come out darker.
    PixelPicture myPicture{90, 90, std::vector<uint8_t>(90 * 90 * 4)};
    for (size_t i = 0; i < myPicture.Pixels.size(); i += 4)
    {
        myPicture.Pixels[i] = myPicture.Pixels[i + 3] = (i / 4 % 90) < 50 ? 255 : 0;
    }
    const PixelPicture mySmall = Resample(myPicture, 20, 20);
    for (size_t i = 0; i < mySmall.Pixels.size(); i += 4)
    {
        ASSERT_TRUE(mySmall.Pixels[i + 3] == 0 || mySmall.Pixels[i] > 250) << i / 4 % 20;
    }
}

TEST_F(Imaging, ReduceToPalette_GoodEntriesAndOfThemTheNearest)
{
    std::mt19937 myRandom(1);
    PixelPicture myNoise{64, 64, std::vector<uint8_t>(64 * 64 * 4)};
    for (size_t i = 0; i < myNoise.Pixels.size(); ++i)
    {
        myNoise.Pixels[i] = i % 4 == 3 ? 255 : static_cast<uint8_t>(myRandom());
    }
    const std::pair<PixelPicture, double> myCases[] = {
        {Gradient(350, 262, 0), 34.5}, // 255 equal patches would have 34.9
        {myNoise, 27.2},               // 26.9 before the palette is improved
    };
    for (const auto& [myPicture, myLeast] : myCases)
    {
        const auto myReduced = ReduceToPalette(myPicture, false);
        EXPECT_GT(Likeness(myPicture, myReduced->Pixels(myPicture.Width, myPicture.Height)), myLeast);
        EXPECT_EQ(myReduced->FirstImage().TransparentIndex, GifImage::NotTransparent);
    }
    const auto myReduced = ReduceToPalette(myNoise, false);
    const GifImage& myImage = myReduced->FirstImage();
    for (size_t i = 0; i < myNoise.Pixels.size() / 4; ++i)
    {
        const auto Distance = [&, p = &myNoise.Pixels[i * 4]](const GifColour& c)
        {
            return std::pow(c.Red - p[0], 2) + std::pow(c.Green - p[1], 2) + std::pow(c.Blue - p[2], 2);
        };
        const auto myEnd = myImage.Palette.end() - 1; // the last entry is kept for transparent pixels
        const auto myNearest = std::ranges::min_element(myImage.Palette.begin(), myEnd, {}, Distance);
        ASSERT_EQ(Distance(myImage.Palette[myImage.Indices[i]]), Distance(*myNearest)) << i;
    }
    const PixelPicture myFew = ReadGif(Picture("interlaced.gif"))->Pixels(20, 20);
    EXPECT_EQ(ReduceToPalette(myFew, false)->Pixels(20, 20).Pixels, myFew.Pixels);
    const PixelPicture myNothing{2, 1, std::vector<uint8_t>(8)};
    EXPECT_EQ(ReduceToPalette(myNothing, false)->Pixels(2, 1).Pixels, myNothing.Pixels);
    const PixelPicture myFaint = ReduceToPalette({2, 1, {9, 9, 9, 127, 9, 9, 9, 128}}, false)->Pixels(2, 1);
    EXPECT_EQ(std::pair(int{myFaint.Pixels[3]}, int{myFaint.Pixels[7]}), std::pair(0, 255));
}

TEST_F(Imaging, Resize_JpegIsSavedOverWhite)
{
    for (const auto& [myWidth, myHeight] : {std::pair(1600, 1200), std::pair(3600, 900), std::pair(360, 270)})
    {
        const PixelPicture myLarge = Gradient(myWidth, myHeight, 0);
        ExpectSize(WriteJpeg(myLarge, 95), myWidth, myHeight);
        EXPECT_GT(Likeness(myControl->CurrentPicture(), myLarge), 40);
        myControl->Resize(240, 180, 4);
        ExpectSize(SavedJpeg(), 240, 180);
        EXPECT_GT(Likeness(myControl->CurrentPicture(), Gradient(240, 180, 0)), 33);
    }
    EXPECT_EQ(ErrorOf([] { WriteJpeg(Gradient(65536, 1, 0), 95); }), ErrorNumber::InvalidPicture); // one too wide
    ExpectSize(WriteJpeg({1, 1, {0, 0, 0, 51}}, 95), 1, 1);
    EXPECT_NEAR(myControl->CurrentPicture().Pixels[0], 204, 2);
}

TEST_F(Imaging, Load_TurnsPhotographsUpright)
{
    const struct
    {
        uint8_t Orientation;
        const char* Corners;
    } myCases[] = {{0, "rg/bw"}, {1, "rg/bw"}, {2, "gr/wb"}, {3, "wb/gr"}, {4, "bw/rg"},
                   {5, "rb/gw"}, {6, "br/wg"}, {7, "wg/br"}, {8, "gw/rb"}, {9, "rg/bw"}};
    for (const auto& [myOrientation, myCorners] : myCases)
    {
        SCOPED_TRACE(myOrientation);
        const bool mySwaps = myOrientation >= 5 && myOrientation <= 8;
        for (const bool myIsLittleEndian : {true, false})
        {
            ExpectSize(Turned(myIsLittleEndian, myOrientation), mySwaps ? 16 : 32, mySwaps ? 32 : 16);
            EXPECT_EQ(Corners(), myCorners);
        }
    }
}

TEST_F(Imaging, Load_IgnoresADamagedOrientation)
{
    const FileBytes mySound = Turned(true, 6);
    for (const auto& [myPlace, myByte] : {std::pair<size_t, uint8_t>{0, 'X'},
                                          {2, 43},  // the mark of the format
                                          {4, 200}, // the place of the directory
                                          {7, 0xFF},
                                          {8, 1},   // how many entries it has
                                          {24, 4},  // the type of the value
                                          {26, 2}}) // how many there are
    {
        SCOPED_TRACE(myPlace);
        ExpectSize(With(mySound, Tiff + myPlace, {myByte}), 32, 16);
    }
    // Markers without a length end what is read of the header.
    for (const uint8_t myMarker : std::initializer_list<uint8_t>{0x01, 0xD0, 0xD7})
    {
        FileBytes myFile{mySound[0], mySound[1], 0xFF, myMarker, 0, 2};
        myFile.insert(myFile.end(), mySound.begin() + 2, mySound.end());
        ExpectSize(myFile, 32, 16);
    }
}

TEST_F(Imaging, Save_WritesAnUprightPictureWithoutAnOrientation)
{
    ExpectSize(Turned(true, 6), 16, 32);
    myControl->Resize(12, 24, 4);
    for (const FileBytes& myFile : {SavedJpeg(), SavedGif()})
    {
        ExpectSize(myFile, 12, 24);
        EXPECT_EQ(Corners(), "br/wg");
    }
}

TEST_F(Imaging, Load_TakesAsManyPixelsAsItsMemoryAllows)
{
    // A JPEG whose header says more than the file holds, which is the first rows.
    const auto myEnlarged = [](bool myIsProgressive, int mySide, int myExcess = 0)
    {
        const FileBytes myFile = Picture(myIsProgressive ? "progressive.jpg" : "photo.jpg");
        const auto High = static_cast<uint8_t>(mySide >> 8);
        return With(myFile, FrameOf(myFile, myIsProgressive ? 0xC2 : 0xC0) + 5,
                    {High, static_cast<uint8_t>(myExcess), High, 0});
    };
    const FileBytes myRefused[] = {WithScreen(Picture("plain.gif"), 8192, 8193), myEnlarged(true, 8192, 1),
                                   myEnlarged(false, 16384, 1)};
    for (const FileBytes& myFile : myRefused)
    {
        EXPECT_EQ(Load(myFile), ErrorNumber::InvalidPicture);
    }
    ExpectSize(WithScreen(Picture("plain.gif"), 8192, 8192), 8192, 8192);
    ExpectSize(myEnlarged(true, 8192), 8192, 8192);
    ExpectSize(myEnlarged(false, 16384), 16384, 16384);
    EXPECT_EQ(ErrorOf([&] { myControl->CurrentPicture(); }), ErrorNumber::InvalidPicture);
    EXPECT_EQ(ErrorOf([&] { myControl->Resize(8192, 8193, 4); }), ErrorNumber::InvalidArgument);
    myControl->Resize(350, 350, 4);
    EXPECT_EQ(myControl->CurrentPicture().Width, 350);
}

TEST_F(Imaging, Load_TurnsInksIntoColours)
{
    // Such a file holds how much light each ink lets through: here half of it, in the last one alone.
    ExpectSize(Picture("half-black.jpg"), 16, 16);
    FileBytes myGrey;
    for (int i = 0; i < 16 * 16; ++i)
    {
        myGrey.insert(myGrey.end(), {128, 128, 128, 255});
    }
    EXPECT_EQ(myControl->CurrentPicture().Pixels, myGrey);
}

TEST_F(Imaging, Load_ChangedFile_IsReadAgain)
{
    // Files that have been as they are for long, by way of a link that changes.
    const std::filesystem::path myLibrary = QEL_TEST_DATA "/../../designs/QelPluginAnimationDesigns/Amor";
    const std::filesystem::path myLink = myFolder.Native("picture.bmp");
    std::error_code myNoLinks;
    std::filesystem::create_symlink(myLibrary / "Rosa.gif", myLink, myNoLinks);
    if (myNoLinks)
    {
        GTEST_SKIP() << "the standard library of this system makes no links";
    }
    ExpectWidth(96);
    myControl->ReduceColors(8, 2, 0, 0);
    myControl->Resize(48, 70, 4);
    ExpectWidth(96);
    std::filesystem::remove(myLink);
    std::filesystem::create_symlink(myLibrary / "Anillo.gif", myLink);
    ExpectWidth(99);
}

TEST_F(Imaging, Load_FileChangesFasterThanItsClock_IsReadAgain)
{
    ASSERT_EQ(Load(WithScreen(Picture("plain.gif"), 40, 30)), 0);
    for (char i = 0; i < 100; ++i)
    {
        std::fstream(myFolder / "picture.bmp", std::ios::in | std::ios::out | std::ios::binary)
            .seekp(6)
            .put(static_cast<char>(40 + i % 2));
        ExpectWidth(static_cast<float>(40 + i % 2));
    }
}

TEST_F(Imaging, RefusedCall_ChangesNothing)
{
    using namespace ErrorNumber;
    EXPECT_EQ(ErrorOf([&] { myControl->BitmapHeight(); }), InvalidPicture);
    EXPECT_EQ(Load(), FileNotFound);
    ExpectSize(Picture("photo.jpg"), 40, 30);
    const Text myOutput = myFolder.Logical(u"out");
    const std::function<void()> myCalls[] = {
        [&] { myControl->Load(myName, 8, 1, 1); },
        [&] { myControl->Resize(350, 0.5F, 4); },
        [&] { myControl->Resize(-1, 10, 4); },
        [&] { myControl->Resize(65536, 65536, 4); },
        [&] { myControl->Save(myOutput, ImagingSettings::JpegFormat, 24, 2, false); },
        [&] { myControl->Save(myOutput, ImagingSettings::GifFormat, 8, 0, false); },
    };
    for (const auto& myCall : myCalls)
    {
        EXPECT_EQ(ErrorOf(myCall), InvalidArgument);
    }
    EXPECT_EQ(ErrorOf([&] { myControl->Save(myOutput + u"\\x", ImagingSettings::JpegFormat, 24, 20, false); }),
              PathNotFound);
    EXPECT_EQ(myControl->BitmapWidth(), 40.0F);
    EXPECT_FALSE(myFolder.Exists("out"));
    const auto myHolder = myFiles.OpenForReading(myName);
    EXPECT_EQ(Load(), PermissionDenied);
}

} // namespace
