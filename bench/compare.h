/// Compares two ways of doing the same work, ours and that of a peer that a user could pick instead.
///
/// Both run alternately within one process, so that whatever slows the machine down slows both. The result is the ratio
/// of their times; the times themselves are printed for orientation only. A program first checks with Require that both
/// sides give the same result, then calls Compare for each comparison and returns.
#pragma once

#include "TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace qel::bench
{

/// Ends the program with 1 unless a condition holds that the comparisons rely on.
inline void Require(bool myCondition, std::string_view myMeaning)
{
    if (!myCondition)
    {
        std::fprintf(stderr, "wrong result: %.*s\n", static_cast<int>(myMeaning.size()), myMeaning.data());
        std::exit(1);
    }
}

/// Keeps the compiler from removing an unused value.
template <class Value>
void Keep(const Value& myValue)
{
    asm volatile("" : : "r"(&myValue) : "memory");
}

inline double Median(std::vector<double> myValues)
{
    const auto myMiddle = myValues.begin() + static_cast<std::ptrdiff_t>(myValues.size() / 2);
    std::nth_element(myValues.begin(), myMiddle, myValues.end());
    return *myMiddle;
}

/// One of the two: the work that is timed, and its preparation before each run, which is not timed.
struct Side
{
    std::function<void()> Run;
    std::function<void()> Prepare = [] {
    };
};

class Bench
{
public:
    /// Understands --json (one object per line instead of a table) and --runs N (at least 11, odd by rounding up).
    Bench(int myArgumentCount, char** myArguments)
    {
        for (int i = 1; i < myArgumentCount; ++i)
        {
            const std::string_view myArgument = myArguments[i];
            if (myArgument == "--json")
            {
                myIsJson = true;
            }
            else if (myArgument == "--runs" && i + 1 < myArgumentCount)
            {
                myRuns = std::max(11, std::atoi(myArguments[++i])) | 1;
            }
        }
    }

    /// Times both sides alternately, after one run of each that does not count. `myTarget` is the target ratio; 0:
    /// none.
    void Compare(const std::string& myName, double myTarget, const Side& myOurs, const Side& myPeer) const
    {
        std::vector<double> myOursTimes;
        std::vector<double> myPeerTimes;
        std::vector<double> myRatios;
        for (int i = -1; i < myRuns; ++i)
        {
            const double myOursTime = Time(myOurs);
            const double myPeerTime = Time(myPeer);
            if (i >= 0)
            {
                myOursTimes.push_back(myOursTime);
                myPeerTimes.push_back(myPeerTime);
                myRatios.push_back(myOursTime / myPeerTime);
            }
        }
        Report(myName, Median(myOursTimes), Median(myPeerTimes), Median(myRatios), myTarget);
    }

    /// Reports a single figure without a peer. `myAim` is its target; 0: none.
    void Record(const std::string& myName, double myValue, const char* myUnit, double myAim = 0) const
    {
        if (myIsJson)
        {
            std::printf("{\"name\": \"%s\", \"value\": %.4f, \"unit\": \"%s\", \"aim\": %.2f}\n", myName.c_str(),
                        myValue, myUnit, myAim);
        }
        else
        {
            std::printf("%-62s %10.3f %-3s", myName.c_str(), myValue, myUnit);
            if (myAim > 0)
            {
                std::printf("                      aim    %5.2f", myAim);
            }
            std::printf("\n");
        }
        std::fflush(stdout);
    }

private:
    static double Time(const Side& mySide)
    {
        mySide.Prepare();
        const auto myStart = std::chrono::steady_clock::now();
        mySide.Run();
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - myStart).count();
    }

    void Report(const std::string& myName, double myOurs, double myPeer, double myRatio, double myTarget) const
    {
        const char* const myForm =
            myIsJson ? "{\"name\": \"%s\", \"ours_ms\": %.4f, \"peer_ms\": %.4f, \"ratio\": %.4f, \"target\": %.2f}\n"
                     : "%-62s %10.3f ms %10.3f ms  ratio %6.3f  target %5.2f\n";
        std::printf(myForm, myName.c_str(), myOurs, myPeer, myRatio, myTarget);
        std::fflush(stdout);
    }

    bool myIsJson = false;
    int myRuns = 21;
};

/// Where a comparison makes its TemporaryFolder: in memory. Without such a file system it is in the temporary folder,
/// which is reported on stderr.
inline std::filesystem::path WorkPlace()
{
    const std::filesystem::path myMemory = "/dev/shm";
    if (std::filesystem::is_directory(myMemory))
    {
        return myMemory;
    }
    const std::filesystem::path thePlace = std::filesystem::temp_directory_path();
    std::fprintf(stderr, "not in memory: working in %s\n", thePlace.c_str());
    return thePlace;
}

/// Runs some work in a process of its own and returns the resources that it used. If it fails, this process ends too.
inline rusage RunInChild(const std::function<void()>& myWork)
{
    std::fflush(nullptr);
    const pid_t myChild = fork();
    if (myChild == 0)
    {
        myWork();
        std::exit(0);
    }
    int myStatus = 0;
    rusage theUsage = {};
    Require(myChild > 0 && wait4(myChild, &myStatus, 0, &theUsage) == myChild && myStatus == 0,
            "a child that ends well");
    return theUsage;
}

} // namespace qel::bench
