/// What the author's own files are called in the temporary folder and in the module's archive.
#pragma once

#include "module/localConstants.h"
#include "module/ModuleSettings.h"

namespace qel
{

/// The format that an imported picture is kept in, by the ending of the chosen file: JPEG for exactly ".jpg", GIF for
/// any other.
inline ImageMode ImportFormat(TextView myFilename)
{
    return myFilename.ends_with(JpegExtension) ? ImageMode::Jpeg : ImageMode::Gif;
}

/// The name of an imported picture of that format, which is not ImageMode::None.
inline Text ImportedImage(ImageMode myFormat)
{
    return JoinTexts({ImagePrefix, myFormat == ImageMode::Jpeg ? JpegExtension : GifExtension});
}

/// The name of an imported picture of the other format.
inline Text ImportedImageOfOtherFormat(ImageMode myFormat)
{
    return ImportedImage(myFormat == ImageMode::Jpeg ? ImageMode::Gif : ImageMode::Jpeg);
}

/// The name of an imported tune.
inline Text ImportedTune()
{
    return JoinTexts({TunePrefix, TuneExtension});
}

} // namespace qel
