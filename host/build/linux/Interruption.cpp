#include "build/Interruption.h"

#include <csignal>
#include <cstdlib>

namespace qel::host
{

namespace
{

volatile std::sig_atomic_t mySignal = 0; // 0 until one has come

extern "C" void NoteSignal(int myNumber)
{
    mySignal = myNumber;
    std::signal(myNumber, SIG_DFL);
}

using Handler = void (*)(int);

Handler myOldInterrupt = SIG_DFL;
Handler myOldTermination = SIG_DFL;

/// Takes a signal unless the program was started to ignore it, and returns what took it before.
Handler Take(int myNumber)
{
    const Handler theOld = std::signal(myNumber, NoteSignal);
    if (theOld == SIG_IGN)
    {
        std::signal(myNumber, SIG_IGN);
    }
    return theOld;
}

} // namespace

void Interrupted::EndProgram()
{
    std::signal(mySignal, SIG_DFL);
    std::raise(mySignal);
    std::abort(); // not reached: the default action of the signals that are taken ends the program
}

Interruption::Interruption()
{
    myOldInterrupt = Take(SIGINT);
    myOldTermination = Take(SIGTERM);
}

Interruption::~Interruption()
{
    std::signal(SIGINT, myOldInterrupt);
    std::signal(SIGTERM, myOldTermination);
}

void Interruption::ThrowIfRequested()
{
    if (mySignal != 0)
    {
        throw Interrupted("the build was interrupted; build again to complete it");
    }
}

} // namespace qel::host
