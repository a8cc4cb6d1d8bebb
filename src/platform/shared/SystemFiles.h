/// The files of the system that the program was built for. Each system has its own implementation.
#pragma once

#include "platform/Files.h"

namespace qel
{

/// Has no state. Files.h documents the members.
class SystemFiles final : public Files
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
