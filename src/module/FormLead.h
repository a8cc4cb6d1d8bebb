/// The holder of the imaging control, one per thread, whose one current picture all users share: each loads its file
/// first.
#pragma once

#include "platform/Platform.h"

#include <memory>

namespace qel
{

class FormLead
{
public:
    /// The ports must outlive the object.
    explicit FormLead(const Platform& myPlatform) : myPorts(myPlatform) {}

    /// The control, made at the first call.
    ImagingControl& LeadIn()
    {
        if (!myControl)
        {
            myControl = myPorts.makeImagingControl(myPorts.files);
        }
        return *myControl;
    }

private:
    const Platform& myPorts;
    std::unique_ptr<ImagingControl> myControl;
};

/// The settings that every Load of a picture passes: 24 bits per pixel, the first page alone.
inline void LoadPicture(ImagingControl& myControl, TextView myFilename)
{
    myControl.Load(myFilename, 24, 1, 1);
}

} // namespace qel
