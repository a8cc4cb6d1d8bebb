/// The files of a Linux system, behind the port that the logic works on.
///
/// A path is tried as it stands first, so that looking without regard to case costs nothing where the exact name is
/// there.
#pragma once

#include "platform/Files.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/PathFinder.h"
#include "platform/linux/PlainFile.h"

#include <string>
#include <sys/stat.h>

namespace qel
{

class LinuxFiles final : public Files
{
public:
    std::unique_ptr<InputFile> OpenForReading(TextView myFilename) override;
    std::unique_ptr<InputFile> OpenShared(TextView myFilename) override;
    std::unique_ptr<OutputFile> OpenForWriting(TextView myFilename) override;
    Entry Look(TextView myPath) override;
    void Copy(TextView mySource, TextView myTarget) override;
    bool Delete(TextView myFilename) override;
    void MakeFolder(TextView myFolder) override;
    bool IsFolder(TextView myPath) override;
    bool IsLink(TextView myPath) override;
    std::vector<Text> List(TextView myPattern, Listing myListing) override;
    void DemandOwnFolder(TextView myFolder) override;
    Text TemporaryPath() override;
    std::unique_ptr<FolderMemory> RememberFolders() override;

private:
    struct SourceFile
    {
        Descriptor File;
        struct stat Facts = {};
    };

    template <typename Call>
    int OnPath(const std::string& myPath, Call myCall);
    bool GetFacts(const std::string& myPath, int myFlags, struct stat& theFacts);
    SourceFile OpenSource(TextView myFilename, Lock myLock);
    Descriptor OpenTarget(TextView myFilename, const struct stat* mySource);
    Descriptor OpenOrMake(const std::string& myPath, bool& theFileIsNew);

    PathFinder myFinder;
};

} // namespace qel
