#include "platform/linux/window/TunePlayer.h"

#include "platform/linux/window/Playback.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

namespace qel
{
namespace
{

/// How long the end of the process is delayed so that the sound can end properly.
constexpr std::chrono::seconds LongestWaitForEnd{1};

} // namespace

/// What the player and its thread share. If a sound server hangs, the thread outlives the player.
struct TunePlayer::Shared
{
    explicit Shared(std::vector<AudioOutput> myOutputs) : Outputs(std::move(myOutputs)) {}

    const std::vector<AudioOutput> Outputs;
    std::mutex Mutex;
    std::condition_variable Changed;
    uint64_t Requests = 0; ///< counted, as the same tune may be requested twice
    Tune Requested;        ///< null: silence
    bool IsEnding = false;
    bool HasEnded = false;

    void Request(Tune myTune, bool myIsLast = false)
    {
        const std::scoped_lock myLock(Mutex);
        Requested = std::move(myTune);
        IsEnding = myIsLast;
        ++Requests;
        Changed.notify_all();
    }

    void Run();
};

void TunePlayer::Shared::Run()
{
    std::unique_ptr<Playback> myPlayback;
    uint64_t myHandled = 0;
    std::unique_lock myLock(Mutex);
    while (!HasEnded)
    {
        Changed.wait(myLock, [this, &myHandled] { return Requests != myHandled; });
        myHandled = Requests;
        const Tune myTune = Requested;
        const bool myIsLast = IsEnding;
        myLock.unlock();
        // A device may play only one at a time, so the previous tune ends first.
        myPlayback.reset();
        if (myTune)
        {
            myPlayback = StartPlayback(*myTune, Outputs);
        }
        myLock.lock();
        HasEnded = myIsLast;
    }
    Changed.notify_all();
}

std::vector<AudioOutput> UsualAudioOutputs()
{
    return {{"pulseaudio", {}}, {"alsa", {}}};
}

TunePlayer::TunePlayer(std::vector<AudioOutput> myOutputs) : myShared(std::make_shared<Shared>(std::move(myOutputs))) {}

TunePlayer::~TunePlayer()
{
    if (!myThread.joinable())
    {
        return;
    }
    myShared->Request(nullptr, true);
    std::unique_lock myLock(myShared->Mutex);
    const bool myHasEnded =
        myShared->Changed.wait_for(myLock, LongestWaitForEnd, [this] { return myShared->HasEnded; });
    myLock.unlock();
    if (myHasEnded)
    {
        myThread.join();
    }
    else
    {
        myThread.detach();
    }
}

void TunePlayer::Play(Tune myTune)
{
    if (!myThread.joinable())
    {
        myThread = std::thread([theShared = myShared] { theShared->Run(); });
    }
    myShared->Request(std::move(myTune));
}

void TunePlayer::Stop()
{
    if (myThread.joinable())
    {
        myShared->Request(nullptr);
    }
}

} // namespace qel
