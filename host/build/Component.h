/// The component, opened as a host opens it, and what the host hands in.
#pragma once

#include "build/ComThread.h"
#include "build/services.h"
#include "com/ComPtr.h"
#include "com/QelHelperInterfaces.h"
#include "common/Failure.h"
#include "common/SharedLibrary.h"
#include "site/Site.h"
#include "text/text.h"

#include <filesystem>
#include <optional>

namespace qel::host
{

/// A call of the component failed.
class CallFailure : public Failure
{
public:
    CallFailure(const std::string& myText, HRESULT theResult) : Failure(myText), Result(theResult) {}

    HRESULT Result;
};

/// The plug-in object of the component. Order of calls: Serve, and PutInHand before anything that is about a module.
///
/// A call that fails is a CallFailure with the component's reason.
class Component
{
public:
    /// Opens the component's file, or without one the registered component, or the one beside this program.
    explicit Component(const std::optional<std::filesystem::path>& myFile);
    Component(const Component&) = delete;
    Component& operator=(const Component&) = delete;
    ~Component();

    /// Hands in the services of a site, which must outlive the component.
    void Serve(Site& theSite);

    /// Writes a module's script to the component; a module that has not been added yet has the number 0. Failure: the
    /// component refuses it.
    void PutInHand(int64_t myModule, std::string_view myScript);

    // ---- About the module in hand ----

    /// Its part of the page; its files are copied into the output.
    Text Output() const { return Read(&QelPlugin::get_Output); }
    /// Its summary, with mark-up.
    Text TextSettings() const { return Read(&QelPlugin::get_TextSettings); }
    /// The reason of the last failure since it was put in hand, or the empty text.
    Text ErrorText() const { return Read(&QelPlugin::get_ErrorText); }

    /// Opens its settings dialog. True: the author has confirmed it, and the module in hand has the new settings.
    /// False: the author has cancelled it.
    bool Edit() const;
    /// Its settings, to be stored.
    Text Script() const { return Read(&QelPlugin::get_Script); }

    // ---- About the component ----

    /// Any other text of the plug-in.
    Text Read(HRESULT (STDMETHODCALLTYPE QelPlugin::*myMember)(BSTR*)) const;
    bool RequiresPHP() const;
    Text Version() const;
    /// Its folder of motifs and tunes, whether or not it exists.
    std::filesystem::path LibraryFolder() const;

private:
    ComThread myThread;
    SharedLibrary myLibrary; ///< none when the component came from the class registry
    ComPtr<QelPlugin> myPlugin;
    ComPtr<BuildService> myBuildService;
};

/// Registers a component's file in the class registry, or removes it from there. Failure: it cannot be opened, or
/// refuses.
void RegisterComponent(const std::filesystem::path& myFile);
void UnregisterComponent(const std::filesystem::path& myFile);

} // namespace qel::host
