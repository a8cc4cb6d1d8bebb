/// The object that the host creates. It has no state of its own: it forwards what concerns a module to the one FormMain
/// of its thread, and takes the rest from the string table.
#pragma once

#include "com/CountedObject.h"
#include "com/interfaceTables.h"
#include "com/QelHelperInterfaces.h"
#include "platform/LivingObject.h"

namespace qel
{

/// QelHelperInterfaces.h documents the members. A failed one returns a result and leaves error information, and no
/// exception leaves it. An object is called on the thread that made it.
class Main final : public CountedObject<QelPluginAnimationMain, QelPlugin, QelInfo, ISupportErrorInfo>
{
public:
    /// Sets the help file and the designs folder of the thread, without checking that they exist.
    Main();

    STDMETHODIMP InterfaceSupportsErrorInfo(REFIID myInterface) override;

    STDMETHODIMP putref_QelThumbnails(QelThumbnails** myThumbnails) override;
    STDMETHODIMP putref_QelDatabase(QelDatabase** myDatabase) override;
    STDMETHODIMP putref_QelTopic(QelTopic** myTopic) override;
    STDMETHODIMP putref_QelBuildHelper(QelBuildHelper** myBuildHelper) override;
    STDMETHODIMP get_InitialScript(BSTR* theScript) override;
    STDMETHODIMP get_Output(BSTR* theText) override;
    STDMETHODIMP get_TextFunction(BSTR* theText) override;
    STDMETHODIMP get_TextRequirementsServer(BSTR* theText) override;
    STDMETHODIMP get_TextRequirementsClient(BSTR* theText) override;
    STDMETHODIMP get_TextSettings(BSTR* theText) override;
    STDMETHODIMP get_TextConfig(BSTR* theText) override;
    STDMETHODIMP get_IsConfigurable(VARIANT_BOOL* theAnswer) override;
    STDMETHODIMP get_Description(BSTR* theText) override;
    STDMETHODIMP get_PreviewImageFilename(BSTR* theName) override;
    STDMETHODIMP get_LogoFilename(BSTR* theName) override;
    STDMETHODIMP CallBack(int32_t* myLink, VARIANT_BOOL* theAnswer) override;
    STDMETHODIMP put_Script(BSTR* myScript) override;
    STDMETHODIMP get_Script(BSTR* theScript) override;
    STDMETHODIMP get_ErrorText(BSTR* theText) override;
    STDMETHODIMP ShowHelp(int32_t* myID) override;
    STDMETHODIMP get_RequiresPHP(VARIANT_BOOL* theAnswer) override;

    STDMETHODIMP About() override;
    STDMETHODIMP get_Version(BSTR* theText) override;

private:
    LivingObject myLife;
};

} // namespace qel
