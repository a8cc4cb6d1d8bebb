/// The help as pages beside the component, shown by the browser of the user's choice.
#pragma once

#include "platform/Platform.h"

namespace qel
{

/// Takes the help file's name for the place of the help: its topics are the files `<context>.html` in the folder `help`
/// beside it.
class LinuxHelpViewer final : public HelpViewer
{
public:
    void ShowContext(TextView myHelpFile, int32_t myContext) override;
};

} // namespace qel
