/// The object that the host creates. It has no state of its own: it forwards what concerns a module to the one FormMain
/// of its thread, and takes the rest from the string table.
#pragma once

#include "com/CountedObject.h"
#include "com/interfaceTables.h"
#include "com/QelHelperInterfaces.h"
#include "plugin/LivingObject.h"

namespace qel
{

/// QelHelperInterfaces.h documents the members. A failed one returns a result and leaves error information, and no
/// exception leaves it. An object is called on the thread that made it.
class Main final : public CountedObject<QelPluginAnimationMain, QelPlugin, QelInfo, ISupportErrorInfo>
{
public:
    /// Sets the help file and the designs folder of the thread, without checking that they exist.
    Main();

    HRESULT InterfaceSupportsErrorInfo(const IID* myInterface) override;

    HRESULT putref_QelThumbnails(QelThumbnails** myThumbnails) override;
    HRESULT putref_QelDatabase(QelDatabase** myDatabase) override;
    HRESULT putref_QelTopic(QelTopic** myTopic) override;
    HRESULT putref_QelBuildHelper(QelBuildHelper** myBuildHelper) override;
    HRESULT get_InitialScript(BSTR* theScript) override;
    HRESULT get_Output(BSTR* theText) override;
    HRESULT get_TextFunction(BSTR* theText) override;
    HRESULT get_TextRequirementsServer(BSTR* theText) override;
    HRESULT get_TextRequirementsClient(BSTR* theText) override;
    HRESULT get_TextSettings(BSTR* theText) override;
    HRESULT get_TextConfig(BSTR* theText) override;
    HRESULT get_IsConfigurable(VARIANT_BOOL* theAnswer) override;
    HRESULT get_Description(BSTR* theText) override;
    HRESULT get_PreviewImageFilename(BSTR* theName) override;
    HRESULT get_LogoFilename(BSTR* theName) override;
    HRESULT CallBack(int32_t* myLink, VARIANT_BOOL* theAnswer) override;
    HRESULT put_Script(BSTR* myScript) override;
    HRESULT get_Script(BSTR* theScript) override;
    HRESULT get_ErrorText(BSTR* theText) override;
    HRESULT ShowHelp(int32_t* myID) override;
    HRESULT get_RequiresPHP(VARIANT_BOOL* theAnswer) override;

    HRESULT About() override;
    HRESULT get_Version(BSTR* theText) override;

private:
    LivingObject myLife;
};

} // namespace qel
