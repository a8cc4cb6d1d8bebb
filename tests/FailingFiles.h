/// Files that fail at a call that the test chooses, in front of the real ones.
#pragma once

#include "platform/Files.h"
#include "testSystem.h"
#include "text/errors.h"

#include <vector>

namespace qel
{

enum class Fault
{
    Once,       ///< the call does nothing
    ForGood,    ///< so do all later ones
    Afterwards, ///< the call does its work and fails all the same
    Kill        ///< the process ends at the call
};

/// Counts the calls that can fail, those on open files among them.
class FailingFiles final : public Files
{
public:
    explicit FailingFiles(Files& theRealFiles) : myFiles(theRealFiles) {}

    /// Starts to count; the call of that number, from 1, fails with error 57. 0: none does.
    void FailAt(int myNumber, Fault myKind)
    {
        myCallsLeft = myNumber;
        myFault = myKind;
        HasFailed = HasFailed && myNumber == 0;
    }

    bool HasFailed = false;
    int Looks = 0;              ///< how often Look has been called
    std::vector<size_t> Writes; ///< how many bytes each Write was called with

    std::unique_ptr<InputFile> OpenForReading(TextView f) override { return Open<Input>(&Files::OpenForReading, f); }
    std::unique_ptr<InputFile> OpenShared(TextView f) override { return Open<Input>(&Files::OpenShared, f); }
    std::unique_ptr<OutputFile> OpenForWriting(TextView f) override { return Open<Output>(&Files::OpenForWriting, f); }
    Entry Look(TextView f) override { return ++Looks, Do(myFiles, &Files::Look, f); }
    Entry LookExactly(TextView f) override { return Do(myFiles, &Files::LookExactly, f); }
    void Copy(TextView f, TextView t) override { Do(myFiles, &Files::Copy, f, t); }
    bool Delete(TextView f) override { return Do(myFiles, &Files::Delete, f); }
    void MakeFolder(TextView f) override { Do(myFiles, &Files::MakeFolder, f); }
    bool IsFolder(TextView f) override { return myFiles.IsFolder(f); }
    bool IsLink(TextView f) override { return myFiles.IsLink(f); }
    std::vector<Text> List(TextView f, Listing l) override { return Do(myFiles, &Files::List, f, l); }
    void DemandOwnFolder(TextView f) override { Do(myFiles, &Files::DemandOwnFolder, f); }
    Text TemporaryPath() override { return myFiles.TemporaryPath(); }

private:
    struct Input final : InputFile
    {
        Input(FailingFiles& theOwner, std::unique_ptr<InputFile> f) : My(theOwner), Real(std::move(f)) {}
        int64_t Length() override { return My.Do(*Real, &InputFile::Length); }
        std::optional<FileVersion> Version() override { return Real->Version(); }
        int64_t Position() override { return Real->Position(); }
        void Read(std::span<std::byte> b) override { My.Do(*Real, &InputFile::Read, b); }
        void Skip(int64_t n) override { My.Do(*Real, &InputFile::Skip, n); }
        FailingFiles& My;
        std::unique_ptr<InputFile> Real;
    };
    struct Output final : OutputFile
    {
        Output(FailingFiles& theOwner, std::unique_ptr<OutputFile> f) : My(theOwner), Real(std::move(f)) {}
        void Write(std::span<const std::byte> b) override
        {
            My.Writes.push_back(b.size());
            My.Do(*Real, &OutputFile::Write, b);
        }
        void Close() override { My.Do(*Real, &OutputFile::Close); }
        FailingFiles& My;
        std::unique_ptr<OutputFile> Real;
    };

    template <class Wrapper, class File>
    std::unique_ptr<File> Open(std::unique_ptr<File> (Files::*myMember)(TextView), TextView myName)
    {
        return std::make_unique<Wrapper>(*this, Do(myFiles, myMember, myName));
    }

    template <class Object, class Result, class... Values>
    Result Do(Object& theObject, Result (Object::*myMember)(Values...), Values... myValues)
    {
        if (myCallsLeft == 0 || (myCallsLeft > 0 && --myCallsLeft > 0))
        {
            return (theObject.*myMember)(myValues...);
        }
        if (myFault == Fault::Afterwards)
        {
            (theObject.*myMember)(myValues...);
        }
        if (myFault == Fault::Kill)
        {
            KillThisProcess();
        }
        HasFailed = true;
        myCallsLeft = myFault == Fault::ForGood ? -1 : 0;
        Raise(ErrorNumber::DeviceError);
    }

    Files& myFiles;
    int myCallsLeft = 0; ///< until the one that fails; 0: none will; -1: all do
    Fault myFault = Fault::Once;
};

} // namespace qel
