#include "common/ProgressLine.h"

namespace qel::host
{

void ProgressLine::Show(const std::string& myText) const
{
    if (myIsShown)
    {
        myTerminal << "\r\033[K" << myText << std::flush;
    }
}

} // namespace qel::host
