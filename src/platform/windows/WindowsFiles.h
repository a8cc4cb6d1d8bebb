/// The file port of the logic on Windows.
#pragma once

#include "platform/Files.h"

namespace qel
{

/// The system finds names without regard to case, so a name that differs in case alone is the same file in every
/// operation. Hidden and system files are left out of listings; a name with a leading dot is like any other.
class WindowsFiles final : public Files
{
public:
    std::unique_ptr<InputFile> OpenForReading(TextView myFilename) override;
    std::unique_ptr<InputFile> OpenShared(TextView myFilename) override;
    std::unique_ptr<OutputFile> OpenForWriting(TextView myFilename) override;
    Entry Look(TextView myPath) override;
    Entry LookExactly(TextView myPath) override;
    void Copy(TextView mySource, TextView myTarget) override;
    bool Delete(TextView myFilename) override;
    void MakeFolder(TextView myFolder) override;
    bool IsFolder(TextView myPath) override;
    bool IsLink(TextView myPath) override;
    std::vector<Text> List(TextView myPattern, Listing myListing) override;
    void DemandOwnFolder(TextView myFolder) override;
    Text TemporaryPath() override;
};

} // namespace qel
