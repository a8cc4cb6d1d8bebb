/// The viewer of help files.
#pragma once

#include "text/text.h"

#include <cstdint>

namespace qel
{

class HelpViewer
{
public:
    virtual ~HelpViewer() = default;

    /// Shows the topic of a context number and does not wait for the reader. A missing help file or topic has no
    /// effect. No error.
    virtual void ShowContext(TextView myHelpFile, int32_t myContext) = 0;
};

} // namespace qel
