/// Tunes: the multimedia service's commands down to the samples that come out of them, without any sound device.
#include "Environment.h"
#include "platform/linux/window/MultimediaService.h"
#include "TemporaryFolder.h"
#include "text/encodings.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace qel
{
namespace
{

namespace fs = std::filesystem;
using namespace std::string_literals;

/// A MIDI file: one loud note that is held for half a minute, and one that is held for ten.
const std::string LongNote = "MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\xD\0\x90\x3C\x7F\xAE\0\x80\x3C\0\0\xFF\x2F\0"s;
const std::string LongerNote = "MThd\0\0\0\6\0\0\0\1\0\x60MTrk\0\0\0\xF\0\x90\x3C\x7F\x87\x84\0\x80\x3C\0\0\xFF\x2F\0"s;

class Sound : public testing::Test
{
protected:
    Sound()
    {
        myFolder.Write("a.mid", LongNote);
        myFolder.Write("broken.mid", "MThd and nothing after it");
        myFolder.Write("no.conf", "");
    }

    Text Open(TextView myName) const { return u"open \"" + myFolder.Logical(myName) + u"\" type sequencer alias Tune"; }

    /// The largest of the samples that were written so far; -1: not enough of them to tell.
    int Loudest() const
    {
        const std::string myFile = myFolder.Read("out.wav");
        std::vector<int16_t> mySamples(std::max<size_t>(myFile.size() / 2, 22));
        std::memcpy(mySamples.data(), myFile.data(), myFile.size() / 2 * 2);
        return myFile.size() < 40000 ? -1 : *std::max_element(mySamples.begin() + 22, mySamples.end());
    }

    /// True when nothing more is written.
    bool IsQuiet() const
    {
        const auto mySize = fs::file_size(myFolder.Native("out.wav"));
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        return mySize == fs::file_size(myFolder.Native("out.wav"));
    }

    static bool ComesTrue(const std::function<bool()>& myCondition)
    {
        for (int i = 0; i < 1000; ++i)
        {
            if (myCondition())
            {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return false;
    }

    TemporaryFolder myFolder;
    Environment myEnvironment{{"XDG_CONFIG_HOME", myFolder.Native()}, {"ALSA_CONFIG_PATH", myFolder.Native("no.conf")}};
};

TEST_F(Sound, Send_PlaysWhatWasOpened)
{
    const struct
    {
        std::vector<Text> Commands;
        bool Plays;
        bool Sounds;
    } Cases[] = {
        {{Open(u"a.mid"), u"play Tune "}, true, true},
        {{Open(u"A.MID"), u"close x ", u"play tUNE "}, true, true},
        {{Open(u"a.mid"), Open(u"broken.mid"), u"play Tune "}, true, true},
        {{Open(u"broken.mid"), u"play Tune "}, true, false},
        {{Open(u"a.mid"), u"play x "}, false, false},
        {{Open(u"a.mid"), u"close Tune ", u"play Tune "}, false, false},
        {{Open(u"gone.mid"), u"play Tune "}, false, false},
    };
    for (const auto& myCase : Cases)
    {
        SCOPED_TRACE(ToUtf8(myCase.Commands.front()));
        fs::remove(myFolder.Native("out.wav"));
        {
            MultimediaService myService({{"file", myFolder.Native("out.wav")}});
            std::ranges::for_each(myCase.Commands, [&](const Text& s) { myService.Send(s); });
            EXPECT_TRUE(!myCase.Plays || ComesTrue([&] { return Loudest() >= 0; }));
        }
        EXPECT_EQ(myFolder.Exists("out.wav"), myCase.Plays);
        EXPECT_EQ(Loudest() > 500, myCase.Sounds) << Loudest();
    }
}

TEST_F(Sound, Send_StopEndsAndPlayBeginsAgain)
{
    MultimediaService myService({{"no such driver", {}}, {"file", myFolder.Native("out.wav")}});
    myFolder.Write("longer.mid", LongerNote); // 106 MB, if nobody stops it
    myService.Send(Open(u"longer.mid"));
    for (int i = 0; i < 2; ++i)
    {
        myService.Send(u"play Tune ");
        EXPECT_TRUE(ComesTrue([&] { return Loudest() > 500; }));
        myService.Send(u"stop Tune ");
        EXPECT_TRUE(ComesTrue([&] { return IsQuiet(); }));
        EXPECT_LT(fs::file_size(myFolder.Native("out.wav")), 100'000'000);
        fs::remove(myFolder.Native("out.wav"));
    }
}

TEST_F(Sound, Send_WithoutADevicePrintsNothing)
{
    myEnvironment.Set("PULSE_SERVER", "unix:" + myFolder.Native("nobody"));
    testing::internal::CaptureStderr();
    {
        MultimediaService myService;
        myService.Send(Open(u"a.mid"));
        myService.Send(u"play Tune ");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(Sound, Send_DoesNotWaitForASilentSoundServer)
{
    sockaddr_un myAddress = {AF_UNIX, {}};
    myFolder.Native("dumb").copy(myAddress.sun_path, sizeof myAddress.sun_path - 1);
    const int myServer = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); // open until the process ends
    ASSERT_EQ(bind(myServer, reinterpret_cast<const sockaddr*>(&myAddress), sizeof myAddress), 0);
    ASSERT_EQ(listen(myServer, 1), 0);
    myEnvironment.Set("PULSE_SERVER", "unix:" + myFolder.Native("dumb"));
    auto myService = std::make_unique<MultimediaService>();
    myService->Send(Open(u"a.mid"));
    myService->Send(u"play Tune ");
    ASSERT_GE(accept(myServer, nullptr, nullptr), 0); // the caller is hanging by now
    const auto myStart = std::chrono::steady_clock::now();
    myService->Send(u"stop Tune ");
    myService.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - myStart, std::chrono::seconds(15)); // the server has 30 to answer
}

} // namespace
} // namespace qel
