#include "module/moduleArchive.h"

#include "archive/classArchive.h"
#include "module/handedIn.h"

namespace qel
{

bool UnPackModule(Files& myFiles, const std::shared_ptr<Database>& myDatabase, const Text& myFilename,
                  const Text& myFolder)
{
    if (myFilename.empty())
    {
        return true;
    }
    const std::shared_ptr<Database> myRecords = HandedIn(myDatabase);
    classArchive myArchive(myFiles);
    myArchive.BaseFolder(myFolder);
    myArchive.ArchiveFilename(myRecords->DataFolder() + myFilename);
    return myArchive.UnPackArchive();
}

} // namespace qel
