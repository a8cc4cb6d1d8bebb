/// Help as HTML pages beside the component, shown in the user's browser.
#pragma once

#include "platform/Platform.h"

namespace qel
{

/// The name of the help file only says where the help is: its topics are the files `<context>.html` in the folder
/// `help` beside it.
class LinuxHelpViewer final : public HelpViewer
{
public:
    void ShowContext(TextView myHelpFile, int32_t myContext) override;
};

} // namespace qel
