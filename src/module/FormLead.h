/// Holds the imaging control, one per thread. All users share its one current picture, so each loads its file first.
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

/// Makes the first page of a file the control's current picture. Errors of ImagingControl::Load.
inline void LoadPicture(ImagingControl& myControl, TextView myFilename)
{
    using namespace ImagingSettings;
    myControl.Load(myFilename, LoadBitsPerPixel, FirstPage, PageCount);
}

} // namespace qel
