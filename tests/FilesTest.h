/// The fixture of the tests of the files.
#pragma once

#include "errorOf.h"
#include "platform/shared/SystemPlatform.h"
#include "TemporaryFolder.h"
#include "testSystem.h"

#include <gtest/gtest.h>

namespace qel
{

/// Runs operations on names in a folder, for their errors or for what they give.
class FilesTest : public testing::Test
{
protected:
    static auto Bytes(std::string_view myText) { return std::as_bytes(std::span(myText)); }
    Text In(TextView myName) const { return myFolder.Logical(myName); }

    /// The number of the error that an operation ends in, given names in the folder.
    template <class Result, class... Views>
    int32_t Try(Result (Files::*myOperation)(Views...), std::type_identity_t<Views>... myNames)
    {
        return ErrorOf([&] { (myFiles.*myOperation)(In(myNames)...); });
    }

    std::vector<Text> List(TextView myPattern, Listing myListing)
    {
        std::vector<Text> theNames = myFiles.List(In(myPattern), myListing);
        std::sort(theNames.begin(), theNames.end());
        return theNames;
    }

    std::string ReadAll(TextView myName)
    {
        const auto myFile = myFiles.OpenForReading(In(myName));
        std::string theText(static_cast<size_t>(myFile->Length()), '\0');
        myFile->Read(std::as_writable_bytes(std::span(theText)));
        return theText;
    }

    void WriteAll(TextView myName, std::string_view myText)
    {
        const auto myFile = myFiles.OpenForWriting(In(myName));
        myFile->Write(Bytes(myText));
        myFile->Close();
    }

    TemporaryFolder myFolder;
    const std::unique_ptr<SystemPlatform> myPlatform = MakeSystemPlatform();
    Files& myFiles = myPlatform->Ports().files;
};

} // namespace qel
