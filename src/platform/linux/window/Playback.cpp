#include "platform/linux/window/Playback.h"

#include <algorithm>
#include <cstdarg>
#include <dlfcn.h>
#include <exception>
#include <fluidsynth.h>
#include <unistd.h>

namespace qel
{
namespace
{

constexpr const char* SoundFonts[] = {"/usr/share/sounds/sf2/TimGM6mb.sf2", "/usr/share/sounds/sf2/default-GM.sf2"};

template <class Function>
Function* Find(void* myLibrary, const char* myName)
{
    return myLibrary == nullptr ? nullptr : reinterpret_cast<Function*>(dlsym(myLibrary, myName));
}

/// The sound card's library prints its failures unless a handler receives them. The handler is set for this thread
/// only, so the host's own is not affected.
void SilenceSoundCard()
{
    using Listener = void(const char*, int, const char*, int, const char*, va_list);
    using SetListener = Listener*(Listener*);
    void* const myLibrary = dlopen("libasound.so.2", RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (auto* const mySetListener = Find<SetListener>(myLibrary, "snd_lib_error_set_local"))
    {
        mySetListener([](const char*, int, const char*, int, const char*, va_list) {});
    }
}

/// The calls of the synthesiser's library. It loads many other libraries, so it is loaded with the first tune and not
/// with the window.
struct Library
{
    void* const Handle = dlopen("libfluidsynth.so.3", RTLD_NOW | RTLD_LOCAL);

#define QEL_CALL(Name, Call) decltype(::Call)* const Name = Find<decltype(::Call)>(Handle, #Call)
    QEL_CALL(SetLogFunction, fluid_set_log_function);
    QEL_CALL(NewSettings, new_fluid_settings);
    QEL_CALL(DeleteSettings, delete_fluid_settings);
    QEL_CALL(SetText, fluid_settings_setstr);
    QEL_CALL(SetNumber, fluid_settings_setint);
    QEL_CALL(NewSynth, new_fluid_synth);
    QEL_CALL(DeleteSynth, delete_fluid_synth);
    QEL_CALL(LoadFont, fluid_synth_sfload);
    QEL_CALL(NewPlayer, new_fluid_player);
    QEL_CALL(DeletePlayer, delete_fluid_player);
    QEL_CALL(AddTune, fluid_player_add_mem);
    QEL_CALL(PlayerPlay, fluid_player_play);
    QEL_CALL(PlayerStop, fluid_player_stop);
    QEL_CALL(NewDriver, new_fluid_audio_driver);
    QEL_CALL(DeleteDriver, delete_fluid_audio_driver);
#undef QEL_CALL

    Library();

    /// Null where it is not installed.
    static const Library* Get();
};

Library::Library()
{
    for (int myLevel = 0; Handle != nullptr && myLevel < LAST_LOG_LEVEL; ++myLevel)
    {
        SetLogFunction(
            myLevel, [](int, const char*, void*) {}, nullptr);
    }
}

const Library* Library::Get()
{
    static const Library theLibrary;
    return theLibrary.Handle == nullptr ? nullptr : &theLibrary;
}

template <class Object>
using Owned = std::unique_ptr<Object, void (*)(Object*)>;

Owned<fluid_settings_t> MakeSettings(const Library& myCalls)
{
    Owned<fluid_settings_t> theSettings(myCalls.NewSettings(), myCalls.DeleteSettings);
    if (theSettings)
    {
        myCalls.SetNumber(theSettings.get(), "synth.lock-memory", 0);
        myCalls.SetNumber(theSettings.get(), "audio.realtime-prio", 0);
        myCalls.SetText(theSettings.get(), "player.timing-source", "sample");
    }
    return theSettings;
}

bool LoadFont(const Library& myCalls, fluid_synth_t* theSynth)
{
    return std::ranges::any_of(
        SoundFonts, [&](const char* myFont)
        { return access(myFont, R_OK) == 0 && myCalls.LoadFont(theSynth, myFont, 1) != FLUID_FAILED; });
}

/// The parts, in the order in which the library requires them to be created; they are destroyed in reverse order.
class SynthesiserPlayback final : public Playback
{
public:
    explicit SynthesiserPlayback(const Library& myLibrary) : myCalls(myLibrary) {}

    ~SynthesiserPlayback() override
    {
        if (myPlayer)
        {
            myCalls.PlayerStop(myPlayer.get());
        }
    }
    SynthesiserPlayback(const SynthesiserPlayback&) = delete;
    SynthesiserPlayback& operator=(const SynthesiserPlayback&) = delete;

    /// False: no sound is possible.
    bool Begin(const std::vector<std::byte>& myTune, const std::vector<AudioOutput>& myOutputs)
    {
        if (!mySettings)
        {
            return false;
        }
        mySynth.reset(myCalls.NewSynth(mySettings.get()));
        if (!mySynth || !LoadFont(myCalls, mySynth.get()))
        {
            return false;
        }
        myPlayer.reset(myCalls.NewPlayer(mySynth.get()));
        return myPlayer && myCalls.AddTune(myPlayer.get(), myTune.data(), myTune.size()) == FLUID_OK &&
               myCalls.PlayerPlay(myPlayer.get()) == FLUID_OK &&
               std::ranges::any_of(myOutputs, [this](const AudioOutput& myOutput) { return Connect(myOutput); });
    }

private:
    bool Connect(const AudioOutput& myOutput)
    {
        // If a driver is not built in, the library would choose another one.
        if (myCalls.SetText(mySettings.get(), "audio.driver", myOutput.Driver.c_str()) != FLUID_OK)
        {
            return false;
        }
        myCalls.SetText(mySettings.get(), "audio.file.name", myOutput.Filename.c_str());
        myDriver.reset(myCalls.NewDriver(mySettings.get(), mySynth.get()));
        return myDriver != nullptr;
    }

    const Library& myCalls;
    Owned<fluid_settings_t> mySettings = MakeSettings(myCalls);
    Owned<fluid_synth_t> mySynth{nullptr, myCalls.DeleteSynth};
    Owned<fluid_player_t> myPlayer{nullptr, myCalls.DeletePlayer};
    Owned<fluid_audio_driver_t> myDriver{nullptr, myCalls.DeleteDriver};
};

} // namespace

std::unique_ptr<Playback> StartPlayback(const std::vector<std::byte>& myTune,
                                        const std::vector<AudioOutput>& myOutputs) noexcept
{
    try
    {
        if (const Library* const myLibrary = Library::Get())
        {
            SilenceSoundCard();
            auto thePlayback = std::make_unique<SynthesiserPlayback>(*myLibrary);
            if (thePlayback->Begin(myTune, myOutputs))
            {
                return thePlayback;
            }
        }
    }
    catch (const std::exception&) // NOLINT(bugprone-empty-catch): no memory, so silence
    {
    }
    return nullptr;
}

} // namespace qel
