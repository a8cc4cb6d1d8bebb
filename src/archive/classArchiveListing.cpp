#include "archive/classArchive.h"
#include "platform/ListView.h"
#include "platform/locale.h"
#include "text/dates.h"

#include <algorithm>
#include <array>
#include <string>

namespace qel
{
namespace
{

constexpr int32_t Black = 0;
constexpr int32_t Grey = 6710886;

/// How files with some extensions are shown in a list.
struct FileClass
{
    std::array<TextView, 4> Extensions;
    int32_t SmallIcon = 0;
    int32_t ForeColor = 0;
};

constexpr FileClass FileClasses[] = {
    {{u"html", u"htm"}, 2, Black},
    {{u"php", u"php3", u"phtml"}, 3, Black},
    {{u"gif", u"jpeg", u"jpg", u"png"}, 4, Grey},
};
constexpr FileClass AnyFile = {{}, 1, Grey};

/// The name after its last "\", or all of it.
TextView FileOfName(TextView myFilename)
{
    return myFilename.substr(myFilename.rfind(u'\\') + 1);
}

/// What follows the last ".", or the whole name, in lower case.
Text ExtensionOfName(TextView myFilename)
{
    return LowerCase(myFilename.substr(myFilename.rfind(u'.') + 1));
}

const FileClass& ClassOfName(TextView myFilename)
{
    const Text myExtension = ExtensionOfName(myFilename);
    const auto* myFound =
        std::find_if(std::begin(FileClasses), std::end(FileClasses),
                     [&](const FileClass& c) {
                         return std::find(c.Extensions.begin(), c.Extensions.end(), myExtension) != c.Extensions.end();
                     });
    return myFound != std::end(FileClasses) && !myExtension.empty() ? *myFound : AnyFile;
}

/// Whole kilobytes, at least one.
Text SizeText(const NumberGrouping& myGrouping, int32_t mySize)
{
    return GroupedNumberText(mySize / 1024 + 1, myGrouping) + u" KB";
}

} // namespace

void classArchive::FillList(ListView& myListView) const
{
    myListView.Clear();
    const NumberGrouping myGrouping = UserNumberGrouping();
    for (const ArchiveEntry& myEntry : myFiles)
    {
        const FileClass& myClass = ClassOfName(myEntry.Name);
        myListView.Add({Text(FileOfName(myEntry.Name)),
                        myClass.SmallIcon,
                        myClass.ForeColor,
                        {SizeText(myGrouping, myEntry.Size), Text(FolderOfName(myEntry.Name))},
                        myEntry.Name});
    }
}

Text classArchive::FileCount() const
{
    return NumberText(static_cast<int64_t>(myFiles.size()));
}

Text classArchive::Status() const
{
    if (myFiles.empty())
    {
        return u"Es wurden keine Dateien geladen";
    }
    const NumberGrouping myGrouping = UserNumberGrouping();
    const Text myStatus = ReplaceAll(u"%1 in %2 Dateien", u"%1", SizeText(myGrouping, RoundToWhole(TotalSize())));
    return ReplaceAll(myStatus, u"%2", GroupedNumberText(static_cast<int64_t>(myFiles.size()), myGrouping));
}

} // namespace qel
