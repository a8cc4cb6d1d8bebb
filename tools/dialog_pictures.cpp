/// Makes the pictures of the settings dialog that the documents show: dialog_pictures FOLDER
#include "DialogDriver.h"

namespace qel
{

const char16_t* const ErrorSource = u"dialog_pictures";

namespace
{

void MakePictures(const std::string& myTarget)
{
    const TemporaryFolder myFolder;
    const Environment myEnvironment{{"TMPDIR", myFolder.Native()}, {"QT_QPA_PLATFORM", "offscreen"}};
    myFolder.Write("tune.mid", "");
    DialogHost theHost(QEL_STAGE "/QelPluginAnimation.so", u"");
    // Opens the dialog, lets a user work in it, and saves a picture of it.
    const auto Photograph =
        [&](const char* myName, const std::string& myScript, const std::function<void(DialogDriver&)>& myWork)
    {
        const auto Work = [&](DialogDriver& theUser)
        {
            myWork(theUser);
            const QString myFile = QString::fromStdString(myTarget + "/" + myName);
            theUser.InForm([&] { EXPECT_TRUE(DialogUser::Front()->grab().save(myFile)); });
            theUser.CloseWindow();
        };
        Drive(theHost, myFolder, myScript, Work);
    };
    Photograph("dialog-new.png", "", [](DialogDriver&) {});
    const auto Browse = [](DialogDriver& theUser)
    {
        theUser.Pick("cmbImageFolder", "Naturaleza");
        theUser.Pick("lstImage", "Mariposa");
        theUser.Pick("cmbMIDIFolder", "Naturaleza");
        EXPECT_TRUE(theUser.IsVisible("lblAnimated"));
    };
    Photograph("dialog-browsing.png", "", Browse);
    const auto Import = [&](DialogDriver& theUser)
    {
        theUser.Pick("cmbImageFolder", "(personalizado)");
        theUser.Pick("cmbMIDIFolder", "(personalizado)");
        theUser.Click("lblMIDI");
        theUser.ChooseFile("Cargar sonido de fondo", myFolder.Native("tune.mid"));
        theUser.Click("lblImage");
        theUser.ChooseFile("Cargar motivo de animación", QEL_STAGE "/QelPluginAnimationDesigns/Viajes/Avión.gif");
    };
    Photograph("dialog-imports.png", "", Import);
    Photograph("dialog-period.png", "<pg.param name=from value=40513><pg.param name=to value=40543>",
               [](DialogDriver& theUser) { theUser.Click("cmdSetLink"); });
}

} // namespace
} // namespace qel

int main(int myCount, char** myArguments)
{
    testing::InitGoogleTest(&myCount, myArguments);
    if (myCount != 2)
    {
        std::fputs("usage: dialog_pictures FOLDER\n", stderr);
        return 2;
    }
    qel::MakePictures(myArguments[1]);
    return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
}
