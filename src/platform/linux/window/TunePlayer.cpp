#include "platform/linux/window/TunePlayer.h"

#include "platform/linux/window/Synthesiser.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <utility>

namespace qel
{
namespace
{

/// How long the end of the process is held up for the sound to end properly.
constexpr std::chrono::seconds LongestFarewell{1};

} // namespace

/// What the player and its thread share. Where a sound server hangs the thread outlives the player.
struct TunePlayer::Stage
{
    explicit Stage(std::vector<AudioOutput> myOutputs) : Outputs(std::move(myOutputs)) {}

    const std::vector<AudioOutput> Outputs;
    std::mutex Mutex;
    std::condition_variable Changed;
    uint64_t Wishes = 0; ///< counted, as the same tune may be wanted twice
    Tune Wanted;         ///< null: silence
    bool IsLeaving = false;
    bool HasLeft = false;

    void Wish(Tune myTune, bool myIsLast = false)
    {
        const std::scoped_lock myLock(Mutex);
        Wanted = std::move(myTune);
        IsLeaving = myIsLast;
        ++Wishes;
        Changed.notify_all();
    }

    void Run();
};

void TunePlayer::Stage::Run()
{
    std::unique_ptr<Performance> myPerformance;
    uint64_t myGranted = 0;
    std::unique_lock myLock(Mutex);
    while (!HasLeft)
    {
        Changed.wait(myLock, [this, &myGranted] { return Wishes != myGranted; });
        myGranted = Wishes;
        const Tune myTune = Wanted;
        const bool myIsLast = IsLeaving;
        myLock.unlock();
        // A device may serve one at a time, so what was playing ends first.
        myPerformance.reset();
        if (myTune)
        {
            myPerformance = Perform(*myTune, Outputs);
        }
        myLock.lock();
        HasLeft = myIsLast;
    }
    Changed.notify_all();
}

std::vector<AudioOutput> UsualAudioOutputs()
{
    return {{"pulseaudio", {}}, {"alsa", {}}};
}

TunePlayer::TunePlayer(std::vector<AudioOutput> myOutputs) : myStage(std::make_shared<Stage>(std::move(myOutputs))) {}

TunePlayer::~TunePlayer()
{
    if (!myThread.joinable())
    {
        return;
    }
    myStage->Wish(nullptr, true);
    std::unique_lock myLock(myStage->Mutex);
    const bool myEndIsNear = myStage->Changed.wait_for(myLock, LongestFarewell, [this] { return myStage->HasLeft; });
    myLock.unlock();
    if (myEndIsNear)
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
        myThread = std::thread([theStage = myStage] { theStage->Run(); });
    }
    myStage->Wish(std::move(myTune));
}

void TunePlayer::Stop()
{
    if (myThread.joinable())
    {
        myStage->Wish(nullptr);
    }
}

} // namespace qel
