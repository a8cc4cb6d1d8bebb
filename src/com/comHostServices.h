/// The host's services, called through the binary interface. A failed call throws as CallHost does.
#pragma once

#include "com/Bstr.h"
#include "com/ComPtr.h"
#include "com/failure.h"
#include "com/QelHelperInterfaces.h"
#include "platform/hostServices.h"

namespace qel
{

/// A reference to an object of the host, and how its adapters read a member.
template <class Interface>
class HostObject
{
public:
    explicit HostObject(Interface* myObject) : myHost(myObject) {}

    /// Drops the reference without a call into the host, for when the component is unloaded. Later calls fail with
    /// error 91.
    void Abandon() noexcept { myHost.Detach(); }

protected:
    Text ReadText(HRESULT (STDMETHODCALLTYPE Interface::*myMember)(BSTR*)) const
    {
        Bstr theText;
        CallHost(myHost, myMember, theText.Pointer());
        return theText.Value();
    }

    int32_t ReadNumber(HRESULT (STDMETHODCALLTYPE Interface::*myMember)(int32_t*)) const
    {
        int32_t theNumber = 0;
        CallHost(myHost, myMember, &theNumber);
        return theNumber;
    }

    ComPtr<Interface> myHost;
};

/// Calls the host's build service, and holds a reference to it.
class ComBuildHelper final : public BuildHelper, public HostObject<QelBuildHelper>
{
public:
    using HostObject::HostObject;

    Text UniqueName() override { return ReadText(&QelBuildHelper::get_UniqueName); }
    int32_t InstanceNumber() override { return ReadNumber(&QelBuildHelper::get_InstanceNumber); }
    Text MediaFolder() override { return ReadText(&QelBuildHelper::get_MediaFolder); }
    Text MediaURL() override { return ReadText(&QelBuildHelper::get_MediaURL); }
    Text ImageFolder() override { return ReadText(&QelBuildHelper::get_ImageFolder); }
    Text ImageURL() override { return ReadText(&QelBuildHelper::get_ImageURL); }
    Text FileFolder() override { return ReadText(&QelBuildHelper::get_FileFolder); }
    Text FileURL() override { return ReadText(&QelBuildHelper::get_FileURL); }
    Text ArchiveName() override { return ReadText(&QelBuildHelper::get_ArchiveName); }
};

/// Calls the host's database, and holds a reference to it.
class ComDatabase final : public Database, public HostObject<QelDatabase>
{
public:
    using HostObject::HostObject;

    int32_t RecordType() override { return ReadNumber(&QelDatabase::get_RecordType); }
    Text RecordFilename() override { return ReadText(&QelDatabase::get_RecordFilename); }
    Text RecordURL() override { return ReadText(&QelDatabase::get_RecordURL); }
    Text DataFolder() override { return ReadText(&QelDatabase::get_DataFolder); }

    bool AtEnd() override
    {
        VARIANT_BOOL theEnd = VARIANT_FALSE;
        CallHost(myHost, &QelDatabase::get_EOF, &theEnd);
        return theEnd != VARIANT_FALSE;
    }

    void SeekUID(TextView myUID) override
    {
        Bstr myText(myUID);
        int32_t myFirst = 0;
        int32_t mySecond = 0;
        CallHost(myHost, &QelDatabase::SeekUID, myText.Pointer(), &myFirst, &mySecond);
    }

    Text ChooseLink(TextView myPresentLink) override
    {
        Bstr myText(myPresentLink);
        Bstr theLink;
        CallHost(myHost, &QelDatabase::ChooseLink, myText.Pointer(), theLink.Pointer());
        return theLink.Value();
    }
};

} // namespace qel
