// Making a JPEG of 4000 by 3000 as small as an imported motif may be, against the thumbnail of libvips: both read the
// file and end with the pixels in memory.
#include "ball.h"
#include "compare.h"
#include "imaging/JpegPicture.h"
#include "platform/ImagingControl.h"
#include "platform/linux/nativePath.h"
#include "platform/shared/SystemPlatform.h"

#include <fstream>
#include <vips/vips.h>

namespace
{

using namespace qel;
using namespace qel::bench;

constexpr int32_t Width = 350;
constexpr int32_t Height = 262;

/// The ball over its negative, so that there is an edge and a background, with the noise of a camera.
void WritePhotograph(const std::filesystem::path& myFile)
{
    PixelPicture myPicture = Ball(4000, 3000);
    std::mt19937 myNoise(1);
    for (size_t i = 0; i < myPicture.Pixels.size(); i += 4)
    {
        const uint8_t myTurn = myPicture.Pixels[i + 3] == 0 ? 0xFF : 0;
        for (size_t j = i; j < i + 3; ++j)
        {
            myPicture.Pixels[j] = static_cast<uint8_t>(myPicture.Pixels[j] ^ myTurn ^ (myNoise() % 16));
        }
        myPicture.Pixels[i + 3] = 0xFF;
    }
    const std::vector<uint8_t> myBytes = WriteJpeg(myPicture, 90);
    std::ofstream(myFile, std::ios::binary)
        .write(reinterpret_cast<const char*>(myBytes.data()), static_cast<std::streamsize>(myBytes.size()));
}

PixelPicture ShrinkOurs(ImagingControl& myControl, TextView myFile)
{
    myControl.Load(myFile, 24, 1, 1);
    myControl.Resize(Width, Height, 4);
    return myControl.CurrentPicture();
}

/// Three bytes per pixel.
std::vector<uint8_t> ShrinkWithVips(const std::string& myFile)
{
    VipsImage* myThumbnail = nullptr;
    Require(vips_thumbnail(myFile.c_str(), &myThumbnail, Width, "height", Height, "size", VIPS_SIZE_FORCE, nullptr) ==
                0,
            "libvips makes a thumbnail");
    size_t mySize = 0;
    auto* const myPixels = static_cast<uint8_t*>(vips_image_write_to_memory(myThumbnail, &mySize));
    Require(myPixels != nullptr, "libvips gives its pixels");
    std::vector<uint8_t> thePixels(myPixels, myPixels + mySize);
    g_free(myPixels);
    g_object_unref(myThumbnail);
    return thePixels;
}

double MeanError(const PixelPicture& myOurs, const std::vector<uint8_t>& myPeer)
{
    Require(myOurs.Width == Width && myOurs.Height == Height && myPeer.size() == size_t{Width} * Height * 3,
            "two pictures of the same size");
    int64_t theSum = 0;
    for (size_t i = 0; i < myPeer.size(); ++i)
    {
        theSum += std::abs(myOurs.Pixels[i / 3 * 4 + i % 3] - myPeer[i]);
    }
    return static_cast<double>(theSum) / static_cast<double>(myPeer.size());
}

} // namespace

int main(int myCount, char** myArguments)
{
    const Bench myBench(myCount, myArguments);
    Require(vips_init(myArguments[0]) == 0, "libvips starts");
    vips_cache_set_max(0); // otherwise it would cache its results
    const TemporaryFolder myFolder(WorkPlace());
    const std::string myFile = (myFolder / "photograph.jpg").string();
    WritePhotograph(myFile);

    const std::unique_ptr<SystemPlatform> mySystem = MakeSystemPlatform();
    const std::unique_ptr<ImagingControl> myControl = MakeImagingControl(mySystem->Ports().files);
    const Text myLogicalFile = *LogicalPath(myFile);
    const auto RunOurs = [&]
    {
        Keep(ShrinkOurs(*myControl, myLogicalFile));
    };
    const auto RunPeer = [&]
    {
        Keep(ShrinkWithVips(myFile));
    };
    // Ours works in linear light, the peer on encoded values; the results differ at the edge and in the noise.
    Require(MeanError(ShrinkOurs(*myControl, myLogicalFile), ShrinkWithVips(myFile)) < 2, "about the same picture");
    const std::string myName = "JPEG of 4000 by 3000 to 350 / libvips, ";
    const int myDefault = vips_concurrency_get();
    myBench.Compare(myName + "default: " + std::to_string(myDefault) + " threads", 1.0, {RunOurs}, {RunPeer});
    vips_concurrency_set(1);
    myBench.Compare(myName + "one thread", 1.0, {RunOurs}, {RunPeer});
}
